#include "app/readers/qv_context.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "app/export/qv_export_gltf.h"
#include "app/export/qv_export_groups.h"
#include "app/export/qv_export_obj.h"
#include "app/readers/qv_epw.h"
#include "app/readers/qv_triangle_file.h"
#include "app/study/qv_study.h"
#include "app/study/qv_study_gather.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/imported/qvi_bim_object.h"
#include "core/light/qvi_sun.h"
#include "core/shapes/qvi_mesh_instance.h"
#include "core/shapes/qvi_polygon.h"
#include "tests/app/qv_gbxml_text.h"
#include "tests/app/qv_gltf_text.h"
#include "tests/app/qv_program.h"
#include "tests/app/qv_temporary_folder.h"
#include "tests/support/qv_test_paths.h"

namespace {

using kind = qv::qv_import_ledger::kind;
using outcome = qv::qv_import_ledger::outcome;
using testing::ElementsAre;
using testing::HasSubstr;

const std::string house = QV_SOURCE_DIR "/samples/house.xml";

class qv_context : public testing::Test {
 protected:
  std::string write(const std::string& name, const std::string& text) const {
    std::string path = (folder_.path() / name).string();
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  static qv::qv_gbxml_model room() { return qv_gbxml_text().box("a", {0, 0, 0}, {4, 5, 3}).read(); }
  qv::qv_gbxml_model room_with(const std::vector<std::string>& files,
                               qv::qv_up_axis up = qv::qv_up_axis::of_format) {
    qv::qv_gbxml_model model = room();
    notes_ = qv::qv_add_context(model, {files, up});
    return model;
  }
  // What is wrong with the file, in the words of the error; "" when it is read.
  std::string complaint(const std::string& path) {
    try {
      room_with({path});
      return {};
    } catch (const qv::qv_input_error& e) {
      return std::to_string(e.get_exit_code()) + ": " + e.what();
    }
  }

  qv_temporary_folder folder_;
  std::vector<std::string> notes_;
};

std::vector<qv::qvi_bim_object*> objects_of(const qv::qv_gbxml_model& model) {
  std::vector<qv::qvi_bim_object*> objects;
  for (qv::qv_item* item : model.scene->get_items("bim_object"))
    objects.push_back(static_cast<qv::qvi_bim_object*>(item));
  return objects;
}

std::vector<qv::qv_import_ledger::entry> entries_of(const qv::qv_gbxml_model& model) {
  std::vector<qv::qv_import_ledger::entry> entries;
  for (const auto& entry : model.ledger.get_entries())
    if (entry.what == kind::object) entries.push_back(entry);
  return entries;
}

float area_of(const qv::qvi_bim_object* object) {
  float sum = 0;
  for (qv::qvi_mesh* mesh : qv::qv_collect<qv::qvi_mesh>(object, "mesh")) sum += mesh->get_area();
  return sum;
}

qv::qv_box box_of(qv::qvi_bim_object* object) {
  return qv::qv_collect<qv::qvi_mesh>(object, "mesh")[0]->get_local_bounding_box();
}

// A square of 2 m × 3 m upright in the plane y = −5.
const std::string pane_obj = "o pane\nv 0 -5 0\nv 2 -5 0\nv 2 -5 3\nv 0 -5 3\ng tree\nf 1 2 3 4\n";

}  // namespace

TEST_F(qv_context, an_object_of_each_group_stands_in_the_scene) {
  const auto model = room_with({write("street.obj", pane_obj + "g wall\nf 1 2 3\n")});
  const auto objects = objects_of(model);
  ASSERT_EQ(objects.size(), 2U);
  EXPECT_EQ(objects[0]->get_name(), "tree");
  EXPECT_EQ(objects[1]->get_name(), "wall");
  EXPECT_NEAR(area_of(objects[0]), 6, 1e-6);
  EXPECT_NEAR(area_of(objects[1]), 3, 1e-6);
  EXPECT_EQ(objects[0]->get_source_type(), "context");
  EXPECT_EQ(objects[0]->get_bim_type(), qv::qvi_bim_object::bim_type::other);
  EXPECT_FALSE(
      qv::qvi_bim_object::is_in_envelop(qv::qv_collect<qv::qvi_mesh>(objects[0], "mesh")[0]));
  EXPECT_EQ(objects[0]->get_layer_meshes("simulation").get_count(), 1);
  EXPECT_EQ(objects[0]->get_layer_meshes("bim").get_count(), 0);
  EXPECT_TRUE(notes_.empty());
  EXPECT_EQ(entries_of(model)[0].result, outcome::kept);
  EXPECT_NEAR(entries_of(model)[0].area, 6, 1e-6);
}

TEST_F(qv_context, changes_nothing_of_the_rooms) {
  const auto alone = room();
  const auto model = room_with({write("pane.obj", pane_obj)});
  qv::qv_compute_model(alone, {});
  qv::qv_compute_model(model, {});
  const auto a = qv::qv_gather_study(alone);
  const auto b = qv::qv_gather_study(model);
  EXPECT_EQ(a.spaces[0].area, b.spaces[0].area);
  EXPECT_EQ(a.spaces[0].volume, b.spaces[0].volume);
  EXPECT_EQ(a.walls.size(), b.walls.size());
  EXPECT_EQ(a.thermal_bridges.size(), b.thermal_bridges.size());
  ASSERT_EQ(b.objects.size(), 1U);
  EXPECT_EQ(b.objects[0].id, "tree");
  EXPECT_EQ(b.objects[0].kind, "context");
  EXPECT_NEAR(b.objects[0].area, 6, 1e-6);
  EXPECT_TRUE(b.ledger.balance.balanced);
}

TEST_F(qv_context, an_obj_has_z_upwards_and_a_gltf_y_unless_told_otherwise) {
  const std::string obj = write("pane.obj", pane_obj);
  EXPECT_NEAR(box_of(objects_of(room_with({obj}))[0]).get_max().z, 3, 1e-6);
  EXPECT_NEAR(box_of(objects_of(room_with({obj}, qv::qv_up_axis::y))[0]).get_min().y, -3, 1e-6);
  const std::string gltf = write("pane.gltf", qv_gltf_text().node("a", 0).text());
  // Its corners are (0, 0, 0), (2, 0, 0), (0, 3, 0) in the file.
  EXPECT_NEAR(box_of(objects_of(room_with({gltf}))[0]).get_max().z, 3, 1e-6);
  EXPECT_NEAR(box_of(objects_of(room_with({gltf}, qv::qv_up_axis::z))[0]).get_max().y, 3, 1e-6);
}

TEST_F(qv_context, turns_with_the_model_to_true_north) {
  const auto model = room_with({write("pane.obj", pane_obj)});
  qv::qv_study_options options;
  options.north = 90.0;  // +Y looks east, so that the pane at y = −5 stands in the west
  qv::qv_compute_model(model, options);
  const qv::qv_box box = box_of(objects_of(model)[0]);
  EXPECT_NEAR(box.get_min().x, -5, 1e-5);
  EXPECT_NEAR(box.get_max().x, -5, 1e-5);
}

TEST_F(qv_context, follows_a_model_that_was_brought_to_the_origin) {
  auto model = qv_gbxml_text().box("a", {651200, 6862000, 0}, {651204, 6862005, 3}).read();
  ASSERT_NE(model.origin[0], 0);
  qv::qv_add_context(
      model, {{write("far.obj",
                     "v 651200 6861990 0\nv 651202 6861990 0\nv 651200 6861990 3\nf 1 2 3\n")}});
  const qv::qv_box box = box_of(objects_of(model)[0]);
  EXPECT_NEAR(box.get_min().x, 651200 - model.origin[0], 0.5);
  EXPECT_NEAR(box.get_min().y, 6861990 - model.origin[1], 0.5);
}

// Where neighbouring floats lie half a metre apart.
TEST_F(qv_context, a_town_model_far_away_keeps_its_millimetres) {
  auto model = qv_gbxml_text().box("a", {651200, 6862000, 0}, {651204, 6862005, 3}).read();
  qv::qv_add_context(model, {{write("far.obj",
                                    "g pane\nv 651200.125 6861990.25 0.5\n"
                                    "v +651202.25 6861990.25 0.5 1\n"
                                    "v 651200.125 6861990.25 2.5\nv nan 0 0\nf 1 2 3\n")}});
  const qv::qv_box box = box_of(objects_of(model)[0]);
  EXPECT_NEAR(box.get_min().x, 651200.125 - model.origin[0], 1e-3);
  EXPECT_NEAR(box.get_max().x, 651202.25 - model.origin[0], 1e-3);
  EXPECT_NEAR(box.get_min().y, 6861990.25 - model.origin[1], 1e-3);
  EXPECT_NEAR(area_of(objects_of(model)[0]), 2.125, 1e-4);
}

TEST_F(qv_context, a_model_far_away_comes_back_to_its_place) {
  const std::string path = write(
      "far.xml", qv_gbxml_text().box("a", {651200.5, 6862000, 0}, {651204.5, 6862005, 3}).text());
  for (const char* format : {"obj", "gltf"}) {
    const std::string file = (folder_.path() / "far.").string() + format;
    ASSERT_EQ(qv_run({"export", path, "--format", format, "--out", file}).exit_code, 0);
    auto model = qv::qv_read_gbxml(path);
    qv::qv_add_context(model, {{file}});
    qv::qv_box back;
    for (qv::qvi_bim_object* object : objects_of(model)) back.enlarge(box_of(object));
    qv::qv_box whole;
    for (qv::qvi_polygon* face : qv::qv_collect<qv::qvi_polygon>(model.root, "polygon"))
      whole.enlarge(face->get_local_bounding_box());
    EXPECT_NEAR((whole.get_min() - back.get_min()).length(), 0, 1e-3) << format;
    EXPECT_NEAR((whole.get_max() - back.get_max()).length(), 0, 1e-3) << format;
  }
}

TEST_F(qv_context, a_mesh_placed_twice_is_shared_and_turns_with_the_campus) {
  const auto model = room_with(
      {write("trees.gltf", qv_gltf_text()
                               .node("near", 0, R"("translation":[10,0,0])")
                               .node("far", 0, R"("translation":[30,0,0],"scale":[2,2,2])")
                               .text())});
  const auto objects = objects_of(model);
  ASSERT_EQ(objects.size(), 2U);
  const auto* near =
      static_cast<qv::qvi_mesh_instance*>(qv::qv_collect<qv::qvi_mesh>(objects[0], "mesh")[0]);
  const auto* far =
      static_cast<qv::qvi_mesh_instance*>(qv::qv_collect<qv::qvi_mesh>(objects[1], "mesh")[0]);
  ASSERT_TRUE(near->has_type("mesh_instance"));
  EXPECT_EQ(near->get_mesh(), far->get_mesh());
  EXPECT_FALSE(near->get_mesh()->get_rendering_visibility());
  EXPECT_EQ(objects[1]->get_matrix(), far->get_matrix());
  EXPECT_NEAR(area_of(objects[0]), 3, 1e-6);
  EXPECT_NEAR(area_of(objects[1]), 12, 1e-5);
  EXPECT_NEAR(box_of(objects[1]).get_max().x, 34, 1e-5);
  EXPECT_NEAR(box_of(objects[1]).get_max().z, 6, 1e-5);
  EXPECT_NEAR(entries_of(model)[1].area, 12, 1e-5);
  qv::qv_collect<qv::qvi_campus>(model.root, "campus")[0]->transform({0, 0, 0}, 90);
  EXPECT_NEAR(box_of(objects[1]).get_max().y, 34, 1e-4);
  EXPECT_NEAR(area_of(objects[1]), 12, 1e-4);
}

TEST_F(qv_context, a_mesh_placed_once_stands_where_its_nodes_put_it) {
  const auto model =
      room_with({write("tree.gltf", qv_gltf_text()
                                        .parent("group", 1, R"("translation":[0,0,-7])")
                                        .node("tree", 0, R"("translation":[10,0,0])", false)
                                        .text())});
  const auto objects = objects_of(model);
  ASSERT_EQ(objects.size(), 1U);
  EXPECT_NEAR(box_of(objects[0]).get_min().x, 10, 1e-6);
  EXPECT_NEAR(box_of(objects[0]).get_min().y, 7, 1e-6);  // z = −7 with Y upwards
}

TEST_F(qv_context, reads_a_binary_gltf_and_a_buffer_beside_the_file) {
  EXPECT_EQ(objects_of(room_with({write("a.glb", qv_gltf_text().node("n", 0).binary())})).size(),
            1U);
  write("corners.bin", qv_gltf_text::buffer());
  const std::string beside =
      write("b.gltf", qv_gltf_text().buffer_uri("corners.bin").node("n", 0).text());
  EXPECT_EQ(objects_of(room_with({beside})).size(), 1U);
}

// --- what is left out is said ---

TEST_F(qv_context, says_which_triangles_stand_nowhere) {
  const auto model = room_with({write("odd.obj",
                                      "v 0 0 0\nv 1 0 0\nv 0 1 0\nv nan 0 0\nv 1e30 0 0\ng odd\n"
                                      "f 1 2 3\nf 1 2 4\nf 1 2 5\nf 1 2 2\nl 1 2\n"
                                      "g none\nf 1 1 1\n")});
  ASSERT_EQ(objects_of(model).size(), 1U);
  EXPECT_NEAR(area_of(objects_of(model)[0]), 0.5, 1e-6);
  const auto entries = entries_of(model);
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].id, "odd");
  EXPECT_EQ(entries[0].result, outcome::repaired);
  EXPECT_EQ(entries[0].reason,
            "1 triangle without area, 2 triangles with a corner that is no place, 1 point or line "
            "were left out");
  EXPECT_NEAR(entries[0].area, 0.5, 1e-9);
  EXPECT_EQ(entries[1].result, outcome::dropped);
  ASSERT_EQ(notes_.size(), 2U);
  EXPECT_THAT(notes_[0], HasSubstr("odd.obj: 2 triangles without area, 2 triangles"));
  EXPECT_THAT(notes_[1], HasSubstr("1 of 2 objects have no triangle"));
  EXPECT_THAT(model.warnings, testing::Contains(notes_[0]));
}

