#include "app/readers/qv_triangle_file.h"

#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <assimp/DefaultLogger.hpp>
#include <assimp/IOStream.hpp>
#include <assimp/IOSystem.hpp>
#include <assimp/Importer.hpp>
#include <assimp/LogStream.hpp>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <utility>

#include "app/readers/qv_file.h"
#include "app/readers/qv_gltf_check.h"
#include "app/readers/qv_input_error.h"
#include "app/readers/qv_obj_origin.h"
#include "app/report/qv_utf8.h"

namespace qv {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t largest_file = std::uintmax_t{1} << 30U;  // bytes
constexpr std::size_t most_warnings = 20;

[[noreturn]] void fail(const std::string& path, const std::string& problem,
                       const std::string& advice) {
  throw qv_input_error(qv_input_error::kind::bad_input, {path, 0, "", ""}, problem, advice);
}

std::string read_limited(const std::string& path, const std::string& expected) {
  std::error_code fault;
  const std::uintmax_t size = fs::file_size(path, fault);
  if (!fault && size > largest_file)
    throw qv_input_error(qv_input_error::kind::no_access, {path, 0, "", ""},
                         "is larger than a gigabyte", "leave out what casts no shadow here");
  return qv_read_file(path, expected);
}

// --- what the library reads from ---

class memory_stream : public Assimp::IOStream {
 public:
  explicit memory_stream(std::string bytes) : bytes_(std::move(bytes)) {}

  size_t Read(void* target, size_t size, size_t count) override {
    if (size == 0) return 0;
    const size_t whole = std::min(count, (bytes_.size() - at_) / size);
    if (whole > 0) std::memcpy(target, bytes_.data() + at_, whole * size);
    at_ += whole * size;
    return whole;
  }
  size_t Write(const void*, size_t, size_t) override { return 0; }
  aiReturn Seek(size_t offset, aiOrigin origin) override {
    const size_t base = origin == aiOrigin_SET ? 0 : origin == aiOrigin_CUR ? at_ : bytes_.size();
    // A negative offset comes as its two's complement.
    const size_t wanted = origin == aiOrigin_END && offset <= base ? base - offset : base + offset;
    if (wanted > bytes_.size()) return aiReturn_FAILURE;
    at_ = wanted;
    return aiReturn_SUCCESS;
  }
  size_t Tell() const override { return at_; }
  size_t FileSize() const override { return bytes_.size(); }
  void Flush() override {}

 private:
  std::string bytes_;
  size_t at_ = 0;
};

/// The file itself from its checked bytes, and plain files that it refers to; no device, no pipe,
/// nothing of more than a gigabyte.
class local_files : public Assimp::IOSystem {
 public:
  local_files(std::string path, std::string bytes)
      : path_(std::move(path)), bytes_(std::move(bytes)) {}

  bool Exists(const char* name) const override {
    if (name == path_) return true;
    std::error_code fault;
    return fs::is_regular_file(name, fault) && fs::file_size(name, fault) <= largest_file;
  }
  char getOsSeparator() const override { return '/'; }
  Assimp::IOStream* Open(const char* name, const char* mode) override {
    if (std::strchr(mode, 'r') == nullptr || !Exists(name)) return nullptr;
    if (name == path_) return new memory_stream(bytes_);
    try {
      return new memory_stream(qv_read_file(name, "a buffer"));
    } catch (const qv_input_error&) {
      return nullptr;  // the library says which file it misses
    }
  }
  void Close(Assimp::IOStream* stream) override { delete stream; }

