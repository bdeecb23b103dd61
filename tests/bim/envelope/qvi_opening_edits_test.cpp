#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "bim/envelope/qvi_opening_composition.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_glass.h"
#include "bim/materials/qvi_opaque.h"
#include "core/items/qv_scene.h"
#include "tests/support/qv_test_openings.h"
#include "utilities/qv_random.h"

// Whatever is edited and in whatever order, one pass over the scene brings every opening to the
// figures of a scene that was built as it stands at once.

namespace {

using namespace qv;
using qv_test::add_new;

// --- what a scene holds, without any history ---

struct glazing_plan {
  float gap = 0;  // m; 0 for a single pane
  float transmittance = 0.8f;
  float conductivity = 0.05f;
  float coating = 0.2f;
  bool is_empty = false;  // no layers, as the default glazing
};
struct rectangle_plan {
  float x0, z0, x1, z1, y;
};
// Fillings by number: −1 none, 0 … glazing_count − 1 a glazing, then panel and frame.
struct filling {
  enum class kind { none, glazing, panel, frame, paint } sort = kind::none;
  int glazing = 0;  // id
};
struct piece_plan {
  rectangle_plan shape{};
  filling front;
};
struct composition_plan {
  int glazing = -1;  // id; −1 none
  float forced_U = -1;
};
struct opening_plan {
  std::vector<piece_plan> pieces;
  int composition = -1;  // index; −1 none
  qv_3dvector normal{0, -1, 0};
  float forced_solar_factor = -1;
};
struct scene_plan {
  std::vector<std::pair<int, glazing_plan>> glazings;  // id and content, in scene order
  std::vector<composition_plan> compositions;
  std::vector<opening_plan> openings;
  float panel_thickness = 0.01f;
};

qv_polygon polygon_of(const rectangle_plan& r) {
  return qv_test::facade_rectangle(r.x0, r.z0, r.x1, r.z1, r.y);
}

// --- a scene as items ---

class built_scene {
 public:
  qv_scene scene;
  qvi_opaque* panel = add_new<qvi_opaque>(scene);
  qvi_opening_shader* frame = add_new<qvi_opening_shader>(scene);
  qvi_shader* paint = add_new<qvi_shader>(scene);
  std::vector<std::pair<int, qvi_glazing*>> glazings;  // id and item
  std::vector<qvi_opening_composition*> compositions;
  std::vector<qvi_opening*> openings;
  std::vector<std::vector<qvi_polygon*>> pieces;  // by opening

  built_scene() = default;
  explicit built_scene(const scene_plan& plan) {
    panel->set_thickness(plan.panel_thickness);
    for (const auto& [id, content] : plan.glazings) add_glazing(id, content);
    for (const composition_plan& c : plan.compositions) {
      compositions.push_back(add_new<qvi_opening_composition>(scene));
      compositions.back()->set_glazing(find_glazing(c.glazing));
      compositions.back()->set_forced_U(c.forced_U);
    }
    for (const opening_plan& o : plan.openings) {
      openings.push_back(add_new<qvi_opening>(scene));
      pieces.emplace_back();
      openings.back()->set_normal(o.normal);
      openings.back()->set_forced_solar_factor(o.forced_solar_factor);
      if (o.composition >= 0)
        openings.back()->set_composition(compositions[static_cast<std::size_t>(o.composition)]);
      for (const piece_plan& piece : o.pieces)
        pieces.back().push_back(
            qv_test::add_piece(*openings.back(), polygon_of(piece.shape), shader_of(piece.front)));
    }
  }

