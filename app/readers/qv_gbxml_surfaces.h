#pragma once

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "app/readers/qv_gbxml_constructions.h"
#include "app/readers/qv_gbxml_context.h"
#include "app/readers/qv_gbxml_site.h"
#include "app/readers/qv_gbxml_surface_type.h"
#include "app/readers/qv_source_polygon.h"
#include "app/readers/qv_space_shell.h"
#include "app/readers/qv_vertex_welder.h"

namespace qv {

/// A Surface element on its way to a wall or an object.
struct qv_gbxml_surface {
  qv_xml_element element;
  std::string id;
  std::string name;
  qv_surface_type type = qv_surface_type::unknown;
  int campus = 0;
  /// Numbers of the spaces on both sides, −1 for none; the first is set when the second is.
  std::array<int, 2> spaces = {-1, -1};
  int construction = -1;
  std::size_t entry = 0;
  qv_source_polygon polygon;
  /// One for each part of the polygon.
  std::vector<qv_shell_polygon> shells;
  /// One for each part of the polygon.
  std::vector<qvi_wall::wall_type> wall_types;
  /// The surface whose wall stands for this one as well, −1 for none.
  int merged_into = -1;
  /// Ids of the surfaces merged into this one.
  std::vector<std::string> merged_ids;

  /// Whether an Opening lies in it; known once the openings have been read.
  bool has_openings = false;

  /// One for each part of the polygon, once they have been made.
  std::vector<qvi_wall*> walls;

  int get_space_count() const { return spaces[1] >= 0 ? 2 : spaces[0] >= 0 ? 1 : 0; }
  /// Neither dropped nor said by another surface.
  bool is_kept() const { return merged_into < 0 && !polygon.parts.empty(); }
  /// A shade or column that bounds no space stands in the scene as an object.
  bool becomes_object() const { return is_kept() && spaces[0] < 0 && qv_is_object_type(type); }
  bool becomes_wall() const { return is_kept() && !becomes_object(); }
};

/// The Surface elements of a gbXML file.
class qv_gbxml_surfaces {
 public:
  qv_gbxml_surfaces(qv_gbxml_context& context, qv_gbxml_site& site,
                    qv_gbxml_constructions& constructions)
      : context_(context), site_(site), constructions_(constructions) {}

  /// Reads every Surface. Ends the reading when there is none.
  void read();
  /// Takes a whole number of metres off the coordinates of a model that lies so far from the origin
  /// that single precision would spoil it.
  void bring_to_origin();
  /// Makes one surface of those listed twice. Ends the reading when surfaces of the same id are not
  /// the same.
  void merge_duplicates();

  std::vector<qv_gbxml_surface>& get_surfaces() { return surfaces_; }
  /// Corners of the surfaces, numbered alike where they coincide; filled by `merge_duplicates`.
  const std::vector<qv_double3>& get_points() const { return welder_.get_points(); }

 private:
  struct surface_parts;

  void read_surface(const qv_gbxml_site::surface_place& place, surface_parts& parts);
  void note_flaws(const qv_gbxml_surface& surface, bool names_space);
  void find_spaces(qv_gbxml_surface& surface, const std::vector<std::string_view>& names);
  void find_construction(qv_gbxml_surface& surface, std::string_view reference);
  std::vector<qv_loop> read_outlines(qv_xml_element surface);
  void number_corners();
  bool merge(qv_gbxml_surface& first, int first_number, qv_gbxml_surface& second);
  void check_ids();

  qv_gbxml_context& context_;
  qv_gbxml_site& site_;
  qv_gbxml_constructions& constructions_;
  std::vector<qv_gbxml_surface> surfaces_;
  std::unordered_map<std::string_view, int> surface_by_id_;
  std::vector<std::pair<int, int>> same_ids_;
  std::vector<int> found_;  // spaces of the surface that is being read
  qv_vertex_welder welder_;
};

}  // namespace qv
