#include <gtest/gtest.h>

#include <limits>
#include <numbers>
#include <thread>
#include <vector>

#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"
#include "core/light/qvi_sun.h"
#include "core/shapes/qvi_polygon.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_test_buildings.h"
#include "utilities/qv_date.h"

using namespace qv;
using namespace qv_test;

namespace {

constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();
/// Towards the sun: 30° high, straight before a façade that faces −y.
const qv_3dvector low_sun(0, -0.8660254f, 0.5f);

/// A façade of 4 m × 3 m that faces −y under a sun of three hours, the last one at night.
class solar_facade : public ::testing::Test {
 protected:
  solar_facade() {
    scene_.add_child(wall_, -1);
    wall_->set_normal({0, -1, 0});
    wall_->set_face_0(add_face(0));
    wall_->set_face_1(add_face(-0.3f));
  }
  qvi_polygon* add_face(float y) {
    return qv_test::add_face(scene_, rectangle({0, y, 0}, {4, y, 0}, {0, y, 3}));
  }
  qvi_sun* add_sun() {
    auto* sun = new qvi_sun;
    scene_.add_child(sun, -1);
    sun->set_directions({low_sun, {0, 0.8660254f, 0.5f}, {0, -0.8660254f, -0.5f}});
    sun->set_direct_irradiation({600, 500, 400});
    sun->set_diffuse_irradiation({100, 80, 0});
    return sun;
  }
  /// A screen before the left half of the façade, as high as the sky.
  qvi_polygon* add_screen() {
    return qv_test::add_face(scene_, rectangle({-50, -2, 0}, {2, -2, 0}, {-50, -2, 90}));
  }
  void compute(int direct_rays = 2000, int factor = 2) {
    wall_->compute_solar_income(direct_rays, factor, 2, 0, 0);
  }
  std::vector<float> read_all(const qv_solar_income& income, int count) {
    std::vector<float> all = {
        income.get_solar_income_cumulated(), income.get_solar_income_cumulated_sigma(),
        income.get_solar_income_direct_samples(), income.get_solar_income_diffuse_samples()};
    for (const float* series :
         {income.get_solar_income_direct_direct(), income.get_solar_income_indirect_direct(),
          income.get_solar_income_direct_diffuse(), income.get_solar_income_indirect_diffuse(),
          income.get_solar_income_direct_direct_sigma(),
          income.get_solar_income_indirect_direct_sigma(),
          income.get_solar_income_diffuse_sigma()}) {
      all.insert(all.end(), series, series + count);
    }
    return all;
  }
  recording_scene scene_;
  qvi_wall* wall_ = new qvi_wall;
};

}  // namespace

TEST_F(solar_facade, gets_per_unit_results_times_the_irradiation_of_each_hour) {
  add_sun();
  compute();
  // cos 30° × 600 W/m²; half of the sky.
  EXPECT_NEAR(wall_->get_solar_income_direct_direct()[0], 0.8660254f * 600, 1e-3);
  EXPECT_EQ(wall_->get_solar_income_direct_direct()[1], 0);
  EXPECT_EQ(wall_->get_solar_income_direct_direct()[2], 0);
  EXPECT_FLOAT_EQ(wall_->get_solar_income_direct_diffuse()[0], 50);
  EXPECT_FLOAT_EQ(wall_->get_solar_income_direct_diffuse()[1], 40);
  EXPECT_EQ(wall_->get_solar_income_direct_diffuse()[2], 0);
  EXPECT_NEAR(wall_->get_solar_income_cumulated(), 0.8660254f * 600 + 90, 1e-3);
  EXPECT_EQ(wall_->get_solar_income_cumulated_sigma(), 0);
}

TEST_F(solar_facade, adds_up_the_four_series_without_their_spread) {
  add_sun();
  add_screen();
  compute();
  double sum = 0;
  for (int t = 0; t < 3; ++t) {
    sum += wall_->get_solar_income_direct_direct()[t];
    sum += wall_->get_solar_income_indirect_direct()[t];
    sum += wall_->get_solar_income_direct_diffuse()[t];
    sum += wall_->get_solar_income_indirect_diffuse()[t];
  }
  EXPECT_NEAR(wall_->get_solar_income_cumulated(), sum, 1e-3);
  EXPECT_GT(wall_->get_solar_income_direct_direct_sigma()[0], 0);
  EXPECT_GT(wall_->get_solar_income_diffuse_sigma()[0], 0);
  EXPECT_GT(wall_->get_solar_income_indirect_direct()[1], 0);  // the lit side of the screen is ours
  EXPECT_GT(wall_->get_solar_income_indirect_direct_sigma()[1], 0);
  EXPECT_GT(wall_->get_solar_income_cumulated_sigma(), 0);
  EXPECT_NEAR(wall_->get_solar_income_direct_direct()[0], 0.8660254f * 300,
              3 * wall_->get_solar_income_direct_direct_sigma()[0] + 0.5);
}

