#include "tests/support/qv_turned_walls.h"

#include <random>

#include "bim/materials/qvi_composition.h"

using namespace qv;

namespace qv_test {

bool operator==(const wall_sides& a, const wall_sides& b) {
  const bool same_layers = a.composition == b.composition ||
                           (a.composition != nullptr && b.composition != nullptr &&
                            a.composition->get_layers() == b.composition->get_layers());
  return a.normal == b.normal && a.space_0 == b.space_0 && a.space_1 == b.space_1 && same_layers;
}

std::vector<wall_sides> take_sides(const qvi_bim_root& root) {
  std::vector<wall_sides> sides;
  for (auto* wall : qv_collect<qvi_wall>(&root, "wall"))
    sides.push_back({wall, wall->get_normal(), wall->get_space_0(), wall->get_space_1(),
                     wall->get_composition()});
  return sides;
}

std::vector<qvi_wall*> turn_walls(qvi_bim_root& root, unsigned int seed) {
  using contact = qvi_wall::contact_type;
  std::mt19937 random(seed);
  std::vector<qvi_wall*> wrong;
  for (auto* wall : qv_collect<qvi_wall>(&root, "wall")) {
    const bool turned = random() % 2 == 0;
    const bool swapped = random() % 2 == 0;
    if (turned) wall->set_normal(-wall->get_normal());
    if (swapped) {
      qvi_space* const first = wall->get_space_0();
      wall->set_space_0(wall->get_space_1());
      wall->set_space_1(first);
      const bool between = wall->get_space_0() != nullptr && wall->get_space_1() != nullptr;
      if (between && wall->get_composition() != nullptr)
        wall->set_composition(root.find_reverse_composition(wall->get_composition(), true));
    }
    switch (wall->get_contact_type()) {
      case contact::outer_wall:  // a lone space is the first one again
        if (turned) wrong.push_back(wall);
        break;
      case contact::intermediate_floor:  // the normal points down again
        if (swapped) wrong.push_back(wall);
        break;
      case contact::inner_wall:
        if (turned != swapped) wrong.push_back(wall);
        break;
      default:
        break;
    }
  }
  return wrong;
}

}  // namespace qv_test