TEST_F(qv_context, says_which_meshes_no_node_places) {
  const auto model =
      room_with({write("m.gltf", qv_gltf_text().unplaced("spare").node("n", 0).text())});
  const auto entries = entries_of(model);
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[1].id, "spare");
  EXPECT_EQ(entries[1].result, outcome::dropped);
}

TEST_F(qv_context, mends_names_that_are_no_utf_8) {
  auto model = room_with({write("a.obj", "g caf\xE9\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n")});
  EXPECT_EQ(objects_of(model)[0]->get_name(), "caf\xEF\xBF\xBD");
  model = room_with({write("a.gltf", qv_gltf_text().node("caf\xE9", 0).text())});
  EXPECT_EQ(objects_of(model)[0]->get_name(), "caf\xEF\xBF\xBD");
}

TEST_F(qv_context, an_object_without_a_name_has_that_of_its_file) {
  const auto model = room_with({write("shed.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n")});
  EXPECT_EQ(objects_of(model)[0]->get_name(), "shed");
}

TEST_F(qv_context, gives_ids_that_nothing_else_has) {
  qv::qv_gbxml_model model = qv_gbxml_text().box("context-1", {0, 0, 0}, {4, 5, 3}).read();
  qv::qv_add_context(model, {{write("a.obj", pane_obj), write("b.obj", pane_obj)}});
  EXPECT_EQ(objects_of(model)[0]->get_unique_id(), "context-2");
  EXPECT_EQ(objects_of(model)[1]->get_unique_id(), "context-3");
  qv::qv_compute_model(model, {});
  const auto study = qv::qv_gather_study(model);
  EXPECT_EQ(study.objects[0].id, "tree");
  EXPECT_EQ(study.objects[1].id, "tree#2");
}

