#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "bim/envelope/qvi_opening.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_material.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_scene_text.h"
#include "tests/support/qv_test_buildings.h"
#include "tests/support/qv_test_openings.h"
#include "utilities/qv_random.h"

// Windows that a wall generates: on which walls, what is made, removed and told, and that real
// openings stay.

namespace {

using namespace qv;
using contour = qv_list<qv_3dvector>;
using qv_test::recording_scene;

const qv_list<std::string> visible_layers = {"simulation", "picking", "bim"};

// --- faces of every kind ---

contour regular_polygon(int count, float radius) {
  contour vertices;
  for (int i = 0; i < count; ++i) {
    const double angle = 2 * 3.14159265358979 * i / count;
    vertices.append({radius * static_cast<float>(std::cos(angle)), 0,
                     radius * static_cast<float>(std::sin(angle))});
  }
  return vertices;
}

struct face_shape {
  std::string name;
  contour vertices;
  float thickness;
  qvi_wall::wall_type type = qvi_wall::wall_type::wall;
  // The hole may leave the face, which is accepted as it stands.
  bool is_convex = true;
  int repetitions = 60;
};
void PrintTo(const face_shape& shape, std::ostream* out) {
  *out << shape.name;
}

std::vector<face_shape> get_shapes() {
  const contour facade = qv_test::rectangle({0, 0, 0}, {4, 0, 0}, {0, 0, 2.5f});
  const contour gable = {{0, 0, 0}, {6, 0, 0}, {6, 0, 2}, {3, 0, 5}, {0, 0, 2}};
  const contour corner = {{0, 0, 0}, {4, 0, 0}, {4, 0, 1}, {1, 0, 1}, {1, 0, 4}, {0, 0, 4}};
  return {
      {.name = "thin", .vertices = facade, .thickness = 0, .repetitions = 1000},
      {.name = "thick", .vertices = facade, .thickness = 0.2f, .repetitions = 1000},
      {"triangle", {{0, 0, 0}, {3, 0, 0}, {0, 0, 4}}, 0.2f},
      {"gable", gable, 0.3f},
      {"round", regular_polygon(200, 2), 0.2f},
      {"narrow", qv_test::rectangle({0, 0, 0}, {0.05f, 0, 0}, {0, 0, 3}), 0.2f},
      {"large", qv_test::rectangle({0, 0, 0}, {200, 0, 0}, {0, 0, 60}), 0.2f},
      {"far_away", qv_test::rectangle({2000, 3000, 100}, {2004, 3000, 100}, {2000, 3000, 102.5f}),
       0.2f},
      {"floor", qv_test::rectangle({0, 0, 0}, {0, 5, 0}, {4, 0, 0}), 0.2f,
       qvi_wall::wall_type::floor},
      {"flat_roof", qv_test::rectangle({0, 0, 3}, {4, 0, 3}, {0, 5, 3}), 0.2f,
       qvi_wall::wall_type::roof},
      {"pitched_roof", qv_test::rectangle({0, 0, 3}, {8, 0, 3}, {0, 3, 6}), 0.2f,
       qvi_wall::wall_type::roof},
      {"angle", corner, 0.2f, qvi_wall::wall_type::wall, false},
      {"angle_thin", corner, 0, qvi_wall::wall_type::wall, false},
  };
}

class any_face : public testing::TestWithParam<face_shape> {
 protected:
  any_face() {
    wall->set_name("Nord");
    // Openings take the scene's glazing; without one the first pass would make one.
    qv_test::add_new<qvi_glazing>(scene);
    scene.precompute();
    face_area = wall->get_face_0()->get_area();
  }
  qvi_opening* opening() {
    const auto& openings = scene.get_items("opening");
    return openings.get_count() == 1 ? static_cast<qvi_opening*>(openings[0]) : nullptr;
  }
  bool is_thin() const { return wall->get_face_0() == wall->get_face_1(); }
  void expect_sound() {
    EXPECT_EQ(qv_test::find_lost_references(scene), std::vector<std::string>{});
    for (const qvi_opening* listed : wall->get_openings())
      EXPECT_TRUE(scene.get_items("opening").contains(const_cast<qvi_opening*>(listed)));
  }

