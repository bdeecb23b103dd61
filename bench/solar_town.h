#pragma once

#include <string>
#include <vector>

#include "core/items/qv_scene.h"
#include "core/light/qv_receiver.h"
#include "core/shapes/qvi_mesh.h"
#include "utilities/qv_polygon.h"

namespace qv_bench {

/// Buildings with the façades that receive the sun, on level ground, in a clear-sky year of 8,760
/// hours at 45.7° north. Every surface reflects `reflexion` and absorbs the rest.
struct solar_town {
  explicit solar_town(float reflexion);

  /// A box whose sides are `columns` × `rows` façades each; `detail` splits each façade's mesh into
  /// as many squares a side, for shadows of more triangles. `receives` false keeps the façades out
  /// of the list.
  void add_building(const qv::qv_3dvector& low, const qv::qv_3dvector& high, int columns, int rows,
                    int detail = 1, bool receives = true);
  void add_ground(float half_size);

  qv::qv_scene scene;
  /// Seen from outside.
  std::vector<qv::qv_polygon> facades;

 private:
  void add_patch(const qv::qv_3dvector& a, const qv::qv_3dvector& u, const qv::qv_3dvector& v,
                 int detail);

  qv::qvi_shader* shader_;
};

/// One house among four others: 5 receivers.
void make_box(solar_town& town);
/// Four blocks around a yard: 40 receivers.
void make_courtyard(solar_town& town);
/// Blocks in a grid, 40 façades each: `receivers` in all.
void make_block(solar_town& town, int receivers, int detail = 1);

struct solar_effort {
  int direct_rays = 0;
  int montecarlo_rays = 0;
  int ray_depth = 2;
  float diffuse_error = 0;
};

/// A receiver on a façade.
class facade_receiver : public qv::qv_receiver {
 public:
  facade_receiver(solar_town& town, const qv::qv_polygon& facade, const solar_effort& effort);
  /// Sum over the year, Wh/m².
  double get_year() const;
};

}  // namespace qv_bench
