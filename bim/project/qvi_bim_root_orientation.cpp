#include <vector>

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/materials/qvi_composition.h"
#include "bim/project/qv_side_test.h"
#include "bim/project/qvi_bim_root.h"
#include "core/light/qv_raytracer.h"
#include "core/shapes/qvi_polygon.h"
#include "utilities/qv_log.h"

namespace qv {

namespace {

constexpr float right_from =
    0.95f;  // share of rays above which a wall is right without further test
constexpr float decided_from = 0.9f;     // share of rays from which a side is decided
constexpr float nothing_to_test = 1.0f;  // stands for the side of a wall that has no space
constexpr int largest_message_count = 100;

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
    const float a = behind == nullptr
                        ? nothing_to_test
                        : qv_test_side(wall->get_face_0(), -normal, behind, raytracer_);
    const float b = before == nullptr
                        ? nothing_to_test
                        : qv_test_side(wall->get_face_1(), normal, before, raytracer_);
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