// --- files that cannot be used ---

TEST_F(qv_context, complains_of_files_that_are_not_there_or_of_another_kind) {
  EXPECT_THAT(complaint((folder_.path() / "none.obj").string()), HasSubstr("4: "));
  EXPECT_THAT(complaint(folder_.path().string()), HasSubstr("4: "));
  EXPECT_THAT(complaint(write("a.dae", "<x/>")), HasSubstr("3: "));
  EXPECT_THAT(complaint(write("a.dae", "<x/>")), HasSubstr("neither OBJ nor glTF"));
}

TEST_F(qv_context, complains_of_empty_and_cut_off_files) {
  for (const char* name : {"e.obj", "e.gltf", "e.glb"})
    EXPECT_THAT(complaint(write(name, "")), HasSubstr("is empty")) << name;
  EXPECT_THAT(complaint(write("t.obj", "just some words\n")), HasSubstr("3: "));
  const std::string gltf = qv_gltf_text().node("n", 0).text();
  EXPECT_THAT(complaint(write("t.gltf", gltf.substr(0, gltf.size() / 2))), HasSubstr("cut off"));
  const std::string glb = qv_gltf_text().node("n", 0).binary();
  for (const std::size_t length : {std::size_t{6}, std::size_t{19}, glb.size() - 1})
    EXPECT_THAT(complaint(write("t.glb", glb.substr(0, length))), HasSubstr("cut off")) << length;
}

