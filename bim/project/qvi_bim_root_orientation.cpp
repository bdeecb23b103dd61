#include <vector>

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/materials/qvi_composition.h"
#include "bim/project/qvi_bim_root.h"
#include "core/light/qv_ray.h"
#include "core/light/qv_raytracer.h"
#include "core/shapes/qvi_polygon.h"
#include "utilities/qv_log.h"
#include "utilities/qv_random.h"

namespace qv {

namespace {

// Seeds and spread fix the rays, and with them the outcome, once and for all.
constexpr int direction_seed = 54873;
constexpr int sample_seed = 65421;
constexpr int sample_count = 100;
constexpr float surface_offset = 0.01f;  // m; a ray does not see the face that it leaves
constexpr float tilt_to_normal = 0.1f;   // of the spread of directions

constexpr float right_from =
    0.95f;  // share of rays above which a wall is right without further test
constexpr float decided_from = 0.9f;     // share of rays from which a side is decided
constexpr float nothing_to_test = 1.0f;  // stands for the side of a wall that has no space
constexpr int largest_message_count = 100;

const qvi_wall* find_wall(const qv_item* item) {
  for (; item != nullptr; item = item->get_parent()) {
    if (item->has_type("wall")) return static_cast<const qvi_wall*>(item);
  }
  return nullptr;
}

/// Share of the rays leaving `face` to the side of `direction` that first hit a wall of `space`.
float test_side(qvi_polygon* face, const qv_3dvector& direction, const qvi_space* space,
                const qv_raytracer& raytracer) {
  if (face == nullptr) return 0.0f;
  qv_random random(direction_seed);
  qv_polygon polygon;
  face->fill_polygon(&polygon);
  int hits = 0;
  int misses = 0;
  for (const qv_3dvector& point : polygon.random_distribution(sample_count, sample_seed)) {
    qv_3dvector spread = random.dice_vector();
    if (direction.dot(spread) < 0.0f) spread = -spread;
    qv_ray ray(point, (spread + direction * tilt_to_normal).normalized());
    ray.minimum_distance = surface_offset;
    const qvi_wall* const wall = raytracer.raytrace(ray) ? find_wall(ray.hit_mesh) : nullptr;
    const bool bounds_space =
        wall != nullptr && (wall->get_space_0() == space || wall->get_space_1() == space);
    ++(bounds_space ? hits : misses);
  }
  return hits + misses == 0 ? 0.0f : static_cast<float>(hits) / static_cast<float>(hits + misses);
}

/// The orientation check of the walls below a root, in the order of its steps.
class orientation_check {
 public:
  explicit orientation_check(qvi_bim_root* root)
      : root_(root), walls_(qv_collect<qvi_wall>(root, "wall")), raytracer_(prepare_faces()) {
    raytracer_.update();
  }

  void run() {
    for (qvi_wall* wall : walls_) {
      if (wall->get_space_0() != nullptr) check(wall);
    }
    // Turned only now: all walls are judged by the same normals.
    for (qvi_wall* wall : turned_) {
      wall->set_normal(-wall->get_normal());
      wall->propagate_normal_orientation();
    }
  }

 private:
  qv_list<qvi_mesh*> prepare_faces() {
    qv_list<qvi_mesh*> faces;
    for (qvi_wall* wall : walls_) {
      wall->check_normal_orientation();
      qvi_polygon* const face_0 = wall->get_face_0();
      qvi_polygon* const face_1 = wall->get_face_1();
      if (face_0 != nullptr) faces.append(face_0);
      if (face_1 != nullptr && face_1 != face_0) faces.append(face_1);
    }
    return faces;
  }

  /// How well the geometry agrees with `behind` lying behind the wall (against its normal) and
  /// `before` before it; `before` may be null.
  float get_agreement(const qvi_wall* wall, const qvi_space* behind,
                      const qvi_space* before) const {
    const qv_3dvector normal = wall->get_normal();
    const float a = behind == nullptr ? nothing_to_test
                                      : test_side(wall->get_face_0(), -normal, behind, raytracer_);
    const float b = before == nullptr ? nothing_to_test
                                      : test_side(wall->get_face_1(), normal, before, raytracer_);
    return (a + b) * 0.5f;
  }

  void check(qvi_wall* wall) {
    const qvi_space* const space_0 = wall->get_space_0();
    const qvi_space* const space_1 = wall->get_space_1();
    const float direct = get_agreement(wall, space_0, space_1);
    if (direct > right_from) return;
    const float reverse = get_agreement(wall, space_1, space_0);
    if (!(direct >= decided_from || reverse >= decided_from)) {
      if (may_log()) {
        qv_log("Wall %s : incoherent data (Direct check : %f - reverse check : %f)",
               wall->get_name().c_str(), static_cast<double>(direct), static_cast<double>(reverse));
      }
    } else if (!(direct > reverse)) {
      mend(wall);
    }
  }

  void mend(qvi_wall* wall) {
    switch (wall->get_contact_type()) {
      case qvi_wall::contact_type::outer_wall:
        turned_.push_back(wall);
        break;
      case qvi_wall::contact_type::intermediate_floor: {
        qvi_space* const space_0 = wall->get_space_0();
        wall->set_space_0(wall->get_space_1());
        wall->set_space_1(space_0);
        if (qvi_composition* composition = wall->get_composition()) {
          wall->set_composition(root_->find_reverse_composition(composition, true));
        }
        break;
      }
      default:
        if (may_log()) {
          qv_log("Wall %s : incoherent behaviour : spaces reversed and should not be",
                 wall->get_name().c_str());
        }
    }
  }

  bool may_log() { return message_count_++ < largest_message_count; }

  qvi_bim_root* root_;
  qv_list<qvi_wall*> walls_;
  qv_raytracer raytracer_;
  std::vector<qvi_wall*> turned_;
  int message_count_ = 0;
};

}  // namespace

void qvi_bim_root::check_orientation() {
  orientation_check(this).run();
  // Twice, deliberately: what the first pass derives from the turned walls is read by the second.
  precompute();
  precompute();
}

}  // namespace qv
