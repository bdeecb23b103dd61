#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_opening_composition.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/materials/qvi_composition.h"
#include "bim/project/qvi_bim_configuration.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_shapes.h"

namespace qv_test {

using namespace qv;
using contact = qvi_wall::contact_type;
using kind = qvi_opening::opening_type;
using junction = qvi_connexion::connexion_type;

/// A scene with two buildings of one space each, to which walls, openings and junctions are added.
class project {
 public:
  project() {
    for (int i = 0; i < 2; ++i) {
      buildings[i] = add<qvi_building>("B" + std::to_string(i));
      spaces[i] = add<qvi_space>("S" + std::to_string(i));
      spaces[i]->set_building(buildings[i]);
    }
  }
  template <class T>
  T* add(const std::string& name = "") {
    auto* item = new T;
    item->set_name(name);
    scene.add_child(item, -1);
    return item;
  }
  /// A wall of building `of`; none has no space.
  qvi_wall* add_wall(int of, contact type, qvi_composition* composition) {
    auto* wall = add<qvi_wall>();
    wall->set_space_0(of < 0 ? nullptr : spaces[of]);
    wall->set_contact_type(type);
    wall->set_composition(composition);
    return wall;
  }
  qvi_opening* add_opening(qvi_wall* wall, kind type, qvi_opening_composition* composition) {
    auto* opening = add<qvi_opening>();
    opening->set_wall(wall);
    opening->set_opening_type(type);
    opening->set_composition(composition);
    return opening;
  }
  qvi_connexion* add_junction(const qv_list<qvi_wall*>& walls, junction type, float psi) {
    auto* connexion = add<qvi_connexion>();
    connexion->set_walls(walls);
    connexion->set_connexion_type(type);
    connexion->set_psi(psi);
    return connexion;
  }
  qv_list<qvi_building*> both() const { return {buildings[0], buildings[1]}; }

  recording_scene scene;
  qvi_building* buildings[2];
  qvi_space* spaces[2];
};

/// A project, and a configuration that learns from it or gives to it.
class qvi_bim_configuration_test : public ::testing::Test {
 protected:
  project project_;
  recording_scene& scene_ = project_.scene;
  qv_test::owned_item<qvi_bim_configuration> owner_ = qv_test::make_item<qvi_bim_configuration>();
  qvi_bim_configuration& configuration_ = *owner_;
};

inline std::vector<std::string> names_of(const qv_list<qv_item*>& items) {
  std::vector<std::string> names;
  for (const qv_item* item : items) names.push_back(item->get_name());
  return names;
}

}  // namespace qv_test
