#include <gtest/gtest.h>

#include <array>
#include <map>
#include <random>
#include <set>
#include <sstream>

#include "bim/materials/qvi_limit_condition.h"
#include "tests/bim/envelope/qv_meeting.h"

using namespace qv;
using qv_test::meeting;
using type = qvi_connexion::connexion_type;
using contact = qvi_wall::contact_type;
using typology = qvi_limit_condition::limit_condition_typology;

namespace {

// Junctions in words. A wall is its contact type and the direction in which it leaves; façades look
// south unless they say "looking" something else; a lower floor says what it lies on.
struct junction {
  const char* drawing;
  const char* walls;
  const char* expected;
};

const junction junctions[] = {
    {"façades in one plane", "outer_wall east, outer_wall west", "no_loss"},
    {"a façade above the one of the storey below", "outer_wall up, outer_wall down", "no_loss"},
    {"a corner of partitions", "inner_wall east, inner_wall north", "no_loss"},
    {"a partition under a floor between storeys",
     "inner_wall down, intermediate_floor north, intermediate_floor south", "no_loss"},
    {"a garden wall", "outside_wall east, outside_wall north", "no_loss"},

    {"the corner of a house", "outer_wall east, outer_wall north", "facade_angle_outer"},
    {"its opposite corner", "outer_wall west looking north, outer_wall south looking east",
     "facade_angle_outer"},
    {"a corner of 135 degrees", "outer_wall east, outer_wall northwest", "facade_angle_outer"},
    {"a corner with a partition in it", "outer_wall east, outer_wall north, inner_wall northeast",
     "facade_angle_outer"},

    {"the inner corner of an L", "outer_wall east, outer_wall south", "facade_angle_inner"},
    {"the inner corner of a U", "outer_wall north looking east, outer_wall east looking north",
     "facade_angle_inner"},
    {"an inner corner of 45 degrees, with a garden wall",
     "outer_wall east, outer_wall southeast, outside_wall west", "facade_angle_inner"},

    {"a partition against the end of a façade", "outer_wall east, inner_wall north",
     "facade_inner_wall"},
    {"a partition where three façades meet",
     "outer_wall east, outer_wall north, outer_wall south, inner_wall west", "facade_inner_wall"},
    {"partitions on both sides", "inner_wall north, outer_wall east, inner_wall south",
     "facade_inner_wall"},

    {"a ridge", "roof slope_north, roof slope_south", "roof_roof"},
    {"a hip of three roofs", "roof slope_north, roof slope_south, roof east", "roof_roof"},
    {"a ridge over a floor", "roof slope_north, roof slope_south, intermediate_floor east",
     "roof_roof"},

    {"a ridge over a partition", "roof slope_north, roof slope_south, inner_wall down",
     "roof_roof_inner_wall"},
    {"flat roofs over two partitions",
     "roof north, roof south, inner_wall down, inner_wall northeast", "roof_roof_inner_wall"},

    {"eaves", "roof north, outer_wall down", "roof_facade"},
    {"sloped eaves with a partition below", "roof slope_north, outer_wall down, inner_wall north",
     "roof_facade"},
    {"roofs on both sides of a façade", "roof north, roof south, outer_wall down", "roof_facade"},

    {"a floor at the eaves", "roof slope_north, outer_wall down, intermediate_floor north",
     "roof_facade_intermediate"},
    {"a terrace on the storey's floor",
     "roof south, outer_wall up, intermediate_floor north, outer_wall down",
     "roof_facade_intermediate"},

    {"a terrace under a façade", "roof south, outer_wall up", "roof_upper_facade"},
    {"a façade leaning back above a roof", "outer_wall slope_up, roof south, inner_wall down",
     "roof_upper_facade"},

    {"the edge of a floor", "outer_wall up, outer_wall down, intermediate_floor north",
     "facade_intermediate"},
    {"a floor in the corner of a house",
     "outer_wall up, outer_wall down, outer_wall east, intermediate_floor north, inner_wall west",
     "facade_intermediate"},

    {"a balcony", "outer_wall up, outer_wall down, intermediate_floor north, outside_slab south",
     "facade_balcony_intermediate"},
    {"a balcony between two flats",
     "outside_slab south, intermediate_floor north, intermediate_floor east, outer_wall up, "
     "outer_wall down, inner_wall up",
     "facade_balcony_intermediate"},

    {"a slab on the ground", "lower_floor north on soil, outer_wall up", "lower_floor_soil_facade"},
    {"the foot of a façade with a partition",
     "outer_wall up, inner_wall up, lower_floor north on soil", "lower_floor_soil_facade"},
    {"a floor over a crawl space", "lower_floor north on crawlspace, outer_wall up",
     "lower_floor_crawlspace_facade"},
    {"the same with a floor between storeys",
     "outer_wall up, lower_floor north on crawlspace, intermediate_floor south, outer_wall down",
     "lower_floor_crawlspace_facade"},
    {"a floor over a passage", "lower_floor north, outer_wall up", "lower_floor_air_facade"},
    {"the edge of an overhang", "outer_wall down, lower_floor south, outer_wall up",
     "lower_floor_air_facade"},
    {"a partition on the ground",
     "inner_wall up, lower_floor north on soil, lower_floor south on soil",
     "lower_floor_soil_inner_wall"},
    {"a partition on the edge of the ground", "lower_floor north on soil, inner_wall up",
     "lower_floor_soil_inner_wall"},
    {"a partition over a crawl space",
     "inner_wall up, lower_floor north on crawlspace, lower_floor south on crawlspace",
     "lower_floor_crawlspace_inner_wall"},
    {"a crossing of partitions over a crawl space",
     "lower_floor north on crawlspace, inner_wall east, inner_wall up",
     "lower_floor_crawlspace_inner_wall"},
    {"a partition over a passage", "lower_floor north, inner_wall up, lower_floor south",
     "lower_floor_air_inner_wall"},
    {"a partition at the edge of a passage", "inner_wall up, lower_floor north",
     "lower_floor_air_inner_wall"},

    // What no rule covers.
    {"façades in one plane with a partition behind",
     "outer_wall east, outer_wall west, inner_wall north", "unknown"},
    {"façades in one plane with a garden wall",
     "outer_wall east, outer_wall west, outside_wall south", "unknown"},
    {"the free end of a façade", "outer_wall east", "unknown"},
    {"three façades", "outer_wall east, outer_wall north, outer_wall south", "unknown"},
    {"the free edge of a roof", "roof north", "unknown"},
    {"a roof over a partition", "roof north, inner_wall down", "unknown"},
    {"a roof beside a floor", "roof north, intermediate_floor up", "unknown"},
    {"a slab against a neighbour", "lower_floor north on adiabatic, outer_wall up", "unknown"},
    {"a slab over a heated cellar", "lower_floor north on regulated, inner_wall up", "unknown"},
    {"slabs without walls", "lower_floor north on soil, lower_floor east on soil", "unknown"},
    {"a slab without walls over a passage", "lower_floor north", "unknown"},
    {"a floor with one façade", "intermediate_floor north, outer_wall up", "unknown"},
    {"a balcony without a floor behind", "outer_wall up, outer_wall down, outside_slab south",
     "unknown"}};

qv_3dvector direction_of(const std::string& word) {
  static const std::map<std::string, qv_3dvector> directions = {{"east", {1, 0, 0}},
                                                                {"west", {-1, 0, 0}},
                                                                {"north", {0, 1, 0}},
                                                                {"south", {0, -1, 0}},
                                                                {"up", {0, 0, 1}},
                                                                {"down", {0, 0, -1}},
                                                                {"northeast", {1, 1, 0}},
                                                                {"northwest", {-1, 1, 0}},
                                                                {"southeast", {1, -1, 0}},
                                                                {"slope_north", {0, 1, -1}},
                                                                {"slope_south", {0, -1, -1}},
                                                                {"slope_up", {0, 1, 1}}};
  return directions.at(word).normalized();
}

template <class E>
E value_of(const qv_list<std::string>& labels, const std::string& label) {
  const int index = labels.find(label);
  EXPECT_GE(index, 0) << label;
  return static_cast<E>(index);
}

type type_of(const junction& drawn) {
  meeting m;
  std::istringstream walls(drawn.walls);
  for (std::string text; std::getline(walls, text, ',');) {
    std::istringstream words(text);
    std::string kind;
    std::string direction;
    words >> kind >> direction;
    qvi_wall* const wall =
        m.add(value_of<contact>(qvi_wall::get_contact_type_list(), kind), direction_of(direction));
    for (std::string what; words >> what >> direction;) {
      if (what == "looking") wall->set_normal(direction_of(direction));
      if (what != "on") continue;
      auto* const condition = new qvi_limit_condition;
      condition->set_typology(
          value_of<typology>(qvi_limit_condition::get_limit_condition_typology_list(), direction));
      m.scene.add_child(condition, -1);
      wall->set_limit_condition(condition);
    }
  }
  return m.get_type();
}

TEST(qvi_connexion_table, names_each_junction) {
  for (const junction& drawn : junctions)
    EXPECT_EQ(type_of(drawn),
              value_of<type>(qvi_connexion::get_connexion_type_list(), drawn.expected))
        << drawn.drawing;
}

TEST(qvi_connexion_table, draws_each_type_at_least_twice) {
  std::map<std::string, int> count;
  for (const junction& drawn : junctions) ++count[drawn.expected];
  const qv_list<std::string>& labels = qvi_connexion::get_connexion_type_list();
  EXPECT_EQ(labels.get_count(), 18);
  for (const std::string& label : labels) EXPECT_GE(count[label], 2) << label;
}

// --- the same rules as a table, against random junctions ---

// What a rule asks for beyond the numbers of walls.
enum class condition {
  none,
  straight,      // the two façades go on in one line
  inner_corner,  // the second façade comes out before the first
  rises,         // the first façade leaves upwards
  on_air,        // the first lower floor has no limit condition …
  on_soil,       // … or one of this typology
  on_crawlspace,
  on_other
};

constexpr int many = 1000;
struct bounds {
  int least = 0;
  int most = many;
};
constexpr bounds any{};
constexpr bounds no{0, 0};
constexpr bounds some{1, many};

// The first row that fits gives the type.
struct rule {
  bool vertical;
  bounds outer, inner, lower, between, roofs, slabs;
  condition extra;
  type result;
};

constexpr bounds two{2, 2};
constexpr bounds several{2, many};
constexpr bool upright = true;
constexpr bool level = false;

const rule rules[] = {
    // façades, inner walls, lower floors, floors between, roofs, slabs outside
    {upright, two, any, any, any, any, any, condition::straight, type::unknown},
    {upright, two, any, any, any, any, any, condition::inner_corner, type::facade_angle_inner},
    {upright, two, any, any, any, any, any, condition::none, type::facade_angle_outer},
    {upright, any, some, any, any, any, any, condition::none, type::facade_inner_wall},
    {upright, any, no, any, any, any, any, condition::none, type::unknown},

    {level, no, some, any, any, several, any, condition::none, type::roof_roof_inner_wall},
    {level, no, no, any, any, several, any, condition::none, type::roof_roof},
    {level, no, any, any, any, some, any, condition::none, type::unknown},
    {level, some, any, any, some, some, any, condition::none, type::roof_facade_intermediate},
    {level, some, any, any, no, some, any, condition::rises, type::roof_upper_facade},
    {level, some, any, any, no, some, any, condition::none, type::roof_facade},

    {level, any, any, some, any, no, any, condition::on_other, type::unknown},
    {level, some, any, some, any, no, any, condition::on_air, type::lower_floor_air_facade},
    {level, some, any, some, any, no, any, condition::on_soil, type::lower_floor_soil_facade},
    {level, some, any, some, any, no, any, condition::on_crawlspace,
     type::lower_floor_crawlspace_facade},
    {level, no, some, some, any, no, any, condition::on_air, type::lower_floor_air_inner_wall},
    {level, no, some, some, any, no, any, condition::on_soil, type::lower_floor_soil_inner_wall},
    {level, no, some, some, any, no, any, condition::on_crawlspace,
     type::lower_floor_crawlspace_inner_wall},
    {level, any, any, some, any, no, any, condition::none, type::unknown},

    {level, several, any, no, some, no, some, condition::none, type::facade_balcony_intermediate},
    {level, several, any, no, some, no, no, condition::none, type::facade_intermediate},
    {level, any, any, any, any, any, any, condition::none, type::unknown}};

struct random_wall {
  contact separates = contact::outer_wall;
  qvi_wall::wall_type kind = qvi_wall::wall_type::wall;
  bool has_space[2] = {};
  int below = -1;  // typology of the limit condition; −1 none
  qv_3dvector normal;
  qv_3dvector direction;
};

bool holds(condition extra, const std::vector<random_wall>& walls) {
  std::vector<const random_wall*> facades;
  const random_wall* floor = nullptr;
  for (const random_wall& wall : walls) {
    if (wall.separates == contact::outer_wall) facades.push_back(&wall);
    if (wall.separates == contact::lower_floor && floor == nullptr) floor = &wall;
  }
  switch (extra) {
    case condition::none:
      return true;
    case condition::straight:
      return facades[0]->direction.dot(facades[1]->direction) < -0.9f;
    case condition::inner_corner:
      return facades[0]->normal.dot(facades[1]->direction) * (facades[0]->has_space[1] ? -1 : 1) >
             0;
    case condition::rises:
      return facades[0]->direction.z > 0;
    case condition::on_air:
      return floor->below == -1;
    case condition::on_soil:
      return floor->below == 0;
    case condition::on_crawlspace:
      return floor->below == 1;
    case condition::on_other:
      return floor->below > 1;
  }
  return false;
}

bool fits(const rule& row, bool vertical, const std::array<int, 7>& counts,
          const std::vector<random_wall>& walls) {
  const std::pair<bounds, contact> numbers[] = {
      {row.outer, contact::outer_wall},  {row.inner, contact::inner_wall},
      {row.lower, contact::lower_floor}, {row.between, contact::intermediate_floor},
      {row.roofs, contact::roof},        {row.slabs, contact::outside_slab}};
  if (row.vertical != vertical) return false;
  for (const auto& [allowed, of] : numbers) {
    const int count = counts.at(static_cast<std::size_t>(of));
    if (count < allowed.least || count > allowed.most) return false;
  }
  return holds(row.extra, walls);
}

type type_by_table(const std::vector<random_wall>& walls) {
  bool vertical = true;
  bool lossy = false;
  std::array<int, 7> counts = {};
  for (const random_wall& wall : walls) {
    ++counts.at(static_cast<std::size_t>(wall.separates));
    vertical = vertical && wall.kind == qvi_wall::wall_type::wall;
    lossy = lossy || wall.has_space[0] != wall.has_space[1];
  }
  if (walls.size() == 2 && walls[0].direction.dot(walls[1].direction) < -0.9f) lossy = false;
  if (!lossy) return type::no_loss;
  for (const rule& row : rules)
    if (fits(row, vertical, counts, walls)) return row.result;
  ADD_FAILURE() << "no row fits";
  return type::unknown;
}

std::vector<random_wall> make_random_walls(std::mt19937& random) {
  const auto dice = [&random](unsigned int faces) { return static_cast<int>(random() % faces); };
  // Mostly along the axes, so that opposite and perpendicular directions are frequent.
  const auto direction = [&dice] {
    const qv_3dvector d(static_cast<float>(dice(3) - 1), static_cast<float>(dice(3) - 1),
                        static_cast<float>(dice(3) - 1));
    return d.normalized();
  };
  std::vector<random_wall> walls(static_cast<std::size_t>(1 + dice(5)));
  const bool upright_only = dice(2) == 0;
  const int few = 1 + dice(7);  // of the contact types, so that equal ones meet
  for (random_wall& wall : walls) {
    wall.separates = static_cast<contact>((dice(static_cast<unsigned>(few)) + few) % 7);
    if (!upright_only) wall.kind = static_cast<qvi_wall::wall_type>(dice(3));
    wall.has_space[0] = dice(4) != 0;
    wall.has_space[1] = dice(3) == 0;
    wall.below = dice(5) - 1;
    wall.normal = direction();
    wall.direction = direction();
  }
  return walls;
}

TEST(qvi_connexion_table, agrees_with_the_rules_written_as_a_table) {
  constexpr unsigned int seed = 20240611;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  std::map<type, int> seen;
  meeting m;
  qvi_limit_condition* conditions[4];
  for (int i = 0; i < 4; ++i) {
    m.scene.add_child(conditions[i] = new qvi_limit_condition, -1);
    conditions[i]->set_typology(i);
  }
  for (int round = 0; round < 4000; ++round) {
    const std::vector<random_wall> drawn = make_random_walls(random);
    for (qvi_wall* wall : m.connexion->get_walls()) qv_item::destroy(wall);
    m.connexion->set_walls({});
    m.connexion->set_wall_directions({});
    for (const random_wall& d : drawn) {
      qvi_wall* const wall = m.add(d.separates, d.direction);
      wall->set_wall_type(d.kind);
      wall->set_space_0(d.has_space[0] ? m.spaces[0] : nullptr);
      wall->set_space_1(d.has_space[1] ? m.spaces[1] : nullptr);
      wall->set_limit_condition(d.below < 0 ? nullptr : conditions[d.below]);
      wall->set_normal(d.normal);
    }
    const type expected = type_by_table(drawn);
    ASSERT_EQ(m.get_type(), expected) << "round " << round;
    ++seen[expected];
  }
  EXPECT_EQ(seen.size(), 18u);  // every type was among them
}

}  // namespace