 private:
  std::string path_;
  std::string bytes_;
};

/// Takes what the library has to say while it lives.
class captured_log : public Assimp::LogStream {
 public:
  explicit captured_log(std::vector<std::string>& lines) : lines_(lines) {
    Assimp::DefaultLogger::create("", Assimp::Logger::NORMAL, 0);
    Assimp::DefaultLogger::get()->attachStream(this, Assimp::Logger::Warn | Assimp::Logger::Err);
  }
  captured_log(const captured_log&) = delete;
  captured_log& operator=(const captured_log&) = delete;
  ~captured_log() override {
    Assimp::DefaultLogger::get()->detachStream(this, Assimp::Logger::Warn | Assimp::Logger::Err);
    Assimp::DefaultLogger::kill();
  }

  void write(const char* message) override {
    // "Warn,  T1234: " and a line end are the logger's own.
    std::string line = message;
    if (const auto colon = line.find(": "); colon != std::string::npos && colon < 20)
      line.erase(0, colon + 2);
    line = qv_one_line(qv_valid_utf8(line));
    line.erase(line.find_last_not_of(' ') + 1);
    if (lines_.size() < most_warnings &&
        std::find(lines_.begin(), lines_.end(), line) == lines_.end())
      lines_.push_back(std::move(line));
  }

 private:
  std::vector<std::string>& lines_;
};

// --- from the library's scene ---

std::string text_of(const aiString& name) {
  return qv_one_line(qv_valid_utf8(std::string(name.data, name.length)));
}

void append(qv_file_mesh& sum, const aiMesh& part) {
  const auto first = static_cast<int>(sum.vertices.size());
  sum.vertices.reserve(sum.vertices.size() + part.mNumVertices);
  for (unsigned int i = 0; i < part.mNumVertices; ++i)
    sum.vertices.emplace_back(part.mVertices[i].x, part.mVertices[i].y, part.mVertices[i].z);
  for (unsigned int i = 0; i < part.mNumFaces; ++i) {
    const aiFace& face = part.mFaces[i];
    const bool is_triangle =
        face.mNumIndices == 3 &&
        std::all_of(face.mIndices, face.mIndices + 3,
                    [&part](unsigned int index) { return index < part.mNumVertices; });
    if (!is_triangle) {
      ++sum.flat_count;
      continue;
    }
    for (unsigned int k = 0; k < 3; ++k)
      sum.triangles.push_back(first + static_cast<int>(face.mIndices[k]));
  }
}

using placement = std::array<double, 12>;

// `outer` after the node's own transformation.
placement combine(const placement& outer, const aiMatrix4x4& node) {
  const double inner[3][4] = {{node.a1, node.a2, node.a3, node.a4},
                              {node.b1, node.b2, node.b3, node.b4},
                              {node.c1, node.c2, node.c3, node.c4}};
  placement product{};
  for (std::size_t row = 0; row < 3; ++row)
    for (std::size_t column = 0; column < 4; ++column) {
      double sum = column == 3 ? outer[4 * row + 3] : 0;
      for (std::size_t k = 0; k < 3; ++k) sum += outer[4 * row + k] * inner[k][column];
      product[4 * row + column] = sum;
    }
  return product;
}

class scene_reader {
 public:
  /// `origin` was taken off all corners.
  scene_reader(const aiScene& scene, std::string other_name, const qv_double3& origin,
               qv_triangle_file& result)
      : scene_(scene), other_name_(std::move(other_name)), origin_(origin), result_(result) {}

  void read() {
    struct visit {
      const aiNode* node;
      placement outer;
    };
    const placement root = {1, 0, 0, origin_.x, 0, 1, 0, origin_.y, 0, 0, 1, origin_.z};
    std::vector<visit> waiting = {{scene_.mRootNode, root}};
    while (!waiting.empty()) {
      const visit next = waiting.back();
      waiting.pop_back();
      const placement here = combine(next.outer, next.node->mTransformation);
      if (next.node->mNumMeshes > 0) add_object(*next.node, here);
      for (unsigned int i = next.node->mNumChildren; i-- > 0;)
        waiting.push_back({next.node->mChildren[i], here});
    }
  }

 private:
  std::string name_or_other(const std::string& name) const {
    // What the library calls faces outside of any group.
    return name.empty() || name == "defaultobject" ? other_name_ : name;
  }