  recording_scene scene;
  qvi_wall* wall = qv_test::add_wall(scene, GetParam().type, nullptr, nullptr, GetParam().vertices,
                                     GetParam().thickness);
  double face_area = 0;
};

TEST_P(any_face, is_pierced_by_its_share) {
  for (const float ratio : {0.3f, 0.001f, 0.05f, 0.6f, 0.99f, 0.3f}) {
    SCOPED_TRACE(ratio);
    ASSERT_TRUE(wall->create_opening(ratio, false));
    ASSERT_NE(opening(), nullptr);
    scene.precompute();
    ASSERT_EQ(opening()->get_children().get_count(), 1);
    auto* const pane = static_cast<qvi_polygon*>(opening()->get_children()[0]);
    EXPECT_NEAR(pane->get_area(), ratio * face_area, 0.001 * face_area);
    for (const qvi_polygon* face : {wall->get_pierced_face_0(), wall->get_pierced_face_1()}) {
      const double left = const_cast<qvi_polygon*>(face)->get_area();
      EXPECT_GE(left + pane->get_area(), face_area * (1 - 1e-5));
      if (GetParam().is_convex) {
        EXPECT_LE(left + pane->get_area(), face_area * (1 + 1e-5));
      }
    }
    expect_sound();
  }
}

TEST_P(any_face, gets_a_window_with_a_glazing_of_its_own) {
  ASSERT_TRUE(wall->create_opening(0.3f, true));
  qvi_opening* const window = opening();
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(window->get_parent(), &scene);
  EXPECT_EQ(scene.get_children()[scene.get_children().get_count() - 1], window);
  EXPECT_EQ(window->get_name(), "Baie générée sur Nord");
  EXPECT_EQ(window->get_wall(), wall);
  EXPECT_EQ(window->get_opening_type(), qvi_opening::opening_type::window);
  EXPECT_EQ(window->get_normal(), wall->get_normal());
  EXPECT_EQ(window->get_composition(), nullptr);
  ASSERT_EQ(window->get_children().get_count(), 1);
  auto* const pane = static_cast<qvi_polygon*>(window->get_children()[0]);
  EXPECT_TRUE(pane->has_exact_type("polygon"));
  ASSERT_EQ(pane->get_children().get_count(), 1);
  auto* const glazing = pane->get_children()[0];
  EXPECT_TRUE(glazing->has_exact_type("glazing"));
  EXPECT_EQ(pane->get_front_shader(), glazing);
  EXPECT_EQ(pane->get_back_shader(), glazing);
  EXPECT_EQ(pane->get_contour_sizes().get_count(), 1);
  EXPECT_EQ(pane->get_nb_vertices(), wall->get_face_0()->get_nb_vertices());
}

// The contour is the face's own, drawn together about the mean of its vertices.
TEST_P(any_face, gets_its_own_contour_drawn_together) {
  ASSERT_TRUE(wall->create_opening(0.25f, false));
  const auto face = wall->get_face_0()->get_vertices();
  const auto hole = static_cast<qvi_polygon*>(opening()->get_children()[0])->get_vertices();
  ASSERT_EQ(hole.get_count(), face.get_count());
  double mean[3] = {0, 0, 0};
  for (const qv_3dvector& v : face) {
    mean[0] += v.x / face.get_count();
    mean[1] += v.y / face.get_count();
    mean[2] += v.z / face.get_count();
  }
  // Area goes by the square of the scale: 0.5 for a quarter, within 0.1 % of the face.
  for (int i = 0; i < face.get_count(); ++i) {
    const double size = std::sqrt(face_area);
    EXPECT_NEAR(hole[i].x, 0.5 * (face[i].x + mean[0]), 0.002 * size);
    EXPECT_NEAR(hole[i].y, 0.5 * (face[i].y + mean[1]), 0.002 * size);
    EXPECT_NEAR(hole[i].z, 0.5 * (face[i].z + mean[2]), 0.002 * size);
  }
}

TEST_P(any_face, has_its_plain_faces_hidden_and_its_pierced_ones_shown) {
  auto* const paint = qv_test::add_new<qvi_material>(scene);
  auto* const plaster = qv_test::add_new<qvi_material>(scene);
  wall->get_face_0()->set_front_shader(paint);
  wall->get_face_1()->set_back_shader(plaster);
  ASSERT_TRUE(wall->create_opening(0.3f, true));
  for (qvi_polygon* const plain : {wall->get_face_0(), wall->get_face_1()}) {
    EXPECT_TRUE(plain->get_raytracing_layers().is_empty());
    EXPECT_TRUE(plain->get_rendering_layers().is_empty());
    EXPECT_FALSE(plain->get_rendering_visibility());
  }
  const auto expect_cut_from = [&](qvi_polygon* pierced, qvi_polygon* plain) {
    ASSERT_NE(pierced, plain);
    EXPECT_EQ(pierced->get_raytracing_layers(), visible_layers);
    EXPECT_TRUE(pierced->get_rendering_visibility());
    EXPECT_EQ(pierced->get_front_shader(), plain->get_front_shader());
    EXPECT_EQ(pierced->get_back_shader(), plain->get_back_shader());
    EXPECT_EQ(pierced->get_parent(), wall);
    EXPECT_GT(pierced->get_normal().dot(plain->get_normal()), 0.999f);
  };
  expect_cut_from(wall->get_pierced_face_0(), wall->get_face_0());
  expect_cut_from(wall->get_pierced_face_1(), wall->get_face_1());
  EXPECT_EQ(wall->get_pierced_face_0() == wall->get_pierced_face_1(), is_thin());
  // The pierced faces come last among the wall's children, side 0 first.
  const auto& children = wall->get_children();
  EXPECT_EQ(children[children.get_count() - 1], wall->get_pierced_face_1());
  if (!is_thin()) {
    EXPECT_EQ(children[children.get_count() - 2], wall->get_pierced_face_0());
  }
}

TEST_P(any_face, tells_the_scene_what_came_and_went) {
  scene.forget();
  ASSERT_TRUE(wall->create_opening(0.3f, true));
  qvi_opening* const first = opening();
  qv_item* const pierced_0 = wall->get_pierced_face_0();
  qv_item* const pierced_1 = wall->get_pierced_face_1();
  const auto count = [](const std::vector<qv_item*>& list, const qv_item* item) {
    return std::count(list.begin(), list.end(), item);
  };
  EXPECT_EQ(count(scene.added, first), 1);
  EXPECT_EQ(count(scene.added, pierced_0), 1);
  EXPECT_EQ(count(scene.added, pierced_1), 1);
  EXPECT_TRUE(scene.removed.empty());
  EXPECT_EQ(scene.count_changes(wall, "pierced_face_0"), 1);
  EXPECT_EQ(scene.count_changes(wall, "pierced_face_1"), 1);
  scene.precompute();
  scene.forget();
  ASSERT_TRUE(wall->create_opening(0.4f, true));
  EXPECT_EQ(count(scene.removed, first), 1);
  EXPECT_EQ(count(scene.removed, pierced_0), 1);
  EXPECT_EQ(count(scene.removed, pierced_1), 1);
  EXPECT_EQ(static_cast<int>(scene.removed.size()), is_thin() ? 2 : 3);
  qv_item* const second = opening();
  scene.precompute();
  scene.forget();
  ASSERT_TRUE(wall->create_opening(0.0f, true));
  EXPECT_EQ(count(scene.removed, second), 1);
  EXPECT_EQ(static_cast<int>(scene.removed.size()), is_thin() ? 2 : 3);
  EXPECT_TRUE(scene.added.empty());
  for (const qv_item* const plain : {wall->get_face_0(), wall->get_face_1()})
    for (const char* name : {"raytracing_layers", "rendering_layers", "rendering_visibility"})
      EXPECT_EQ(scene.count_changes(plain, name), 1) << name;
  EXPECT_GE(scene.count_changes(wall, "pierced_face_0"), 1);
}

TEST_P(any_face, is_pierced_in_silence_when_asked) {
  for (const float ratio : {0.3f, 0.5f, 0.0f}) {
    scene.precompute();
    scene.forget();
    const auto date = scene.get_date();
    ASSERT_TRUE(wall->create_opening(ratio, false));
    EXPECT_TRUE(scene.added.empty());
    EXPECT_TRUE(scene.removed.empty());
    // The wall's own computation at the end of a removal is no part of what is silenced.
    for (const auto& change : scene.changed) EXPECT_EQ(change.item, wall);
    EXPECT_GT(scene.get_date(), date);  // the next pass finds the change all the same
    scene.precompute();
    EXPECT_NEAR(wall->get_loss_area(), wall->get_pierced_face_0()->get_area(), 1e-4 * face_area);
    EXPECT_EQ(wall->get_openings().get_count(), ratio > 0 ? 1 : 0);
  }
}

TEST_P(any_face, is_as_before_when_its_window_is_gone) {
  const std::string before = qv_test::describe_tree(scene);
  for (const bool notify : {true, false}) {
    ASSERT_TRUE(wall->create_opening(0.3f, notify));
    scene.precompute();
    ASSERT_TRUE(wall->create_opening(0.0005f, notify));
    EXPECT_EQ(qv_test::describe_tree(scene), before);
    EXPECT_TRUE(wall->get_openings().is_empty());
    EXPECT_NEAR(wall->get_loss_area(), face_area, 1e-5 * face_area);
    expect_sound();
  }
  ASSERT_TRUE(wall->create_opening(0.0005f, true));  // nothing left to remove
  EXPECT_EQ(qv_test::describe_tree(scene), before);
}

TEST_P(any_face, looks_after_many_windows_as_after_one) {
  const auto only_once = [&] {
    recording_scene other;
    auto* const fresh = qv_test::add_wall(other, GetParam().type, nullptr, nullptr,
                                          GetParam().vertices, GetParam().thickness);
    fresh->set_name("Nord");
    qv_test::add_new<qvi_glazing>(other);
    other.precompute();
    EXPECT_TRUE(fresh->create_opening(0.3f, false));
    other.precompute();
    return qv_test::describe_tree(other);
  }();
  qv_random random(20261121);
  for (int i = 0; i < GetParam().repetitions; ++i) {
    const float ratio = random.dice_float() * 1.05f - 0.02f;  // some are refused, some remove
    EXPECT_EQ(wall->create_opening(ratio, random.dice() % 2 == 0), !(ratio > 0.99f)) << ratio;
    if (random.dice() % 8 == 0) scene.precompute();
    scene.forget();
  }
  ASSERT_TRUE(wall->create_opening(0.3f, true));
  expect_sound();
  scene.precompute();
  EXPECT_EQ(qv_test::describe_tree(scene), only_once);
}

INSTANTIATE_TEST_SUITE_P(shapes, any_face, testing::ValuesIn(get_shapes()),
                         [](const auto& shape) { return shape.param.name; });

// --- which walls qualify ---

class facade : public testing::TestWithParam<float> {
 protected:
  facade() { scene.precompute(); }
  qvi_polygon* add_face(float width) {
    return qv_test::add_face(*wall, qv_test::rectangle({0, 0, 0}, {width, 0, 0}, {0, 0, 2.5f}));
  }
  qvi_opening* add_imported_opening() {
    auto* const opening = qv_test::add_opening(scene);
    opening->set_wall(wall);
    qv_test::add_piece(*opening, qv_test::facade_rectangle(1, 1, 2, 2), nullptr);
    return opening;
  }
  // The call is refused, now and after a pass, and nothing changes.
  void expect_refused(float ratio = 0.3f) {
    for (const bool precomputed : {false, true}) {
      if (precomputed) scene.precompute();
      const std::string before = qv_test::describe_tree(scene);
      const auto date = scene.get_date();
      for (const bool notify : {false, true})
        for (const float r : {ratio, 0.0f}) {
          EXPECT_FALSE(wall->create_opening(r, notify)) << r << (precomputed ? " later" : " now");
          EXPECT_EQ(scene.get_date(), date);
        }
      EXPECT_EQ(qv_test::describe_tree(scene), before);
    }
  }

