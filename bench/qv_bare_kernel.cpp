#include "bench/qv_bare_kernel.h"

#include <embree3/rtcore.h>

#include <limits>
#include <vector>

namespace qv_bench {

using qv::qv_3dvector;

struct bare_kernel::structure {
  RTCDevice device = rtcNewDevice(nullptr);
  RTCScene scene = rtcNewScene(device);
  std::vector<float> vertices;
  std::vector<std::uint32_t> indices;
};

namespace {

constexpr float farthest = 1e8f;  // m

RTCRay make_query(const qv_3dvector& origin, const qv_3dvector& direction, float nearest) {
  return {origin.x,    origin.y, origin.z, nearest, direction.x, direction.y,
          direction.z, 0,        farthest, ~0u,     0,           0};
}

}  // namespace

bare_kernel::bare_kernel(const qv::qv_list<qv::qvi_mesh*>& meshes)
    : structure_(std::make_unique<structure>()) {
  structure& s = *structure_;
  for (qv::qvi_mesh* mesh : meshes) {
    qv_3dvector corners[3];
    for (int t = 0; t < mesh->get_nb_triangles(); ++t) {
      mesh->read_triangle(t, corners[0], corners[1], corners[2], nullptr);
      for (const qv_3dvector& p : corners) {
        s.indices.push_back(static_cast<std::uint32_t>(s.indices.size()));
        s.vertices.insert(s.vertices.end(), {p.x, p.y, p.z});
      }
    }
  }
  s.vertices.resize(s.vertices.size() + 4);
  rtcSetSceneFlags(s.scene, RTC_SCENE_FLAG_ROBUST);
  RTCGeometry geometry = rtcNewGeometry(s.device, RTC_GEOMETRY_TYPE_TRIANGLE);
  rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3,
                             s.vertices.data(), 0, 3 * sizeof(float), s.indices.size());
  rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, s.indices.data(),
                             0, 3 * sizeof(std::uint32_t), s.indices.size() / 3);
  rtcCommitGeometry(geometry);
  rtcAttachGeometry(s.scene, geometry);
  rtcReleaseGeometry(geometry);
  rtcCommitScene(s.scene);
}

bare_kernel::~bare_kernel() {
  rtcReleaseScene(structure_->scene);
  rtcReleaseDevice(structure_->device);
}

float bare_kernel::find_nearest(const qv_3dvector& origin, const qv_3dvector& direction,
                                float nearest) const {
  RTCRayHit query;
  query.ray = make_query(origin, direction, nearest);
  query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
  query.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
  RTCIntersectContext context;
  rtcInitIntersectContext(&context);
  rtcIntersect1(structure_->scene, &context, &query);
  return query.hit.geomID == RTC_INVALID_GEOMETRY_ID ? std::numeric_limits<float>::infinity()
                                                     : query.ray.tfar;
}

bool bare_kernel::is_occluded(const qv_3dvector& origin, const qv_3dvector& direction) const {
  RTCRay query = make_query(origin, direction, 0);
  RTCIntersectContext context;
  rtcInitIntersectContext(&context);
  rtcOccluded1(structure_->scene, &context, &query);
  return query.tfar < 0;
}

}  // namespace qv_bench
