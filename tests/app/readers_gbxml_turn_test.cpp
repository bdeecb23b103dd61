#include "app/readers/qv_gbxml_turn.h"

#include <gtest/gtest.h>

#include "app/readers/qv_input_error.h"

namespace {

std::string turn(const std::string& text, const std::set<std::string>& ids) {
  return qv::qv_turn_gbxml_surfaces("test.xml", text, ids).text;
}

std::string loop(const std::string& a, const std::string& b, const std::string& c) {
  const auto p = [](const std::string& name) {
    return "<CartesianPoint><Coordinate>" + name + "</Coordinate></CartesianPoint>";
  };
  return "<PolyLoop>\n  " + p(a) + "<!-- one -->" + p(b) + "\n\t" + p(c) + "</PolyLoop>";
}
std::string surface(const std::string& id, const std::string& content) {
  return "<Surface id='" + id + "' ><PlanarGeometry >" + content + "</PlanarGeometry></Surface>";
}
std::string file(const std::string& content) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<gbXML ><Campus>" + content +
         "</Campus></gbXML >\n";
}

TEST(qv_gbxml_turn, reverses_the_points_and_changes_no_other_byte) {
  const std::string before =
      file(surface("a", loop("1", "2", "3")) + surface("b", loop("1", "2", "3")));
  const auto turned = qv::qv_turn_gbxml_surfaces("test.xml", before, {"b", "c"});
  EXPECT_EQ(turned.count, 1);
  EXPECT_EQ(turned.text,
            file(surface("a", loop("1", "2", "3")) + surface("b", loop("3", "2", "1"))));
  EXPECT_EQ(turn(turned.text, {"b"}), before);
  EXPECT_EQ(turn(before, {}), before);
}

TEST(qv_gbxml_turn, turns_the_openings_of_a_surface_with_it) {
  const auto window = [](const std::string& points) {
    return "<Surface id=\"a\"><PlanarGeometry>" + loop("1", "2", "3") +
           "</PlanarGeometry><Opening><PlanarGeometry>" + points +
           "</PlanarGeometry></Opening></Surface>";
  };
  const std::string after = turn(file(window(loop("4", "5", "6"))), {"a"});
  EXPECT_NE(after.find(loop("6", "5", "4")), std::string::npos);
  EXPECT_NE(after.find(loop("3", "2", "1")), std::string::npos);
}

TEST(qv_gbxml_turn, knows_elements_by_their_local_names) {
  const std::string text =
      "<g:gbXML xmlns:g='x'><g:Campus><g:Surface id='a'><g:PlanarGeometry><g:PolyLoop>"
      "<g:CartesianPoint>1</g:CartesianPoint><g:CartesianPoint>2</g:CartesianPoint >"
      "</g:PolyLoop></g:PlanarGeometry></g:Surface></g:Campus></g:gbXML>";
  EXPECT_NE(turn(text, {"a"})
                .find("<g:CartesianPoint>2</g:CartesianPoint ><g:CartesianPoint>1"
                      "</g:CartesianPoint></g:PolyLoop>"),
            std::string::npos);
}

TEST(qv_gbxml_turn, leaves_a_surface_without_points) {
  const std::string text = file("<Surface id='a'><RectangularGeometry/></Surface>");
  const auto turned = qv::qv_turn_gbxml_surfaces("test.xml", text, {"a"});
  EXPECT_EQ(turned.count, 0);
  EXPECT_EQ(turned.text, text);
}

TEST(qv_gbxml_turn, declares_the_encoding_that_it_writes) {
  const std::string latin =
      "<?xml version='1.0' encoding='ISO-8859-1'?><gbXML><Campus name='B\xE2timent'/></gbXML>";
  EXPECT_EQ(turn(latin, {}),
            "<?xml version='1.0' encoding='UTF-8'?><gbXML><Campus name='Bâtiment'/></gbXML>");
  const std::string plain = "<?xml version='1.0'?><gbXML/>";
  EXPECT_EQ(turn(plain, {}), plain);
}

TEST(qv_gbxml_turn, refuses_what_is_no_xml) {
  EXPECT_THROW(turn("<gbXML>", {}), qv::qv_input_error);
}

}  // namespace
