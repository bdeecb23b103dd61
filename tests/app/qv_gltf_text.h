#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <vector>

/// Writes small glTF files for tests: meshes of one triangle (0, 0, 0), (2, 0, 0), (0, 3, 0).
class qv_gltf_text {
 public:
  /// A node with the mesh; `more` are further keys. `at_root` false leaves it to a parent.
  qv_gltf_text& node(const std::string& name, int mesh, const std::string& more = {},
                     bool at_root = true) {
    return add("{\"name\":\"" + name + "\",\"mesh\":" + std::to_string(mesh) +
                   (more.empty() ? "" : "," + more) + "}",
               at_root);
  }
  /// A node without a mesh above the node of number `child`.
  qv_gltf_text& parent(const std::string& name, int child, const std::string& more) {
    return add(
        "{\"name\":\"" + name + "\",\"children\":[" + std::to_string(child) + "]," + more + "}",
        true);
  }
  /// A further mesh, which no node places.
  qv_gltf_text& unplaced(const std::string& name) {
    meshes_ += ",{\"name\":\"" + name + "\",\"primitives\":[" + primitive() + "]}";
    return *this;
  }
  qv_gltf_text& buffer_uri(const std::string& uri) {
    uri_ = uri;
    return *this;
  }

  /// Corners and indices.
  static std::string buffer() {
    std::string bytes;
    const auto word = [&bytes](std::uint32_t value, int size) {
      for (int k = 0; k < size; ++k) bytes += static_cast<char>(value >> (8 * k) & 0xFFU);
    };
    for (const float c : {0.0f, 0.0f, 0.0f, 2.0f, 0.0f, 0.0f, 0.0f, 3.0f, 0.0f})
      word(std::bit_cast<std::uint32_t>(c), 4);
    for (const std::uint32_t index : {0U, 1U, 2U, 0U}) word(index, 2);
    return bytes;
  }

  std::string text() const {
    return document(uri_.empty() ? "data:application/octet-stream;base64," + base64(buffer())
                                 : uri_);
  }

  /// The same in one binary file.
  std::string binary() const {
    std::string json = document({});
    while (json.size() % 4 != 0) json += ' ';
    const std::string data = buffer();
    std::string bytes = "glTF";
    const auto word = [&bytes](std::size_t value) {
      for (int k = 0; k < 4; ++k) bytes += static_cast<char>(value >> (8 * k) & 0xFFU);
    };
    word(2);
    word(12 + 8 + json.size() + 8 + data.size());
    word(json.size());
    bytes += "JSON" + json;
    word(data.size());
    bytes += std::string("BIN\0", 4) + data;
    return bytes;
  }

 private:
  qv_gltf_text& add(const std::string& node, bool at_root) {
    if (at_root) roots_ += (roots_.empty() ? "" : ",") + std::to_string(count_);
    nodes_ += (nodes_.empty() ? "" : ",") + node;
    ++count_;
    return *this;
  }

  static std::string primitive() { return R"({"attributes":{"POSITION":0},"indices":1})"; }

  std::string document(const std::string& uri) const {
    const std::string length = std::to_string(buffer().size());
    return R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[)" + roots_ +
           R"(]}],"nodes":[)" + nodes_ + R"(],"meshes":[{"name":"tri","primitives":[)" +
           primitive() + "]}" + meshes_ +
           R"(],"accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3",)"
           R"("min":[0,0,0],"max":[2,3,0]},{"bufferView":1,"componentType":5123,"count":3,)"
           R"("type":"SCALAR"}],"bufferViews":[{"buffer":0,"byteOffset":0,"byteLength":36},)"
           R"({"buffer":0,"byteOffset":36,"byteLength":6}],"buffers":[{"byteLength":)" +
           length + (uri.empty() ? "" : ",\"uri\":\"" + uri + "\"") + "}]}";
  }

  static std::string base64(const std::string& bytes) {
    static constexpr char digits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    std::uint32_t bits = 0;
    int count = 0;
    for (const char c : bytes) {
      bits = bits << 8U | static_cast<unsigned char>(c);
      for (count += 8; count >= 6; count -= 6) text += digits[bits >> (count - 6) & 0x3FU];
    }
    if (count > 0) text += digits[bits << (6 - count) & 0x3FU];
    while (text.size() % 4 != 0) text += '=';
    return text;
  }

  std::string nodes_, roots_, meshes_, uri_;
  int count_ = 0;
};