TEST_F(solar_facade, leaves_earlier_results_alone_without_a_sun) {
  compute();
  EXPECT_EQ(wall_->get_solar_income_direct_direct(), nullptr);
  EXPECT_EQ(wall_->get_solar_income_date(), 0u);
  qvi_sun* sun = add_sun();
  compute();
  const std::vector<float> before = read_all(*wall_, 3);
  const unsigned int date = wall_->get_solar_income_date();
  qv_item::destroy(sun);
  compute();
  EXPECT_EQ(read_all(*wall_, 3), before);
  EXPECT_EQ(wall_->get_solar_income_date(), date);
}

TEST_F(solar_facade, gets_zeros_without_a_face) {
  add_sun();
  wall_->set_face_0(nullptr);
  wall_->set_face_1(nullptr);
  compute();
  ASSERT_NE(wall_->get_solar_income_direct_direct(), nullptr);
  for (float value : read_all(*wall_, 3)) EXPECT_EQ(value, 0);
  EXPECT_TRUE(wall_->get_solar_income_samples().is_empty());
}

TEST_F(solar_facade, casts_no_montecarlo_rays_at_a_factor_of_0) {
  add_sun();
  add_screen();
  compute(2000, 0);
  EXPECT_GT(wall_->get_solar_income_direct_samples(), 0);
  EXPECT_EQ(wall_->get_solar_income_diffuse_samples(), 0);
  EXPECT_EQ(wall_->get_solar_income_direct_diffuse()[0], 0);
  EXPECT_EQ(wall_->get_solar_income_indirect_direct()[1], 0);
}

TEST_F(solar_facade, multiplies_large_numbers_of_rays_without_overflow) {
  add_sun();
  wall_->compute_solar_income(2000000000, 2000000000, 0, 0.5f, 0.5f);
  EXPECT_FLOAT_EQ(wall_->get_solar_income_direct_diffuse()[0], 50);
  wall_->compute_solar_income(2000, -3, 0, 0, 0);
  EXPECT_EQ(wall_->get_solar_income_direct_diffuse()[0], 0);
}

TEST_F(solar_facade, gives_identical_series_for_an_unchanged_scene) {
  add_sun();
  add_screen();
  compute();
  const std::vector<float> first = read_all(*wall_, 3);
  compute();
  EXPECT_EQ(read_all(*wall_, 3), first);
}

TEST_F(solar_facade, samples_its_outside_face_first_and_the_pierced_one_before_the_plain_one) {
  add_sun();
  // Each at a y of its own: that of the samples tells which one was taken.
  struct candidate {
    void (*set)(qvi_wall&, qvi_polygon*);
    float y;
  };
  const candidate order[] = {{[](qvi_wall& w, qvi_polygon* p) { w.set_pierced_face_1(p); }, -10},
                             {[](qvi_wall& w, qvi_polygon* p) { w.set_face_1(p); }, -20},
                             {[](qvi_wall& w, qvi_polygon* p) { w.set_pierced_face_0(p); }, -30},
                             {[](qvi_wall& w, qvi_polygon* p) { w.set_face_0(p); }, -40},
                             {[](qvi_wall& w, qvi_polygon* p) { w.set_pierced_face(p); }, -50},
                             {[](qvi_wall& w, qvi_polygon* p) { w.set_face(p); }, -60}};
  for (const candidate& c : order) c.set(*wall_, add_face(c.y));
  for (const candidate& c : order) {
    compute(16, 0);
    ASSERT_FALSE(wall_->get_solar_income_samples().is_empty());
    for (const qv_3dvector& point : wall_->get_solar_income_samples())
      ASSERT_NEAR(point.y, c.y - 0.01f, 1e-5);
    c.set(*wall_, nullptr);
  }
}

TEST_F(solar_facade, takes_the_first_sun) {
  qvi_sun* first = add_sun();
  qvi_sun* second = add_sun();
  second->set_direct_irradiation({1, 1, 1});
  compute();
  EXPECT_NEAR(wall_->get_solar_income_direct_direct()[0], 0.8660254f * 600, 1e-3);
  qv_item::destroy(first);
  compute();
  EXPECT_NEAR(wall_->get_solar_income_direct_direct()[0], 0.8660254f, 1e-5);
}

