#pragma once

#include <array>
#include <vector>

#include "utilities/qv_3dvector.h"

namespace qv {
class qvi_sun;
}

namespace qv::light {

/// One of the directions from which the reflected sun is followed, and how much it counts in the
/// light of a time step.
struct node_weight {
  int node = 0;
  float weight = 0;
};

/// A time step at which the sun shines.
struct lit_step {
  /// Index among the sun's time steps.
  int step = 0;
  /// Unit direction towards the sun.
  qv_3dvector direction;
  /// Direct normal irradiation, W/m², above 0.
  float irradiation = 0;
  /// Weights of sum 1.
  std::array<node_weight, 4> nodes;
};

/// What a computation needs to know of a sun, found once for all receivers.
///
/// A step counts as lit when its sun stands above the horizontal and its direct irradiation is
/// positive. Of a few steps each is a node of its own, and the reflected sun is exact. Of many, the
/// nodes are a grid over that part of the sky through which the sun goes, and what they yield is
/// interpolated between the four around a step's sun.
struct sun_plan {
  std::vector<lit_step> lit;
  /// Unit directions.
  std::vector<qv_3dvector> nodes;
  /// True when every lit step has a node of its own.
  bool exact_nodes = true;
  int step_count = 0;
  /// Sum of the diffuse irradiation over all steps, those below 0 or not finite left out, W/m².
  double diffuse_sum = 0;
};

/// The plan for `sun`, null for none. Lists of different lengths count to the end of the shortest;
/// directions are normalised; what is not finite does not shine.
sun_plan make_sun_plan(const qvi_sun* sun);

}  // namespace qv::light
