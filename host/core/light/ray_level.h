#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "utilities/qv_3dvector.h"

/// The kernel's scene.
struct RTCSceneTy;

namespace qv {
class qvi_mesh;
}

namespace qv::light {

/// One traced triangle: all that is told of a hit, in one line of the cache.
struct alignas(32) primitive {
  qvi_mesh* mesh;
  qv_3dvector normal;
  int triangle;
  /// The tracer's number of the mesh, −1 once the triangle is dead.
  int slot;
  /// Place of the mesh in the set.
  int rank;
};
static_assert(sizeof(primitive) == 32);

/// A pool of triangles of a ray tracer with a bounding volume hierarchy of its own.
struct level {
  level() = default;
  level(level&& other) noexcept { swap(other); }
  level& operator=(level&& other) noexcept {
    swap(other);
    return *this;
  }
  ~level();

  /// Adds the mesh's vertices, where they are, and its triangles, those left out that are not
  /// finite or have no area.
  void append(qvi_mesh* mesh, int slot, int rank);
  qv_3dvector get_vertex(std::uint32_t index) const {
    const float* const first = &vertices[std::size_t{3} * index];
    return {first[0], first[1], first[2]};
  }
  /// Builds the hierarchy, around `common_centre` when that is near enough to the triangles'.
  void commit(const qv_3dvector* common_centre);
  bool has_dead() const { return live != primitives.size(); }
  /// More dead than alive: worth a rebuild.
  bool is_mostly_dead() const { return primitives.size() - live > live; }

  int id = -1;
  /// Filters of hits are asked for by each query's context.
  RTCSceneTy* scene = nullptr;
  /// Three coordinates for each vertex of each mesh, from the centre once committed.
  std::vector<float> vertices;
  /// Three vertices for each triangle.
  std::vector<std::uint32_t> indices;
  std::vector<primitive> primitives;
  std::size_t live = 0;
  qv_3dvector centre;

 private:
  void swap(level& other) noexcept;
};

}  // namespace qv::light
