#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "core/light/qv_ray.h"
#include "core/shapes/qvi_shader.h"
#include "tests/support/qv_recorders.h"

namespace {

using namespace qv;

constexpr qv_spectrum every_spectrum[] = {qv_spectrum::thermal, qv_spectrum::visible,
                                          qv_spectrum::solar};
constexpr auto no_spectrum = static_cast<qv_spectrum>(3);
constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();

class listening_shader : public qvi_shader {
 public:
  std::vector<std::string> changes;
  ~listening_shader() override = default;

 protected:
  void item_changed(qv_item* item, const std::string& name) override {
    if (item == this) changes.push_back(name);
    qvi_shader::item_changed(item, name);
  }
};

TEST(qvi_shader, is_matt_and_opaque_by_default) {
  qv_test::recording_scene scene;
  auto* shader = new qvi_shader;
  scene.add_child(shader, -1);
  EXPECT_TRUE(shader->has_exact_type("shader"));
  for (qv_spectrum spectrum : every_spectrum) {
    EXPECT_EQ(shader->get_diffuse_reflexion(spectrum), 0.4f);
    EXPECT_EQ(shader->get_direct_reflexion(spectrum), 0.0f);
    EXPECT_EQ(shader->get_direct_transmission(spectrum), 0.0f);
    EXPECT_EQ(shader->get_diffuse_transmission(spectrum), 0.0f);
  }
  EXPECT_EQ(shader->get_diffuse_color(), qv_color(0.8f, 0.8f, 0.8f, 1.0f));
}

TEST(qvi_shader, keeps_each_spectrum_apart) {
  listening_shader shader;
  shader.set_diffuse_reflexion(0.7f, qv_spectrum::visible);
  EXPECT_EQ(shader.get_diffuse_reflexion(qv_spectrum::thermal), 0.4f);
  EXPECT_EQ(shader.get_diffuse_reflexion(qv_spectrum::visible), 0.7f);
  EXPECT_EQ(shader.get_diffuse_reflexion(qv_spectrum::solar), 0.4f);
  shader.set_direct_transmission(0.6f, qv_spectrum::solar);
  EXPECT_EQ(shader.get_direct_transmission(qv_spectrum::solar), 0.6f);
  EXPECT_EQ(shader.get_diffuse_transmission(qv_spectrum::solar), 0.0f);
  EXPECT_EQ(shader.changes, (std::vector<std::string>{"diffuse_reflexion", "direct_transmission"}));
}

TEST(qvi_shader, stamps_a_coefficient_only_when_it_changes) {
  listening_shader shader;
  shader.set_diffuse_reflexion(0.4f, qv_spectrum::thermal);
  shader.set_direct_reflexion(0.0f, qv_spectrum::solar);
  EXPECT_TRUE(shader.changes.empty());
  const unsigned int before = shader.get_direct_reflexion_date();
  shader.set_direct_reflexion(0.1f, qv_spectrum::solar);
  const unsigned int after = shader.get_direct_reflexion_date();
  EXPECT_GT(after, before);
  shader.set_direct_reflexion(0.1f, qv_spectrum::solar);
  EXPECT_EQ(shader.get_direct_reflexion_date(), after);
  EXPECT_EQ(shader.changes, std::vector<std::string>{"direct_reflexion"});
}

TEST(qvi_shader, takes_nan_as_a_change_each_time) {
  listening_shader shader;
  shader.set_diffuse_transmission(not_a_number, qv_spectrum::visible);
  shader.set_diffuse_transmission(not_a_number, qv_spectrum::visible);
  EXPECT_EQ(shader.changes.size(), 2u);
  EXPECT_TRUE(std::isnan(shader.get_diffuse_transmission(qv_spectrum::visible)));
  EXPECT_EQ(shader.get_diffuse_transmission(qv_spectrum::solar), 0.0f);
}

TEST(qvi_shader, ignores_a_spectrum_that_there_is_not) {
  listening_shader shader;
  for (qv_spectrum spectrum : {no_spectrum, static_cast<qv_spectrum>(-1)}) {
    shader.set_diffuse_reflexion(0.9f, spectrum);
    EXPECT_EQ(shader.get_diffuse_reflexion(spectrum), 0.0f);
  }
  EXPECT_TRUE(shader.changes.empty());
}

TEST(qvi_shader, is_similar_to_a_default_one_again_once_set_back) {
  listening_shader changed;
  listening_shader fresh;
  changed.set_diffuse_reflexion(0.9f, qv_spectrum::solar);
  EXPECT_FALSE(changed.is_similar_to(&fresh, false));
  changed.set_diffuse_reflexion(0.4f, qv_spectrum::solar);
  EXPECT_TRUE(changed.is_similar_to(&fresh, false));
}

TEST(qvi_shader, reads_defaults_behind_the_end_of_a_short_list) {
  listening_shader shader;
  shader.set_diffuse_reflexion(qv_list<float>{0.1f});
  EXPECT_EQ(shader.get_diffuse_reflexion(qv_spectrum::thermal), 0.1f);
  EXPECT_EQ(shader.get_diffuse_reflexion(qv_spectrum::solar), 0.4f);
  shader.set_diffuse_reflexion(0.2f, qv_spectrum::solar);
  EXPECT_EQ(qv_test::to_vector(shader.get_diffuse_reflexion()),
            (std::vector<float>{0.1f, 0.4f, 0.2f}));
}

TEST(qvi_shader, darkens_its_colour_with_the_cosine_from_either_side) {
  listening_shader shader;
  shader.set_diffuse_color({1, 0.5f, 0.25f, 0.3f});
  qv_ray ray({0, 0, 5}, {0.6f, 0, -0.8f});
  ray.hit_distance = 1;
  ray.hit_normal = {0, 0, 1};
  EXPECT_EQ(shader.compute_color(&ray), qv_color(0.8f, 0.4f, 0.2f, 0.3f));
  ray.hit_normal = {0, 0, -1};
  EXPECT_EQ(shader.compute_color(&ray), qv_color(0.8f, 0.4f, 0.2f, 0.3f));
  EXPECT_EQ(shader.compute_color(nullptr), qv_color(1, 0.5f, 0.25f, 0.3f));
}

TEST(qvi_shader, gives_a_colour_for_a_ray_that_is_no_ray) {
  listening_shader shader;
  qv_ray ray({0, 0, 0}, {not_a_number, 0, 0});
  ray.hit_normal = {0, 0, 1};
  EXPECT_EQ(shader.compute_color(&ray), qvi_shader::get_default_color());
}

}  // namespace
