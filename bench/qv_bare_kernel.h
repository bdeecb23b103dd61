#pragma once

#include <cstdint>
#include <memory>

#include "core/shapes/qvi_mesh.h"

namespace qv_bench {

/// The ray-tracing kernel by itself, in its robust mode, over the triangles of meshes: what a case
/// that traces rays is compared with.
class bare_kernel {
 public:
  explicit bare_kernel(const qv::qv_list<qv::qvi_mesh*>& meshes);
  bare_kernel(const bare_kernel&) = delete;
  bare_kernel& operator=(const bare_kernel&) = delete;
  ~bare_kernel();

  /// Distance of the nearest triangle beyond `nearest` metres, infinite without one.
  float find_nearest(const qv::qv_3dvector& origin, const qv::qv_3dvector& direction,
                     float nearest) const;
  /// Whether any triangle lies in the way.
  bool is_occluded(const qv::qv_3dvector& origin, const qv::qv_3dvector& direction) const;

 private:
  struct structure;
  std::unique_ptr<structure> structure_;
};

}  // namespace qv_bench
