#pragma once

#include <random>
#include <string>
#include <vector>

#include "core/items/qv_scene.h"

namespace qv {
class qvi_building;
class qvi_composition;
class qvi_matter;
class qvi_opening;
class qvi_space;
class qvi_wall;
class qvi_zone;
}  // namespace qv

namespace qv_test {

/// A block of rooms with openings, compositions, zones and two buildings, edited at random. Two
/// models with the same seed that see the same calls of `edit` are the same model, however often
/// each was precomputed in between.
class random_model {
 public:
  explicit random_model(unsigned int seed);

  /// One edit, drawn from the seed: of spaces, faces, compositions, layers, shaders, openings,
  /// zones, buildings; walls and spaces come, go and change their places.
  ///
  /// What a pass leaves alone by design (a contact type while only spaces change, the shell of a
  /// space once it is there, a space's measures while no wall changes) is touched by the edits that
  /// concern it.
  void edit();

  /// Everything that the pass derives, of every wall, space, zone and building, as text.
  std::string describe() const {
    return describe_walls() + describe_spaces() + describe_zones() + describe_buildings();
  }
  std::string describe_walls() const;
  std::string describe_spaces() const;
  std::string describe_zones() const;
  std::string describe_buildings() const;

  qv::qv_scene scene;

 private:
  int dice(int faces) { return static_cast<int>(random_() % static_cast<unsigned>(faces)); }
  template <class T>
  T* any(const std::vector<T*>& items) {
    return items[static_cast<std::size_t>(dice(static_cast<int>(items.size())))];
  }
  void renew_wall(qv::qvi_wall* wall);
  void renew_space(qv::qvi_space* space);
  void add_wall_with_faces();
  void edit_wall(qv::qvi_wall* wall);
  void edit_opening();
  void edit_space(qv::qvi_space* space);
  void destroy_wall();
  void destroy_space();
  void destroy_building();

  std::mt19937 random_;
  std::vector<qv::qvi_matter*> matters_;
  std::vector<qv::qvi_composition*> compositions_;
  std::vector<qv::qvi_wall*> walls_;
  std::vector<qv::qvi_space*> spaces_;
  std::vector<qv::qvi_zone*> zones_;
  std::vector<qv::qvi_building*> buildings_;
  std::vector<qv::qvi_opening*> openings_;
};

}  // namespace qv_test
