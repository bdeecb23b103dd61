#include "bim/imported/qvi_bim_object.h"

#include <gtest/gtest.h>

#include "bim/imported/qvi_bim_piercing.h"
#include "bim/imported/qvi_bim_polygon.h"
#include "bim/imported/qvi_bim_property.h"
#include "core/shapes/qvi_mesh_instance.h"
#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_recording_gl.h"
#include "tests/support/qv_shapes.h"
#include "tests/support/qv_test_buildings.h"
#include "utilities/qv_date.h"

using namespace qv;
using qv_test::add_face;
using qv_test::make_item;
using qv_test::rectangle;
using qv_test::to_vector;
using layers = std::vector<std::string>;
using type = qvi_bim_object::bim_type;

namespace {

template <class T>
T* add(qv_item& parent) {
  auto* item = new T;
  parent.add_child(item, -1);
  return item;
}

qvi_mesh* add_mesh(qv_item& parent, const qv_list<std::string>& of_layers) {
  auto* mesh = add<qvi_mesh>(parent);
  mesh->set_raytracing_layers(of_layers);
  return mesh;
}

// --- whether it can be picked ---

TEST(qvi_bim_object, visible_gives_its_meshes_the_picking_layer_once) {
  auto object = make_item<qvi_bim_object>();
  qvi_mesh* const plain = add_mesh(*object, {"bim"});
  qvi_mesh* const deeper = add_mesh(*add<qv_test::probe_item>(*object), {"picking", "bim"});
  qvi_mesh* const unpierced = add_mesh(*object, {"unpierced"});
  object->precompute();
  EXPECT_EQ(to_vector(plain->get_raytracing_layers()), (layers{"bim", "picking"}));
  EXPECT_EQ(to_vector(deeper->get_raytracing_layers()), (layers{"picking", "bim"}));
  EXPECT_EQ(to_vector(unpierced->get_raytracing_layers()), layers{"unpierced"});
}

TEST(qvi_bim_object, hidden_takes_every_picking_entry_from_its_meshes) {
  auto object = make_item<qvi_bim_object>();
  qvi_mesh* const mesh = add_mesh(*object, {"picking", "bim", "picking"});
  qvi_mesh* const unpierced = add_mesh(*object, {"picking", "unpierced"});
  object->set_visibility(false);
  object->precompute();
  EXPECT_EQ(to_vector(mesh->get_raytracing_layers()), layers{"bim"});
  EXPECT_EQ(to_vector(unpierced->get_raytracing_layers()), (layers{"picking", "unpierced"}));
  object->set_visibility(true);
  object->precompute();
  EXPECT_EQ(to_vector(mesh->get_raytracing_layers()), (layers{"bim", "picking"}));
}

TEST(qvi_bim_object, looks_at_its_meshes_only_after_a_change_of_its_visibility) {
  auto object = make_item<qvi_bim_object>();
  object->precompute();
  qvi_mesh* const late = add_mesh(*object, {});
  object->set_name("changed");
  object->precompute();
  EXPECT_TRUE(late->get_raytracing_layers().is_empty());
  object->set_visibility(false);
  object->set_visibility(true);
  object->precompute();
  EXPECT_EQ(to_vector(late->get_raytracing_layers()), layers{"picking"});
}

TEST(qvi_bim_object, leaves_the_dates_of_meshes_that_are_right_already) {
  auto object = make_item<qvi_bim_object>();
  qvi_mesh* const mesh = add_mesh(*object, {"picking"});
  const unsigned int date = mesh->get_raytracing_layers_date();
  object->precompute();
  EXPECT_EQ(mesh->get_raytracing_layers_date(), date);
}

// --- what it draws ---

// Its meshes are items of their own, which the host draws one by one.
TEST(qvi_bim_object, draws_nothing_itself_visible_or_not) {
  auto object = make_item<qvi_bim_object>();
  add_face(*object, rectangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0}));
  object->set_selected(true);
  object->set_mouseover(true);
  qv_test::gl_recorder gl;
  for (bool visible : {true, false}) {
    object->set_visibility(visible);
    object->render_opengl(false);
    object->render_opengl(true);
  }
  EXPECT_TRUE(gl.calls.empty());
}

// --- what belongs to it ---

