#pragma once

#include <vector>

#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_wall.h"

namespace qv {

/// What meets along a thermal bridge, and the type that follows from it.
class junction {
 public:
  /// `directions[i]` is the unit direction in which `walls[i]` leaves the junction; a missing one
  /// counts as zero.
  junction(const qv_list<qvi_wall*>& walls, const qv_list<qv_3dvector>& directions);

  /// No floor and no roof meets here.
  bool is_vertical() const { return vertical_; }
  /// A wall with one space only meets here, and the junction is not two walls that continue each
  /// other.
  bool is_lossy() const { return lossy_; }
  qvi_connexion::connexion_type get_type() const;

 private:
  struct branch {
    qvi_wall* wall;
    qv_3dvector direction;
  };
  using group = std::vector<branch>;

  const group& get_group(qvi_wall::contact_type type) const {
    return groups_[static_cast<int>(type)];
  }
  qvi_connexion::connexion_type get_vertical_type() const;
  qvi_connexion::connexion_type get_roof_type() const;
  qvi_connexion::connexion_type get_lower_floor_type() const;
  qvi_connexion::connexion_type get_horizontal_type() const;

  static constexpr int contact_type_count = 7;
  group groups_[contact_type_count];
  bool vertical_ = true;
  bool lossy_ = false;
};

}  // namespace qv
