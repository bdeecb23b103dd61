#include "app/readers/qv_gbxml_turn.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "app/readers/qv_text_encoding.h"
#include "app/readers/qv_xml_document.h"

namespace qv {
namespace {

// A stretch of the text and what takes its place.
struct edit {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::string replacement;
};

// From the "<" of the element to the ">" of its end tag.
edit stretch_of(qv_xml_element element, std::string_view text) {
  const std::size_t name = element.get_offset();
  // The name as written, with its prefix.
  const std::size_t name_end = text.find_first_of(" \t\r\n/>", name);
  const std::string end_tag = "</" + std::string(text.substr(name, name_end - name));
  const std::size_t end = text.find('>', text.find(end_tag, name));
  return {name - 1, end == std::string_view::npos ? name - 1 : end + 1, {}};
}

// Each point's text moves to the place of its opposite one; what stands between points stays.
bool reverse_points(qv_xml_element loop, std::string_view text, std::vector<edit>& edits) {
  std::vector<edit> points;
  for (const qv_xml_element child : loop)
    if (child.is("CartesianPoint")) points.push_back(stretch_of(child, text));
  for (std::size_t i = 0; i < points.size(); ++i) {
    const edit& opposite = points[points.size() - 1 - i];
    points[i].replacement = text.substr(opposite.begin, opposite.end - opposite.begin);
  }
  edits.insert(edits.end(), points.begin(), points.end());
  return !points.empty();
}

// The polygons of a Surface or Opening, and of the openings in it.
bool turn_element(qv_xml_element element, std::string_view text, std::vector<edit>& edits) {
  bool turned = false;
  for (const qv_xml_element child : element) {
    if (child.get_name().starts_with("Planar")) {
      for (const qv_xml_element loop : child)
        if (loop.is("PolyLoop") && reverse_points(loop, text, edits)) turned = true;
    } else if (child.is("Opening")) {
      turn_element(child, text, edits);
    }
  }
  return turned;
}

// Returns how many were turned.
int turn_surfaces(qv_xml_element parent, std::string_view text, const std::set<std::string>& ids,
                  std::vector<edit>& edits) {
  int count = 0;
  for (const qv_xml_element child : parent) {
    if (child.is("Campus") || child.is("Building")) {
      count += turn_surfaces(child, text, ids, edits);
    } else if (child.is("Surface") && ids.contains(std::string(child.get_attribute("id"))) &&
               turn_element(child, text, edits)) {
      ++count;
    }
  }
  return count;
}

// The text is UTF-8 whatever the file was: its declaration has to say so.
void correct_declaration(std::string_view text, std::vector<edit>& edits) {
  if (!text.starts_with("<?xml")) return;
  const std::string_view declaration = text.substr(0, text.find("?>"));
  const std::size_t encoding = declaration.find("encoding");
  const std::size_t open = declaration.find_first_of("\"'", encoding);
  if (encoding == std::string_view::npos || open == std::string_view::npos) return;
  const std::size_t close = declaration.find(declaration[open], open + 1);
  if (close == std::string_view::npos) return;
  std::string named(declaration.substr(open + 1, close - open - 1));
  std::transform(named.begin(), named.end(), named.begin(), [](char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
  });
  if (named != "UTF-8") edits.push_back({open + 1, close, "UTF-8"});
}

std::string edited(std::string_view text, std::vector<edit> edits) {
  std::sort(edits.begin(), edits.end(),
            [](const edit& a, const edit& b) { return a.begin < b.begin; });
  std::string result;
  std::size_t done = 0;
  for (const edit& e : edits) {
    result.append(text.substr(done, e.begin - done));
    result.append(e.replacement);
    done = e.end;
  }
  result.append(text.substr(done));
  return result;
}

}  // namespace

qv_turned_gbxml qv_turn_gbxml_surfaces(const std::string& name, std::string bytes,
                                       const std::set<std::string>& ids) {
  std::vector<std::string> warnings;
  const std::string text = qv_to_utf8(name, std::move(bytes), warnings);
  const qv_xml_document document(name, text);
  std::vector<edit> edits;
  correct_declaration(text, edits);
  qv_turned_gbxml result;
  result.count = turn_surfaces(document.get_root(), text, ids, edits);
  result.text = edited(text, std::move(edits));
  return result;
}

}  // namespace qv