TEST_F(qv_context, complains_of_files_without_faces) {
  EXPECT_THAT(complaint(write("v.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\n")), HasSubstr("3: "));
  EXPECT_THAT(complaint(write("l.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nl 1 2\n")),
              HasSubstr("holds no face"));
  EXPECT_THAT(complaint(write("d.obj", "v 0 0 0\nv 1 0 0\nv 2 0 0\nf 1 2 3\n")),
              HasSubstr("no triangle that can stand somewhere: 1 triangle without area was left"));
  EXPECT_THAT(complaint(write("f.obj", "v 2e7 0 0\nv 2e7 1 0\nv 2e7 0 1\nf 1 2 3\n")),
              HasSubstr("somewhere: 1 triangle with a corner that is no place was left out"));
}

TEST_F(qv_context, complains_of_corners_that_are_not_there) {
  EXPECT_THAT(complaint(write("i.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 9\n")),
              HasSubstr("cannot be read as OBJ"));
  EXPECT_THAT(complaint(write("i.gltf", qv_gltf_text().buffer_uri("none.bin").node("n", 0).text())),
              HasSubstr("none.bin"));
  EXPECT_THAT(
      complaint(write("n.gltf",
                      qv_gltf_text().buffer_uri("https://example.org/a.bin").node("n", 0).text())),
      HasSubstr("cannot be read as glTF"));
}