TEST_F(solar_facade, makes_nothing_of_irradiations_without_sense) {
  qvi_sun* sun = add_sun();
  sun->set_directions({low_sun, low_sun, low_sun, low_sun});
  sun->set_direct_irradiation({600, -600, not_a_number, 600, 600});
  sun->set_diffuse_irradiation({-100, not_a_number, 100});
  add_screen();
  compute();
  EXPECT_EQ(sun->get_nb_values(), 3);
  EXPECT_EQ(wall_->get_solar_income_direct_diffuse()[0], 0);
  EXPECT_EQ(wall_->get_solar_income_direct_diffuse()[1], 0);
  EXPECT_GT(wall_->get_solar_income_direct_diffuse()[2], 0);
  EXPECT_GT(wall_->get_solar_income_direct_direct()[0], 0);
  EXPECT_EQ(wall_->get_solar_income_direct_direct()[1], 0);
  EXPECT_EQ(wall_->get_solar_income_direct_direct()[2], 0);
  for (float value : read_all(*wall_, 3)) EXPECT_TRUE(std::isfinite(value));
}

TEST_F(solar_facade, has_empty_series_for_a_sun_without_values) {
  qvi_sun* sun = add_sun();
  sun->set_directions({});
  compute();
  EXPECT_EQ(wall_->get_solar_income_cumulated(), 0);
  EXPECT_NE(wall_->get_solar_income_date(), 0u);
}

TEST_F(solar_facade, says_done_and_keeps_the_date) {
  add_sun();
  {
    log_recorder log;
    compute();
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_EQ(log.lines[0], "done");
  }
  EXPECT_EQ(wall_->get_solar_income_date(), qv_get_date());
  const unsigned int date = qv_get_date();
  compute();
  EXPECT_EQ(qv_get_date(), date) << "a computation changes no item";
}

TEST_F(solar_facade, has_an_opening_that_receives_on_its_full_face) {
  add_sun();
  auto* opening = new qvi_opening;
  scene_.add_child(opening, -1);
  opening->set_normal({0, -1, 0});
  opening->set_wall(wall_);
  qv_test::add_face(*opening, rectangle({1, -0.3f, 1}, {2, -0.3f, 1}, {1, -0.3f, 2.5f}));
  scene_.precompute();
  ASSERT_NEAR(opening->get_full_area(), 1.5, 1e-5);
  opening->compute_solar_income(2000, 2, 2, 0, 0);
  EXPECT_NEAR(opening->get_solar_income_direct_direct()[0], 0.8660254f * 600, 1e-3);
  EXPECT_FLOAT_EQ(opening->get_solar_income_direct_diffuse()[1], 40);
  for (const qv_3dvector& point : opening->get_solar_income_samples()) {
    EXPECT_NEAR(point.y, -0.31f, 1e-5);
    EXPECT_GE(point.x, 1);
    EXPECT_LE(point.x, 2);
  }
}

TEST_F(solar_facade, is_not_shaded_by_what_lies_in_other_layers) {
  add_sun();
  add_screen()->set_raytracing_layers({"picking", "bim"});
  compute();
  EXPECT_NEAR(wall_->get_solar_income_direct_direct()[0], 0.8660254f * 600, 1e-3);
}

TEST(qv_solar_income, gives_the_same_series_computed_in_threads) {
  const log_recorder log;
  const auto compute_all = [](int thread_count) {
    qv_scene scene;
    auto* sun = new qvi_sun;
    scene.add_child(sun, -1);
    sun->set_directions({low_sun, {0.6f, -0.4f, 0.69f}, {-0.6f, 0.4f, 0.69f}});
    sun->set_direct_irradiation({600, 500, 400});
    sun->set_diffuse_irradiation({100, 80, 60});
    const block rooms = add_block(scene, {0, 0, 0}, 2, 2, 1);
    add_block(scene, {0, -12, 0}, 2, 1, 2);
    const auto work = [&](int first) {
      for (std::size_t i = static_cast<std::size_t>(first); i < rooms.walls.size();
           i += static_cast<std::size_t>(thread_count)) {
        rooms.walls[i]->compute_solar_income(500, 2, 2, 0, 0);
      }
    };
    std::vector<std::jthread> threads;
    for (int i = 1; i < thread_count; ++i) threads.emplace_back(work, i);
    work(0);
    threads.clear();
    std::vector<float> all;
    for (const qvi_wall* wall : rooms.walls) {
      all.push_back(wall->get_solar_income_cumulated());
      all.push_back(wall->get_solar_income_cumulated_sigma());
    }
    return all;
  };
  EXPECT_EQ(compute_all(1), compute_all(3));
}
