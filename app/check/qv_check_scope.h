#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "app/check/qv_check.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "core/light/qv_raytracer.h"

namespace qv {

/// What the families of checks share: the model's items in order, who bounds what, and where
/// findings go. Each family is a function over it; a later one knows what earlier ones found.
class qv_check_scope {
 public:
  explicit qv_check_scope(const qv_gbxml_model& model);

  const qv_gbxml_model& get_model() const { return model_; }
  const std::vector<qvi_wall*>& get_walls() const { return walls_; }
  const std::vector<qvi_space*>& get_spaces() const { return spaces_; }
  /// The walls with the space on one side or both, in the order of the model.
  const std::vector<qvi_wall*>& get_walls_of(const qvi_space* space) const;
  /// What the file says of the space, or null.
  const qv_source_space* find_source(const qvi_space* space) const;
  /// The first wall made from the element of that id, or null.
  qvi_wall* find_wall(const std::string& id) const;
  /// Over the faces of all walls, updated.
  const qv_raytracer& get_rays() const { return *rays_; }

  /// The face that a wall shows; null without one.
  static qvi_polygon* get_face(const qvi_wall* wall);
  /// Id in the file of what the item was made from; else its name.
  static std::string id_of(const qvi_wall* wall);
  static std::string id_of(const qvi_space* space);
  /// `Space "salon"`
  static std::string quoted(const qvi_space* space);

  void add(const char* code, const char* kind, const std::string& id, const std::string& message);
  void add(const char* code, const char* kind, const std::string& id, const std::string& message,
           const qv_3dvector& place);
  /// A finding about a wall, at the middle of its face.
  void add(const char* code, const qvi_wall* wall, const std::string& message);

  /// The space is open on a side: what follows from that is not told again.
  void mark_open(const qvi_space* space) { open_.insert(space); }
  bool is_open(const qvi_space* space) const { return open_.contains(space); }

  qv_check_report report;

 private:
  const qv_gbxml_model& model_;
  std::vector<qvi_wall*> walls_;
  std::vector<qvi_space*> spaces_;
  std::unordered_map<const qvi_space*, std::vector<qvi_wall*>> walls_of_;
  std::unordered_map<const qvi_space*, const qv_source_space*> sources_;
  std::unordered_map<std::string, qvi_wall*> wall_by_id_;
  std::unordered_set<const qvi_space*> open_;
  std::unique_ptr<qv_raytracer> rays_;
};

// The families, in the order in which they run.

/// Walls without space; spaces without surfaces, floor or ceiling.
void qv_check_hierarchy(qv_check_scope& scope);
/// Spaces that rays leave.
void qv_check_leaks(qv_check_scope& scope);
/// Reversed normals, and walls of which rays cannot tell.
void qv_check_orientation(qv_check_scope& scope);
/// Walls on one another, and back to back.
void qv_check_overlaps(qv_check_scope& scope);
/// Openings outside their wall.
void qv_check_openings(qv_check_scope& scope);
/// Compositions and materials.
void qv_check_materials(qv_check_scope& scope);
/// Areas and volumes beside those that the file states.
void qv_check_stated_sizes(qv_check_scope& scope);
/// Polygons that are not plane, and slivers.
void qv_check_polygons(qv_check_scope& scope);

}  // namespace qv
