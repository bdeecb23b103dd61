#include <gtest/gtest.h>

#include <map>
#include <numeric>
#include <random>
#include <set>

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_zone.h"
#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_test_buildings.h"

using namespace qv;
using qv_test::recording_scene;
using names = std::vector<std::string>;

namespace {

class build_buildings : public ::testing::Test {
 protected:
  qvi_space* add_space(const std::string& name = "") { return qv_test::add_space(scene_, name); }
  // A wall without geometry: which spaces it names is all that counts.
  qvi_wall* join(qvi_space* a, qvi_space* b) {
    auto* wall = new qvi_wall;
    wall->set_wall_type(qvi_wall::wall_type::wall);
    wall->set_space_0(a);
    wall->set_space_1(b);
    scene_.add_child(wall, -1);
    return wall;
  }
  void run(bool rename = true) { qvi_building::build_buildings(&scene_, rename); }
  names names_of(const char* type) {
    names result;
    for (const qv_item* item : scene_.get_items(type)) result.push_back(item->get_name());
    return result;
  }
  recording_scene scene_;
};

TEST_F(build_buildings, groups_the_spaces_that_share_walls) {
  auto* a = add_space();
  auto* b = add_space();
  auto* c = add_space();
  auto* d = add_space();
  join(a, c);
  join(d, b);
  join(a, nullptr);
  run();
  EXPECT_EQ(names_of("building"), (names{"Bâtiment 1", "Bâtiment 2"}));
  EXPECT_EQ(names_of("zone"), (names{"Zone 1-1", "Zone 2-1"}));
  EXPECT_EQ(a->get_building()->get_name(), "Bâtiment 1");
  EXPECT_EQ(c->get_building(), a->get_building());
  EXPECT_EQ(b->get_building()->get_name(), "Bâtiment 2");
  EXPECT_EQ(d->get_building(), b->get_building());
  EXPECT_EQ(a->get_zone()->get_name(), "Zone 1-1");
  EXPECT_EQ(d->get_zone(), b->get_zone());
  EXPECT_EQ(names_of("space"), (names{"Pièce 1-1", "Pièce 2-1", "Pièce 1-2", "Pièce 2-2"}));
}

TEST_F(build_buildings, puts_each_building_and_its_zone_at_the_end_of_the_scene) {
  auto* a = add_space();
  auto* b = add_space();
  run();
  std::vector<qv_item*> last;
  for (int i = 4; i > 0; --i)
    last.push_back(scene_.get_children()[scene_.get_children().get_count() - i]);
  EXPECT_EQ(last, (std::vector<qv_item*>{a->get_building(), a->get_zone(), b->get_building(),
                                         b->get_zone()}));
  for (qvi_space* space : {a, b}) {
    EXPECT_EQ(space->get_zone()->get_building(), space->get_building());
    EXPECT_EQ(space->get_zone()->get_parent(), &scene_);
  }
}

TEST_F(build_buildings, a_floor_slab_joins_the_spaces_above_and_below) {
  auto block = qv_test::add_block(scene_, {0, 0, 0}, 1, 1, 3);
  run();
  EXPECT_EQ(names_of("building"), names{"Bâtiment 1"});
  EXPECT_EQ(block.at(0, 0, 2)->get_name(), "Pièce 1-3");
  // The scene is computed at the end: the building knows its spaces and storeys.
  const qvi_building* building = block.at(0, 0, 0)->get_building();
  EXPECT_EQ(building->get_spaces().get_count(), 3);
  EXPECT_EQ(building->get_zones().get_count(), 1);
  EXPECT_EQ(building->get_floors().get_count(), 3);
  EXPECT_NEAR(building->get_area(), 60.0f, 1e-2f);
}

TEST_F(build_buildings, a_space_by_itself_is_a_building_of_its_own) {
  auto* a = add_space("Garage");
  join(a, nullptr);
  join(a, a);
  auto* b = add_space("Cabane");
  run();
  EXPECT_EQ(a->get_name(), "Pièce 1-1");
  EXPECT_EQ(b->get_name(), "Pièce 2-1");
  EXPECT_NE(a->get_building(), b->get_building());
}

TEST_F(build_buildings, keeps_the_spaces_names_when_asked) {
  auto* a = add_space("Séjour");
  auto* b = add_space("Cuisine");
  join(a, b);
  run(false);
  EXPECT_EQ(names_of("space"), (names{"Séjour", "Cuisine"}));
  EXPECT_EQ(a->get_building(), b->get_building());
  EXPECT_EQ(names_of("building"), names{"Bâtiment 1"});
}

TEST_F(build_buildings, throws_away_all_former_buildings_and_zones) {
  auto* a = add_space();
  auto* old_building = new qvi_building;
  auto* old_zone = new qvi_zone;
  auto* folder = new qv_test::probe_item;
  scene_.add_child(folder, -1);
  folder->add_child(old_building, -1);
  old_building->add_child(old_zone, -1);
  a->set_building(old_building);
  a->set_zone(old_zone);
  folder->set_link(old_building);
  run();
  EXPECT_EQ(names_of("building"), names{"Bâtiment 1"});
  EXPECT_EQ(names_of("zone"), names{"Zone 1-1"});
  EXPECT_EQ(folder->get_link(), nullptr);
  EXPECT_EQ(a->get_building()->get_parent(), &scene_);
}

TEST_F(build_buildings, only_throws_away_when_there_are_no_spaces) {
  scene_.add_child(new qvi_building, -1);
  scene_.add_child(new qvi_zone, -1);
  run();
  EXPECT_TRUE(names_of("building").empty());
  EXPECT_TRUE(names_of("zone").empty());
}

TEST_F(build_buildings, twice_in_a_row_gives_the_same) {
  qv_test::add_street(scene_, 3);
  run();
  const names spaces = names_of("space");
  const names buildings = names_of("building");
  run();
  EXPECT_EQ(names_of("space"), spaces);
  EXPECT_EQ(names_of("building"), buildings);
  EXPECT_EQ(buildings, (names{"Bâtiment 1", "Bâtiment 2", "Bâtiment 3"}));
  EXPECT_EQ(names_of("zone"), (names{"Zone 1-1", "Zone 2-1", "Zone 3-1"}));
}

TEST_F(build_buildings, ranks_the_spaces_breadth_first_in_the_order_of_their_walls) {
  qvi_space* s[6];
  for (auto& space : s) space = add_space();
  join(s[0], s[3]);
  join(s[3], s[4]);
  join(s[1], s[0]);
  join(s[1], s[5]);
  join(s[0], s[2]);
  run();
  // From s0 its walls lead to s3, s1, s2; from s3 on to s4; from s1 to s5.
  const int order[] = {0, 3, 1, 2, 4, 5};
  for (int k = 0; k < 6; ++k)
    EXPECT_EQ(s[order[k]]->get_name(), "Pièce 1-" + std::to_string(k + 1));
}

TEST_F(build_buildings, announces_what_it_sets) {
  auto* a = add_space("Séjour");
  scene_.forget();
  run();
  EXPECT_GE(scene_.count_changes(a, "zone"), 1);
  EXPECT_GE(scene_.count_changes(a, "building"), 1);
  EXPECT_GE(scene_.count_changes(a, "name"), 1);
}

// The slow and obvious way: sets that are merged wall by wall.
TEST_F(build_buildings, groups_random_models_as_a_union_of_sets_does) {
  constexpr unsigned int seed = 31;
  RecordProperty("seed", static_cast<int>(seed));
  std::mt19937 random(seed);
  for (int run_index = 0; run_index < 40; ++run_index) {
    recording_scene scene;
    const int count = 1 + static_cast<int>(random() % 40);
    std::vector<qvi_space*> spaces;
    spaces.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) spaces.push_back(qv_test::add_space(scene));
    std::vector<int> set(static_cast<std::size_t>(count));
    std::iota(set.begin(), set.end(), 0);
    for (int w = static_cast<int>(random() % 40); w > 0; --w) {
      const std::size_t i = random() % spaces.size();
      const std::size_t j = random() % spaces.size();
      auto* wall = new qvi_wall;
      wall->set_space_0(spaces[i]);
      if (random() % 5 != 0) {
        wall->set_space_1(spaces[j]);
        const int from = set[i];
        const int to = set[j];
        std::replace(set.begin(), set.end(), from, to);
      }
      scene.add_child(wall, -1);
    }
    qvi_building::build_buildings(&scene, true);

    std::map<int, qvi_building*> building_of_set;
    for (std::size_t i = 0; i < spaces.size(); ++i) {
      qvi_building* building = spaces[i]->get_building();
      ASSERT_NE(building, nullptr);
      const auto [found, is_new] = building_of_set.emplace(set[i], building);
      ASSERT_EQ(found->second, building) << "run " << run_index << ", space " << i;
      // Numbers follow the first space of each group.
      if (is_new) {
        const std::string number = std::to_string(building_of_set.size());
        ASSERT_EQ(building->get_name(), "Bâtiment " + number);
        ASSERT_EQ(spaces[i]->get_name(), "Pièce " + number + "-1");
        ASSERT_EQ(spaces[i]->get_zone()->get_name(), "Zone " + number + "-1");
      }
    }
    ASSERT_EQ(scene.get_items("building").get_count(), static_cast<int>(building_of_set.size()));
    ASSERT_EQ(scene.get_items("zone").get_count(), static_cast<int>(building_of_set.size()));
    std::set<std::string> distinct;
    for (const qvi_space* space : spaces) distinct.insert(space->get_name());
    ASSERT_EQ(distinct.size(), spaces.size());
  }
}