  void add_glazing(int id, const glazing_plan& content) {
    auto* const glazing = new qvi_glazing;
    scene.add_child(glazing, -1);
    glazings.emplace_back(id, glazing);
    fill_glazing(glazing, content);
  }
  static void fill_glazing(qvi_glazing* glazing, const glazing_plan& content) {
    if (content.is_empty) return;
    auto* const outer = add_new<qvi_glazing_glass>(*glazing);
    outer->set_thermal_emissivity_back(content.coating);
    outer->set_conductivity(content.conductivity);
    outer->set_solar_transmittance(content.transmittance);
    outer->set_visible_transmittance(content.transmittance);
    outer->set_solar_reflectance_front(0.1f);
    if (content.gap == 0) {
      glazing->set_layers({outer});
      return;
    }
    auto* const gas = add_new<qvi_glazing_gaz>(*glazing);
    gas->set_gaz_type(qvi_glazing_gaz::gaz_type::argon);
    gas->set_thickness(content.gap);
    glazing->set_layers({outer, gas, add_new<qvi_glazing_glass>(*glazing)});
  }
  // Changes the layers that stand.
  static void edit_glazing(qvi_glazing* glazing, const glazing_plan& content) {
    const auto layers = glazing->get_layers();
    auto* const outer = static_cast<qvi_glazing_glass*>(layers[0]);
    outer->set_thermal_emissivity_back(content.coating);
    outer->set_conductivity(content.conductivity);
    outer->set_solar_transmittance(content.transmittance);
    outer->set_visible_transmittance(content.transmittance);
    if (content.gap != 0) layers[1]->set_thickness(content.gap);
  }
  qvi_glazing* find_glazing(int id) const {
    for (const auto& [known, glazing] : glazings)
      if (known == id) return glazing;
    return nullptr;
  }
  qvi_shader* shader_of(const filling& front) const {
    switch (front.sort) {
      case filling::kind::glazing:
        return find_glazing(front.glazing);
      case filling::kind::panel:
        return panel;
      case filling::kind::frame:
        return frame;
      case filling::kind::paint:
        return paint;
      default:
        return nullptr;
    }
  }
  std::vector<float> figures() const {
    std::vector<float> result;
    for (const qvi_opening* o : openings) {
      result.insert(result.end(),
                    {o->get_glazing_area(), o->get_opaque_area(), o->get_frame_area(),
                     o->get_full_area(), o->get_full_face().get_area(), o->get_U(),
                     o->get_solar_factor(), o->get_visible_transmittance(),
                     static_cast<float>(o->get_parts().size()), o->get_full_face().get_point().y});
      for (const qvi_opening_part& part : o->get_parts()) {
        result.push_back(static_cast<float>(part.meshes.get_count()));
        result.push_back(part.area);
      }
    }
    return result;
  }
};

bool are_equal(const std::vector<float>& a, const std::vector<float>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](float x, float y) { return x == y || (std::isnan(x) && std::isnan(y)); });
}

// --- edits, made in the plan and in the living scene alike ---

class editor {
 public:
  explicit editor(int seed) : random_(seed) {
    for (int i = 0; i < 2; ++i) {
      plan.openings.emplace_back();
      living.openings.push_back(add_new<qvi_opening>(living.scene));
      living.openings.back()->set_normal({0, -1, 0});
      living.pieces.emplace_back();
      plan.compositions.emplace_back();
      living.compositions.push_back(add_new<qvi_opening_composition>(living.scene));
    }
  }

