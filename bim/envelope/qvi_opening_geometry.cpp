#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "bim/envelope/qvi_opening.h"
#include "bim/materials/qvi_opening_shader.h"
#include "core/shapes/qvi_polygon.h"
#include "utilities/qv_date.h"

namespace qv {

namespace {

constexpr float below_every_vertex = -1e8f;  // m, along the opening's normal
constexpr float opaque_from_alpha = 0.99f;   // a colour with less shows what lies behind
constexpr float reveal_cosine =
    0.1f;  // faces nearer to a right angle with the opening are its reveals

qvi_opening_part::kind get_kind(const qvi_shader& shader) {
  if (shader.has_type("glazing")) return qvi_opening_part::kind::glazing;
  if (shader.has_type("opaque")) return qvi_opening_part::kind::opaque;
  return qvi_opening_part::kind::frame;
}

/// Corners of a mesh; those of its triangles where it has no corners of its own (instances).
const qv_list<qv_3dvector>& get_corners(qvi_mesh& mesh) {
  const qv_list<qv_3dvector>& corners = mesh.get_vertices();
  return corners.is_empty() ? mesh.get_triangle_vertices() : corners;
}

bool is_transparent(const qvi_mesh& mesh) {
  const qvi_shader* const shader = mesh.get_front_shader();
  return shader != nullptr && shader->get_diffuse_color().a < opaque_from_alpha;
}

/// Whether an imported object changed after `date`: what lies below it, or a colour that tells its
/// panes from its panels.
bool has_changed_since(const qv_item& object, unsigned int date) {
  if (object.get_date() > date) return true;
  const qv_list<qvi_mesh*> meshes = qv_collect<qvi_mesh>(&object, "mesh");
  return std::any_of(meshes.begin(), meshes.end(), [date](const qvi_mesh* mesh) {
    const qvi_shader* const shader = mesh->get_front_shader();
    return shader != nullptr && shader->get_diffuse_color_date() > date;
  });
}

/// Gathers pieces in one plane and unites them two by two, then the pairs, and so on: a piece is
/// overlaid as often as the number of pieces can be halved, where uniting one after the other would
/// overlay all that came before with each of them.
class piece_union {
 public:
  explicit piece_union(const qv_polygon& plane) : plane_(plane) {}

  /// Projected onto the plane.
  void add(const qv_polygon& piece) { pieces_.emplace_back(plane_).unites(piece); }
  /// The union; the bare plane without pieces.
  qv_polygon take() {
    for (std::size_t step = 1; step < pieces_.size(); step *= 2) {
      for (std::size_t i = 0; i + step < pieces_.size(); i += 2 * step) {
        pieces_[i].unites(pieces_[i + step]);
        pieces_[i + step].clear();
      }
    }
    return pieces_.empty() ? plane_ : pieces_.front();
  }

