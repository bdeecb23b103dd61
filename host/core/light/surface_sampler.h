#pragma once

#include <cstddef>
#include <vector>

#include "utilities/qv_3dvector.h"

namespace qv {
class qv_polygon;
}

namespace qv::light {

/// Puts the points of a plane region, of any shape and with any holes, in a row that runs through
/// all of it, so that equal lengths of the row are equal areas and neighbours in the row are
/// neighbours in the region: stratifying the row stratifies the area.
///
/// The row goes through the region's triangles one after the other, and through each as a
/// space-filling curve does: first through one half of the triangle, then the other, and so on. The
/// first halvings are made beforehand.
class surface_sampler {
 public:
  /// The points lie on `polygon`'s region moved by `lift`.
  surface_sampler(const qv_polygon& polygon, const qv_3dvector& lift);

  /// m²; 0 when there is nothing to sample.
  double get_area() const { return area_; }

  /// The corner of the region that lies least far along `direction`.
  qv_3dvector get_lowest(const qv_3dvector& direction) const;

  /// The point at `position` (0 … 1) of the row, where a stratum is 1 / 2^`fineness` of it; a
  /// uniform `across` (0 … 1) spreads points over pieces of half that size. Both uniform make the
  /// points uniform over the area.
  qv_3dvector get_point(double position, float across, int fineness) const;

 private:
  /// A triangle, the longest side of which runs from apex + `from` to apex + `to`.
  struct piece {
    qv_3dvector apex, from, to;
    double begin;    // of its part of the row
    double share;    // length of its part of the row
    double inverse;  // of that length
    int coarseness;  // share ≤ 2^−coarseness
  };
  static piece make_piece(const qv_3dvector& apex, const qv_3dvector& from, const qv_3dvector& to,
                          double begin, double share);
  void refine();
  void index_pieces();

  /// Which piece is met at a point is left to chance, so that branches on it cannot be foreseen by
  /// the processor: one step forward goes without.
  std::size_t find_piece(double position) const {
    auto index = static_cast<std::size_t>(first_[static_cast<std::size_t>(position * parts_)]);
    index += pieces_[index + 1].begin <= position ? 1 : 0;
    while (pieces_[index + 1].begin <= position) ++index;
    return index;
  }

  std::vector<piece> pieces_;  // along the row; one more ends it
  std::vector<int> first_;     // piece in which each of equal parts of the row begins
  double parts_ = 0;
  double area_ = 0;
};

}  // namespace qv::light
