#include <gtest/gtest.h>

#include <map>
#include <set>

#include "app/readers/qv_gbxml_reader.h"
#include "bim/qv_load_bim_items.h"
#include "core/light/qv_ray.h"
#include "core/light/qv_raytracer.h"
#include "core/shapes/qvi_polygon.h"
#include "tests/app/qv_shared_models.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_turned_walls.h"
#include "utilities/qv_random.h"

// The orientation check on models of other people's tools, whose walls were turned at random. Real
// models have gaps, and floors between spaces that see each other on both sides; so each wall is
// judged by other rays than those of the check, and what these decide clearly the check must
// decide.

using namespace qv;
using qv_test::wall_sides;
using contact = qvi_wall::contact_type;

namespace {

constexpr int ray_count = 200;
// Shares of rays: twice three standard deviations of a mean of two hundred about the 0.9 from which
// the check decides.
constexpr double clearly_right = 0.95;
constexpr double clearly_not = 0.85;
constexpr std::size_t largest_log = 100;  // lines, of one check

bool is_repairable(const qvi_wall& wall) {
  return wall.get_contact_type() == contact::outer_wall ||
         wall.get_contact_type() == contact::intermediate_floor;
}

const qvi_wall* wall_above(const qv_item* item) {
  while (item != nullptr && !item->has_type("wall")) item = item->get_parent();
  return static_cast<const qvi_wall*>(item);
}

/// Judges walls by uniform directions from points of its own seed.
class judge {
 public:
  explicit judge(const qv_list<qvi_wall*>& walls) : rays_(faces_of(walls)) { rays_.update(); }

  /// Share of the rays that agree with space 0 behind the wall and space 1 before it; `reversed`
  /// the other way round.
  double get_agreement(const wall_sides& of, bool reversed) const {
    const qvi_space* const behind = reversed ? of.space_1 : of.space_0;
    const qvi_space* const before = reversed ? of.space_0 : of.space_1;
    return (see(of, -1, behind) + see(of, 1, before)) / 2;
  }

 private:
  static qv_list<qvi_mesh*> faces_of(const qv_list<qvi_wall*>& walls) {
    qv_list<qvi_mesh*> faces;
    for (qvi_wall* wall : walls)
      if (wall->get_face_0() != nullptr) faces.append(wall->get_face_0());
    return faces;
  }
  double see(const wall_sides& of, float sign, const qvi_space* space) const {
    if (space == nullptr) return 1;
    qv_polygon region;
    of.wall->get_face_0()->fill_polygon(&region);
    qv_random random(4711);
    int hits = 0;
    const qv_list<qv_3dvector> points = region.random_distribution(ray_count, 815);
    for (const qv_3dvector& point : points) {
      qv_3dvector direction = random.dice_vector();
      if (direction.dot(of.normal) * sign < 0) direction = -direction;
      qv_ray ray(point, (direction + of.normal * (0.1f * sign)).normalized());
      ray.minimum_distance = 0.01f;
      const qvi_wall* const wall = rays_.raytrace(ray) ? wall_above(ray.hit_mesh) : nullptr;
      if (wall != nullptr && (wall->get_space_0() == space || wall->get_space_1() == space)) ++hits;
    }
    return points.is_empty() ? 0 : static_cast<double>(hits) / points.get_count();
  }
  qv_raytracer rays_;
};

class shared_orientation : public qv_test::shared_model {};

TEST_P(shared_orientation, is_repaired_wherever_rays_can_tell) {
  const qv_gbxml_model model = qv_read_gbxml(path());
  qvi_bim_root& root = *model.root;
  model.scene->precompute();
  const qv_list<qvi_wall*> walls = qv_collect<qvi_wall>(&root, "wall");
  for (int i = 0; i < walls.get_count(); ++i) walls[i]->set_name("W" + std::to_string(i));
  qv_test::log_recorder log;
  root.check_orientation();  // the file may have walls that are the wrong way round

  const std::vector<wall_sides> before = qv_test::take_sides(root);
  const judge rays(walls);
  struct verdict {
    double right, wrong;
  };
  std::map<const qvi_wall*, verdict> verdicts;
  for (const wall_sides& sides : before)
    if (is_repairable(*sides.wall))
      verdicts[sides.wall] = {rays.get_agreement(sides, false), rays.get_agreement(sides, true)};

  for (qvi_wall* wall : qv_test::turn_walls(root, 3)) ASSERT_NE(wall, nullptr);
  for (const wall_sides& sides : before) {
    if (is_repairable(*sides.wall)) continue;  // what the check cannot repair stays as it was
    sides.wall->set_normal(sides.normal);
    sides.wall->set_space_0(sides.space_0);
    sides.wall->set_space_1(sides.space_1);
    sides.wall->set_composition(sides.composition);
  }
  log.lines.clear();
  root.check_orientation();
  std::set<std::string> logged;
  for (const std::string& line : log.lines) logged.insert(line.substr(5, line.find(" : ") - 5));

  const std::vector<wall_sides> after = qv_test::take_sides(root);
  for (std::size_t i = 0; i < before.size(); ++i) {
    const wall_sides& sides = before[i];
    if (!is_repairable(*sides.wall)) {
      EXPECT_EQ(after[i], sides) << sides.wall->get_name();
      continue;
    }
    const auto [right, wrong] = verdicts[sides.wall];
    SCOPED_TRACE(testing::Message() << sides.wall->get_name() << " agrees with " << right << ", "
                                    << wrong << " the other way round");
    if (right >= clearly_right && wrong <= clearly_not) {
      EXPECT_EQ(after[i], sides);
    }
    if (right <= clearly_not && wrong <= clearly_not && log.lines.size() < largest_log) {
      EXPECT_TRUE(logged.contains(sides.wall->get_name()));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(gbxml, shared_orientation, testing::ValuesIn(qv_test::model_names()),
                         qv_test::model_test_name);

}  // namespace
