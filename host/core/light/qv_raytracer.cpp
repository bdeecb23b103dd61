#include "core/light/qv_raytracer.h"

#include <embree3/rtcore.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/light/qv_ray.h"
#include "core/light/ray_level.h"
#include "core/light/wide.h"
#include "core/shapes/qvi_mesh.h"

// The triangles of all meshes lie in a few pools, each with a bounding volume hierarchy of its own
// ("level"), large ones first. What changed goes into a new small level, while its former triangles
// are marked dead where they lie and refused by the kernel's filter. A new level swallows the
// smaller ones before it, so that the sizes of the levels stay apart by a factor and each triangle
// is moved a logarithmic number of times. A model that is read once has one level.

namespace qv {

using light::level;
using light::primitive;

namespace {

/// A level is swallowed by a new one unless it has this many times its triangles.
constexpr std::size_t level_growth = 4;
/// m; nothing farther away is in the way of light.
constexpr float farthest_light = 1e8f;
/// A ray through the edge between two triangles meets both: passages of one mesh as near to each
/// other as this (share of the distance, m below 1 m) count once.
constexpr float same_passage = 1e-5f;

/// A member mesh and where its triangles lie.
struct slot {
  qvi_mesh* mesh = nullptr;
  unsigned int date = 0;
  int level_id = -1;  // −1 in none
  std::uint32_t first = 0;
  std::uint32_t count = 0;
};

struct trace_context {
  RTCIntersectContext kernel;
  // Of the present level.
  const primitive* primitives = nullptr;
  bool has_dead = false;
  // By ray, of its nearest hit.
  std::array<const primitive*, qv_ray_packet::size> nearest;
  std::array<float, qv_ray_packet::size> distance;
  // Of a packet: two shares for each mesh, and what is left of the light of each ray.
  const float* transmission = nullptr;
  float* light = nullptr;
  // Which mesh each ray passed last, and where.
  std::array<int, qv_ray_packet::size> passed_mesh;
  std::array<float, qv_ray_packet::size> passed_distance;
};

/// Takes a ray's hit; refuses dead triangles, and of two at the same distance the one that comes
/// later in the set. Waits for the triangles themselves only where it must: they are rarely in the
/// cache.
inline bool accept(trace_context& context, unsigned int ray, unsigned int triangle,
                   float distance) {
  const primitive* const hit = context.primitives + triangle;
  if (context.has_dead && hit->slot < 0) return false;
  const primitive* const former = context.nearest[ray];
  if (former != nullptr && distance == context.distance[ray] &&
      std::pair(hit->rank, hit->triangle) > std::pair(former->rank, former->triangle))
    return false;
  // Of the nearest one everything is told; its line comes while the kernel looks for nearer ones.
  __builtin_prefetch(hit);
  context.distance[ray] = distance;
  context.nearest[ray] = hit;
  return true;
}

/// Of a single ray, for which the kernel asks most often.
void accept_hit(const RTCFilterFunctionNArguments* arguments) {
  auto& context = *reinterpret_cast<trace_context*>(arguments->context);
  if (!accept(context, 0, RTCHitN_primID(arguments->hit, 1, 0), RTCRayN_tfar(arguments->ray, 1, 0)))
    arguments->valid[0] = 0;
}

void accept_packet_hit(const RTCFilterFunctionNArguments* arguments) {
  auto& context = *reinterpret_cast<trace_context*>(arguments->context);
  const unsigned int count = arguments->N;
  for (unsigned int i = 0; i < count; ++i) {
    if (arguments->valid[i] == 0) continue;
    if (!accept(context, RTCRayN_id(arguments->ray, count, i),
                RTCHitN_primID(arguments->hit, count, i), RTCRayN_tfar(arguments->ray, count, i)))
      arguments->valid[i] = 0;
  }
}

void enter(trace_context& context, const level& l) {
  context.primitives = l.primitives.data();
  context.has_dead = l.has_dead();
}

/// Refuses dead triangles, and those that let light through, which take their share of it. The
/// kernel asks only where there are any of these (`look_in`).
void accept_occluder(const RTCFilterFunctionNArguments* arguments) {
  auto& context = *reinterpret_cast<trace_context*>(arguments->context);
  const unsigned int count = arguments->N;
  for (unsigned int i = 0; i < count; ++i) {
    if (arguments->valid[i] == 0) continue;
    const primitive& hit = context.primitives[RTCHitN_primID(arguments->hit, count, i)];
    if (hit.slot < 0) {
      arguments->valid[i] = 0;
    } else if (context.transmission != nullptr) {
      const qv_3dvector towards_light(RTCRayN_dir_x(arguments->ray, count, i),
                                      RTCRayN_dir_y(arguments->ray, count, i),
                                      RTCRayN_dir_z(arguments->ray, count, i));
      const int struck = towards_light.dot(hit.normal) > 0 ? 0 : 1;
      const float share = context.transmission[2 * hit.rank + struck];
      if (!(share > 0)) continue;
      const unsigned int ray = RTCRayN_id(arguments->ray, count, i);
      const float distance = RTCRayN_tfar(arguments->ray, count, i);
      const bool again = context.passed_mesh[ray] == hit.rank &&
                         std::fabs(distance - context.passed_distance[ray]) <=
                             same_passage * std::max(1.0f, distance);
      if (!again) context.light[ray] *= share;
      context.passed_mesh[ray] = hit.rank;
      context.passed_distance[ray] = distance;
      arguments->valid[i] = 0;
    }
  }
}

/// Fills the kernel's ray; false for a ray that can hit nothing.
bool fill(RTCRay& target, const qv_ray& ray) {
  if (!ray.origin.is_finite() || !ray.direction.is_finite()) return false;
  if (ray.direction == qv_3dvector()) return false;
  target.tnear = std::max(ray.minimum_distance, 0.0f);
  target.tfar = ray.maximum_distance;
  if (!(target.tnear <= target.tfar)) return false;
  target.dir_x = ray.direction.x;
  target.dir_y = ray.direction.y;
  target.dir_z = ray.direction.z;
  target.time = 0;
  target.mask = ~0u;
  target.id = 0;
  target.flags = 0;
  return true;
}

void place(RTCRay& target, const qv_3dvector& origin, const qv_3dvector& centre) {
  target.org_x = origin.x - centre.x;
  target.org_y = origin.y - centre.y;
  target.org_z = origin.z - centre.z;
}

/// Fills the kernel's rays but for how far they reach.
inline void place(RTCRay8& target, const qv_ray_packet& packet, const qv_3dvector& centre) {
  for (int i = 0; i < qv_ray_packet::size; ++i) {
    target.org_x[i] = packet.origin_x[i] - centre.x;
    target.org_y[i] = packet.origin_y[i] - centre.y;
    target.org_z[i] = packet.origin_z[i] - centre.z;
    target.dir_x[i] = packet.direction_x[i];
    target.dir_y[i] = packet.direction_y[i];
    target.dir_z[i] = packet.direction_z[i];
    target.tnear[i] = 0;
    target.time[i] = 0;
    target.mask[i] = ~0u;
    target.id[i] = static_cast<unsigned int>(i);
    target.flags[i] = 0;
  }
}

/// Looks in the way of a packet's rays, which become dark when anything is.
QV_WIDE void look_in(const std::vector<level>& levels, qv_ray_packet& packet,
                     trace_context& context) {
  alignas(32) int valid[qv_ray_packet::size];
  for (int i = 0; i < qv_ray_packet::size; ++i) {
    valid[i] = i < packet.count ? -1 : 0;
    packet.light[i] = i < packet.count ? 1.0f : 0.0f;
  }
  alignas(32) RTCRay8 query;
  for (const level& l : levels) {
    place(query, packet, l.centre);
    for (float& far : query.tfar) far = farthest_light;
    enter(context, l);
    context.kernel.filter =
        context.has_dead || context.transmission != nullptr ? accept_occluder : nullptr;
    rtcOccluded8(valid, l.scene, &context.kernel, &query);
    for (int i = 0; i < qv_ray_packet::size; ++i) {
      const bool dark = query.tfar[i] < 0;
      packet.light[i] = dark ? 0 : packet.light[i];
      valid[i] = dark ? 0 : valid[i];
    }
  }
}

/// Looks for what the rays that are `valid` meet nearer than `distances`, which it writes.
QV_WIDE void look_for(const level& l, const qv_ray_packet& packet, const int* valid,
                      float* distances, trace_context& context) {
  alignas(32) RTCRayHit8 query;
  place(query.ray, packet, l.centre);
  for (int i = 0; i < qv_ray_packet::size; ++i) {
    query.ray.tfar[i] = distances[i];
    query.hit.geomID[i] = RTC_INVALID_GEOMETRY_ID;
    query.hit.instID[0][i] = RTC_INVALID_GEOMETRY_ID;
  }
  enter(context, l);
  rtcIntersect8(valid, l.scene, &context.kernel, &query);
  for (int i = 0; i < qv_ray_packet::size; ++i) distances[i] = query.ray.tfar[i];
}

}  // namespace

// --- the set of meshes ---

struct qv_raytracer::kernel {
  qv_list<qvi_mesh*> meshes;
  bool set_changed = false;
  std::vector<slot> slots;
  std::vector<int> ranks;  // by slot, the place of its mesh in the set; −1 not in the set
  std::vector<int> free_slots;
  std::vector<int> by_mesh;   // slots in use, by the addresses of their meshes
  std::vector<level> levels;  // the largest first
  int next_level_id = 0;
  qv_3dvector centre;

