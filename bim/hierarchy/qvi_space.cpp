#include "bim/hierarchy/qvi_space.h"

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qv_precompute_watch.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_zone.h"
#include "core/items/qv_scene.h"
#include "core/light/qv_ray.h"
#include "core/light/qv_raytracer.h"
#include "core/shapes/qv_manifold.h"
#include "core/shapes/qvi_polygon.h"
#include "utilities/qv_date.h"

namespace qv {

namespace {

// m; lower parts of a room count towards its volume but not towards its floor area.
constexpr float least_free_height = 1.8f;
// m; heights that differ by less are the same: a ray tells its length in single precision, and so
// do coordinates of a few hundred metres. A room of exactly the least height is not higher.
constexpr float height_accuracy = 1e-4f;
// Samples of a floor face, the same ones at every run.
constexpr int floor_sample_count = 100;
constexpr int floor_sample_seed = 4895;
// m; spacing of the samples of a shell's floors.
constexpr float shell_sample_spacing = 0.05f;
// A face whose unit normal has at most this z looks down.
constexpr float downward_normal_z = -0.9f;
// m; the floor itself is not what a ray from it hits.
constexpr float ray_start = 0.01f;
constexpr float ray_end = 100000000.0f;

struct floor_measure {
  float area = 0;
  float volume = 0;
};

// What stands on `face`: from each point a ray goes straight up to what covers it. The share of the
// hits higher than `min_height` gives the area, their mean height the volume.
floor_measure measure_above(const qv_polygon& face, const qv_list<qv_3dvector>& points,
                            float min_height, const qv_raytracer& raytracer) {
  int hits = 0;
  int high_hits = 0;
  float distance_sum = 0;
  for (const qv_3dvector& point : points) {
    qv_ray ray(point, qv_3dvector(0, 0, 1));
    ray.minimum_distance = ray_start;
    ray.maximum_distance = ray_end;
    if (!raytracer.raytrace(ray)) continue;
    ++hits;
    if (ray.hit_distance > min_height + height_accuracy) ++high_hits;
    distance_sum += ray.hit_distance;
  }
  if (hits == 0) return {};
  const float area = face.get_area();
  const auto hit_count = static_cast<float>(hits);
  return {area * static_cast<float>(high_hits) / hit_count, area * distance_sum / hit_count};
}

// The space that `polygon` bounds: the nearest one above it.
const qv_item* get_space_above(const qv_item* polygon) {
  const qv_item* item = polygon;
  while (item != nullptr && !item->has_type("space")) item = item->get_parent();
  return item;
}

}  // namespace

QV_ITEM_CLASS_COPYING(qvi_space)

qvi_space::qvi_space() {
  set_outside(false);
}

float qvi_space::get_area() const {
  return get_forced_area() >= 0 ? get_forced_area() : record_->area;
}

float qvi_space::get_volume() const {
  return get_forced_volume() >= 0 ? get_forced_volume() : record_->volume;
}

qvi_campus* qvi_space::get_campus() const {
  return get_building() != nullptr ? get_building()->get_campus() : nullptr;
}

// --- precompute ---

void qvi_space::precompute() {
  qvi_xspace::precompute();
  qv_scene* const scene = get_scene();
  if (scene == nullptr) return;
  if (record_->geometry_date == 0 || record_->geometry_date < get_date()) precompute_geometry();
  if (record_->date != 0 &&
      (record_->date >= scene->get_date() || record_->date >= scene->get_last_change("wall", "")))
    return;

  take_building_of_zone();
  qv_precompute_watch::precompute_walls(scene);
  sort_walls();
  make_shell_polygons();
  measure();
  record_->date = qv_get_date();
}

void qvi_space::precompute_geometry() {
  const unsigned int date = record_->geometry_date;
  if (date != 0) {
    bool newer = false;
    for (const qv_item* mesh : collect("mesh")) newer = newer || mesh->get_date() > date;
    if (!newer) return;
  }
  qv_check_mesh_manifold_orientation(this);
  for (qvi_mesh* mesh : qv_collect<qvi_mesh>(this, "mesh")) {
    qv_list<std::string> layers;
    for (const std::string& layer : mesh->get_raytracing_layers())
      if (layer != "simulation") layers.append(layer);
    mesh->set_raytracing_layers(layers);
  }
  record_->geometry_date = qv_get_date();
}

void qvi_space::take_building_of_zone() {
  const qvi_zone* const zone = get_zone();
  if (get_building() == nullptr && zone != nullptr && zone->get_building() != nullptr)
    set_building(zone->get_building());
}

qv_list<qvi_wall*> qvi_space::find_walls() const {
  qv_list<qvi_wall*> walls;
  for (qv_item* item : get_scene()->get_referrers("wall", "", this)) {
    auto* const wall = static_cast<qvi_wall*>(item);
    if (wall->get_space_0() == this || wall->get_space_1() == this) walls.append(wall);
  }
  return walls;
}

void qvi_space::sort_walls() {
  record& r = *record_;
  r.walls = find_walls();
  for (qv_list<qvi_wall*>* list : {&r.inner_walls, &r.outer_walls, &r.floors, &r.ceilings})
    list->clear();
  for (qvi_wall* wall : r.walls) {
    switch (wall->get_wall_type()) {
      case qvi_wall::wall_type::wall: {
        const bool two_spaces = wall->get_space_0() != nullptr && wall->get_space_1() != nullptr;
        (two_spaces ? r.inner_walls : r.outer_walls).append(wall);
        break;
      }
      case qvi_wall::wall_type::roof:
        r.ceilings.append(wall);
        break;
      case qvi_wall::wall_type::floor: {
        const qvi_space* const upper =
            wall->get_normal().z > 0 ? wall->get_space_1() : wall->get_space_0();
        (upper == this ? r.floors : r.ceilings).append(wall);
        break;
      }
    }
  }
}

void qvi_space::make_shell_polygons() {
  if (!collect("polygon").is_empty()) return;
  for (const qvi_wall* wall : record_->walls) {
    const qvi_polygon* const face =
        wall->get_space_0() == this ? wall->get_face_0() : wall->get_face_1();
    if (face == nullptr) continue;
    auto* const shell = qv_new_item<qvi_polygon>();
    if (shell == nullptr) return;
    shell->copy_params(face);
    shell->set_front_shader(nullptr);
    shell->set_back_shader(nullptr);
    shell->set_rendering_visibility(false);
    shell->set_raytracing_layers({});
    shell->set_rendering_layers({"bim"});
    add_child(shell, -1);
  }
}

void qvi_space::measure() {
  qv_raytracer* const raytracer = get_scene()->get_raytracer("bim");
  raytracer->update();
  record_->area = 0;
  record_->volume = 0;
  for (const qvi_wall* wall : record_->floors) {
    qvi_polygon* const face = wall->get_normal().z > 0 ? wall->get_face_1() : wall->get_face_0();
    if (face == nullptr) continue;
    qv_polygon polygon;
    face->fill_polygon(&polygon);
    const floor_measure measured =
        measure_above(polygon, polygon.random_distribution(floor_sample_count, floor_sample_seed),
                      least_free_height, *raytracer);
    record_->area += measured.area;
    record_->volume += measured.volume;
  }
}

// --- measured from the shell alone ---

void qvi_space::compute_size_from_shell_geometry(float min_height, float& area, float& volume) {
  qv_list<qvi_polygon*> shell;
  for (qvi_polygon* polygon : qv_collect<qvi_polygon>(this, "polygon"))
    if (get_space_above(polygon) == this) shell.append(polygon);

  qv_list<qvi_mesh*> meshes;
  for (qvi_polygon* polygon : shell) meshes.append(polygon);
  qv_raytracer raytracer(meshes);
  raytracer.update();

  area = 0;
  volume = 0;
  for (qvi_polygon* face : shell) {
    if (face->get_normal().z > downward_normal_z) continue;
    qv_polygon polygon;
    face->fill_polygon(&polygon);
    const floor_measure measured = measure_above(
        polygon, polygon.regular_distribution(shell_sample_spacing), min_height, raytracer);
    area += measured.area;
    volume += measured.volume;
  }
}

// --- bounds ---

qv_box qvi_space::get_local_bounding_box() {
  record& r = *record_;
  if (r.bounding_box_date != 0 && r.bounding_box_date >= get_date()) return r.bounding_box;
  r.bounding_box = find_bounds();
  r.bounding_box_date = qv_get_date();
  return r.bounding_box;
}

qv_box qvi_space::find_bounds() {
  qv_box bounds;
  if (get_scene() != nullptr)
    for (qvi_wall* wall : find_walls()) bounds.enlarge(wall->get_bounding_box());
  for (qv_item* polygon : collect("polygon")) bounds.enlarge(polygon->get_bounding_box());
  return bounds;
}

}  // namespace qv