// --- the identity of what was imported ---

class build_buildings_identity : public build_buildings {
 protected:
  // An imported object with the given id, with one part from which walls can be made.
  qv_item* add_part(const std::string& id) {
    auto* object = new qv_test::probe_item;
    object->set_unique_id(id);
    scene_.add_child(object, -1);
    auto* part = new qv_test::probe_item;
    object->add_child(part, -1);
    return part;
  }
  qvi_space* a_ = add_space();
  qvi_space* b_ = add_space();
  qvi_wall* between_ = join(a_, b_);
  qvi_wall* facade_ = join(a_, nullptr);
};

TEST_F(build_buildings_identity, is_taken_over_from_the_one_object_that_the_walls_came_from) {
  qv_item* part = add_part("imported");
  qv_item* namesake = add_part("imported");
  between_->set_source(part);
  facade_->set_source(part);
  run();
  EXPECT_EQ(a_->get_building()->get_unique_id(), "imported");
  for (const qv_item* former : {part->get_parent(), namesake->get_parent()}) {
    const std::string& id = former->get_unique_id();
    EXPECT_EQ(id.rfind("qv", 0), 0u) << id;
    EXPECT_EQ(id.size(), 38u) << id;  // "qv" and 36 characters
  }
  EXPECT_NE(part->get_parent()->get_unique_id(), namesake->get_parent()->get_unique_id());
}

