#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <set>

#include "app/junctions/qv_connexions.h"
#include "app/study/qv_study.h"
#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "tests/app/qv_shared_models.h"

// The total length of the junctions in models of other people's tools, beside a count that knows
// no junction: points are thrown on the edges of all walls, and each counts for its share of its
// edge, divided by the number of edges that run through it.
namespace {

using namespace qv;

constexpr double column_width = 4.0;  // m
constexpr int sample_count = 20000;   // points on all edges together, about
constexpr double parallel_sine = 0.02;
constexpr double tolerance = 0.005;      // of the whole length; points are as coarse as that
constexpr double least_tolerance = 0.3;  // m

struct segment {
  qv_double3 from, to;
  int wall;
};

struct lengths {
  double all = 0;
  double lossy = 0;  // where a wall between a space and no space takes part
};

bool is_lossy(const qvi_wall& wall) {
  return (wall.get_space_0() == nullptr) != (wall.get_space_1() == nullptr);
}

class point_count {
 public:
  explicit point_count(qv_scene& scene) {
    for (qv_item* item : scene.get_items("wall")) {
      walls_.push_back(static_cast<qvi_wall*>(item));
      outlines_.push_back(qv_outline_of(*walls_.back()));
      const int wall = static_cast<int>(walls_.size()) - 1;
      qv_double3 low(1e9, 1e9, 0), high(-1e9, -1e9, 0), area;
      for (const auto& contour : outlines_.back().contours) {
        for (std::size_t i = 0; i < contour.size(); ++i) {
          const qv_double3& a = contour[i];
          const qv_double3& b = contour[(i + 1) % contour.size()];
          low = min(low, a);
          high = max(high, a);
          area = area + cross(a - contour[0], b - contour[0]);
          if (length(b - a) < qv_junction_gap) continue;
          enter(edges_at_, min(a, b), max(a, b), static_cast<int>(edges_.size()));
          edges_.push_back({a, b, wall});
        }
      }
      normals_.push_back(normalized(area));
      enter(walls_at_, low, high, wall);
    }
  }

  lengths count() const {
    lengths sums;
    std::mt19937 random(1);
    std::uniform_real_distribution<double> jitter(0, 1);
    const int points =
        std::clamp(sample_count / std::max(1, static_cast<int>(edges_.size())), 4, 200);
    for (const segment& edge : edges_) {
      for (int i = 0; i < points; ++i) {
        const qv_double3 p = edge.from + (edge.to - edge.from) * ((i + jitter(random)) / points);
        add(edge, p, length(edge.to - edge.from) / points, sums);
      }
    }
    return sums;
  }

 private:
  using column = std::pair<int, int>;
  using columns = std::map<column, std::vector<int>>;

  static int cell(double x) { return static_cast<int>(std::floor(x / column_width)); }
  static void enter(columns& where, const qv_double3& low, const qv_double3& high, int index) {
    constexpr double margin = 2 * qv_junction_gap;
    for (int x = cell(low.x - margin); x <= cell(high.x + margin); ++x)
      for (int y = cell(low.y - margin); y <= cell(high.y + margin); ++y)
        where[{x, y}].push_back(index);
  }

  // Edges that lie side by side, each within the gap of the next, count as one bundle.
  void add(const segment& edge, const qv_double3& p, double share, lengths& sums) const {
    const qv_double3 way = normalized(edge.to - edge.from);
    const auto& near = edges_at_.at({cell(p.x), cell(p.y)});
    std::vector<qv_double3> bundle = {p};
    std::set<int> edges;
    std::set<int> walls;
    for (std::size_t k = 0; k < bundle.size(); ++k) {
      const qv_double3 q = bundle[k];
      for (const int index : near) {
        if (edges.contains(index)) continue;
        const segment& other = edges_[static_cast<std::size_t>(index)];
        const qv_double3 along = other.to - other.from;
        const double size = length(along);
        const double place = dot(q - other.from, along) / size;
        if (place < 0 || place > size || length(cross(along, way)) > parallel_sine * size) continue;
        const qv_double3 foot = other.from + along * (place / size);
        if (length(q - foot) > qv_junction_gap) continue;
        edges.insert(index);
        walls.insert(other.wall);
        bundle.push_back(foot);
      }
      for (const int wall : walls_at_.at({cell(p.x), cell(p.y)})) {
        const auto& normal = normals_[static_cast<std::size_t>(wall)];
        if (std::abs(dot(way, normal)) < parallel_sine && lies_in(q, wall)) walls.insert(wall);
      }
    }
    if (walls.size() < 2) return;
    sums.all += share / static_cast<double>(edges.size());
    if (std::any_of(walls.begin(), walls.end(),
                    [&](int wall) { return is_lossy(*walls_[static_cast<std::size_t>(wall)]); }))
      sums.lossy += share / static_cast<double>(edges.size());
  }

  // By the sum of the angles under which the sides appear, which is 360° inside.
  bool lies_in(const qv_double3& p, int wall) const {
    const qv_double3& normal = normals_[static_cast<std::size_t>(wall)];
    const auto& contours = outlines_[static_cast<std::size_t>(wall)].contours;
    if (contours.empty() || contours[0].empty() || length(normal) == 0) return false;
    const double height = dot(p - contours[0][0], normal);
    if (std::abs(height) > qv_junction_gap) return false;
    const qv_double3 q = p - normal * height;
    double turned = 0;
    for (const auto& contour : contours) {
      for (std::size_t i = 0; i < contour.size(); ++i) {
        const qv_double3 a = contour[i] - q;
        const qv_double3 b = contour[(i + 1) % contour.size()] - q;
        turned += std::atan2(dot(cross(a, b), normal), dot(a, b));
      }
    }
    return std::abs(turned) > 3.0;
  }

  std::vector<qvi_wall*> walls_;
  std::vector<qv_wall_outline> outlines_;
  std::vector<qv_double3> normals_;
  std::vector<segment> edges_;
  columns edges_at_;
  columns walls_at_;
};

lengths found_in(qv_scene& scene) {
  lengths sums;
  for (qv_item* item : scene.get_items("connexion")) {
    const auto& connexion = static_cast<const qvi_connexion&>(*item);
    const double size = (connexion.get_point_1() - connexion.get_point_0()).length();
    sums.all += size;
    const qv_list<qvi_wall*> walls = connexion.get_walls();
    if (std::any_of(walls.begin(), walls.end(), [](const qvi_wall* w) { return is_lossy(*w); }))
      sums.lossy += size;
  }
  return sums;
}

class shared_junctions : public qv_test::shared_model {};

TEST_P(shared_junctions, are_as_long_as_points_on_all_edges_say) {
  const auto model = qv_read_gbxml(path());
  qv_add_connexions(*model.scene);
  const lengths found = found_in(*model.scene);
  const lengths counted = point_count(*model.scene).count();
  EXPECT_NEAR(found.all, counted.all, std::max(least_tolerance, tolerance * counted.all));
  EXPECT_NEAR(found.lossy, counted.lossy, std::max(least_tolerance, tolerance * counted.lossy));
}

INSTANTIATE_TEST_SUITE_P(gbxml, shared_junctions, testing::ValuesIn(qv_test::model_names()),
                         qv_test::model_test_name);

}  // namespace