  /// Makes one edit and returns what it was.
  std::string edit() {
    const std::size_t o = dice(plan.openings.size());
    auto& pieces = plan.openings[o].pieces;
    auto& items = living.pieces[o];
    switch (dice(18)) {
      case 0:
      case 1:
      case 2: {
        if (pieces.size() > 5) return "nothing";
        const piece_plan piece = {random_rectangle(), random_filling()};
        pieces.push_back(piece);
        items.push_back(qv_test::add_piece(*living.openings[o], polygon_of(piece.shape),
                                           living.shader_of(piece.front)));
        return "piece added";
      }
      case 3: {
        if (pieces.empty()) return "nothing";
        const std::size_t i = dice(pieces.size());
        qv_item::destroy(items[i]);
        pieces.erase(pieces.begin() + static_cast<std::ptrdiff_t>(i));
        items.erase(items.begin() + static_cast<std::ptrdiff_t>(i));
        return "piece destroyed";
      }
      case 4: {
        if (pieces.empty()) return "nothing";
        const std::size_t i = dice(pieces.size());
        pieces[i].shape = random_rectangle();
        const qv_polygon shape = polygon_of(pieces[i].shape);
        items[i]->load_from_polygon(&shape);
        return "piece reshaped";
      }
      case 5:
      case 6: {
        if (pieces.empty()) return "nothing";
        const std::size_t i = dice(pieces.size());
        pieces[i].front = random_filling();
        items[i]->set_front_shader(living.shader_of(pieces[i].front));
        return "piece given another shader";
      }
      case 7: {
        plan.openings[o].composition = static_cast<int>(dice(plan.compositions.size() + 1)) - 1;
        const int c = plan.openings[o].composition;
        living.openings[o]->set_composition(
            c < 0 ? nullptr : living.compositions[static_cast<std::size_t>(c)]);
        return "composition chosen";
      }
      case 8: {
        const std::size_t c = dice(plan.compositions.size());
        plan.compositions[c].glazing = random_glazing();
        living.compositions[c]->set_glazing(living.find_glazing(plan.compositions[c].glazing));
        return "composition given a glazing";
      }
      case 9:
      case 10: {
        if (plan.glazings.size() > 4) return "nothing";
        const glazing_plan content = {dice(2) == 0 ? 0.0f : 0.016f, random_.dice_float(), 0.05f,
                                      0.05f + 0.8f * random_.dice_float(), dice(5) == 0};
        plan.glazings.emplace_back(++last_id_, content);
        living.add_glazing(last_id_, content);
        return "glazing added";
      }
      case 11:
        return destroy_glazing();
      case 12:
      case 13: {
        if (plan.glazings.empty()) return "nothing";
        auto& [id, content] = plan.glazings[dice(plan.glazings.size())];
        if (content.is_empty) {
          content = {0.012f, random_.dice_float(), 0.05f, 0.2f, false};
          built_scene::fill_glazing(living.find_glazing(id), content);
          return "empty glazing filled";
        }
        content.transmittance = random_.dice_float();
        content.conductivity = 0.05f + random_.dice_float();
        content.coating = 0.02f + 0.9f * random_.dice_float();
        if (content.gap != 0) content.gap = 0.006f + 0.02f * random_.dice_float();
        built_scene::edit_glazing(living.find_glazing(id), content);
        return "layers of a glazing changed";
      }
      case 14: {
        const qv_3dvector normals[] = {{0, -1, 0}, {0, -0.8f, 0.6f}, {0, -0.28f, 0.96f}, {0, 1, 0}};
        plan.openings[o].normal = normals[dice(4)];
        living.openings[o]->set_normal(plan.openings[o].normal);
        return "normal turned";
      }
      case 15: {
        plan.panel_thickness = 0.01f + 0.05f * random_.dice_float();
        living.panel->set_thickness(plan.panel_thickness);
        return "panel changed";
      }
      case 16: {
        const std::size_t c = dice(plan.compositions.size());
        plan.compositions[c].forced_U = dice(2) == 0 ? -1.0f : random_.dice_float();
        living.compositions[c]->set_forced_U(plan.compositions[c].forced_U);
        plan.openings[o].forced_solar_factor = dice(2) == 0 ? -1.0f : random_.dice_float();
        living.openings[o]->set_forced_solar_factor(plan.openings[o].forced_solar_factor);
        return "values forced";
      }
      default: {
        qvi_opening* const opening = living.openings[o];
        opening->remove();
        if (dice(2) == 0) opening->precompute();  // outside its scene
        living.scene.add_child(opening, -1);
        return "opening taken out and put back";
      }
    }
  }

  /// One pass; the plan takes note of a default glazing that it made.
  void precompute() {
    living.scene.precompute();
    std::size_t known = 0;
    for (qv_item* child : living.scene.get_children()) {
      if (!child->has_type("glazing")) continue;
      if (known == living.glazings.size()) {
        plan.glazings.emplace_back(++last_id_, glazing_plan{.is_empty = true});
        living.glazings.emplace_back(last_id_, static_cast<qvi_glazing*>(child));
      }
      ++known;
    }
  }

  scene_plan plan;
  built_scene living;

 private:
  std::size_t dice(std::size_t count) { return random_.dice() % count; }
  float centimetres(int count) {
    return static_cast<float>(dice(static_cast<std::size_t>(count))) / 100;
  }
  rectangle_plan random_rectangle() {
    const float x0 = centimetres(200), z0 = centimetres(200);
    return {x0, z0, x0 + 0.05f + centimetres(150), z0 + 0.05f + centimetres(150), centimetres(10)};
  }
  int random_glazing() {
    const std::size_t chosen = dice(plan.glazings.size() + 1);
    return chosen == plan.glazings.size() ? -1 : plan.glazings[chosen].first;
  }
  filling random_filling() {
    using kind = filling::kind;
    switch (dice(8)) {
      case 0:
        return {kind::panel, 0};
      case 1:
        return {kind::frame, 0};
      case 2:
        return {kind::paint, 0};
      case 3:
        return {kind::none, 0};
      default:
        return {kind::glazing, random_glazing()};
    }
  }
  std::string destroy_glazing() {
    if (plan.glazings.empty()) return "nothing";
    const std::size_t g = dice(plan.glazings.size());
    const int id = plan.glazings[g].first;
    qv_item::destroy(living.find_glazing(id));
    plan.glazings.erase(plan.glazings.begin() + static_cast<std::ptrdiff_t>(g));
    living.glazings.erase(living.glazings.begin() + static_cast<std::ptrdiff_t>(g));
    for (composition_plan& composition : plan.compositions)
      if (composition.glazing == id) composition.glazing = -1;
    return "glazing destroyed";
  }

