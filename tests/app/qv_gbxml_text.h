#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "app/readers/qv_gbxml_reader.h"
#include "bim/project/qvi_bim_root.h"

/// Writes gbXML for tests: surfaces and spaces in a few words.
class qv_gbxml_text {
 public:
  using point = std::array<double, 3>;

  /// The corners of a PolyLoop.
  static std::string loop(const std::vector<point>& corners) {
    std::string text = "<PolyLoop>";
    for (const point& p : corners) {
      text += "<CartesianPoint>";
      for (const double c : p) text += "<Coordinate>" + std::to_string(c) + "</Coordinate>";
      text += "</CartesianPoint>";
    }
    return text + "</PolyLoop>";
  }

  static std::string planar(const std::vector<point>& corners) {
    return "<PlanarGeometry>" + loop(corners) + "</PlanarGeometry>";
  }

  /// Anything below the root, in front of the campus.
  qv_gbxml_text& head(const std::string& text) {
    head_ += text;
    return *this;
  }
  qv_gbxml_text& space(const std::string& id, const std::string& content = {},
                       const std::string& attributes = {}) {
    spaces_ += "<Space id=\"" + id + "\" " + attributes + ">" + content + "</Space>\n";
    return *this;
  }
  /// A surface with any geometry.
  qv_gbxml_text& surface(const std::string& id, const std::string& type,
                         const std::vector<std::string>& spaces, const std::string& content,
                         const std::string& attributes = {}) {
    surfaces_ += "<Surface id=\"" + id + "\" surfaceType=\"" + type + "\" " + attributes + ">";
    for (const std::string& s : spaces) surfaces_ += "<AdjacentSpaceId spaceIdRef=\"" + s + "\"/>";
    surfaces_ += content + "</Surface>\n";
    return *this;
  }
  qv_gbxml_text& polygon(const std::string& id, const std::string& type,
                         const std::vector<std::string>& spaces, const std::vector<point>& corners,
                         const std::string& attributes = {}) {
    return surface(id, type, spaces, planar(corners), attributes);
  }
  /// The six surfaces of a box room, named after the space: "…-floor", "…-roof", "…-south",
  /// "…-east", "…-north", "…-west"; all normals point outwards.
  qv_gbxml_text& box(const std::string& id, const point& a, const point& b) {
    space(id);
    polygon(id + "-floor", "SlabOnGrade", {id},
            {{a[0], a[1], a[2]}, {a[0], b[1], a[2]}, {b[0], b[1], a[2]}, {b[0], a[1], a[2]}});
    polygon(id + "-roof", "Roof", {id},
            {{a[0], a[1], b[2]}, {b[0], a[1], b[2]}, {b[0], b[1], b[2]}, {a[0], b[1], b[2]}});
    polygon(id + "-south", "ExteriorWall", {id},
            {{a[0], a[1], a[2]}, {b[0], a[1], a[2]}, {b[0], a[1], b[2]}, {a[0], a[1], b[2]}});
    polygon(id + "-east", "ExteriorWall", {id},
            {{b[0], a[1], a[2]}, {b[0], b[1], a[2]}, {b[0], b[1], b[2]}, {b[0], a[1], b[2]}});
    polygon(id + "-north", "ExteriorWall", {id},
            {{b[0], b[1], a[2]}, {a[0], b[1], a[2]}, {a[0], b[1], b[2]}, {b[0], b[1], b[2]}});
    return polygon(
        id + "-west", "ExteriorWall", {id},
        {{a[0], b[1], a[2]}, {a[0], a[1], a[2]}, {a[0], a[1], b[2]}, {a[0], b[1], b[2]}});
  }
  /// Attributes of the root, instead of metres.
  qv_gbxml_text& root(const std::string& attributes) {
    root_ = attributes;
    return *this;
  }

  std::string text() const {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<gbXML " + root_ + ">\n" + head_ +
           "<Campus id=\"campus\"><Building id=\"building\">\n" + spaces_ + "</Building>\n" +
           surfaces_ + "</Campus></gbXML>\n";
  }
  qv::qv_gbxml_model read() const { return qv::qv_read_gbxml_bytes("test.xml", text()); }

 private:
  std::string root_ =
      "lengthUnit=\"Meters\" areaUnit=\"SquareMeters\" volumeUnit=\"CubicMeters\" "
      "temperatureUnit=\"C\"";
  std::string head_;
  std::string spaces_;
  std::string surfaces_;
};

/// The one entry of that kind and id; a default entry when there is none.
inline qv::qv_import_ledger::entry qv_find_entry(const qv::qv_import_ledger& ledger,
                                                 qv::qv_import_ledger::kind kind,
                                                 const std::string& id) {
  for (const auto& entry : ledger.get_entries())
    if (entry.what == kind && entry.id == id) return entry;
  return {};
}