 private:
  const qv_polygon& plane_;
  std::vector<qv_polygon> pieces_;
};

}  // namespace

const qv_item* qvi_opening::get_imported_source() const {
  const qv_item* const source = get_source();
  return source != nullptr && source->has_type("bim_object") ? source : nullptr;
}

void qvi_opening::compute_geometry() {
  const record& found = *record_;
  // The object lies elsewhere in the scene: its changes leave the opening's own date alone, and so
  // does its coming and going.
  const qv_item* const source = get_imported_source();
  const bool source_changed =
      source != found.source ||
      (source != nullptr && has_changed_since(*source, found.geometry_date));
  if (get_date() <= found.geometry_date && !source_changed) return;

  const qv_list<qvi_mesh*> meshes = qv_collect<qvi_mesh>(this, "mesh");
  const bool is_one_polygon = meshes.get_count() == 1 && meshes[0]->has_type("polygon");
  const bool from_source = source != nullptr && is_one_polygon;
  bool stale = get_normal_date() > found.geometry_date || !(meshes == found.meshes) ||
               from_source != (found.source != nullptr) || (from_source && source_changed);
  for (const qvi_mesh* mesh : meshes) {
    // A shader tells nothing about an outline.
    const unsigned int date = from_source ? mesh->get_shape_date() : mesh->get_geometry_date();
    stale = stale || date > found.geometry_date;
  }
  if (!stale) return;
  if (from_source)
    compute_geometry_from_bim_object(*static_cast<qvi_polygon*>(meshes[0]));
  else
    compute_geometry_from_meshes(meshes);
}

void qvi_opening::compute_geometry_from_meshes(const qv_list<qvi_mesh*>& meshes) {
  record& found = *record_;
  found.parts.clear();
  found.meshes = meshes;
  found.source = nullptr;
  const qv_3dvector normal = get_normal();
  const qv_3dvector center = get_bounding_box().get_center();

  float outermost = below_every_vertex;
  for (qvi_mesh* mesh : meshes) {
    qvi_shader* const shader = mesh->get_front_shader();
    if (shader == nullptr || !shader->has_type("opening_shader")) continue;
    get_part_of(static_cast<qvi_opening_shader*>(shader)).meshes.append(mesh);
    for (const qv_3dvector& corner : get_corners(*mesh)) {
      outermost = std::max(outermost, corner.dot(normal));
    }
  }

  const qv_polygon plane(center + normal * (outermost - center.dot(normal)), normal);
  found.glazing_face = found.opaque_face = found.frame_face = found.full_face = plane;
  for (qvi_opening_part& part : found.parts) {
    piece_union pieces(plane);
    for (qvi_mesh* mesh : part.meshes) {
      if (!mesh->has_type("polygon")) continue;
      qv_polygon piece;
      static_cast<qvi_polygon*>(mesh)->fill_polygon(&piece);
      pieces.add(piece);
    }
    part.polygon = pieces.take();
    part.area = part.polygon.get_area();
    qv_polygon& face_of_kind =
        part.part_kind == qvi_opening_part::kind::glazing  ? found.glazing_face
        : part.part_kind == qvi_opening_part::kind::opaque ? found.opaque_face
                                                           : found.frame_face;
    face_of_kind.unites(part.polygon);
    found.full_face.unites(part.polygon);
  }

  found.opaque_face.substracts(found.frame_face);
  found.glazing_face.substracts(found.frame_face);
  found.glazing_face.substracts(found.opaque_face);
  found.glazing_area = found.glazing_face.get_area();
  found.opaque_area = found.opaque_face.get_area();
  found.frame_area = found.frame_face.get_area();
  scale_parts_to_visible_areas();
  // The sum, not the area of the full face: an opening's U is a mean over what its parts add up to.
  found.full_area = found.opaque_area + found.glazing_area + found.frame_area;
  found.geometry_date = qv_get_date();
}

qvi_opening_part& qvi_opening::get_part_of(qvi_opening_shader* shader) {
  std::vector<qvi_opening_part>& parts = record_->parts;
  const auto known =
      std::find_if(parts.begin(), parts.end(),
                   [shader](const qvi_opening_part& part) { return part.shader == shader; });
  if (known != parts.end()) return *known;
  qvi_opening_part& made = parts.emplace_back();
  made.part_kind = get_kind(*shader);
  made.shader = shader;
  return made;
}

void qvi_opening::scale_parts_to_visible_areas() {
  constexpr int kind_count = 3;
  const float visible[kind_count] = {record_->glazing_area, record_->opaque_area,
                                     record_->frame_area};
  float sum[kind_count] = {0, 0, 0};
  for (const qvi_opening_part& part : record_->parts) {
    sum[static_cast<int>(part.part_kind)] += part.area;
  }
  for (qvi_opening_part& part : record_->parts) {
    const int kind = static_cast<int>(part.part_kind);
    part.area *= sum[kind] > 0.0f ? visible[kind] / sum[kind] : 0.0f;
  }
}

void qvi_opening::compute_geometry_from_bim_object(qvi_polygon& mesh_of_outline) {
  record& found = *record_;
  const qv_item* const source = get_imported_source();
  qv_polygon outline;
  mesh_of_outline.fill_polygon(&outline);
  found.parts.clear();
  found.meshes = {&mesh_of_outline};
  found.source = source;
  const qv_3dvector normal = get_normal();
  const qv_polygon plane(outline.get_point(), normal);
  found.full_face = plane;
  found.frame_face.clear();

  piece_union panes(plane);
  piece_union panels(plane);
  for (qvi_mesh* mesh : qv_collect<qvi_mesh>(source, "mesh")) {
    piece_union& pieces = is_transparent(*mesh) ? panes : panels;
    for (qv_polygon* raw : mesh->build_raw_polygons()) {
      const std::unique_ptr<qv_polygon> owned(raw);
      if (std::fabs(raw->get_normal().dot(normal)) > reveal_cosine) pieces.add(*raw);
    }
  }
  found.glazing_face = panes.take();
  found.opaque_face = panels.take();
  found.glazing_face.substracts(found.opaque_face);
  found.glazing_face.intersects(outline);
  found.opaque_face.intersects(outline);
  found.full_face.unites(found.glazing_face);
  found.full_face.unites(found.opaque_face);

  found.glazing_area = found.glazing_face.get_area();
  found.opaque_area = found.opaque_face.get_area();
  found.frame_area = 0.0f;
  // Here the area of the united face, unlike the sum for an opening of several pieces: deliberate,
  // one outline bounds everything that counts.
  found.full_area = found.full_face.get_area();
  found.geometry_date = qv_get_date();
}

}  // namespace qv
