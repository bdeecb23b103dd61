#include "tests/bim/qv_random_model.h"

#include <algorithm>
#include <cstdio>

#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_matter.h"
#include "tests/support/qv_test_buildings.h"
#include "utilities/qv_matrix.h"

using namespace qv;

namespace qv_test {

namespace {

using wall_type = qvi_wall::wall_type;

// Nine digits tell every float from its neighbours.
std::string number(float value) {
  char text[32];
  std::snprintf(text, sizeof text, " %.9g", static_cast<double>(value));
  return text;
}

template <class List>
std::string names(const char* label, const List& items) {
  std::string text = std::string(" ") + label + "[";
  for (const auto* item : items) text += item->get_name() + " ";
  return text + "]";
}

std::string name_of(const qv_item* item) {
  return item != nullptr ? item->get_name() : "-";
}

std::string box_text(const qv_box& box) {
  std::string text = box.is_empty() ? " empty" : " box";
  for (const qv_3dvector& corner : {box.get_min(), box.get_max()})
    text += number(corner.x) + number(corner.y) + number(corner.z);
  return text;
}

template <class T>
T* make(qv_item& parent, const std::string& name) {
  auto* item = new T;
  item->set_name(name);
  parent.add_child(item, -1);
  return item;
}

}  // namespace

random_model::random_model(unsigned int seed) : random_(seed) {
  for (int i = 0; i < 4; ++i) {
    matters_.push_back(make<qvi_matter>(scene, "M" + std::to_string(i)));
    matters_.back()->set_conductivity(0.1f * static_cast<float>(i + 1));
  }
  for (int i = 0; i < 3; ++i) {
    compositions_.push_back(make<qvi_composition>(scene, "C" + std::to_string(i)));
    compositions_.back()->set_layers({any(matters_), any(matters_)});
  }
  for (int i = 0; i < 2; ++i) {
    buildings_.push_back(make<qvi_building>(scene, "B" + std::to_string(i)));
    for (int k = 0; k < 2; ++k) {
      zones_.push_back(make<qvi_zone>(scene, "Z" + std::to_string(2 * i + k)));
      zones_.back()->set_building(buildings_.back());
    }
  }
  const block rooms = add_block(scene, {0, 0, 0}, 2, 2, 2);
  spaces_ = rooms.spaces;
  for (qvi_space* space : spaces_) {
    space->set_zone(any(zones_));
    space->set_building(space->get_zone()->get_building());
  }
  walls_ = rooms.walls;
  for (std::size_t i = 0; i < walls_.size(); ++i) {
    walls_[i]->set_name("W" + std::to_string(i));
    walls_[i]->set_composition(any(compositions_));
  }
}

// A wall whose surroundings changed: its contact type is to be derived anew, and so are the shells
// of its spaces.
void random_model::renew_wall(qvi_wall* wall) {
  const wall_type type = wall->get_wall_type();
  wall->set_wall_type(type == wall_type::wall ? wall_type::floor : wall_type::wall);
  wall->set_wall_type(type);
  renew_space(wall->get_space_0());
  renew_space(wall->get_space_1());
}

// Without its shell, and changed, so that shell and bounds are made anew.
void random_model::renew_space(qvi_space* space) {
  if (space == nullptr) return;
  for (qv_item* polygon : space->collect("polygon")) qv_item::destroy(polygon);
  space->set_source_type(space->get_source_type() == "a" ? "b" : "a");
}

void random_model::add_wall_with_faces() {
  const auto at = [this] { return static_cast<float>(dice(8)); };
  const qv_3dvector corner(at(), at(), at());
  const bool upright = dice(2) == 0;
  const qv_list<qv_3dvector> outline =
      upright ? rectangle(corner, corner + qv_3dvector(3, 0, 0), corner + qv_3dvector(0, 0, 2))
              : rectangle(corner, corner + qv_3dvector(3, 0, 0), corner + qv_3dvector(0, 2, 0));
  qvi_space* const space = any(spaces_);
  qvi_wall* const wall = add_wall(scene, upright ? wall_type::wall : wall_type::floor,
                                  dice(2) == 0 ? space : nullptr, space, outline);
  wall->set_name("X" + std::to_string(random_()));
  wall->set_composition(any(compositions_));
  walls_.push_back(wall);
  renew_space(space);
}

void random_model::edit_wall(qvi_wall* wall) {
  switch (dice(6)) {
    case 0: {
      renew_wall(wall);
      qvi_space* const first = any(spaces_);
      wall->set_space_0(first);
      wall->set_space_1(dice(2) == 0 ? any(spaces_) : nullptr);
      renew_wall(wall);
      return;
    }
    case 1: {
      const qv_matrix move = qv_matrix::translation(wall->get_normal() * 0.25f);
      wall->get_face_0()->matrix_transform(move, true);
      if (wall->get_face_1() != wall->get_face_0())
        wall->get_face_1()->matrix_transform(move, true);
      renew_wall(wall);
      return;
    }
    case 2:
      return wall->set_composition(any(compositions_));
    case 3:
      return wall->set_normal(wall->get_normal() * -1.0f);
    case 4:
      wall->set_wall_type(static_cast<wall_type>(dice(3)));
      return renew_wall(wall);
    default:
      scene.add_child(wall, dice(20));
      return renew_wall(wall);
  }
}

void random_model::edit_opening() {
  const int kind = openings_.empty() ? 0 : dice(3);
  if (kind == 0) {
    openings_.push_back(make<qvi_opening>(scene, "O" + std::to_string(random_())));
    openings_.back()->set_wall(any(walls_));
  } else if (kind == 1) {
    any(openings_)->set_wall(any(walls_));
  } else {
    qvi_opening* const gone = any(openings_);
    std::erase(openings_, gone);
    qv_item::destroy(gone);
  }
}

void random_model::edit_space(qvi_space* space) {
  switch (dice(4)) {
    case 0:
      space->set_zone(any(zones_));
      return space->set_building(space->get_zone()->get_building());
    case 1:
      return space->set_forced_area(static_cast<float>(dice(4)) - 1.0f);
    case 2:
      return space->set_forced_volume(static_cast<float>(dice(4)) - 1.0f);
    default: {
      qvi_space* const added = add_space(scene, "A" + std::to_string(random_()));
      added->set_zone(any(zones_));
      added->set_building(added->get_zone()->get_building());
      spaces_.push_back(added);
      return;
    }
  }
}

void random_model::destroy_wall() {
  if (walls_.size() < 10) return;
  qvi_wall* const gone = any(walls_);
  renew_wall(gone);
  std::erase(walls_, gone);
  qv_item::destroy(gone);
}

void random_model::destroy_space() {
  if (spaces_.size() < 4) return;
  qvi_space* const gone = any(spaces_);
  std::vector<qvi_wall*> bounding;
  for (qvi_wall* wall : walls_)
    if (wall->get_space_0() == gone || wall->get_space_1() == gone) bounding.push_back(wall);
  std::erase(spaces_, gone);
  qv_item::destroy(gone);
  for (qvi_wall* wall : bounding) renew_wall(wall);
}

void random_model::destroy_building() {
  if (buildings_.size() < 2) {
    buildings_.push_back(make<qvi_building>(scene, "N" + std::to_string(random_())));
    return;
  }
  qvi_building* const gone = any(buildings_);
  std::erase(buildings_, gone);
  for (qvi_zone* zone : zones_)
    if (zone->get_building() == gone) zone->set_building(any(buildings_));
  for (qvi_space* space : spaces_) space->set_building(space->get_zone()->get_building());
  qv_item::destroy(gone);
}

void random_model::edit() {
  switch (dice(12)) {
    case 0:
      return any(compositions_)->set_layers({any(matters_), any(matters_), any(matters_)});
    case 1:
      return any(matters_)->set_diffuse_reflexion(0.1f * static_cast<float>(dice(10)),
                                                  qv_spectrum::solar);
    case 2:
    case 3:
      return edit_opening();
    case 4:
    case 5:
      return edit_space(any(spaces_));
    case 6:
      return add_wall_with_faces();
    case 7:
      return destroy_wall();
    case 8:
      if (dice(3) == 0) destroy_space();
      return;
    case 9:
      if (dice(3) == 0) destroy_building();
      return;
    default:
      return edit_wall(any(walls_));
  }
}

std::string random_model::describe_walls() const {
  std::string text;
  for (const qvi_wall* wall : walls_) {
    text += wall->get_name() + " contact " +
            std::to_string(static_cast<int>(wall->get_contact_type())) + " spaces " +
            name_of(wall->get_space_0()) + " " + name_of(wall->get_space_1()) + " loss" +
            number(wall->get_loss_area()) + " solar" + number(wall->get_solar_factor()) +
            names("openings", wall->get_openings()) + " shaders " +
            name_of(wall->get_pierced_face_0()->get_front_shader()) + " " +
            name_of(wall->get_pierced_face_1()->get_back_shader()) + "\n";
  }
  return text;
}

std::string random_model::describe_spaces() const {
  std::string text;
  for (qvi_space* space : spaces_) {
    text += space->get_name() + " in " + name_of(space->get_building()) +
            names("walls", space->get_walls()) + names("inner", space->get_inner_walls()) +
            names("outer", space->get_outer_walls()) + names("floors", space->get_floors()) +
            names("ceilings", space->get_ceilings()) + " area" + number(space->get_area()) +
            " volume" + number(space->get_volume()) + " shell " +
            std::to_string(space->collect("polygon").get_count()) + " floor " +
            std::to_string(space->get_floor()) + box_text(space->get_bounding_box()) + "\n";
  }
  return text;
}

std::string random_model::describe_zones() const {
  std::string text;
  for (const qvi_zone* zone : zones_) {
    text += zone->get_name() + names("spaces", zone->get_spaces()) + number(zone->get_area()) +
            number(zone->get_volume()) + "\n";
  }
  return text;
}

std::string random_model::describe_buildings() const {
  std::string text;
  for (qvi_building* building : buildings_) {
    text += building->get_name() + names("spaces", building->get_spaces()) +
            names("zones", building->get_zones()) + number(building->get_area()) +
            number(building->get_volume()) + " levels";
    for (const float level : building->get_floors()) text += number(level);
    text += box_text(building->get_local_bounding_box()) + "\n";
  }
  return text;
}

}  // namespace qv_test
