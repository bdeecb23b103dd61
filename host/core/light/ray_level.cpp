#include "core/light/ray_level.h"

#include <embree3/rtcore.h>

#include <array>
#include <cmath>
#include <utility>

#include "core/shapes/qvi_mesh.h"
#include "utilities/qv_box.h"
#include "utilities/qv_tolerances.h"

namespace qv::light {

namespace {

/// m; a level whose centre lies nearer than this to the common centre uses that one, so that
/// coincident faces of different levels are measured with the same rounding.
constexpr float common_centre_reach = 1000.0f;
/// The kernel reads vertices in blocks of four floats: room behind the last one.
constexpr std::size_t vertex_padding = 4;

/// The kernel's device, shared by every tracer of the process. One thread builds: hierarchies are
/// the same on every machine, and no pool of threads runs in the back of an application.
RTCDevice shared_device() {
  struct holder {
    RTCDevice device = rtcNewDevice("threads=1");
    ~holder() { rtcReleaseDevice(device); }
  };
  static const holder instance;
  return instance.device;
}

using triangle_corners = std::array<qv_3dvector, 3>;

bool is_traceable(const qv_3dvector& p) {
  constexpr auto limit = static_cast<float>(tolerance::largest_coordinate);
  return std::fabs(p.x) <= limit && std::fabs(p.y) <= limit && std::fabs(p.z) <= limit;
}

/// Unit normal in double precision; false without an area.
bool triangle_normal(const triangle_corners& t, qv_3dvector& normal) {
  const double ux = double(t[1].x) - t[0].x, uy = double(t[1].y) - t[0].y,
               uz = double(t[1].z) - t[0].z;
  const double vx = double(t[2].x) - t[0].x, vy = double(t[2].y) - t[0].y,
               vz = double(t[2].z) - t[0].z;
  const double nx = uy * vz - uz * vy, ny = uz * vx - ux * vz, nz = ux * vy - uy * vx;
  const double length = std::sqrt(nx * nx + ny * ny + nz * nz);
  if (!(length > 0)) return false;
  normal = qv_3dvector(static_cast<float>(nx / length), static_cast<float>(ny / length),
                       static_cast<float>(nz / length));
  return true;
}

}  // namespace

level::~level() {
  if (scene != nullptr) rtcReleaseScene(scene);
}

void level::swap(level& other) noexcept {
  std::swap(id, other.id);
  std::swap(scene, other.scene);
  vertices.swap(other.vertices);
  indices.swap(other.indices);
  primitives.swap(other.primitives);
  std::swap(live, other.live);
  std::swap(centre, other.centre);
}

void level::append(qvi_mesh* mesh, int slot, int rank) {
  const qv_list<qv_3dvector>& points = mesh->get_triangle_vertices();
  const qv_list<int>& triangles = mesh->get_triangle_indices();
  const auto first_vertex = static_cast<std::uint32_t>(vertices.size() / 3);
  for (const qv_3dvector& p : points) vertices.insert(vertices.end(), {p.x, p.y, p.z});
  for (int i = 0; i + 2 < triangles.get_count(); i += 3) {
    triangle_corners t;
    bool traceable = true;
    for (int k = 0; k < 3 && traceable; ++k) {
      const int vertex = triangles[i + k];
      traceable = vertex >= 0 && vertex < points.get_count() && is_traceable(t[k] = points[vertex]);
    }
    qv_3dvector normal;
    if (!traceable || !triangle_normal(t, normal)) continue;
    primitives.push_back({mesh, normal, i / 3, slot, rank});
    for (int k = 0; k < 3; ++k)
      indices.push_back(first_vertex + static_cast<std::uint32_t>(triangles[i + k]));
  }
}

void level::commit(const qv_3dvector* common_centre) {
  live = primitives.size();
  qv_box box;
  for (const std::uint32_t index : indices) box.enlarge(get_vertex(index));
  centre = box.get_center();
  if (common_centre != nullptr && (centre - *common_centre).length() < common_centre_reach)
    centre = *common_centre;
  const std::size_t vertex_count = vertices.size() / 3;
  for (std::size_t i = 0; i < vertices.size(); i += 3) {
    vertices[i] -= centre.x;
    vertices[i + 1] -= centre.y;
    vertices[i + 2] -= centre.z;
  }
  vertices.resize(vertices.size() + vertex_padding);
  vertices.shrink_to_fit();

  scene = rtcNewScene(shared_device());
  rtcSetSceneFlags(scene, RTC_SCENE_FLAG_ROBUST | RTC_SCENE_FLAG_CONTEXT_FILTER_FUNCTION);
  const RTCGeometry geometry = rtcNewGeometry(shared_device(), RTC_GEOMETRY_TYPE_TRIANGLE);
  rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3,
                             vertices.data(), 0, 3 * sizeof(float), vertex_count);
  rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, indices.data(),
                             0, 3 * sizeof(std::uint32_t), primitives.size());
  rtcCommitGeometry(geometry);
  rtcAttachGeometry(scene, geometry);
  rtcReleaseGeometry(geometry);
  rtcCommitScene(scene);
}

}  // namespace qv::light
