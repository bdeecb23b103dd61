#include "app/readers/qv_gbxml_site.h"

#include <gtest/gtest.h>

#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "tests/app/qv_gbxml_text.h"

namespace {

using kind = qv::qv_import_ledger::kind;
using outcome = qv::qv_import_ledger::outcome;

const std::string metres =
    "<gbXML lengthUnit=\"Meters\" areaUnit=\"SquareMeters\" volumeUnit=\"CubicMeters\" "
    "temperatureUnit=\"C\">";
const std::string some_surface = "<Surface id=\"some\" surfaceType=\"Shade\">" +
                                 qv_gbxml_text::planar({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}) +
                                 "</Surface>";

qv::qv_gbxml_model read(const std::string& text) {
  return qv::qv_read_gbxml_bytes("t.xml", text);
}

}  // namespace

TEST(qv_gbxml_site, reads_the_location_of_each_campus) {
  const auto model = read(
      "<gbXML lengthUnit=\"Feet\"><Campus id=\"a\"><Location><Name>Lyon</Name>"
      "<Latitude> 45.7 </Latitude><Longitude>4.8</Longitude><Elevation>100</Elevation>"
      "<CADModelAzimuth>335</CADModelAzimuth></Location>" +
      some_surface +
      "</Campus><Campus id=\"b\"><Location><Latitude>north</Latitude></Location></Campus></gbXML>");
  ASSERT_EQ(model.locations.size(), 2U);
  EXPECT_EQ(model.locations[0].campus_id, "a");
  EXPECT_EQ(model.locations[0].name, "Lyon");
  EXPECT_EQ(model.locations[0].latitude, 45.7);
  EXPECT_EQ(model.locations[0].longitude, 4.8);
  EXPECT_DOUBLE_EQ(model.locations[0].elevation.value(), 30.48);
  EXPECT_EQ(model.locations[0].model_azimuth, 335);
  EXPECT_FALSE(model.locations[1].latitude);
  EXPECT_EQ(model.root->collect("campus").get_count(), 2);
}

TEST(qv_gbxml_site, links_spaces_to_zones_and_buildings) {
  const auto model = read(metres +
                          "<Campus id=\"c\"><Building id=\"b1\"><Name>Haus</Name>"
                          "<Space id=\"s1\" zoneIdRef=\"z1\"><Name>Küche</Name></Space>"
                          "<Space id=\"s2\" zoneIdRef=\"z1\"/></Building>"
                          "<Building id=\"b2\"><Space id=\"s3\" zoneIdRef=\"z2\"/></Building>" +
                          some_surface +
                          "</Campus><Zone id=\"z1\"><Name>Wohnen</Name></Zone><Zone "
                          "id=\"z2\"/><Zone id=\"z3\"/></gbXML>");
  EXPECT_EQ(model.building_count, 2);
  ASSERT_EQ(model.spaces.size(), 3U);
  const qv::qvi_space* first = model.spaces[0].item;
  EXPECT_EQ(first->get_name(), "Küche");
  EXPECT_EQ(first->get_unique_id(), "s1");
  EXPECT_EQ(first->get_source_ids()[0], "s1");
  EXPECT_FALSE(first->get_outside());
  EXPECT_EQ(first->get_zone()->get_name(), "Wohnen");
  EXPECT_EQ(first->get_building()->get_name(), "Haus");
  EXPECT_EQ(first->get_zone()->get_building(), first->get_building());
  EXPECT_EQ(model.spaces[1].item->get_name(), "s2");
  EXPECT_EQ(model.spaces[1].item->get_zone(), first->get_zone());
  EXPECT_EQ(model.spaces[2].item->get_zone()->get_name(), "z2");
  EXPECT_EQ(model.spaces[2].item->get_building()->get_name(), "b2");
  EXPECT_EQ(first->get_building()->get_parent()->get_name(), "c");
  EXPECT_EQ(model.root->collect("zone").get_count(), 3);
  EXPECT_EQ(qv_find_entry(model.ledger, kind::zone, "z3").reason, "no space names it");
}

TEST(qv_gbxml_site, gives_a_building_one_zone_for_its_spaces_without_zone) {
  const auto model =
      read(metres +
           "<Campus><Building><Space id=\"s1\"/><Space id=\"s2\" zoneIdRef=\"gone\"/>"
           "</Building>" +
           some_surface + "</Campus></gbXML>");
  const qv::qvi_zone* zone = model.spaces[0].item->get_zone();
  ASSERT_NE(zone, nullptr);
  EXPECT_EQ(zone->get_name(), "Zone 1-1");
  EXPECT_EQ(zone->get_building()->get_name(), "Bâtiment 1");
  EXPECT_EQ(model.spaces[1].item->get_zone(), zone);
  const auto entry = qv_find_entry(model.ledger, kind::space, "s2");
  EXPECT_EQ(entry.result, outcome::repaired);
  EXPECT_EQ(entry.reason, "Zone \"gone\" is not in the file; in no zone of the file");
}

