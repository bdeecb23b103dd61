#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "app/study/qv_generated_openings.h"
#include "app/study/qv_orientation.h"
#include "app/study/qv_study.h"
#include "app/study/qv_study_gather.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"
#include "core/shapes/qvi_polygon.h"
#include "tests/app/qv_gbxml_text.h"

namespace {

using qv::qv_orientation;
using point = qv_gbxml_text::point;

qv::qv_study_results study_of(const qv::qv_gbxml_model& model,
                              const qv::qv_glazing_ratios& ratios = {}) {
  qv::qv_study_options options;
  options.glazing_ratios = ratios;
  return qv::qv_gather_study(model, qv::qv_compute_model(model, options));
}

std::string window(const std::vector<point>& corners) {
  return "<Opening id=\"o\" openingType=\"FixedWindow\">" + qv_gbxml_text::planar(corners) +
         "</Opening>";
}

const qv::qv_study_facade& facade_of(const qv::qv_study_results& study, qv_orientation to) {
  return study.facades[static_cast<std::size_t>(to)];
}

}  // namespace

TEST(qv_orientation, quarters_begin_at_their_first_degree) {
  const std::pair<double, qv_orientation> cases[] = {
      {0, qv_orientation::north},          {44.9, qv_orientation::north},
      {45, qv_orientation::east},          {134.9, qv_orientation::east},
      {135, qv_orientation::south},        {225, qv_orientation::west},
      {314.9, qv_orientation::west},       {315, qv_orientation::north},
      {360, qv_orientation::north},        {-30, qv_orientation::north},
      {-90, qv_orientation::west},         {765, qv_orientation::east},
      {-45.0, qv_orientation::north},      {-1e-14, qv_orientation::north},
      {-45 - 1e-14, qv_orientation::north}};
  for (const auto& [azimuth, expected] : cases)
    EXPECT_EQ(qv::qv_orientation_of(azimuth), expected) << azimuth;
  EXPECT_EQ(qv::qv_orientation_of(std::nullopt), std::nullopt);
  EXPECT_EQ(qv::qv_orientation_of(std::nan("")), std::nullopt);
}

TEST(qv_study_facades, turn_with_the_models_north) {
  const std::string location = "<Location><CADModelAzimuth>90</CADModelAzimuth></Location>";
  qv_gbxml_text text;
  text.box("a", {0, 0, 0}, {4, 3, 2.5});
  std::string turned = text.text();
  turned.insert(turned.find("<Building id"), location);
  const auto plain = study_of(text.read());
  const auto rotated = study_of(qv::qv_read_gbxml_bytes("turned.xml", turned));
  EXPECT_NEAR(facade_of(plain, qv_orientation::south).wall_area, 10, 1e-4);
  EXPECT_NEAR(facade_of(plain, qv_orientation::east).wall_area, 7.5, 1e-4);
  // +Y looks east: what looked south looks west.
  EXPECT_NEAR(facade_of(rotated, qv_orientation::west).wall_area, 10, 1e-4);
  EXPECT_NEAR(facade_of(rotated, qv_orientation::south).wall_area, 7.5, 1e-4);
}

TEST(qv_study_openings, what_fills_them_is_unknown_unless_the_file_says_it) {
  const auto study =
      study_of(qv_gbxml_text()
                   .space("a")
                   .surface("w", "ExteriorWall", {"a"},
                            qv_gbxml_text::planar({{0, 0, 0}, {4, 0, 0}, {4, 0, 3}, {0, 0, 3}}) +
                                window({{1, 0, 1}, {2, 0, 1}, {2, 0, 2}, {1, 0, 2}}))
                   .read());
  ASSERT_EQ(study.openings.size(), 1u);
  const auto& opening = study.openings[0];
  EXPECT_EQ(opening.wall, "w");
  EXPECT_EQ(opening.facing, "south");
  EXPECT_NEAR(opening.glazing_area, 1, 1e-5);
  EXPECT_FALSE(opening.composition.has_value());
  EXPECT_FALSE(opening.u.has_value());
  EXPECT_FALSE(opening.solar_factor.has_value());
  EXPECT_FALSE(opening.visible_transmittance.has_value());
  EXPECT_TRUE(study.glazings.empty());
  EXPECT_NEAR(study.get_loss_area(), 12, 1e-4);
  EXPECT_NEAR(study.get_loss_opening_area(), 1, 1e-5);
}