TEST_F(qv_context, complains_of_gltf_that_its_reader_must_not_meet) {
  const auto with = [this](const std::string& from, const std::string& to) {
    std::string text = qv_gltf_text().node("n", 0).text();
    const auto at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return complaint(write("bad.gltf", text.replace(at, from.size(), to)));
  };
  EXPECT_THAT(with(R"("version":"2.0")", R"("version":"1.0")"), HasSubstr("version 1.0"));
  EXPECT_THAT(with(R"("mesh":0)", R"("mesh":0,"children":[0])"), HasSubstr("below itself"));
  EXPECT_THAT(with(R"("mesh":0)", R"("mesh":0,"children":[7])"), HasSubstr("not there"));
  EXPECT_THAT(with(R"("mesh":0)", R"("mesh":0,"children":{})"), HasSubstr("no list"));
  EXPECT_THAT(with("5126", "5122"), HasSubstr("single precision"));
  EXPECT_THAT(with(R"("asset")", R"("extensionsRequired":["KHR_draco_mesh_compression"],"asset")"),
              HasSubstr("KHR_draco_mesh_compression"));
  EXPECT_EQ(with(R"("asset")", R"("extensionsRequired":["KHR_materials_unlit"],"asset")"), "");
  EXPECT_THAT(with(R"("asset")",
                   "\"x\":" + std::string(100000, '[') + std::string(100000, ']') + ",\"asset\""),
              HasSubstr("nested too deeply"));
  // Each node twice below the next: 2^40 of them.
  std::string bomb;
  for (int i = 1; i <= 40; ++i)
    bomb += ",{\"children\":[" + std::to_string(i + 1) + "," + std::to_string(i + 1) + "]}";
  EXPECT_THAT(with(R"("mesh":0})", R"("mesh":0})" + bomb + R"(,{"mesh":0})"),
              HasSubstr("two parents"));
}

