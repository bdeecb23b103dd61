#include "app/readers/qv_context.h"

#include <cmath>
#include <unordered_set>
#include <utility>

#include "app/readers/qv_gbxml_reader.h"
#include "app/readers/qv_source_polygon.h"
#include "app/readers/qv_triangle_file.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/imported/qvi_bim_object.h"
#include "bim/project/qvi_bim_root.h"
#include "core/shapes/qvi_mesh_instance.h"

namespace qv {
namespace {

using kind = qv_import_ledger::kind;
using outcome = qv_import_ledger::outcome;

// More would not fit beside the model into an ordinary computer.
constexpr std::size_t most_triangles = 50'000'000;

qv_3dvector to_single(const qv_double3& v) {
  return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

bool is_place(const qv_double3& p) {
  constexpr double limit = polygon_limits::largest_coordinate;
  return std::abs(p.x) <= limit && std::abs(p.y) <= limit && std::abs(p.z) <= limit;
}

// How many of something, in words; empty for none.
void add_count(std::string& words, std::size_t count, const char* one, const char* several) {
  if (count == 0) return;
  words += (words.empty() ? "" : ", ") + std::to_string(count) + ' ' + (count == 1 ? one : several);
}

// What of an object is left out.
struct losses {
  std::size_t without_area = 0;
  std::size_t nowhere = 0;  // a corner is no place
  std::size_t flat = 0;     // points and lines

  bool any() const { return without_area + nowhere + flat > 0; }
  void add(const losses& other) {
    without_area += other.without_area;
    nowhere += other.nowhere;
    flat += other.flat;
  }
  std::string words() const {
    std::string text;
    add_count(text, without_area, "triangle without area", "triangles without area");
    add_count(text, nowhere, "triangle with a corner that is no place",
              "triangles with a corner that is no place");
    add_count(text, flat, "point or line", "points or lines");
    return text + (without_area + nowhere + flat == 1 ? " was left out" : " were left out");
  }
};

// An object's triangles at their place in the model.
struct placed_mesh {
  std::vector<qv_double3> corners;
  qv_list<int> triangles;
  double area = 0;
  losses lost;
};

class context_builder {
 public:
  context_builder(qv_gbxml_model& model, const qv_context_options& options)
      : model_(model), options_(options) {
    for (const qv_item* item : model.scene->get_items("item"))
      if (item->has_unique_id()) ids_.insert(item->get_unique_id());
    const qv_list<qv_item*>& campuses = model.scene->get_items("campus");
    parent_ = campuses.is_empty() ? static_cast<qv_item*>(model.root) : campuses[0];
  }

  std::vector<std::string> run() {
    for (const std::string& path : options_.files) add_file(path);
    model_.warnings.insert(model_.warnings.end(), notes_.begin(), notes_.end());
    return std::move(notes_);
  }

 private:
  void add_file(const std::string& path) {
    const qv_triangle_file file = qv_read_triangle_file(path);
    check_size(path, file);
    is_y_up_ = options_.up == qv_up_axis::of_format ? file.is_y_up : options_.up == qv_up_axis::y;
    std::vector<std::size_t> uses(file.meshes.size(), 0);
    for (const qv_file_object& object : file.objects) ++uses[object.mesh];
    shared_.assign(file.meshes.size(), nullptr);
    losses lost;
    std::size_t dropped = 0;
    const std::size_t first_entry = model_.ledger.get_entries().size();
    for (const qv_file_object& object : file.objects) {
      const placed_mesh placed = place(file.meshes[object.mesh], object);
      lost.add(placed.lost);
      if (placed.triangles.is_empty()) {
        ++dropped;
        account(object.name, outcome::dropped, placed.lost.words(), 0);
        continue;
      }
      account(object.name, placed.lost.any() ? outcome::repaired : outcome::kept,
              placed.lost.any() ? placed.lost.words() : "", placed.area);
      const bool shares = uses[object.mesh] > 1 && !placed.lost.any();
      add_object(object, shares ? make_instance(file, object) : make_mesh(placed));
    }
    for (const std::string& name : file.unplaced)
      account(name, outcome::dropped, "the file places it nowhere", 0);
    if (dropped == file.objects.size())
      throw qv_input_error(qv_input_error::kind::bad_input, {path, 0, "", ""},
                           "holds no triangle that can stand somewhere: " + lost.words(),
                           "export it again");
    for (const std::string& warning : file.warnings) {
      std::string& note = notes_.emplace_back(path);
      note.append(": ").append(warning);
    }
    if (lost.any()) notes_.push_back(path + ": " + lost.words());
    add_note_of_objects(path, dropped + file.unplaced.size(),
                        model_.ledger.get_entries().size() - first_entry);
  }

  void add_note_of_objects(const std::string& path, std::size_t dropped, std::size_t count) {
    if (dropped == 0) return;
    notes_.push_back(path + ": " + std::to_string(dropped) + " of " + std::to_string(count) +
                     " objects have no triangle that stands somewhere");
  }

  static void check_size(const std::string& path, const qv_triangle_file& file) {
    std::size_t count = 0;
    for (const qv_file_object& object : file.objects)
      count += file.meshes[object.mesh].triangles.size() / 3;
    if (count > most_triangles)
      throw qv_input_error(qv_input_error::kind::bad_input, {path, 0, "", ""},
                           "holds " + std::to_string(count) + " triangles, more than 50 million",
                           "leave out what casts no shadow here");
  }

  qv_double3 to_model(const qv_double3& p) const {
    const qv_double3 origin(model_.origin[0], model_.origin[1], model_.origin[2]);
    return (is_y_up_ ? qv_double3(p.x, -p.z, p.y) : p) - origin;
  }

  placed_mesh place(const qv_file_mesh& mesh, const qv_file_object& object) const {
    placed_mesh result;
    result.corners.reserve(mesh.vertices.size());
    for (const qv_3dvector& vertex : mesh.vertices)
      result.corners.push_back(to_model(object.place(vertex)));
    result.lost.flat = mesh.flat_count;
    result.triangles.reserve(static_cast<int>(mesh.triangles.size()));
    for (std::size_t i = 0; i + 2 < mesh.triangles.size(); i += 3) {
      const qv_double3* corner[3];
      for (std::size_t k = 0; k < 3; ++k)
        corner[k] = &result.corners[static_cast<std::size_t>(mesh.triangles[i + k])];
      if (!is_place(*corner[0]) || !is_place(*corner[1]) || !is_place(*corner[2])) {
        ++result.lost.nowhere;
        continue;
      }
      // As the item will hold it.
      const qv_double3 a(to_single(*corner[0]));
      const double area = (qv_double3(to_single(*corner[1])) - a)
                              .cross(qv_double3(to_single(*corner[2])) - a)
                              .length() /
                          2;
      if (!(area > 0)) {
        ++result.lost.without_area;
        continue;
      }
      result.area += area;
      for (std::size_t k = 0; k < 3; ++k) result.triangles.append(mesh.triangles[i + k]);
    }
    return result;
  }

  static void show(qvi_mesh& mesh) {
    mesh.set_rendering_layers({"main"});
    mesh.set_raytracing_layers({"simulation", "picking"});
  }

  static qvi_mesh* make_mesh(const placed_mesh& placed) {
    auto* mesh = new qvi_mesh;
    qv_list<qv_3dvector> vertices;
    vertices.reserve(static_cast<int>(placed.corners.size()));
    for (const qv_double3& corner : placed.corners)
      vertices.append(is_place(corner) ? to_single(corner) : qv_3dvector());
    mesh->load_from_triangles(vertices, placed.triangles);
    show(*mesh);
    return mesh;
  }

  // A mesh that is seen at several places stands below the root, itself unseen.
  qvi_mesh* make_instance(const qv_triangle_file& file, const qv_file_object& object) {
    qvi_mesh*& shared = shared_[object.mesh];
    if (shared == nullptr) {
      const qv_file_mesh& source = file.meshes[object.mesh];
      shared = new qvi_mesh;
      qv_list<qv_3dvector> vertices;
      vertices.reserve(static_cast<int>(source.vertices.size()));
      for (const qv_3dvector& vertex : source.vertices) vertices.append(vertex);
      qv_list<int> triangles;
      triangles.reserve(static_cast<int>(source.triangles.size()));
      for (const int index : source.triangles) triangles.append(index);
      shared->load_from_triangles(vertices, triangles);
      shared->set_rendering_visibility(false);
      model_.root->add_child(shared, -1);
    }
    auto* instance = new qvi_mesh_instance;
    instance->set_mesh(shared);
    instance->set_matrix(matrix_of(object));
    show(*instance);
    return instance;
  }

  qv_matrix matrix_of(const qv_file_object& object) const {
    const qv_double3 origin = to_model(object.place({0, 0, 0}));
    qv_matrix matrix;
    for (int column = 0; column < 4; ++column) {
      const qv_3dvector axis(column == 0 ? 1.0f : 0.0f, column == 1 ? 1.0f : 0.0f,
                             column == 2 ? 1.0f : 0.0f);
      const qv_double3 end = column == 3 ? origin : to_model(object.place(axis)) - origin;
      matrix.set(0, column, static_cast<float>(end.x));
      matrix.set(1, column, static_cast<float>(end.y));
      matrix.set(2, column, static_cast<float>(end.z));
    }
    return matrix;
  }

  void add_object(const qv_file_object& source, qvi_mesh* mesh) {
    auto* object = new qvi_bim_object;
    object->set_name(source.name);
    object->set_unique_id(next_id());
    object->set_source_id(source.name);
    object->set_source_type("context");
    object->set_bim_type(qvi_bim_object::bim_type::other);
    object->set_original_bim_type(qvi_bim_object::bim_type::other);
    if (mesh->has_type("mesh_instance"))
      object->set_matrix(static_cast<qvi_mesh_instance*>(mesh)->get_matrix());
    object->add_child(mesh, -1);
    parent_->add_child(object, -1);
  }

  // The same in each run, and no other item's.
  std::string next_id() {
    std::string id;
    do {
      id = "context-" + std::to_string(++number_);
    } while (!ids_.insert(id).second);
    return id;
  }

  void account(const std::string& name, outcome result, const std::string& reason, double area) {
    qv_import_ledger::entry entry;
    entry.what = kind::object;
    entry.id = name;
    entry.result = result;
    entry.reason = reason;
    entry.area = area;
    model_.ledger.add(std::move(entry));
  }

  qv_gbxml_model& model_;
  const qv_context_options& options_;
  qv_item* parent_ = nullptr;
  std::unordered_set<std::string> ids_;
  std::size_t number_ = 0;
  std::vector<std::string> notes_;
  // Of the file at hand.
  bool is_y_up_ = false;
  std::vector<qvi_mesh*> shared_;
};

}  // namespace

std::vector<std::string> qv_add_context(qv_gbxml_model& model, const qv_context_options& options) {
  if (options.files.empty()) return {};
  return context_builder(model, options).run();
}

}  // namespace qv