TEST(qv_gbxml_site, a_zone_over_two_buildings_becomes_one_in_each) {
  const auto model =
      read(metres +
           "<Campus><Building id=\"b1\"><Space id=\"s1\" zoneIdRef=\"z\"/></Building>"
           "<Building id=\"b2\"><Space id=\"s2\" zoneIdRef=\"z\"/></Building>" +
           some_surface + "</Campus><Zone id=\"z\"/></gbXML>");
  const qv::qvi_zone* one = model.spaces[0].item->get_zone();
  const qv::qvi_zone* two = model.spaces[1].item->get_zone();
  EXPECT_NE(one, two);
  EXPECT_EQ(one->get_building(), model.spaces[0].item->get_building());
  EXPECT_EQ(two->get_building(), model.spaces[1].item->get_building());
  EXPECT_NE(one->get_unique_id(), two->get_unique_id());
  EXPECT_EQ(qv_find_entry(model.ledger, kind::zone, "z").result, outcome::repaired);
}

TEST(qv_gbxml_site, spaces_outside_a_building_have_none) {
  const auto model =
      read(metres + "<Campus><Space id=\"s\"/>" + some_surface + "</Campus></gbXML>");
  EXPECT_EQ(model.building_count, 0);
  EXPECT_EQ(model.spaces[0].item->get_building(), nullptr);
  EXPECT_EQ(model.spaces[0].item->get_zone(), nullptr);
}

TEST(qv_gbxml_site, reads_stated_values_in_the_unit_of_the_root_or_their_own) {
  const auto model = read(
      "<gbXML lengthUnit=\"Feet\" areaUnit=\"SquareFeet\" volumeUnit=\"CubicFeet\" "
      "temperatureUnit=\"F\">"
      "<Campus><Building><Space id=\"s\"><Area>100</Area><Volume "
      "unit=\"CubicMeters\">30</Volume></Space>"
      "<Space id=\"t\"/></Building>" +
      some_surface +
      "</Campus><Zone id=\"z\"><DesignHeatT unit=\"F\">68</DesignHeatT>"
      "<DesignCoolT unit=\"C\">26</DesignCoolT></Zone></gbXML>");
  EXPECT_DOUBLE_EQ(model.spaces[0].stated_area.value(), 9.290304);
  EXPECT_DOUBLE_EQ(model.spaces[0].stated_volume.value(), 30);
  EXPECT_FALSE(model.spaces[1].stated_area);
  EXPECT_FALSE(model.spaces[1].stated_volume);
  EXPECT_NEAR(model.zones[0].heating_temperature.value(), 20, 1e-12);
  EXPECT_DOUBLE_EQ(model.zones[0].cooling_temperature.value(), 26);
  EXPECT_EQ(model.units.length, "Feet");
}

TEST(qv_gbxml_site, reads_storeys) {
  const auto model =
      read(metres +
           "<Campus><Building id=\"b\"><BuildingStorey id=\"l\"><Name>RdC</Name>"
           "<Level>-0.5</Level></BuildingStorey><Space id=\"s\" buildingStoreyIdRef=\"l\"/>"
           "</Building>" +
           some_surface + "</Campus></gbXML>");
  ASSERT_EQ(model.storeys.size(), 1U);
  EXPECT_EQ(model.storeys[0].name, "RdC");
  EXPECT_EQ(model.storeys[0].building_id, "b");
  EXPECT_EQ(model.storeys[0].level, -0.5);
  EXPECT_EQ(model.spaces[0].storey_id, "l");
}

TEST(qv_gbxml_site, measures_shells_and_counts_boundaries_that_name_no_surface) {
  // A tetrahedron of legs 2, 3 and 4: volume 4.
  const std::string shell = "<ShellGeometry unit=\"Meters\"><ClosedShell>" +
                            qv_gbxml_text::loop({{0, 0, 0}, {0, 3, 0}, {2, 0, 0}}) +
                            qv_gbxml_text::loop({{0, 0, 0}, {2, 0, 0}, {0, 0, 4}}) +
                            qv_gbxml_text::loop({{0, 0, 0}, {0, 0, 4}, {0, 3, 0}}) +
                            qv_gbxml_text::loop({{2, 0, 0}, {0, 3, 0}, {0, 0, 4}}) +
                            "</ClosedShell></ShellGeometry>";
  const auto model =
      read(metres + "<Campus><Building><Space id=\"s\">" + shell +
           "<SpaceBoundary surfaceIdRef=\"some\"/><SpaceBoundary surfaceIdRef=\"none\"/>"
           "</Space></Building>" +
           some_surface + "</Campus></gbXML>");
  EXPECT_NEAR(model.spaces[0].shell_volume.value(), 4, 1e-6);
  EXPECT_EQ(model.spaces[0].boundary_count, 2);
  EXPECT_EQ(model.spaces[0].dangling_boundary_count, 1);
}

TEST(qv_gbxml_site, an_id_given_twice_to_spaces_zones_or_buildings_is_an_error_with_its_line) {
  const auto message = [](const std::string& text) -> std::string {
    try {
      read(text);
    } catch (const qv::qv_input_error& error) {
      EXPECT_EQ(error.get_exit_code(), 3);
      return error.what();
    }
    return {};
  };
  EXPECT_EQ(
      message(metres + "<Campus><Building>\n<Space id=\"s\"/>\n<Space id=\"s\"/></Building>" +
              some_surface + "</Campus></gbXML>"),
      "t.xml, line 3, Space \"s\": a second Space bears this id; give each Space an id of its "
      "own");
  EXPECT_NE(message(metres + "<Campus>" + some_surface +
                    "</Campus><Zone id=\"z\"/><Zone id=\"z\"/></gbXML>"),
            "");
  EXPECT_NE(message(metres + "<Campus>" + some_surface +
                    "<Building id=\"b\"/><Building id=\"b\"/></Campus></gbXML>"),
            "");
}