// Whatever is changed in a file, it is read or complained of.
TEST_F(qv_context, survives_damaged_files) {
  const std::string gltf = qv_gltf_text().node("n", 0).text();
  const std::string glb = qv_gltf_text().node("n", 0).binary();
  unsigned state = 12345;
  const auto next = [&state](std::size_t count) {
    state = state * 1664525U + 1013904223U;
    return static_cast<std::size_t>(state >> 8U) % count;
  };
  int read = 0;
  for (int round = 0; round < 60; ++round) {
    std::string text = round % 3 == 0 ? glb : round % 3 == 1 ? gltf : pane_obj;
    for (std::size_t i = 0; i < 1 + next(3); ++i)
      text[next(text.size())] = static_cast<char>(next(256));
    if (next(4) == 0) text.resize(next(text.size()));
    const char* name = round % 3 == 0 ? "f.glb" : round % 3 == 1 ? "f.gltf" : "f.obj";
    try {
      qv::qv_read_triangle_file(write(name, text));
      ++read;
    } catch (const qv::qv_input_error& e) {
      EXPECT_EQ(e.get_kind(), qv::qv_input_error::kind::bad_input) << e.what();
    }
  }
  EXPECT_GT(read, 3);
}

// --- round trips ---

// Areas by name of what a model exports, and of the objects that come of it as a context.
TEST_F(qv_context, what_was_exported_comes_back_with_its_areas) {
  const auto model = qv::qv_read_gbxml(house);
  qv::qv_study_options options;
  options.north = 0.0;
  qv::qv_compute_model(model, options);
  for (const bool as_gltf : {false, true}) {
    const std::string file = as_gltf ? write("h.gltf", qv::qv_export_gltf(*model.scene))
                                     : write("h.obj", qv::qv_export_obj(*model.scene));
    const auto again = room_with({file});
    // An OBJ has no blanks in names, and gives those that come again a number.
    std::map<std::string, int> uses;
    const auto name_of = [&](std::string name) {
      if (as_gltf) return name;
      std::replace(name.begin(), name.end(), ' ', '_');
      const int use = ++uses[name];
      return use == 1 ? name : name + '-' + std::to_string(use);
    };
    std::map<std::string, double> expected, found;
    for (const auto& group : qv::qv_collect_export_groups(*model.scene)) {
      qv::qvi_mesh mesh;
      mesh.load_from_triangles(group.triangles.vertices, group.triangles.triangles);
      expected[name_of(group.name)] += mesh.get_area();
    }
    for (const qv::qvi_bim_object* object : objects_of(again))
      found[object->get_name()] += area_of(object);
    ASSERT_EQ(found.size(), expected.size());
    for (const auto& [name, area] : expected)
      EXPECT_NEAR(found[name], area, 1e-5 * std::max(1.0, area)) << name;
    qv::qv_box whole, back;
    for (const auto& group : qv::qv_collect_export_groups(*model.scene))
      for (const qv::qv_3dvector& v : group.triangles.vertices) whole.enlarge(v);
    for (qv::qvi_bim_object* object : objects_of(again)) back.enlarge(box_of(object));
    EXPECT_NEAR((whole.get_min() - back.get_min()).length(), 0, 1e-4);
    EXPECT_NEAR((whole.get_max() - back.get_max()).length(), 0, 1e-4);
  }
}

