#include "bench/solar_town.h"

#include <cmath>

#include "app/readers/qv_weather.h"
#include "core/light/qvi_sun.h"
#include "core/shapes/qvi_shader.h"

using namespace qv;

namespace qv_bench {

solar_town::solar_town(float reflexion) : shader_(new qvi_shader) {
  scene.add_child(shader_, -1);
  shader_->set_diffuse_reflexion(reflexion, qv_spectrum::solar);
  static const qv_weather weather = qv_make_clear_sky_year(45.7, 4.9, 200);
  auto* sun = new qvi_sun;
  scene.add_child(sun, -1);
  qv_fill_sun(weather, 0, *sun);
}

void solar_town::add_patch(const qv_3dvector& a, const qv_3dvector& u, const qv_3dvector& v,
                           int detail) {
  qv_list<qv_3dvector> vertices;
  qv_list<int> triangles;
  for (int i = 0; i <= detail; ++i) {
    for (int k = 0; k <= detail; ++k) {
      const auto part = [detail](int n) {
        return static_cast<float>(n) / static_cast<float>(detail);
      };
      vertices.append(a + u * part(i) + v * part(k));
      if (i == detail || k == detail) continue;
      const int corner = i * (detail + 1) + k, next = corner + detail + 1;
      for (int index : {corner, next, next + 1, corner, next + 1, corner + 1})
        triangles.append(index);
    }
  }
  auto* mesh = new qvi_mesh;
  scene.add_child(mesh, -1);
  mesh->load_from_triangles(vertices, triangles);
  mesh->set_front_shader(shader_);
  mesh->set_back_shader(shader_);
  mesh->set_raytracing_layers({"simulation"});
}

void solar_town::add_building(const qv_3dvector& low, const qv_3dvector& high, int columns,
                              int rows, int detail, bool receives) {
  const float x = high.x - low.x, y = high.y - low.y, z = high.z - low.z;
  const qv_3dvector corners[4] = {
      low, {high.x, low.y, low.z}, {high.x, high.y, low.z}, {low.x, high.y, low.z}};
  const qv_3dvector along[4] = {{x, 0, 0}, {0, y, 0}, {-x, 0, 0}, {0, -y, 0}};
  for (int side = 0; side < 4; ++side) {
    for (int i = 0; i < columns; ++i) {
      for (int k = 0; k < rows; ++k) {
        const qv_3dvector u = along[side] / static_cast<float>(columns);
        const qv_3dvector v = qv_3dvector(0, 0, z) / static_cast<float>(rows);
        const qv_3dvector a = corners[side] + u * static_cast<float>(i) + v * static_cast<float>(k);
        add_patch(a, u, v, detail);
        if (!receives) continue;
        qv_polygon facade(a, u.cross(v).normalized());
        facade.add_contour({a, a + u, a + u + v, a + v});
        facades.push_back(facade);
      }
    }
  }
  add_patch({low.x, low.y, high.z}, {x, 0, 0}, {0, y, 0}, detail);
}

void solar_town::add_ground(float half_size) {
  add_patch({-half_size, -half_size, 0}, {2 * half_size, 0, 0}, {0, 2 * half_size, 0}, 1);
}

void make_box(solar_town& town) {
  town.add_building({-5, -5, 0}, {5, 5, 6}, 1, 1);
  for (const auto& [x, y] :
       {std::pair(-18, 0), std::pair(18, 0), std::pair(0, -18), std::pair(0, 18)}) {
    const auto fx = static_cast<float>(x), fy = static_cast<float>(y);
    town.add_building({fx - 5, fy - 5, 0}, {fx + 5, fy + 5, 9}, 1, 1, 1, false);
  }
  qv_polygon roof({-5, -5, 6}, {0, 0, 1});
  roof.add_contour({{-5, -5, 6}, {5, -5, 6}, {5, 5, 6}, {-5, 5, 6}});
  town.facades.push_back(roof);
  town.add_ground(60);
}

void make_courtyard(solar_town& town) {
  town.add_building({-20, 12, 0}, {20, 22, 15}, 3, 1);
  town.add_building({-20, -22, 0}, {20, -12, 12}, 3, 1);
  town.add_building({-30, -11, 0}, {-20, 11, 15}, 2, 1);
  town.add_building({20, -11, 0}, {30, 11, 9}, 2, 1);
  town.add_ground(80);
}

void make_block(solar_town& town, int receivers, int detail) {
  const int blocks = receivers / 40;
  const int side = static_cast<int>(std::ceil(std::sqrt(blocks)));
  for (int i = 0; i < blocks; ++i) {
    const int column = i % side, row = i / side;
    const float x = static_cast<float>(column) * 35, y = static_cast<float>(row) * 28;
    const float height = 9 + static_cast<float>(i * 7 % 5) * 3;
    town.add_building({x, y, 0}, {x + 22, y + 14, height}, 5, 2, detail);
  }
  town.add_ground(static_cast<float>(side) * 60);
}

facade_receiver::facade_receiver(solar_town& town, const qv_polygon& facade,
                                 const solar_effort& effort)
    : qv_receiver(&town.scene, nullptr, "simulation") {
  set_polygon(facade);
  set_normal(facade.get_normal());
  set_offset(0.01f);
  set_direct_rays(effort.direct_rays);
  set_montecarlo_rays(effort.montecarlo_rays);
  set_ray_depth(effort.ray_depth);
  set_diffuse_error(effort.diffuse_error);
}

double facade_receiver::get_year() const {
  const qvi_sun* sun = get_sun();
  const qv_list<float>& direct = sun->get_direct_irradiation();
  const qv_list<float>& diffuse = sun->get_diffuse_irradiation();
  double sum = 0;
  for (int i = 0; i < sun->get_nb_values(); ++i) {
    sum += direct[i] * (static_cast<double>(get_direct_direct(i)) + get_indirect_direct(i));
    sum += diffuse[i] * (static_cast<double>(get_direct_diffuse(i)) + get_indirect_diffuse(i));
  }
  return sum;
}

}  // namespace qv_bench