TEST(qvi_bim_object, lists_its_meshes_of_a_layer_depth_first) {
  auto object = make_item<qvi_bim_object>();
  auto* part = add<qvi_bim_object>(*object);
  qvi_mesh* const in_part = add_mesh(*part, {"a", "b"});
  qvi_mesh* const below_mesh = add_mesh(*in_part, {"b"});
  qvi_mesh* const last = add_mesh(*object, {"b", "b"});
  add_mesh(*object, {"bb"});
  EXPECT_EQ(to_vector(object->get_layer_meshes("b")),
            (std::vector<qvi_mesh*>{in_part, below_mesh, last}));
  EXPECT_EQ(to_vector(object->get_layer_meshes("a")), std::vector<qvi_mesh*>{in_part});
  EXPECT_TRUE(object->get_layer_meshes("").is_empty());
}

TEST(qvi_bim_object, is_found_from_below_as_the_topmost_one) {
  auto folder = make_item<qv_test::probe_item>();
  auto* wall = add<qvi_bim_object>(*folder);
  auto* between = add<qv_test::probe_item>(*wall);
  auto* opening = add<qvi_bim_object>(*between);
  auto* mesh = add<qvi_mesh>(*opening);
  EXPECT_EQ(qvi_bim_object::root_ascendant(mesh), wall);
  EXPECT_EQ(qvi_bim_object::root_ascendant(opening), wall);
  EXPECT_EQ(qvi_bim_object::root_ascendant(between), wall);
  EXPECT_EQ(qvi_bim_object::root_ascendant(wall), wall);
  EXPECT_EQ(qvi_bim_object::root_ascendant(folder.get()), nullptr);
  EXPECT_EQ(qvi_bim_object::root_ascendant(nullptr), nullptr);
}

TEST(qvi_bim_object, is_in_the_envelope_by_the_kind_of_the_topmost_one) {
  auto folder = make_item<qv_test::probe_item>();
  auto* top = add<qvi_bim_object>(*folder);
  auto* inner = add<qvi_bim_object>(*top);
  auto* mesh = add<qvi_mesh>(*inner);
  const std::pair<type, bool> kinds[] = {
      {type::unknown, false}, {type::wall, true},         {type::slab, true},  {type::roof, true},
      {type::opening, false}, {type::curtain_wall, true}, {type::other, false}};
  for (const auto& [kind, in_envelope] : kinds) {
    top->set_bim_type(kind);
    for (const auto& [inner_kind, unused] : kinds) {
      inner->set_bim_type(inner_kind);
      EXPECT_EQ(qvi_bim_object::is_in_envelop(mesh), in_envelope) << static_cast<int>(kind);
    }
  }
  auto alone = make_item<qvi_mesh>();
  EXPECT_FALSE(qvi_bim_object::is_in_envelop(alone.get()));
  EXPECT_FALSE(qvi_bim_object::is_in_envelop(nullptr));
}

// --- the direction that it mostly faces ---