// --- shadows ---

// A slab of height h that runs along a wall at distance d: with the sun towards s, the ray from
// height z on the wall crosses the slab's plane at z + d s_z / (−s_y); below h it is stopped.
TEST_F(qv_context, a_slab_south_of_a_wall_takes_the_beam_from_its_foot) {
  constexpr double wall_height = 3;
  constexpr double slab_height = 4;
  constexpr double distance = 5;
  const std::string model =
      write("room.xml", qv_gbxml_text().box("a", {0, 0, 0}, {4, 5, 3}).text());
  const std::string slab =
      write("slab.obj", "g slab\nv -500 -5 0\nv 500 -5 0\nv 500 -5 4\nv -500 -5 4\nf 1 2 3 4\n");
  const std::string weather = QV_SOURCE_DIR "/samples/twelve-days.epw";

  // Beam of each hour, W/m², as the command line tells it.
  const auto beam = [&](const std::vector<std::string>& more) {
    std::vector<std::string> arguments = {"solar",    model,          "--surface",
                                          "a-south",  "--weather",    weather,
                                          "--hourly", "--reflexions", "0"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const qv_program_run run = qv_run(arguments);
    EXPECT_EQ(run.exit_code, 0) << run.errors;
    std::vector<double> values;
    std::istringstream lines(run.output);
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line)) {
      std::istringstream cells(line);
      std::string cell;
      for (int i = 0; i < 5; ++i) std::getline(cells, cell, ',');
      values.push_back(std::stod(cell));
    }
    return values;
  };
  const std::vector<double> open = beam({});
  const std::vector<double> shaded = beam({"--context", slab});

  qv::qvi_sun sun;
  const qv::qv_weather year = qv::qv_read_epw(weather);
  qv::qv_fill_sun(year, 0.0, sun);
  ASSERT_EQ(open.size(), year.steps.size());
  ASSERT_EQ(shaded.size(), open.size());
  double expected = 0;
  double found = 0;
  double without = 0;
  int partly = 0;
  for (std::size_t i = 0; i < open.size(); ++i) {
    const qv::qv_3dvector s = sun.get_directions()[static_cast<int>(i)];
    without += open[i];
    found += shaded[i];
    if (open[i] <= 0) {
      EXPECT_EQ(shaded[i], 0);
      continue;
    }
    const double shadow = slab_height - distance * s.z / -s.y;
    const double lit = std::clamp(1 - shadow / wall_height, 0.0, 1.0);
    partly += lit > 0 && lit < 1 ? 1 : 0;
    expected += open[i] * lit;
    EXPECT_NEAR(shaded[i], open[i] * lit, 0.1 * open[i] + 1) << i;
  }
  EXPECT_GT(partly, 5);
  EXPECT_LT(expected, 0.95 * without);
  EXPECT_NEAR(found, expected, 0.01 * without);
}

// The same slab as a shade of the model: one mechanism.
TEST_F(qv_context, a_shade_of_the_model_casts_the_same_shadow) {
  const auto beam = [&](const std::string& model, const std::vector<std::string>& context) {
    qv::qv_study_options options;
    options.model = model;
    options.context.files = context;
    options.solar.wanted = true;
    options.solar.weather = QV_SOURCE_DIR "/samples/twelve-days.epw";
    options.solar.quality = qv::qv_solar_quality::draft;
    options.solar.only = "a-south";
    const auto study = qv::qv_run_study(options);
    for (std::size_t i = 0; i < study.walls.size(); ++i)
      if (study.walls[i].id == "a-south") return study.sun.get_wall(i)->direct;
    return -1.0;
  };
  const qv_gbxml_text room = qv_gbxml_text().box("a", {0, 0, 0}, {4, 5, 3});
  const std::string plain = write("room.xml", room.text());
  const std::string with_shade =
      write("shade.xml",
            qv_gbxml_text(room)
                .polygon("fence", "Shade", {}, {{-9, -2, 0}, {13, -2, 0}, {13, -2, 2}, {-9, -2, 2}})
                .text());
  const std::string fence =
      write("fence.obj", "v -9 -2 0\nv 13 -2 0\nv 13 -2 2\nv -9 -2 2\nf 1 2 3 4\n");
  const double open = beam(plain, {});
  const double shaded = beam(with_shade, {});
  EXPECT_GT(open, 0);
  EXPECT_LT(shaded, 0.9 * open);
  EXPECT_NEAR(beam(plain, {fence}), shaded, 1e-6 * open);
}