  void add_object(const aiNode& node, const placement& here) {
    const std::vector<unsigned int> parts(node.mMeshes, node.mMeshes + node.mNumMeshes);
    const auto [slot, fresh] = mesh_of_.try_emplace(parts, result_.meshes.size());
    if (fresh) {
      qv_file_mesh& mesh = result_.meshes.emplace_back();
      for (const unsigned int part : parts) append(mesh, *scene_.mMeshes[part]);
    }
    std::string name = text_of(node.mName);
    if (name.empty()) name = text_of(scene_.mMeshes[parts[0]]->mName);
    result_.objects.push_back({name_or_other(name), slot->second, here});
  }

  const aiScene& scene_;
  std::string other_name_;
  qv_double3 origin_;
  qv_triangle_file& result_;
  std::map<std::vector<unsigned int>, std::size_t> mesh_of_;
};

std::string lower_extension(const std::string& path) {
  std::string text = fs::path(path).extension().string();
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

}  // namespace

qv_double3 qv_file_object::place(const qv_3dvector& point) const {
  const auto row = [&](std::size_t r) {
    return placement[4 * r] * static_cast<double>(point.x) +
           placement[4 * r + 1] * static_cast<double>(point.y) +
           placement[4 * r + 2] * static_cast<double>(point.z) + placement[4 * r + 3];
  };
  return {row(0), row(1), row(2)};
}

qv_triangle_file qv_read_triangle_file(const std::string& path) {
  const std::string extension = lower_extension(path);
  std::string bytes = read_limited(path, "an OBJ or glTF file");
  qv_triangle_file result;
  result.is_y_up = extension == ".gltf" || extension == ".glb";
  if (!result.is_y_up && extension != ".obj")
    fail(path, "is neither OBJ nor glTF by its ending", "name an .obj, .gltf or .glb file");
  if (bytes.empty()) fail(path, "is empty", "export it again");
  qv_double3 origin;
  if (result.is_y_up) {
    result.unplaced = qv_check_gltf(path, bytes);
  } else {
    origin = qv_bring_obj_to_origin(bytes);
  }

  const captured_log log(result.warnings);
  Assimp::Importer importer;
  importer.SetIOHandler(new local_files(path, std::move(bytes)));  // the importer frees it
  importer.SetPropertyInteger(
      AI_CONFIG_PP_RVC_FLAGS,
      static_cast<int>(aiComponent_NORMALS | aiComponent_COLORS | aiComponent_TEXCOORDS |
                       aiComponent_TEXTURES | aiComponent_ANIMATIONS | aiComponent_LIGHTS |
                       aiComponent_CAMERAS | aiComponent_BONEWEIGHTS |
                       aiComponent_TANGENTS_AND_BITANGENTS));
  const aiScene* const scene = importer.ReadFile(
      path, static_cast<unsigned int>(aiProcess_Triangulate) | aiProcess_SortByPType |
                aiProcess_RemoveComponent | aiProcess_JoinIdenticalVertices);
  if (scene == nullptr || scene->mRootNode == nullptr ||
      (scene->mFlags & AI_SCENE_FLAGS_INCOMPLETE) != 0) {
    const std::string reason = qv_one_line(qv_valid_utf8(importer.GetErrorString()));
    fail(path,
         "cannot be read as " + std::string(result.is_y_up ? "glTF" : "OBJ") +
             (reason.empty() ? "" : " (" + reason + ")"),
         "export it again");
  }
  scene_reader(*scene, fs::path(path).stem().string(), origin, result).read();
  const bool has_face =
      std::any_of(result.meshes.begin(), result.meshes.end(),
                  [](const qv_file_mesh& mesh) { return !mesh.triangles.empty(); });
  if (!has_face) fail(path, "holds no face", "export it as a mesh of triangles");
  return result;
}

}  // namespace qv