// A rectangle of `width` × `height` that looks along an axis (0 x, 1 y, 2 z) or against it.
qvi_polygon* add_panel(qv_item& parent, int axis, bool along, float width, float height) {
  const qv_3dvector unit[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  const qv_3dvector u = unit[(axis + 1) % 3] * width;
  const qv_3dvector v = unit[(axis + 2) % 3] * height;
  return add_face(parent, along ? rectangle({0, 0, 0}, u, v) : rectangle({0, 0, 0}, v, u));
}

TEST(qvi_bim_object, faces_where_most_of_its_surface_does_either_way_round) {
  auto object = make_item<qvi_bim_object>();
  add_panel(*object, 2, true, 1, 5);  // 5 m² up
  add_panel(*object, 0, true, 1, 3);  // 3 m² towards +x
  EXPECT_EQ(object->find_main_normal(), qv_3dvector(0, 0, 1));
  add_panel(*object, 0, false, 1, 3);  // and 3 m² towards −x
  EXPECT_EQ(object->find_main_normal(), qv_3dvector(1, 0, 0));
}

TEST(qvi_bim_object, faces_the_first_of_two_directions_of_equal_surface) {
  auto object = make_item<qvi_bim_object>();
  add_panel(*object, 1, false, 2, 2);
  add_panel(*object, 2, true, 2, 2);
  EXPECT_EQ(object->find_main_normal(), qv_3dvector(0, -1, 0));
}

TEST(qvi_bim_object, counts_directions_within_eight_degrees_together) {
  // The cosine of 8.10° is 0.990024, that of 8.12° is 0.989975.
  for (const float degrees : {8.10f, 8.12f}) {
    auto object = make_item<qvi_bim_object>();
    add_panel(*object, 2, true, 1, 2);
    add_panel(*object, 0, true, 1, 3);
    add_panel(*object, 2, true, 1, 2)->matrix_transform(qv_matrix::rotation(0, degrees), true);
    EXPECT_EQ(object->find_main_normal(),
              degrees < 8.11f ? qv_3dvector(0, 0, 1) : qv_3dvector(1, 0, 0));
  }
}

TEST(qvi_bim_object, keeps_its_direction_until_it_changes) {
  auto object = make_item<qvi_bim_object>();
  qvi_polygon* const panel = add_panel(*object, 2, true, 1, 2);
  EXPECT_EQ(object->find_main_normal(), qv_3dvector(0, 0, 1));
  panel->matrix_transform(qv_matrix::rotation(0, 90), false);  // nobody is told
  EXPECT_EQ(object->find_main_normal(), qv_3dvector(0, 0, 1));
  panel->set_name("told");
  EXPECT_EQ(object->find_main_normal(), panel->get_normal());
}

TEST(qvi_bim_object, notes_the_present_date_and_makes_no_new_one) {
  auto object = make_item<qvi_bim_object>();
  add_panel(*object, 2, true, 1, 2)->set_raytracing_layers({"picking"});
  const unsigned int date = qv_get_date();
  object->precompute();
  object->find_main_normal();
  EXPECT_EQ(qv_get_date(), date);
}

TEST(qvi_bim_object, without_surface_faces_nowhere) {
  auto object = make_item<qvi_bim_object>();
  EXPECT_EQ(object->find_main_normal(), qv_3dvector(0, 0, 0));
}

// --- records around it ---

TEST(qvi_bim_object, a_copy_constructed_one_shares_its_record) {
  auto source = make_item<qvi_bim_object>();
  add_panel(*source, 0, true, 1, 1);
  auto* copy = new qvi_bim_object(*source);
  source->find_main_normal();
  // The copy has no meshes; it knows the direction from the record.
  EXPECT_EQ(copy->find_main_normal(), qv_3dvector(1, 0, 0));
  source.reset();
  EXPECT_EQ(copy->find_main_normal(), qv_3dvector(1, 0, 0));
  qv_item::destroy(copy);
}

TEST(qvi_bim_piercing, stamps_nothing_for_the_same_objects_again) {
  qv_test::recording_scene scene;
  auto* wall = add<qvi_bim_object>(scene);
  auto* window = add<qvi_bim_object>(scene);
  auto* piercing = add<qvi_bim_piercing>(scene);
  piercing->set_pierced_object(wall);
  piercing->set_piercing_object(window);
  scene.forget();
  const unsigned int date = qv_get_date();
  piercing->set_pierced_object(wall);
  piercing->set_piercing_object(window);
  EXPECT_EQ(qv_get_date(), date);
  EXPECT_TRUE(scene.changed.empty());
  auto* copy = static_cast<qvi_bim_piercing*>(piercing->full_copy());
  EXPECT_EQ(copy->get_pierced_object(), wall);
  EXPECT_EQ(copy->get_piercing_object(), window);
  qv_item::destroy(copy);
}

TEST(qvi_bim_polygon, shares_the_objects_it_was_made_from_with_its_copies) {
  qv_test::recording_scene scene;
  auto* wall = add<qvi_bim_object>(scene);
  auto* polygon = add<qvi_bim_polygon>(scene);
  polygon->set_bim_objects({wall});
  polygon->set_dirty_perimeter(12.5f);
  scene.forget();
  polygon->set_bim_objects({wall});
  polygon->set_dirty_perimeter(12.5f);
  EXPECT_TRUE(scene.changed.empty());
  auto* copy = static_cast<qvi_bim_polygon*>(polygon->full_copy());
  EXPECT_EQ(to_vector(copy->get_bim_objects()), std::vector<qvi_bim_object*>{wall});
  EXPECT_EQ(copy->get_dirty_perimeter(), 12.5f);
  qv_item::destroy(copy);
  EXPECT_EQ(scene.get_items("bim_object").get_count(), 1);
}

}  // namespace