// A copied wall was made from one that may stand directly in the scene.
TEST_F(build_buildings_identity, is_never_shared_with_what_it_was_taken_over_from) {
  scene_.set_unique_id("model");
  auto* original = join(nullptr, nullptr);
  between_->set_source(original);
  run();
  EXPECT_EQ(a_->get_building()->get_unique_id(), "model");
  EXPECT_EQ(scene_.get_unique_id().rfind("qv", 0), 0u) << scene_.get_unique_id();

  auto* const part = add_part("taken out");
  qv_item* const object = part->get_parent();
  between_->set_source(part);
  object->remove();
  run();
  EXPECT_EQ(a_->get_building()->get_unique_id(), "taken out");
  EXPECT_EQ(object->get_unique_id().rfind("qv", 0), 0u) << object->get_unique_id();
  qv_item::destroy(object);
}

TEST_F(build_buildings_identity, ignores_walls_without_a_source) {
  between_->set_source(add_part("imported"));
  run();
  EXPECT_EQ(a_->get_building()->get_unique_id(), "imported");
}

TEST_F(build_buildings_identity, is_not_taken_over_when_the_walls_came_from_two_objects) {
  qv_item* one = add_part("one");
  between_->set_source(one);
  facade_->set_source(add_part("two"));
  auto* third = join(b_, nullptr);
  third->set_source(one);
  run();
  const std::string& id = a_->get_building()->get_unique_id();
  EXPECT_NE(id, "one");
  EXPECT_NE(id, "two");
  EXPECT_EQ(one->get_parent()->get_unique_id(), "one");
}

TEST_F(build_buildings_identity, ignores_parts_without_a_parent) {
  auto* lone = new qv_test::probe_item;
  scene_.add_child(lone, -1);
  lone->remove();
  facade_->set_source(lone);
  auto* third = join(b_, nullptr);
  third->set_source(add_part("imported"));
  run();
  EXPECT_EQ(a_->get_building()->get_unique_id(), "imported");
  qv_item::destroy(lone);
}

TEST_F(build_buildings_identity, looks_at_the_walls_of_each_building_by_itself) {
  qvi_space* c = add_space();
  auto* other = join(nullptr, c);  // known by its second space only
  between_->set_source(add_part("one"));
  other->set_source(add_part("two"));
  run();
  EXPECT_EQ(a_->get_building()->get_unique_id(), "one");
  EXPECT_EQ(c->get_building()->get_unique_id(), "two");
}

TEST_F(build_buildings_identity, is_the_same_after_a_second_run) {
  qv_item* part = add_part("imported");
  between_->set_source(part);
  run();
  const std::string fresh = part->get_parent()->get_unique_id();
  run();
  // The object now bears the id that it was given, and the new building takes over that one.
  EXPECT_EQ(a_->get_building()->get_unique_id(), fresh);
}

}  // namespace