  recording_scene scene;
  qvi_wall* wall =
      qv_test::add_wall(scene, qvi_wall::wall_type::wall, nullptr, nullptr,
                        qv_test::rectangle({0, 0, 0}, {4, 0, 0}, {0, 0, 2.5f}), GetParam());
};

TEST_P(facade, takes_a_ratio_of_at_most_0_99) {
  EXPECT_TRUE(wall->create_opening(0.99f, true));
  const std::string before = qv_test::describe_tree(scene);
  for (const float ratio : {0.991f, 1.0f, 5.0f, std::numeric_limits<float>::infinity()})
    EXPECT_FALSE(wall->create_opening(ratio, true));
  EXPECT_EQ(qv_test::describe_tree(scene), before);
  EXPECT_TRUE(wall->create_opening(-3.0f, true));  // removes it
  EXPECT_TRUE(scene.get_items("opening").is_empty());
}

TEST_P(facade, needs_each_of_its_four_faces) {
  const auto expect_needed = [&](qvi_polygon* face, const auto& set) {
    set(nullptr);
    EXPECT_FALSE(wall->create_opening(0.3f, true));
    EXPECT_FALSE(wall->create_opening(0.0f, true));
    set(face);
  };
  expect_needed(wall->get_face_0(), [&](qvi_polygon* f) { wall->set_face_0(f); });
  expect_needed(wall->get_face_1(), [&](qvi_polygon* f) { wall->set_face_1(f); });
  expect_needed(wall->get_pierced_face_0(), [&](qvi_polygon* f) { wall->set_pierced_face_0(f); });
  expect_needed(wall->get_pierced_face_1(), [&](qvi_polygon* f) { wall->set_pierced_face_1(f); });
  EXPECT_TRUE(wall->create_opening(0.3f, true));
}

TEST_P(facade, with_an_imported_opening_on_its_plain_faces_is_refused) {
  qvi_opening* const imported = add_imported_opening();
  expect_refused();
  EXPECT_EQ(scene.get_items("opening")[0], imported);
}

TEST_P(facade, with_an_imported_opening_on_pierced_faces_is_refused) {
  add_imported_opening();
  auto* const pierced = add_face(3);
  wall->set_pierced_face_0(pierced);
  wall->set_pierced_face_1(pierced);
  expect_refused();
}

TEST_P(facade, with_an_imported_opening_and_one_pierced_face_is_refused) {
  add_imported_opening();
  qvi_polygon* const plain = wall->get_pierced_face_0();
  wall->set_pierced_face_0(add_face(3));
  expect_refused();
  wall->set_pierced_face_0(plain);
  wall->set_pierced_face_1(add_face(3));
  expect_refused();
}

TEST_P(facade, with_an_imported_opening_named_as_a_generated_one_is_refused) {
  wall->set_name("Nord");
  add_imported_opening()->set_name("Baie générée sur Nord");
  expect_refused();
}

TEST_P(facade, with_an_imported_opening_built_as_a_generated_one_is_refused) {
  qvi_opening* const imported = add_imported_opening();
  auto* const pane = static_cast<qvi_polygon*>(imported->get_children()[0]);
  pane->set_front_shader(qv_test::add_new<qvi_glazing>(*pane));
  imported->set_source_ids({"window-1"});
  auto* const pierced = add_face(3);
  wall->set_pierced_face_0(pierced);
  wall->set_pierced_face_1(pierced);
  expect_refused();
}

TEST_P(facade, with_an_imported_opening_besides_its_generated_one_is_refused) {
  ASSERT_TRUE(wall->create_opening(0.3f, true));
  add_imported_opening();
  expect_refused();
  EXPECT_EQ(scene.get_items("opening").get_count(), 2);
}

TEST_P(facade, whose_plain_face_stands_on_one_side_of_its_window_is_refused) {
  ASSERT_TRUE(wall->create_opening(0.3f, true));
  qvi_polygon* const pierced_0 = wall->get_pierced_face_0();
  wall->set_pierced_face_0(wall->get_face_0());
  expect_refused();
  wall->set_pierced_face_0(pierced_0);
  wall->set_pierced_face_1(wall->get_face_1());
  expect_refused();
}

TEST_P(facade, that_lost_its_imported_opening_takes_a_generated_one) {
  qvi_opening* const imported = add_imported_opening();
  scene.precompute();
  qv_item::destroy(imported);
  EXPECT_TRUE(wall->create_opening(0.3f, true));  // before any other pass
  EXPECT_EQ(scene.get_items("opening").get_count(), 1);
  EXPECT_EQ(qv_test::find_lost_references(scene), std::vector<std::string>{});
}

TEST_P(facade, that_handed_its_imported_opening_on_takes_a_generated_one) {
  qvi_opening* const imported = add_imported_opening();
  scene.precompute();
  imported->set_wall(nullptr);
  EXPECT_TRUE(wall->create_opening(0.3f, true));
  EXPECT_EQ(scene.get_items("opening").get_count(), 2);
}

TEST_P(facade, whose_generated_window_was_taken_away_gets_another_one) {
  ASSERT_TRUE(wall->create_opening(0.3f, true));
  scene.precompute();
  qv_item::destroy(scene.get_items("opening")[0]);
  EXPECT_TRUE(wall->create_opening(0.2f, true));
  scene.precompute();
  EXPECT_EQ(scene.get_items("opening").get_count(), 1);
  EXPECT_NEAR(wall->get_loss_area(), 8, 0.01);
  EXPECT_TRUE(wall->create_opening(0.0f, true));
  EXPECT_EQ(wall->get_pierced_face_0(), wall->get_face_0());
}

TEST_P(facade, whose_face_has_a_hole_is_refused) {
  qvi_polygon* const faces[] = {wall->get_face_0(), wall->get_face_1()};
  for (qvi_polygon* const face : faces) {
    qv_polygon whole;
    face->fill_polygon(&whole);
    qv_polygon holed = whole;
    const float y = whole.get_point().y;
    holed.add_contour(qv_test::rectangle({1, y, 1}, {2, y, 1}, {1, y, 2}));
    face->load_from_polygon(&holed);
    expect_refused();
    face->load_from_polygon(&whole);
  }
  for (qvi_polygon* const face : faces) {
    qv_polygon whole, empty;
    face->fill_polygon(&whole);
    face->load_from_polygon(&empty);
    expect_refused();
    face->load_from_polygon(&whole);
  }
  EXPECT_TRUE(wall->create_opening(0.3f, true));
}

TEST_P(facade, leaves_the_openings_of_other_walls_alone) {
  auto* const neighbour =
      qv_test::add_wall(scene, qvi_wall::wall_type::wall, nullptr, nullptr,
                        qv_test::rectangle({4, 0, 0}, {8, 0, 0}, {4, 0, 2.5f}), GetParam());
  scene.precompute();
  ASSERT_TRUE(neighbour->create_opening(0.4f, true));
  ASSERT_TRUE(wall->create_opening(0.3f, true));
  ASSERT_TRUE(wall->create_opening(0.0f, true));
  scene.precompute();
  EXPECT_EQ(neighbour->get_openings().get_count(), 1);
  EXPECT_NEAR(neighbour->get_loss_area(), 6, 0.01);
}

// An opening may be held by references that the wall knows nothing of.
TEST_P(facade, leaves_no_reference_to_what_it_removes) {
  ASSERT_TRUE(wall->create_opening(0.3f, true));
  scene.precompute();
  auto* const window = static_cast<qvi_opening*>(scene.get_items("opening")[0]);
  auto* const pane = static_cast<qvi_polygon*>(window->get_children()[0]);
  auto* const holder = qv_test::add_new<qvi_wall>(scene);
  holder->set_face(wall->get_pierced_face_0());
  holder->set_pierced_face(pane);
  auto* const mesh = qv_test::add_new<qvi_mesh>(scene);
  mesh->set_front_shader(static_cast<qvi_glazing*>(pane->get_children()[0]));
  for (const float ratio : {0.5f, 0.0f}) {
    ASSERT_TRUE(wall->create_opening(ratio, false));
    EXPECT_EQ(qv_test::find_lost_references(scene), std::vector<std::string>{});
  }
  EXPECT_EQ(holder->get_face(), nullptr);
  EXPECT_EQ(holder->get_pierced_face(), nullptr);
  EXPECT_EQ(mesh->get_front_shader(), nullptr);
}

TEST_P(facade, has_the_right_window_whatever_was_edited_before) {
  ASSERT_TRUE(wall->create_opening(0.3f, true));
  wall->set_name("Sud");
  const contour larger = qv_test::rectangle({0, 0, 0}, {8, 0, 0}, {0, 0, 2.5f});
  qv_polygon shape({0, 0, 0}, {0, 0, 0});
  shape.add_contour(larger);
  wall->get_face_0()->load_from_polygon(&shape);
  ASSERT_TRUE(wall->create_opening(0.5f, false));
  scene.precompute();
  auto* const window = static_cast<qvi_opening*>(scene.get_items("opening")[0]);
  EXPECT_EQ(window->get_name(), "Baie générée sur Sud");
  EXPECT_NEAR(window->get_full_area(), 10, 0.02);
  EXPECT_NEAR(wall->get_pierced_face_0()->get_area(), 10, 0.02);
}

INSTANTIATE_TEST_SUITE_P(walls, facade, testing::Values(0.0f, 0.2f),
                         [](const auto& wall) { return wall.param == 0.0f ? "thin" : "thick"; });

TEST(create_opening, outside_a_scene_is_refused) {
  qv_scene scene;
  qvi_wall* const wall = qv_test::add_wall(scene, qvi_wall::wall_type::wall, nullptr, nullptr,
                                           qv_test::rectangle({0, 0, 0}, {4, 0, 0}, {0, 0, 2.5f}));
  scene.precompute();
  wall->remove();
  EXPECT_FALSE(wall->create_opening(0.3f, true));
  qv_item::destroy(wall);
}

// A composition's layers colour the pierced faces as they colour the plain ones.
TEST(create_opening, keeps_the_walls_finishes) {
  qv_scene scene;
  qvi_wall* const wall = qv_test::add_wall(scene, qvi_wall::wall_type::wall, nullptr, nullptr,
                                           qv_test::rectangle({0, 0, 0}, {4, 0, 0}, {0, 0, 2.5f}));
  auto* const outside = qv_test::add_new<qvi_material>(scene);
  auto* const inside = qv_test::add_new<qvi_material>(scene);
  auto* const composition = qv_test::add_new<qvi_composition>(scene);
  composition->set_layers({outside, inside});
  wall->set_composition(composition);
  scene.precompute();
  ASSERT_TRUE(wall->create_opening(0.3f, true));
  EXPECT_EQ(wall->get_pierced_face_1()->get_front_shader(), outside);
  EXPECT_EQ(wall->get_pierced_face_1()->get_back_shader(), inside);
  scene.precompute();
  EXPECT_EQ(wall->get_pierced_face_0()->get_front_shader(), outside);
}

}  // namespace