TEST(qv_generated_openings, take_the_share_asked_for_of_each_orientation) {
  qv::qv_glazing_ratios ratios;
  ratios.all = 0.3;
  ratios.by_orientation[static_cast<std::size_t>(qv_orientation::west)] = 0.0;
  ratios.by_orientation[static_cast<std::size_t>(qv_orientation::north)] = 0.1;
  const auto study = study_of(qv_gbxml_text().box("a", {0, 0, 0}, {4, 3, 2.5}).read(), ratios);
  EXPECT_EQ(study.generation.made, 3u);
  EXPECT_TRUE(study.generation.refusals.empty());
  const double expected[] = {0.1, 0.3, 0.3, 0.0};
  for (std::size_t i = 0; i < 4; ++i)
    EXPECT_NEAR(study.facades[i].get_window_to_wall_ratio().value(), expected[i], 1e-3);
  ASSERT_EQ(study.openings.size(), 3u);
  EXPECT_EQ(study.openings[0].name, "Baie générée sur a-south");
  EXPECT_EQ(study.openings[0].id, "opening-1");
  EXPECT_NEAR(study.spaces[0].volume, 30, 0.03);
}

TEST(qv_generated_openings, say_on_which_walls_they_could_not) {
  qv_gbxml_text text;
  text.box("a", {0, 0, 0}, {4, 3, 2.5});
  text.polygon("cellar", "UndergroundWall", {"a"}, {{9, 0, -2}, {9, 4, -2}, {9, 4, 0}, {9, 0, 0}});
  text.polygon("gap", "Air", {"a"}, {{10, 0, 0}, {10, 4, 0}, {10, 4, 2}, {10, 0, 2}});
  // A thin L: shrunk about the mean of its corners it would lie outside of itself.
  text.polygon("corner", "ExteriorWall", {"a"},
               {{11, 0, 0}, {11, 8, 0}, {11, 8, 0.2}, {11, 0.2, 0.2}, {11, 0.2, 8}, {11, 0, 8}});
  text.surface("pierced", "ExteriorWall", {"a"},
               qv_gbxml_text::planar({{12, 0, 0}, {12, 4, 0}, {12, 4, 3}, {12, 0, 3}}) +
                   window({{12, 1, 1}, {12, 2, 1}, {12, 2, 2}, {12, 1, 2}}));
  qv::qv_glazing_ratios ratios;
  ratios.all = 0.4;
  const auto model = text.read();
  const auto study = study_of(model, ratios);
  EXPECT_EQ(study.generation.made, 4u);
  EXPECT_EQ(study.generation.walls_with_openings, 1u);
  std::map<std::string, std::size_t> refusals;
  for (const auto& refusal : study.generation.refusals) refusals[refusal.reason] = refusal.walls;
  EXPECT_EQ(refusals, (std::map<std::string, std::size_t>{
                          {"it is in the ground", 1},
                          {"it is a surface of air", 1},
                          {"its face is too irregular to hold an opening of its shape", 1}}));
  for (const auto* wall : qv::qv_collect<qv::qvi_wall>(model.root, "wall"))
    if (wall->get_name() == "corner") {
      EXPECT_EQ(wall->get_pierced_face_0(), wall->get_face_0());
      EXPECT_TRUE(wall->get_face_0()->get_rendering_visibility());
    }
}

TEST(qv_generated_openings, nothing_is_generated_unless_asked) {
  const auto study = study_of(qv_gbxml_text().box("a", {0, 0, 0}, {4, 3, 2.5}).read());
  EXPECT_FALSE(study.generation.asked);
  EXPECT_TRUE(study.openings.empty());
}