// --- the command line ---

TEST_F(qv_context, goes_with_study_check_and_export) {
  const std::string pane = write("pane.obj", pane_obj);
  const std::string odd =
      write("odd.obj", "g odd\nv 0 -9 0\nv 1 -9 0\nv 0 -9 1\nf 1 2 3\nf 1 1 2\n");
  const std::string out = (folder_.path() / "out").string();
  const qv_program_run study = qv_run({"study", "--context", pane, house, "--context", odd, "--out",
                                       out, "--no-solar", "--no-pictures"});
  ASSERT_EQ(study.exit_code, 0) << study.errors;
  EXPECT_THAT(study.output, HasSubstr("3 objects"));
  EXPECT_THAT(study.output, HasSubstr("odd.obj: 1 triangle without area was left out"));
  const auto json = nlohmann::json::parse(qv_file_content(out + "/study.json"));
  ASSERT_EQ(json["objects"].size(), 3U);
  EXPECT_EQ(json["objects"][0]["kind"], "Shade");
  EXPECT_EQ(json["objects"][1]["id"], "tree");
  EXPECT_EQ(json["objects"][1]["kind"], "context");
  EXPECT_NEAR(json["objects"][1]["area_m2"].get<double>(), 6, 1e-6);
  EXPECT_EQ(json["ledger"]["counts"]["Object"]["kept"], 1);

  const qv_program_run check = qv_run({"check", house, "--context", odd});
  EXPECT_EQ(check.exit_code, 0) << check.output;
  EXPECT_THAT(check.errors, HasSubstr("1 triangle without area was left out"));
  const std::string file = (folder_.path() / "h.obj").string();
  const qv_program_run written =
      qv_run({"export", house, "--format", "obj", "--out", file, "--context", odd});
  EXPECT_EQ(written.exit_code, 0) << written.errors;
  EXPECT_THAT(written.errors, HasSubstr("1 triangle without area was left out"));
  EXPECT_THAT(qv_file_content(file), HasSubstr("g odd\nusemtl object\n"));
}

TEST_F(qv_context, is_told_as_other_files_are_when_it_cannot_be_used) {
  const std::string out = (folder_.path() / "out").string();
  const std::string empty = write("e.obj", "");
  qv_program_run run = qv_run({"study", house, "--out", out, "--context", empty, "--no-solar"});
  EXPECT_EQ(run.exit_code, 3);
  EXPECT_THAT(run.errors, HasSubstr("e.obj: is empty"));
  EXPECT_FALSE(std::filesystem::exists(out + "/study.json"));
  EXPECT_EQ(qv_run({"check", house, "--context", out + "/none.obj"}).exit_code, 4);
  EXPECT_EQ(qv_run({"check", house, "--context", empty, "--context-up", "x"}).exit_code, 2);
}

// A gbXML file has Shades for all of it.
TEST_F(qv_context, is_exported_as_shades) {
  const std::string file = (folder_.path() / "again.xml").string();
  ASSERT_EQ(qv_run({"export", house, "--format", "gbxml", "--out", file, "--context",
                    write("pane.obj", pane_obj)})
                .exit_code,
            0);
  const auto again = qv::qv_read_gbxml(file);
  double area = 0;
  for (const qv::qvi_bim_object* object : objects_of(again)) {
    EXPECT_EQ(object->get_source_type(), "Shade");
    area += area_of(object);
  }
  EXPECT_NEAR(area, 8 + 6, 1e-4);  // the house's balcony and the pane
}
