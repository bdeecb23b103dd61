#include "tests/support/qv_test_buildings.h"

#include "utilities/qv_polygon.h"

using namespace qv;

namespace qv_test {

namespace {

using contour = qv_list<qv_3dvector>;

contour shifted(const contour& vertices, const qv_3dvector& by) {
  contour result;
  for (const qv_3dvector& v : vertices) result.append(v + by);
  return result;
}

// The six inner sides of a box, each counter-clockwise seen from outside the box.
struct box_sides {
  contour down, up, minus_x, plus_x, minus_y, plus_y;
};

box_sides sides_of(const qv_3dvector& o, const qv_3dvector& s) {
  const auto at = [&](int x, int y, int z) {
    return o + qv_3dvector(static_cast<float>(x) * s.x, static_cast<float>(y) * s.y,
                           static_cast<float>(z) * s.z);
  };
  return {rectangle(at(0, 0, 0), at(0, 1, 0), at(1, 0, 0)),
          rectangle(at(0, 0, 1), at(1, 0, 1), at(0, 1, 1)),
          rectangle(at(0, 0, 0), at(0, 0, 1), at(0, 1, 0)),
          rectangle(at(1, 0, 0), at(1, 1, 0), at(1, 0, 1)),
          rectangle(at(0, 0, 0), at(1, 0, 0), at(0, 0, 1)),
          rectangle(at(0, 1, 0), at(0, 1, 1), at(1, 1, 0))};
}

}  // namespace

contour rectangle(const qv_3dvector& a, const qv_3dvector& b, const qv_3dvector& d) {
  return {a, b, b + d - a, d};
}

qvi_polygon* add_face(qv_item& parent, const contour& vertices) {
  qv_polygon region({0, 0, 0}, {0, 0, 0});
  region.add_contour(vertices);
  auto* face = new qvi_polygon;
  face->load_from_polygon(&region);
  face->set_raytracing_layers({"simulation", "picking", "bim"});
  face->set_rendering_layers({"main"});
  parent.add_child(face, -1);
  return face;
}

qvi_wall* add_wall(qv_item& parent, qvi_wall::wall_type type, qvi_space* space_0,
                   qvi_space* space_1, const contour& vertices, float thickness) {
  auto* wall = new qvi_wall;
  wall->set_wall_type(type);
  wall->set_space_0(space_0);
  wall->set_space_1(space_1);
  qvi_polygon* face = add_face(*wall, vertices);
  wall->set_normal(face->get_normal());
  wall->set_face_0(face);
  wall->set_face_1(
      thickness > 0 ? add_face(*wall, shifted(vertices, face->get_normal() * thickness)) : face);
  parent.add_child(wall, -1);
  return wall;
}

qvi_space* add_space(qv_item& parent, const std::string& name) {
  auto* space = new qvi_space;
  space->set_name(name);
  parent.add_child(space, -1);
  return space;
}

box_room add_box_room(qv_item& parent, const qv_3dvector& origin, const qv_3dvector& size,
                      float thickness) {
  const box_sides sides = sides_of(origin, size);
  box_room room;
  room.space = add_space(parent);
  const auto wall = [&](qvi_wall::wall_type type, const contour& side) {
    return add_wall(parent, type, room.space, nullptr, side, thickness);
  };
  room.floor = wall(qvi_wall::wall_type::floor, sides.down);
  room.sides[0] = wall(qvi_wall::wall_type::wall, sides.minus_y);
  room.sides[1] = wall(qvi_wall::wall_type::wall, sides.plus_x);
  room.sides[2] = wall(qvi_wall::wall_type::wall, sides.plus_y);
  room.sides[3] = wall(qvi_wall::wall_type::wall, sides.minus_x);
  room.roof = wall(qvi_wall::wall_type::roof, sides.up);
  return room;
}

block add_block(qv_item& parent, const qv_3dvector& origin, int count_x, int count_y, int count_z,
                const qv_3dvector& room, float thickness) {
  block result;
  result.count_x = count_x;
  result.count_y = count_y;
  result.count_z = count_z;
  for (int i = 0; i < count_x * count_y * count_z; ++i)
    result.spaces.push_back(add_space(parent, "S" + std::to_string(i)));

  using wall_type = qvi_wall::wall_type;
  const auto wall = [&](wall_type type, qvi_space* from, qvi_space* to, const contour& side) {
    result.walls.push_back(add_wall(parent, type, from, to, side, thickness));
  };
  for (int z = 0; z < count_z; ++z) {
    for (int y = 0; y < count_y; ++y) {
      for (int x = 0; x < count_x; ++x) {
        const qv_3dvector offset(static_cast<float>(x) * (room.x + thickness),
                                 static_cast<float>(y) * (room.y + thickness),
                                 static_cast<float>(z) * (room.z + thickness));
        const box_sides sides = sides_of(origin + offset, room);
        qvi_space* space = result.at(x, y, z);
        if (z == 0) wall(wall_type::floor, space, nullptr, sides.down);
        if (y == 0) wall(wall_type::wall, space, nullptr, sides.minus_y);
        if (x == 0) wall(wall_type::wall, space, nullptr, sides.minus_x);
        wall(wall_type::wall, space, x + 1 < count_x ? result.at(x + 1, y, z) : nullptr,
             sides.plus_x);
        wall(wall_type::wall, space, y + 1 < count_y ? result.at(x, y + 1, z) : nullptr,
             sides.plus_y);
        if (z + 1 < count_z)
          wall(wall_type::floor, space, result.at(x, y, z + 1), sides.up);
        else
          wall(wall_type::roof, space, nullptr, sides.up);
      }
    }
  }
  return result;
}

std::vector<block> add_street(qv_item& parent, int house_count) {
  constexpr float spacing = 15;  // m from one house to the next
  std::vector<block> houses;
  for (int i = 0; i < house_count; ++i)
    houses.push_back(add_block(parent, {static_cast<float>(i) * spacing, 0, 0}, 2, 1, 2));
  return houses;
}

}  // namespace qv_test
