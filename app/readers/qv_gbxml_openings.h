#pragma once

#include <array>
#include <string>
#include <vector>

#include "app/readers/qv_gbxml_context.h"
#include "app/readers/qv_gbxml_opening_type.h"
#include "app/readers/qv_gbxml_surfaces.h"
#include "app/readers/qv_gbxml_windows.h"
#include "utilities/qv_polygon.h"

namespace qv {

class qv_unique_ids;

/// The Opening elements of a gbXML file: where they lie in their walls, and the items.
///
/// An opening belongs to the wall of the Surface that lists it, or, where that Surface is listed
/// twice, to the wall that stands for both. It is moved onto the wall's plane (from up to
/// `largest_distance`), cut to the wall's face, and gives up what a smaller opening holds. An
/// opening that another one of the wall says already is merged with it. Where a surface that is not
/// plane became several walls, an opening may become several as well.
class qv_gbxml_openings {
 public:
  /// m; an opening farther from its surface's plane belongs elsewhere: no wall is thicker.
  static constexpr double largest_distance = 1.0;
  /// Cosine of the largest angle between an opening and its surface.
  static constexpr double least_parallel = 0.9;

  qv_gbxml_openings(qv_gbxml_context& context, qv_gbxml_surfaces& surfaces,
                    qv_gbxml_windows& windows)
      : context_(context), surfaces_(surfaces), windows_(windows) {}

  /// Reads every Opening and cuts it to its wall. The surfaces must face outwards.
  void read();
  /// Makes the openings beside their walls and the walls' pierced faces. Walls and compositions
  /// must have been made.
  void make_items(qv_unique_ids& ids);

 private:
  struct piece {
    int part = 0;  // of the surface
    qv_polygon region;
    double area = 0;  // m²
  };
  struct opening {
    std::string id;
    std::string name;
    std::vector<std::string> merged_ids;
    qv_gbxml_opening_type type = qv_gbxml_opening_type::fixed_window;
    std::size_t entry = 0;
    int surface = 0;  // whose wall it pierces
    double area = 0;  // as the file has it, m²
    std::vector<qv_plane_part> parts;
    qv_gbxml_windows::filling filling;
    std::vector<piece> pieces;
  };
  // What cutting took from an opening, over all parts of its surface.
  struct loss {
    double found = 0;  // area that lies in the planes of the surface, m²
    double outside = 0;
    double covered = 0;
    std::vector<std::size_t> covered_by;
  };
  // What is left of a wall's face.
  struct pierced_face {
    int surface = 0;
    int part = 0;
    qv_polygon rest;
  };

  void read_opening(qv_xml_element element, int surface);
  void read_type(qv_xml_element element, opening& o);
  void read_polygon(qv_xml_element element, opening& o);
  void read_rectangle(qv_xml_element element, opening& o);
  void drop(opening& o, const std::string& reason);
  void merge_same(std::vector<std::size_t>& numbers);
  void cut_surface(const std::vector<std::size_t>& numbers);
  std::vector<std::size_t> find_near(const std::vector<std::size_t>& numbers,
                                     const qv_plane_part& face, std::vector<qv_polygon>& projected);
  void settle(opening& o, const loss& lost);
  void make_pierced_face(pierced_face& face);
  void make_opening(const opening& o, std::size_t rank, qv_unique_ids& ids);

  qv_gbxml_context& context_;
  qv_gbxml_surfaces& surfaces_;
  qv_gbxml_windows& windows_;
  std::vector<opening> openings_;
  std::vector<pierced_face> faces_;
};

}  // namespace qv
