#pragma once

#include <vector>

#include "app/readers/qv_gbxml_surfaces.h"

namespace qv {

class qv_unique_ids;
class qvi_polygon;

/// Turns the surfaces of a gbXML file into walls and objects: which way each faces, what type it
/// is, and the items.
class qv_gbxml_walls {
 public:
  qv_gbxml_walls(qv_gbxml_context& context, qv_gbxml_site& site,
                 qv_gbxml_constructions& constructions, qv_gbxml_surfaces& surfaces);

  /// Turns the polygons whose normal does not point away from their first space.
  ///
  /// For each surface the strongest evidence decides: a closed shell of one of its spaces, rays,
  /// the patch that it belongs to, then what its type says of up and down, then what most surfaces
  /// of the file turned out to need. The file's own direction stands where nothing speaks.
  void turn_outwards();
  /// Chooses the wall types and tells the constructions which of them are used how.
  void choose_types();
  /// What each space's surfaces enclose, into the model's `spaces`.
  void measure_spaces();
  /// Makes the walls and objects below their campuses, in the order of the file. Spaces and
  /// compositions must have been made. An object with openings gets a wall beside it for each of
  /// its faces, which is the wall's face as well.
  void make_items(qv_unique_ids& ids);

 private:
  struct face_place {
    int surface = 0;
    int part = 0;
  };
  struct space_faces {
    std::vector<qv_shell_face> faces;
    std::vector<face_place> places;
    qv_shell_verdict verdict;
    bool overruled = false;  // a face was not turned as the verdict asked
  };

  void collect_faces();
  void add_face(int space, int surface, int part, int side);
  void turn(qv_gbxml_surface& surface);
  bool is_composition_reversed(const qv_gbxml_surface& surface, std::size_t part) const;
  void make_object(qv_gbxml_surface& surface, qv_unique_ids& ids);
  void make_wall(qv_gbxml_surface& surface, std::size_t part, qv_unique_ids& ids);
  qvi_wall* make_wall_of(qv_gbxml_surface& surface, std::size_t part, qvi_polygon* face,
                         qv_unique_ids& ids);

  qv_gbxml_context& context_;
  qv_gbxml_site& site_;
  qv_gbxml_constructions& constructions_;
  qv_gbxml_surfaces& surfaces_;
  std::vector<space_faces> spaces_;
};

}  // namespace qv