  slot& at(int index) { return slots[static_cast<std::size_t>(index)]; }
  int& rank_of(int index) { return ranks[static_cast<std::size_t>(index)]; }
  int find_slot(const qvi_mesh* mesh) const;
  int make_slot(qvi_mesh* mesh);
  void bury(slot& s);
  void renumber(const slot& s, int rank);
  void apply_set(std::vector<int>& fresh);
  void note_if_changed(int index, std::vector<int>& fresh);
  void rebuild(std::vector<int>& fresh);
  void rebuild_if_needed(std::vector<int>& fresh);
  void dissolve(std::size_t index, std::vector<int>& fresh);
};

// −1 for a mesh that is not in the set.
int qv_raytracer::kernel::find_slot(const qvi_mesh* mesh) const {
  const auto mesh_of = [this](int index) -> const qvi_mesh* {
    return slots[static_cast<std::size_t>(index)].mesh;
  };
  const auto found = std::ranges::lower_bound(by_mesh, mesh, std::ranges::less(), mesh_of);
  return found != by_mesh.end() && mesh_of(*found) == mesh ? *found : -1;
}

int qv_raytracer::kernel::make_slot(qvi_mesh* mesh) {
  int index;
  if (free_slots.empty()) {
    index = static_cast<int>(slots.size());
    slots.emplace_back();
    ranks.push_back(-1);
  } else {
    index = free_slots.back();
    free_slots.pop_back();
  }
  at(index) = slot();
  at(index).mesh = mesh;
  return index;
}

void qv_raytracer::kernel::bury(slot& s) {
  for (level& home : levels) {
    if (home.id != s.level_id) continue;
    for (std::size_t i = s.first; i < std::size_t{s.first} + s.count; ++i)
      home.primitives[i].slot = -1;
    home.live -= s.count;
  }
  s.level_id = -1;
  s.count = 0;
}

void qv_raytracer::kernel::renumber(const slot& s, int rank) {
  for (level& home : levels) {
    if (home.id != s.level_id) continue;
    for (std::size_t i = s.first; i < std::size_t{s.first} + s.count; ++i)
      home.primitives[i].rank = rank;
  }
}

void qv_raytracer::kernel::apply_set(std::vector<int>& fresh) {
  // A model that is read once keeps no room to spare.
  if (slots.empty()) {
    slots.reserve(static_cast<std::size_t>(meshes.get_count()));
    ranks.reserve(static_cast<std::size_t>(meshes.get_count()));
  }
  const std::vector<int> former = ranks;
  ranks.assign(slots.size(), -1);
  for (int i = 0; i < meshes.get_count(); ++i) {
    int index = find_slot(meshes[i]);
    if (index < 0) {
      index = make_slot(meshes[i]);
      at(index).date = meshes[i]->get_geometry_date();
      fresh.push_back(index);
    } else if (former[static_cast<std::size_t>(index)] != i) {
      renumber(at(index), i);
    }
    rank_of(index) = i;
  }
  by_mesh.clear();
  by_mesh.reserve(static_cast<std::size_t>(meshes.get_count()));
  for (std::size_t i = 0; i < slots.size(); ++i) {
    slot& s = slots[i];
    if (ranks[i] >= 0) {
      by_mesh.push_back(static_cast<int>(i));
    } else if (s.mesh != nullptr) {
      bury(s);
      s.mesh = nullptr;
      free_slots.push_back(static_cast<int>(i));
    }
  }
  std::ranges::sort(by_mesh, std::ranges::less(), [this](int index) { return at(index).mesh; });
  set_changed = false;
}

void qv_raytracer::kernel::note_if_changed(int index, std::vector<int>& fresh) {
  slot& s = at(index);
  if (s.level_id < 0) return;  // among the fresh ones already
  const unsigned int date = s.mesh->get_geometry_date();
  if (date == s.date) return;
  s.date = date;
  bury(s);
  fresh.push_back(index);
}

void qv_raytracer::kernel::dissolve(std::size_t index, std::vector<int>& fresh) {
  int previous = -1;
  for (const primitive& p : levels[index].primitives) {
    if (p.slot < 0 || p.slot == previous) continue;
    previous = p.slot;
    at(p.slot).level_id = -1;
    fresh.push_back(p.slot);
  }
  levels.erase(levels.begin() + static_cast<std::ptrdiff_t>(index));
}

void qv_raytracer::kernel::rebuild(std::vector<int>& fresh) {
  std::size_t count = 0;
  for (int index : fresh) count += static_cast<std::size_t>(at(index).mesh->get_nb_triangles());
  for (std::size_t i = levels.size(); i-- > 0;) {
    const level& candidate = levels[i];
    if (!candidate.is_mostly_dead() && candidate.live >= level_growth * count) continue;
    count += candidate.live;
    dissolve(i, fresh);
  }

  // Scene order keeps neighbours together and makes the pool independent of its history.
  std::sort(fresh.begin(), fresh.end(), [this](int a, int b) { return rank_of(a) < rank_of(b); });
  level made;
  made.id = next_level_id++;
  made.primitives.reserve(count);
  made.indices.reserve(3 * count);
  for (int index : fresh) {
    slot& s = at(index);
    s.level_id = made.id;
    s.first = static_cast<std::uint32_t>(made.primitives.size());
    made.append(s.mesh, index, rank_of(index));
    s.count = static_cast<std::uint32_t>(made.primitives.size()) - s.first;
  }
  if (!made.primitives.empty()) {
    made.commit(levels.empty() ? nullptr : &centre);
    if (levels.empty()) centre = made.centre;
    levels.push_back(std::move(made));
  }
  std::stable_sort(levels.begin(), levels.end(),
                   [](const level& a, const level& b) { return a.live > b.live; });
}

void qv_raytracer::kernel::rebuild_if_needed(std::vector<int>& fresh) {
  const auto mostly_dead = [](const level& l) { return l.is_mostly_dead(); };
  if (!fresh.empty() || std::any_of(levels.begin(), levels.end(), mostly_dead)) rebuild(fresh);
}

namespace {

// The entries in their order, without null and repetitions.
qv_list<qvi_mesh*> get_distinct(const qv_list<qvi_mesh*>& meshes) {
  std::vector<qvi_mesh*> by_address(meshes.begin(), meshes.end());
  std::ranges::sort(by_address);
  const bool is_distinct = std::ranges::adjacent_find(by_address) == by_address.end() &&
                           (by_address.empty() || by_address.front() != nullptr);
  if (is_distinct) return meshes;
  std::unordered_set<qvi_mesh*> seen = {nullptr};
  qv_list<qvi_mesh*> kept;
  for (qvi_mesh* mesh : meshes)
    if (seen.insert(mesh).second) kept.append(mesh);
  return kept;
}

}  // namespace

qv_raytracer::qv_raytracer(const qv_list<qvi_mesh*>& meshes) : kernel_(std::make_unique<kernel>()) {
  set_meshes(meshes);
}

qv_raytracer::~qv_raytracer() = default;

void qv_raytracer::set_meshes(const qv_list<qvi_mesh*>& meshes) {
  qv_list<qvi_mesh*> kept = get_distinct(meshes);
  if (kept == kernel_->meshes) return;
  kernel_->meshes = std::move(kept);
  kernel_->set_changed = true;
}

const qv_list<qvi_mesh*>& qv_raytracer::get_meshes() const {
  return kernel_->meshes;
}

void qv_raytracer::update() {
  std::vector<int> fresh;
  if (kernel_->set_changed) kernel_->apply_set(fresh);
  for (std::size_t i = 0; i < kernel_->slots.size(); ++i)
    if (kernel_->slots[i].mesh != nullptr) kernel_->note_if_changed(static_cast<int>(i), fresh);
  kernel_->rebuild_if_needed(fresh);
}

void qv_raytracer::update_changed(const qv_list<qvi_mesh*>& changed) {
  // To find a mesh costs more than to ask it.
  constexpr int finding_cost = 8;
  if (changed.get_count() > kernel_->meshes.get_count() / finding_cost) {
    qv_raytracer::update();
    return;
  }
  std::vector<int> fresh;
  if (kernel_->set_changed) kernel_->apply_set(fresh);
  for (qvi_mesh* mesh : changed) {
    const int index = kernel_->find_slot(mesh);
    if (index >= 0) kernel_->note_if_changed(index, fresh);
  }
  kernel_->rebuild_if_needed(fresh);
}

bool qv_raytracer::raytrace(qv_ray& ray) const {
  ray.clear_hit();
  RTCRayHit query;
  if (!fill(query.ray, ray)) return false;

  trace_context context;
  rtcInitIntersectContext(&context.kernel);
  context.kernel.filter = accept_hit;
  context.nearest[0] = nullptr;
  for (const level& l : kernel_->levels) {
    enter(context, l);
    place(query.ray, ray.origin, l.centre);
    query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    query.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(l.scene, &context.kernel, &query);
  }
  const primitive* nearest = context.nearest[0];
  if (nearest == nullptr) return false;
  ray.hit_distance = query.ray.tfar;
  ray.hit_mesh = nearest->mesh;
  ray.hit_mesh_index = nearest->rank;
  ray.hit_triangle = nearest->triangle;
  ray.hit_normal = nearest->normal;
  return true;
}

bool qv_raytracer::is_occluded(const qv_ray& ray) const {
  RTCRay query;
  if (!fill(query, ray)) return false;
  trace_context context;
  rtcInitIntersectContext(&context.kernel);
  for (const level& l : kernel_->levels) {
    enter(context, l);
    context.kernel.filter = context.has_dead ? accept_occluder : nullptr;
    place(query, ray.origin, l.centre);
    rtcOccluded1(l.scene, &context.kernel, &query);
    if (query.tfar < 0) return true;
  }
  return false;
}

void qv_raytracer::find_light(qv_ray_packet& packet, const float* transmission,
                              bool parallel) const {
  trace_context context;
  rtcInitIntersectContext(&context.kernel);
  if (parallel) context.kernel.flags = RTC_INTERSECT_CONTEXT_FLAG_COHERENT;
  context.transmission = transmission;
  context.light = packet.light;
  if (transmission != nullptr) context.passed_mesh.fill(-1);

  look_in(kernel_->levels, packet, context);
}

void qv_raytracer::find_hits(const qv_ray_packet& packet, qv_packet_hits& hits) const {
  trace_context context;
  rtcInitIntersectContext(&context.kernel);
  context.kernel.filter = accept_packet_hit;
  context.nearest.fill(nullptr);

  alignas(32) int valid[qv_ray_packet::size];
  for (int i = 0; i < qv_ray_packet::size; ++i) {
    valid[i] = i < packet.count ? -1 : 0;
    hits.distance[i] = farthest_light;
  }
  for (const level& l : kernel_->levels) look_for(l, packet, valid, hits.distance, context);
  for (std::size_t i = 0; i < context.nearest.size(); ++i) {
    const primitive* nearest = context.nearest[i];
    if (nearest == nullptr) {
      hits.distance[i] = -1;
      continue;
    }
    hits.mesh_index[i] = nearest->rank;
    hits.normal[i] = nearest->normal;
  }
}

bool qv_raytracer::is_all_behind(const qv_3dvector& point, const qv_3dvector& normal,
                                 float tolerance) const {
  for (const level& l : kernel_->levels) {
    const float limit = (point - l.centre).dot(normal) + tolerance;
    for (std::size_t i = 0; i < l.primitives.size(); ++i) {
      if (l.primitives[i].slot < 0) continue;
      for (std::size_t k = 3 * i; k < 3 * i + 3; ++k)
        if (l.get_vertex(l.indices[k]).dot(normal) > limit) return false;
    }
  }
  return true;
}

int qv_raytracer::get_triangle_count() const {
  std::size_t count = 0;
  for (const level& l : kernel_->levels) count += l.live;
  return static_cast<int>(count);
}

}  // namespace qv
