#include <cmath>
#include <optional>

#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/materials/qvi_glazing.h"
#include "core/items/qv_scene.h"
#include "core/shapes/qvi_polygon.h"

namespace qv {

namespace {

constexpr float smallest_ratio = 0.001f;  // below, the window is removed
constexpr float largest_ratio = 0.99f;
constexpr int largest_step_count = 32;    // of the bisection
constexpr float area_tolerance = 0.001f;  // of the face's area

const qv_list<std::string>& get_visible_raytracing_layers() {
  static const qv_list<std::string> layers{"simulation", "picking", "bim"};
  return layers;
}

void show(qvi_polygon* face) {
  face->set_raytracing_layers(get_visible_raytracing_layers());
  face->set_rendering_layers({"main"});
  face->set_rendering_visibility(true);
}

void hide(qvi_polygon* face) {
  face->set_raytracing_layers({});
  face->set_rendering_layers({});
  face->set_rendering_visibility(false);
}

/// Whether `create_opening` made the opening: it comes from no import and is one polygon that
/// brings its glazing along.
bool is_generated(const qvi_opening& opening) {
  const qv_list<qv_item*>& pieces = opening.get_children();
  if (opening.get_source() != nullptr || !opening.get_source_ids().is_empty()) return false;
  if (pieces.get_count() != 1 || !pieces[0]->has_exact_type("polygon")) return false;
  const qv_list<qv_item*>& fillings = pieces[0]->get_children();
  return fillings.get_count() == 1 && fillings[0]->has_type("glazing");
}

qv_polygon to_polygon(qvi_polygon* face) {
  qv_polygon polygon;
  face->fill_polygon(&polygon);
  return polygon;
}

/// The single contour of `face` shrunk about the mean of its vertices to `ratio` of the area.
qv_polygon shrink(const qv_polygon& face, float ratio) {
  const qv_list<qv_3dvector> contour = face.get_contour(0);
  qv_3dvector mean;
  for (const qv_3dvector& vertex : contour) mean += vertex;
  mean *= 1.0f / static_cast<float>(contour.get_count());

  const float area = face.get_area();
  const float target = area * ratio;
  float low = 0.0f;
  float high = 1.0f;
  qv_polygon trial(face.get_point(), face.get_normal());
  for (int step = 0; step < largest_step_count; ++step) {
    const float s = (low + high) / 2.0f;
    qv_list<qv_3dvector> shrunk;
    for (const qv_3dvector& vertex : contour) shrunk.append(s * vertex + (1.0f - s) * mean);
    trial.clear();
    trial.add_contour(shrunk);
    const float error = (trial.get_area() - target) / area;
    if (std::fabs(error) < area_tolerance) break;
    (error > 0.0f ? high : low) = s;
  }
  return trial;
}

qvi_polygon* make_pierced_face(qvi_polygon* face, const qv_polygon& hole) {
  qv_polygon region = to_polygon(face);
  region.substracts(hole);
  auto* const pierced = new qvi_polygon;
  pierced->load_from_polygon(&region);
  pierced->set_raytracing_layers(get_visible_raytracing_layers());
  pierced->set_rendering_layers({"main"});
  pierced->set_front_shader(face->get_front_shader());
  pierced->set_back_shader(face->get_back_shader());
  return pierced;
}

/// What pierces a wall, for as long as it is being replaced: taken out of the scene side by side,
/// freed together at the end, since one polygon may serve both sides.
class old_piercing {
 public:
  explicit old_piercing(const qvi_wall& wall)
      : plain_{wall.get_face_0(), wall.get_face_1()},
        pierced_{wall.get_pierced_face_0(), wall.get_pierced_face_1()} {}
  old_piercing(const old_piercing&) = delete;
  old_piercing& operator=(const old_piercing&) = delete;
  ~old_piercing() {
    if (is_own(0)) qv_item::destroy(pierced_[0]);
    if (is_own(1) && pierced_[1] != pierced_[0]) qv_item::destroy(pierced_[1]);
  }

  /// Nothing when a plain face stands there.
  void take_out(int side) {
    if (is_own(side)) pierced_[side]->remove();
  }

 private:
  bool is_own(int side) const { return pierced_[side] != plain_[0] && pierced_[side] != plain_[1]; }

  qvi_polygon* plain_[2];
  qvi_polygon* pierced_[2];
};

}  // namespace

bool qvi_wall::create_opening(float ratio, bool notify) {
  qv_scene* const scene = get_scene();
  qvi_polygon* const faces[2] = {get_face_0(), get_face_1()};
  qvi_polygon* const old_pierced[2] = {get_pierced_face_0(), get_pierced_face_1()};
  if (scene == nullptr || !(ratio <= largest_ratio)) return false;
  for (int side = 0; side < 2; ++side) {
    if (faces[side] == nullptr || old_pierced[side] == nullptr) return false;
    if (faces[side]->get_contour_sizes().get_count() != 1) return false;
  }
  const qv_list<qv_item*> openings = scene->get_referrers("opening", "wall", this);
  if (!openings.is_empty() && (old_pierced[0] == faces[0] || old_pierced[1] == faces[1])) {
    return false;
  }
  for (const qv_item* opening : openings) {
    if (!is_generated(*static_cast<const qvi_opening*>(opening))) return false;
  }

  std::optional<qv_silence> silence;
  if (!notify) silence.emplace(scene);
  for (qv_item* opening : openings) destroy(opening);
  record_->openings.clear();  // the next precompute finds the new one
  if (ratio < smallest_ratio) {
    remove_piercing();
    precompute();
    return true;
  }

  const qv_polygon contour = shrink(to_polygon(faces[0]), ratio);
  qvi_polygon* const pierced_0 = make_pierced_face(faces[0], contour);
  qvi_polygon* const pierced_1 =
      faces[1] == faces[0] ? pierced_0 : make_pierced_face(faces[1], contour);
  add_generated_opening(contour);
  hide(faces[0]);
  hide(faces[1]);

  old_piercing old(*this);
  old.take_out(0);
  old.take_out(1);
  set_pierced_face_0(pierced_0);
  set_pierced_face_1(pierced_1);
  add_child(pierced_0, -1);
  if (pierced_1 != pierced_0) add_child(pierced_1, -1);
  return true;
}

void qvi_wall::remove_piercing() {
  old_piercing old(*this);
  if (get_pierced_face_0() != get_face_0()) {
    set_pierced_face_0(get_face_0());
    show(get_face_0());
    old.take_out(0);
  }
  if (get_pierced_face_1() != get_face_1()) {
    set_pierced_face_1(get_face_1());
    show(get_face_1());
    old.take_out(1);
  }
}

void qvi_wall::add_generated_opening(const qv_polygon& contour) {
  auto* const glazing = new qvi_glazing;
  auto* const pane = new qvi_polygon;
  pane->load_from_polygon(&contour);
  show(pane);
  pane->set_front_shader(glazing);
  pane->set_back_shader(glazing);
  pane->add_child(glazing, -1);

  auto* const opening = new qvi_opening;
  opening->set_name("Baie générée sur " + get_name());
  opening->set_opening_type(qvi_opening::opening_type::window);
  opening->set_normal(get_normal());
  opening->set_wall(this);
  opening->add_child(pane, -1);
  get_scene()->add_child(opening, -1);
}

}  // namespace qv