  qv_random random_;
  int last_id_ = 0;
};

class edited_openings : public testing::TestWithParam<int> {};

TEST_P(edited_openings, come_to_the_figures_of_a_scene_built_at_once) {
  for (int round = 0; round < 10; ++round) {
    const int seed = GetParam() * 1000 + round;
    editor edits(seed);
    std::string history = "seed " + std::to_string(seed);
    for (int step = 0; step < 25; ++step) {
      history += "\n" + edits.edit();
      if (step % 5 == seed % 5 || step % 7 == 3) {
        history += " | pass";
        edits.precompute();
        built_scene fresh(edits.plan);
        fresh.scene.precompute();
        ASSERT_TRUE(are_equal(edits.living.figures(), fresh.figures()))
            << history << "\nedited " << testing::PrintToString(edits.living.figures())
            << "\nfresh  " << testing::PrintToString(fresh.figures());
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(seeds, edited_openings, testing::Range(0, 10));

// --- the orders by name ---

struct figures_of_one {
  float area, U, solar_factor;
  friend bool operator==(const figures_of_one&, const figures_of_one&) = default;
};

class edit_order : public testing::Test {
 protected:
  edit_order() {
    glazing = qv_test::add_single_glazing(scene, 0.4f);
    composition = add_new<qvi_opening_composition>(scene);
    composition->set_glazing(glazing);
    opening = qv_test::add_opening(scene);
    piece = new qvi_polygon;
    opening->add_child(piece, -1);
  }
  void give_geometry() {
    const auto shape = qv_test::facade_rectangle(0, 0, 2, 1);
    piece->load_from_polygon(&shape);
  }
  figures_of_one figures() {
    scene.precompute();
    return {opening->get_glazing_area(), opening->get_U(), opening->get_solar_factor()};
  }
  figures_of_one expected() {
    glazing->precompute();
    return {2.0f, glazing->get_U(90), glazing->get_solar_factor()};
  }

  void expect_expected() {
    const figures_of_one found = figures();
    EXPECT_EQ(found, expected());
  }

  qv_scene scene;
  qvi_glazing* glazing;
  qvi_opening_composition* composition;
  qvi_opening* opening;
  qvi_polygon* piece;
};

TEST_F(edit_order, shader_first) {
  piece->set_front_shader(glazing);
  figures();
  give_geometry();
  expect_expected();
}

TEST_F(edit_order, geometry_first) {
  give_geometry();
  figures();
  piece->set_front_shader(glazing);
  expect_expected();
}

TEST_F(edit_order, composition_late) {
  add_new<qvi_glazing>(scene);
  give_geometry();
  figures();
  opening->set_composition(composition);
  expect_expected();
  EXPECT_EQ(piece->get_back_shader(), glazing);
}

TEST_F(edit_order, composition_given_its_glazing_late) {
  auto* const other = qv_test::add_single_glazing(scene, 0.9f);
  composition->set_glazing(other);
  opening->set_composition(composition);
  give_geometry();
  const figures_of_one before = figures();
  EXPECT_EQ(before.solar_factor, other->get_solar_factor());
  composition->set_glazing(glazing);
  expect_expected();
}

TEST_F(edit_order, glazing_removed_from_the_scene) {
  auto* const other = qv_test::add_single_glazing(scene, 0.9f);
  composition->set_glazing(other);
  opening->set_composition(composition);
  give_geometry();
  figures();
  qv_item::destroy(other);
  expect_expected();  // the first of the scene
}

TEST_F(edit_order, layers_changed_late) {
  piece->set_front_shader(glazing);
  give_geometry();
  figures();
  static_cast<qvi_glazing_glass*>(glazing->get_layers()[0])->set_conductivity(1.0f);
  expect_expected();
  auto* const pane = add_new<qvi_glazing_glass>(*glazing);
  glazing->set_layers({glazing->get_layers()[0], pane});
  expect_expected();
  EXPECT_LT(opening->get_solar_factor(), 0.4f);
}

TEST_F(edit_order, outside_the_scene_first) {
  opening->remove();
  give_geometry();
  opening->precompute();
  scene.add_child(opening, -1);
  expect_expected();
}

}  // namespace
