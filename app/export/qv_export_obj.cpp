#include "app/export/qv_export_obj.h"

#include <array>
#include <charconv>
#include <cmath>
#include <unordered_map>

#include "app/export/qv_export_groups.h"
#include "app/report/qv_utf8.h"

namespace qv {
namespace {

template <class T>
void append_number(std::string& text, T value) {
  std::array<char, 32> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  text += ' ';
  text.append(buffer.data(), end);
}

void append_coordinate(std::string& text, float coordinate, double origin) {
  const float c = std::isfinite(coordinate) ? coordinate : 0.0f;
  if (origin == 0) {
    append_number(text, c);
  } else {
    append_number(text, static_cast<double>(c) + origin);
  }
}

// A name of the format ends at a blank.
std::string word(const std::string& name) {
  std::string text = qv_valid_utf8(name);
  for (char& c : text)
    if (static_cast<unsigned char>(c) <= ' ' || c == '\x7F') c = '_';
  return text;
}

// A second line of one name would go on with the first one's group.
class group_names {
 public:
  std::string give(const std::string& name) {
    const auto [last, is_new] = last_numbers_.try_emplace(name, 1);
    if (is_new) return name;
    std::string numbered;
    do {
      numbered = name + '-' + std::to_string(++last->second);
    } while (last_numbers_.contains(numbered));
    last_numbers_.emplace(numbered, 1);
    return numbered;
  }

 private:
  std::unordered_map<std::string, int> last_numbers_;  // of each name that was given
};

}  // namespace

std::string qv_export_obj(qv_scene& scene, const qv_double3& origin) {
  std::string text = "# metres, Z upwards; a group for each item, its kind as material\n";
  group_names names;
  int first = 1;  // indices count from 1 through the whole file
  for (const qv_export_group& group : qv_collect_export_groups(scene)) {
    text += "g " + names.give(word(group.name)) + "\nusemtl " + word(group.kind) + "\n";
    for (const qv_3dvector& vertex : group.triangles.vertices) {
      text += 'v';
      append_coordinate(text, vertex.x, origin.x);
      append_coordinate(text, vertex.y, origin.y);
      append_coordinate(text, vertex.z, origin.z);
      text += '\n';
    }
    const qv_list<int>& triangles = group.triangles.triangles;
    for (int i = 0; i + 2 < triangles.get_count(); i += 3) {
      text += 'f';
      for (int k = 0; k < 3; ++k) append_number(text, first + triangles[i + k]);
      text += '\n';
    }
    first += group.triangles.vertices.get_count();
  }
  return text;
}

}  // namespace qv
