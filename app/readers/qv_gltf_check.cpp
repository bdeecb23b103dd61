#include "app/readers/qv_gltf_check.h"

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string_view>
#include <vector>

#include "app/readers/qv_input_error.h"
#include "app/report/qv_utf8.h"

namespace qv {
namespace {

using nlohmann::json;

constexpr std::string_view binary_mark = "glTF";
constexpr std::size_t header_size = 12;
constexpr std::size_t chunk_header_size = 8;
constexpr std::uint32_t json_chunk = 0x4E4F534A;  // "JSON"
constexpr int component_float = 5126;
// Deeper nesting is no model but an attack on whoever reads it.
constexpr int deepest_json = 64;
constexpr int deepest_tree = 256;
constexpr std::size_t most_nodes = 1'000'000;

class checker {
 public:
  explicit checker(const std::string& path) : path_(path) {}

  std::vector<std::string> check(std::string& bytes) {
    const json root = parse(text_of(bytes));
    if (!root.is_object()) fail("is no glTF: its JSON is no object");
    check_version(root);
    check_extensions(root);
    check_nodes(root);
    check_positions(root);
    return list_unplaced(root);
  }

 private:
  [[noreturn]] void fail(const std::string& problem,
                         const std::string& advice = "export it again") const {
    throw qv_input_error(qv_input_error::kind::bad_input, {path_, 0, "", ""}, problem, advice);
  }

  static std::uint32_t word(const std::string& bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t k = 4; k-- > 0;)
      value = value << 8U | static_cast<unsigned char>(bytes[at + k]);
    return value;
  }

  // The JSON of the file, which of a binary one is its first chunk.
  std::string text_of(std::string& bytes) const {
    if (!bytes.starts_with(binary_mark)) {
      bytes = qv_valid_utf8(bytes);
      return bytes;
    }
    const bool has_chunk = bytes.size() >= header_size + chunk_header_size;
    if (has_chunk && word(bytes, 4) != 2)
      fail("is glTF of version " + std::to_string(word(bytes, 4)), "export it as version 2");
    if (!has_chunk || word(bytes, 8) > bytes.size())
      fail("is cut off: " + std::to_string(bytes.size()) + " bytes are left of it");
    const std::size_t length = word(bytes, header_size);
    if (word(bytes, header_size + 4) != json_chunk ||
        length > bytes.size() - header_size - chunk_header_size)
      fail("is no glTF: its first chunk is no JSON");
    return bytes.substr(header_size + chunk_header_size, length);
  }

  json parse(const std::string& text) const {
    bool too_deep = false;
    const auto watch = [&too_deep](int depth, json::parse_event_t, json&) {
      too_deep = too_deep || depth > deepest_json;
      return !too_deep;
    };
    try {
      json root = json::parse(text, watch);
      if (too_deep) fail("is nested too deeply to be a model");
      return root;
    } catch (const json::parse_error& e) {
      const std::size_t end = std::min<std::size_t>(e.byte, text.size());
      const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<long>(end), '\n');
      throw qv_input_error(
          qv_input_error::kind::bad_input, {path_, static_cast<std::size_t>(line), "", ""},
          end >= text.size() ? "is cut off: its JSON has no end" : "is no sound JSON",
          "export it again");
    }
  }

  void check_version(const json& root) const {
    const json* asset = find(root, "asset");
    const json* version = asset == nullptr ? nullptr : find(*asset, "version");
    if (version == nullptr || !version->is_string()) fail("is no glTF: it states no version");
    const std::string text = version->get<std::string>();
    if (!text.starts_with("2."))
      fail("is glTF of version " + qv_one_line(text, 20), "export it as version 2");
  }

  // What only paints the surfaces makes no difference here.
  void check_extensions(const json& root) const {
    for (const json& entry : list(root, "extensionsRequired")) {
      const std::string name = entry.is_string() ? entry.get<std::string>() : entry.dump();
      if (name.starts_with("KHR_materials_") || name.starts_with("KHR_texture_") ||
          name.starts_with("EXT_texture_") || name.starts_with("KHR_lights_"))
        continue;
      fail("needs the extension " + qv_one_line(name, 80) + ", which is not understood",
           "export it without (uncompressed)");
    }
  }

