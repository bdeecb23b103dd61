#include "app/export/qv_export_gltf.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <unordered_map>

#include "app/export/qv_export_groups.h"
#include "app/report/qv_utf8.h"

namespace qv {
namespace {

using json = nlohmann::ordered_json;

// Codes of the format (sections 5.1 and 5.11 of the standard).
constexpr int component_float = 5126;
constexpr int component_unsigned_int = 5125;
constexpr int target_vertices = 34962;
constexpr int target_indices = 34963;

struct kind_colour {
  const char* kind;
  std::array<double, 4> colour;  // linear red, green, blue, alpha
};

constexpr std::array<double, 4> other_colour = {0.5, 0.5, 0.5, 1};
constexpr kind_colour colours[] = {
    {"outer_wall", {0.80, 0.62, 0.42, 1}},   {"inner_wall", {0.86, 0.84, 0.78, 1}},
    {"lower_floor", {0.36, 0.30, 0.24, 1}},  {"intermediate_floor", {0.62, 0.56, 0.48, 1}},
    {"roof", {0.55, 0.16, 0.10, 1}},         {"outside_wall", {0.42, 0.48, 0.42, 1}},
    {"outside_slab", {0.38, 0.44, 0.40, 1}}, {"window", {0.35, 0.60, 0.85, 0.5}},
    {"skylight", {0.40, 0.66, 0.90, 0.5}},   {"curtain_wall", {0.32, 0.55, 0.80, 0.5}},
    {"door", {0.45, 0.26, 0.12, 1}},         {"object", {0.30, 0.42, 0.26, 1}},
};

const std::array<double, 4>& colour_of(const std::string& kind) {
  for (const kind_colour& known : colours)
    if (kind == known.kind) return known.colour;
  return other_colour;
}

// Least significant byte first, as the format wants it on every machine.
void append_word(std::string& bytes, std::uint32_t word) {
  for (unsigned shift = 0; shift < 32; shift += 8)
    bytes += static_cast<char>(word >> shift & 0xFFU);
}

std::string base64(const std::string& bytes) {
  static constexpr char digits[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k)
      group = group << 8U | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    for (std::size_t k = 0; k < 4; ++k)
      text += k <= count ? digits[group >> (18 - 6 * k) & 0x3FU] : '=';
  }
  return text;
}

class writer {
 public:
  std::string write(qv_scene& scene, const qv_double3& origin) {
    json nodes = json::array();
    // From Z upwards to Y upwards: a quarter turn about X.
    nodes.push_back(
        {{"name", "model"}, {"rotation", {-0.70710678118654752, 0, 0, 0.70710678118654752}}});
    if (origin != qv_double3()) nodes[0]["translation"] = {origin.x, origin.z, -origin.y};
    json children = json::array();
    for (const qv_export_group& group : qv_collect_export_groups(scene)) {
      const std::string name = qv_valid_utf8(group.name);
      children.push_back(nodes.size());
      nodes.push_back(
          {{"name", name},
           {"mesh", meshes_.size()},
           {"extras", {{"id", qv_valid_utf8(group.item->get_unique_id())}, {"kind", group.kind}}}});
      add_mesh(group, name);
    }
    if (!children.empty()) nodes[0]["children"] = children;
    json document;
    document["asset"] = {{"version", "2.0"}, {"generator", "qv"}};
    document["scene"] = 0;
    document["scenes"] = json::array({{{"nodes", {0}}}});
    document["nodes"] = nodes;
    // The format wants no empty lists.
    if (!meshes_.empty()) {
      document["meshes"] = meshes_;
      document["materials"] = materials_;
      document["accessors"] = accessors_;
      document["bufferViews"] = views_;
      document["buffers"] =
          json::array({{{"byteLength", bytes_.size()},
                        {"uri", "data:application/octet-stream;base64," + base64(bytes_)}}});
    }
    return document.dump() + "\n";
  }

 private:
  std::size_t add_view(std::size_t first, int target) {
    views_.push_back({{"buffer", 0},
                      {"byteOffset", first},
                      {"byteLength", bytes_.size() - first},
                      {"target", target}});
    return views_.size() - 1;
  }

  std::size_t add_positions(const qv_list<qv_3dvector>& vertices) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    std::array<float, 3> low = {infinity, infinity, infinity};
    std::array<float, 3> high = {-infinity, -infinity, -infinity};
    const std::size_t first = bytes_.size();
    for (const qv_3dvector& vertex : vertices) {
      const std::array<float, 3> point = {vertex.x, vertex.y, vertex.z};
      for (std::size_t k = 0; k < 3; ++k) {
        low[k] = std::min(low[k], point[k]);
        high[k] = std::max(high[k], point[k]);
        append_word(bytes_, std::bit_cast<std::uint32_t>(point[k]));
      }
    }
    accessors_.push_back({{"bufferView", add_view(first, target_vertices)},
                          {"componentType", component_float},
                          {"count", vertices.get_count()},
                          {"type", "VEC3"},
                          {"min", low},
                          {"max", high}});
    return accessors_.size() - 1;
  }

  std::size_t add_indices(const qv_list<int>& triangles) {
    const std::size_t first = bytes_.size();
    for (const int index : triangles) append_word(bytes_, static_cast<std::uint32_t>(index));
    accessors_.push_back({{"bufferView", add_view(first, target_indices)},
                          {"componentType", component_unsigned_int},
                          {"count", triangles.get_count()},
                          {"type", "SCALAR"}});
    return accessors_.size() - 1;
  }

  std::size_t get_material(const std::string& kind) {
    const auto [slot, fresh] = material_of_.try_emplace(kind, materials_.size());
    if (fresh) {
      const std::array<double, 4>& colour = colour_of(kind);
      json material = {
          {"name", kind},
          {"pbrMetallicRoughness",
           {{"baseColorFactor", colour}, {"metallicFactor", 0}, {"roughnessFactor", 1}}},
          {"doubleSided", true}};
      if (colour[3] < 1) material["alphaMode"] = "BLEND";
      materials_.push_back(material);
    }
    return slot->second;
  }

  void add_mesh(const qv_export_group& group, const std::string& name) {
    const std::size_t positions = add_positions(group.triangles.vertices);
    const std::size_t indices = add_indices(group.triangles.triangles);
    meshes_.push_back({{"name", name},
                       {"primitives", json::array({{{"attributes", {{"POSITION", positions}}},
                                                    {"indices", indices},
                                                    {"material", get_material(group.kind)}}})}});
  }

  std::string bytes_;
  json meshes_ = json::array();
  json materials_ = json::array();
  json accessors_ = json::array();
  json views_ = json::array();
  std::unordered_map<std::string, std::size_t> material_of_;
};

}  // namespace

std::string qv_export_gltf(qv_scene& scene, const qv_double3& origin) {
  return writer().write(scene, origin);
}

}  // namespace qv