  void check_nodes(const json& root) const {
    const json& nodes = list(root, "nodes");
    if (nodes.size() > most_nodes) fail("has more than a million nodes", "simplify it");
    std::vector<std::size_t> parent(nodes.size(), nodes.size());
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      if (!nodes[i].is_object()) fail("has a node that is no object");
      for (const json& entry : list(nodes[i], "children")) {
        const std::size_t child =
            entry.is_number_unsigned() ? entry.get<std::size_t>() : nodes.size();
        if (child >= nodes.size())
          fail("has a node " + std::to_string(i) + " with a child that is not there");
        if (parent[child] != nodes.size())
          fail("has a node " + std::to_string(child) + " with two parents");
        parent[child] = i;
      }
    }
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      int depth = 0;
      for (std::size_t above = i; above != nodes.size(); above = parent[above])
        if (++depth > deepest_tree)
          fail("has a node " + std::to_string(i) + " below itself, or below more than 256 others");
    }
  }

  void check_positions(const json& root) const {
    const json& accessors = list(root, "accessors");
    for (const json& mesh : list(root, "meshes")) {
      for (const json& primitive : list(mesh, "primitives")) {
        const json* attributes = find(primitive, "attributes");
        const json* position = attributes == nullptr ? nullptr : find(*attributes, "POSITION");
        if (position == nullptr) continue;  // no geometry
        const std::size_t index =
            position->is_number_unsigned() ? position->get<std::size_t>() : accessors.size();
        if (index >= accessors.size()) fail("has a mesh whose corners are not there");
        const json* type = find(accessors[index], "type");
        const json* component = find(accessors[index], "componentType");
        if (type == nullptr || *type != "VEC3" || component == nullptr ||
            *component != component_float)
          fail("has a mesh whose corners are no triples of single precision",
               "export it without quantization");
      }
    }
  }

  // The nodes are known to form trees.
  std::vector<std::string> list_unplaced(const json& root) const {
    const json& meshes = list(root, "meshes");
    const json& nodes = list(root, "nodes");
    const json& scenes = list(root, "scenes");
    const auto index_in = [](const json* value, const json& of) {
      return value != nullptr && value->is_number_unsigned() ? value->get<std::size_t>()
                                                             : of.size();
    };
    const json* const chosen = find(root, "scene");
    const std::size_t scene = chosen == nullptr ? 0 : index_in(chosen, scenes);
    std::vector<std::size_t> waiting;
    if (scene < scenes.size())
      for (const json& node : list(scenes[scene], "nodes"))
        waiting.push_back(index_in(&node, nodes));
    std::vector<bool> placed(meshes.size(), false);
    std::vector<bool> seen(nodes.size(), false);
    while (!waiting.empty()) {
      const std::size_t node = waiting.back();
      waiting.pop_back();
      if (node >= nodes.size() || seen[node]) continue;
      seen[node] = true;
      if (const std::size_t mesh = index_in(find(nodes[node], "mesh"), meshes);
          mesh < meshes.size())
        placed[mesh] = true;
      for (const json& child : list(nodes[node], "children"))
        waiting.push_back(index_in(&child, nodes));
    }
    std::vector<std::string> names;
    for (std::size_t i = 0; i < meshes.size(); ++i) {
      if (placed[i]) continue;
      const json* const name = find(meshes[i], "name");
      names.push_back(name != nullptr && name->is_string() ? qv_one_line(name->get<std::string>())
                                                           : "mesh " + std::to_string(i));
    }
    return names;
  }

  static const json* find(const json& object, const char* key) {
    if (!object.is_object()) return nullptr;
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
  }

  // The array under a key; empty when there is none.
  const json& list(const json& object, const char* key) const {
    static const json none = json::array();
    const json* found = find(object, key);
    if (found == nullptr) return none;
    if (!found->is_array()) fail(std::string("is no sound glTF: \"") + key + "\" is no list");
    return *found;
  }

  const std::string& path_;
};

}  // namespace

std::vector<std::string> qv_check_gltf(const std::string& path, std::string& bytes) {
  return checker(path).check(bytes);
}

}  // namespace qv
