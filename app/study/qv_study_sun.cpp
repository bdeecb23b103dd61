#include "app/study/qv_study_sun.h"

#include <cmath>
#include <mutex>

#include "app/readers/qv_epw.h"
#include "app/readers/qv_gbxml_reader.h"
#include "app/study/qv_in_parallel.h"
#include "app/study/qv_orientation.h"
#include "app/study/qv_study_gather.h"
#include "app/study/qv_study_results.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"
#include "core/light/qvi_sun.h"
#include "utilities/qv_log.h"

namespace qv {
namespace {

/// What `compute_solar_income` is asked for.
struct effort {
  int direct_rays;
  int montecarlo_factor;
  float direct_error;
  float diffuse_error;
};
/// Each hour with sun gets 16 rays at least; paths go on until their sum is known so well.
constexpr effort efforts[] = {{1024, 1, 0.02f, 0.05f}, {8192, 2, 0, 0.01f}, {131072, 1, 0, 0.004f}};

/// Degrees from the vertical within which a surface looks up or down.
constexpr double level_tilt = 30;
/// Degrees of latitude or longitude beyond which the weather is that of another place.
constexpr double near_place = 2;
constexpr double watts_per_kilowatt = 1000;
constexpr double ninety_five_percent = 1.96;

/// One surface: the item's own results, and where what is made of them goes.
struct surface {
  qvi_wall* wall = nullptr;
  qvi_opening* opening = nullptr;
  std::optional<qv_surface_sun>* result = nullptr;
  double area = 0;
  std::optional<double> solar_factor;

  const qv_solar_income& get_income() const {
    if (wall != nullptr) return *wall;
    return *opening;
  }
  const qv_3dvector& get_normal() const {
    return wall != nullptr ? wall->get_normal() : opening->get_normal();
  }
  void compute(const effort& with, int reflexions) const {
    if (wall != nullptr) {
      wall->compute_solar_income(with.direct_rays, with.montecarlo_factor, reflexions,
                                 with.direct_error, with.diffuse_error);
    } else {
      opening->compute_solar_income(with.direct_rays, with.montecarlo_factor, reflexions,
                                    with.direct_error, with.diffuse_error);
    }
  }
};

/// The module says "done" for each surface, which is not for the user.
class quiet_log {
 public:
  quiet_log() : previous_(qv_set_log_handler([](const std::string&) {})) {}
  quiet_log(const quiet_log&) = delete;
  quiet_log& operator=(const quiet_log&) = delete;
  ~quiet_log() { qv_set_log_handler(std::move(previous_)); }

 private:
  qv_log_handler previous_;
};

std::optional<qv_weather> get_weather(const qv_solar_options& options, qv_study_results& study) {
  const qv_study_location& here = study.location;
  if (options.weather.empty()) {
    if (!here.latitude || std::fabs(*here.latitude) > 90) {
      study.notes.emplace_back(
          "the sun was not computed: the model does not say its latitude; --weather names a file");
      return std::nullopt;
    }
    if (*here.latitude == 0.0 && here.longitude == 0.0)
      study.notes.emplace_back(
          "the model lies at latitude 0 and longitude 0, which files say that know no place: its "
          "sun is that of the equator; --weather names a file");
    return qv_make_clear_sky_year(*here.latitude, here.longitude.value_or(0.0),
                                  here.elevation.value_or(0.0));
  }
  qv_weather weather = qv_read_epw(options.weather);
  for (const std::string& warning : weather.warnings)
    study.notes.push_back(options.weather + ": " + warning);
  const bool far = (here.latitude && std::fabs(*here.latitude - weather.latitude) > near_place) ||
                   (here.longitude && std::fabs(*here.longitude - weather.longitude) > near_place);
  if (far) study.notes.push_back(options.weather + ": is the weather of another place");
  return weather;
}

std::vector<surface> list_surfaces(qv_scene& scene, const std::string& only,
                                   qv_study_results& study) {
  std::vector<surface> surfaces;
  study.sun.walls.assign(study.walls.size(), std::nullopt);
  study.sun.openings.assign(study.openings.size(), std::nullopt);
  const auto is_wanted = [&only](const std::string& id) { return only.empty() || id == only; };
  std::size_t index = 0;
  for (qv_item* item : scene.get_items("wall")) {
    auto* wall = static_cast<qvi_wall*>(item);
    const std::size_t here = index++;
    if (here >= study.walls.size() || !is_wanted(study.walls[here].id)) continue;
    if (!study.walls[here].is_loss() || !wall->is_exterior()) continue;
    surfaces.push_back({wall, nullptr, &study.sun.walls[here], wall->get_loss_area(), {}});
  }
  index = 0;
  for (qv_item* item : scene.get_items("opening")) {
    auto* opening = static_cast<qvi_opening*>(item);
    const std::size_t here = index++;
    if (here >= study.openings.size() || !is_wanted(study.openings[here].id)) continue;
    if (opening->get_wall() != nullptr && !opening->get_wall()->is_exterior()) continue;
    std::optional<double> solar_factor;
    if (study.openings[here].solar_factor) solar_factor = *study.openings[here].solar_factor;
    surfaces.push_back(
        {nullptr, opening, &study.sun.openings[here], opening->get_full_area(), solar_factor});
  }
  return surfaces;
}

qv_surface_sun sum_up(const surface& from, const qv_weather& weather,
                      const qv_solar_options& options) {
  const qv_solar_income& income = from.get_income();
  const float* series[4] = {
      income.get_solar_income_direct_direct(), income.get_solar_income_direct_diffuse(),
      income.get_solar_income_indirect_direct(), income.get_solar_income_indirect_diffuse()};
  const double scale = weather.step_hours / watts_per_kilowatt;
  qv_surface_sun sun;
  std::array<double, 4> sums{};
  for (std::size_t i = 0; i < weather.steps.size(); ++i) {
    double step = 0;
    for (std::size_t k = 0; k < 4; ++k) {
      sums[k] += series[k][i];
      step += series[k][i];
    }
    sun.monthly_total[static_cast<std::size_t>(weather.steps[i].month - 1)] += step * scale;
  }
  sun.direct = sums[0] * scale;
  sun.diffuse = sums[1] * scale;
  sun.reflected = (sums[2] + sums[3]) * scale;
  sun.total = sun.direct + sun.diffuse + sun.reflected;
  sun.half_width_95 = ninety_five_percent * income.get_solar_income_cumulated_sigma() * scale;
  if (from.solar_factor) {
    sun.monthly_heat.emplace();
    for (std::size_t m = 0; m < 12; ++m)
      (*sun.monthly_heat)[m] = sun.monthly_total[m] * from.area * *from.solar_factor;
  }
  if (options.keep_hours) {
    sun.hours.resize(weather.steps.size());
    for (std::size_t i = 0; i < sun.hours.size(); ++i)
      sun.hours[i] = series[0][i] + series[1][i] + series[2][i] + series[3][i];
  }
  if (options.keep_hours && !options.only.empty()) {
    sun.hour_parts[0].assign(series[0], series[0] + weather.steps.size());
    sun.hour_parts[1].assign(series[1], series[1] + weather.steps.size());
    for (std::size_t i = 0; i < weather.steps.size(); ++i)
      sun.hour_parts[2].push_back(series[2][i] + series[3][i]);
  }
  return sun;
}

const char* name_orientation(const qv_3dvector& normal) {
  const qv_wall_direction direction = qv_direction_of(normal);
  if (!direction.tilt) return nullptr;
  if (*direction.tilt < level_tilt) return "up";
  if (*direction.tilt > 180 - level_tilt) return "down";
  const auto orientation = qv_orientation_of(direction.azimuth.value_or(0.0f));
  return orientation ? qv_orientation_name(*orientation) : nullptr;
}

void add_up_orientations(const std::vector<surface>& surfaces, qv_study_sun& sun) {
  for (const char* name : {"north", "east", "south", "west", "up", "down"})
    sun.orientations.push_back({name, 0, 0, 0});
  for (const surface& from : surfaces) {
    const char* name = name_orientation(from.get_normal());
    for (qv_sun_by_orientation& group : sun.orientations) {
      if (name == nullptr || group.orientation != name) continue;
      ++group.surfaces;
      group.area += from.area;
      group.total += from.area * (*from.result)->total;
    }
  }
}

}  // namespace

const qv_surface_sun* qv_study_sun::get_wall(std::size_t index) const {
  return index < walls.size() && walls[index] ? &*walls[index] : nullptr;
}

const qv_surface_sun* qv_study_sun::get_opening(std::size_t index) const {
  return index < openings.size() && openings[index] ? &*openings[index] : nullptr;
}

void qv_compute_sun(const qv_gbxml_model& model, const qv_solar_options& options,
                    const qv_solar_progress& progress, qv_study_results& study) {
  const std::optional<qv_weather> weather = get_weather(options, study);
  if (!weather) return;
  study.sun.weather = weather->source;
  study.sun.place = weather->place;
  study.sun.latitude = weather->latitude;
  study.sun.longitude = weather->longitude;
  study.sun.step_hours = weather->step_hours;
  for (const qv_weather_step& step : weather->steps)
    study.sun.times.push_back({step.month, step.day, step.hour});

  qv_scene& scene = *model.scene;
  auto* sun = new qvi_sun;
  scene.add_child(sun, 0);
  qv_fill_sun(*weather, 0.0, *sun);  // the campus stands turned to true north

  const std::vector<surface> surfaces = list_surfaces(scene, options.only, study);
  const effort& with = efforts[static_cast<int>(options.quality)];
  const quiet_log quiet;
  std::mutex mutex;
  std::size_t done = 0;
  // Each surface's result is its own whatever thread computes it.
  const bool finished = qv_in_parallel(surfaces.size(), options.threads, [&](std::size_t i) {
    surfaces[i].compute(with, options.reflexions);
    *surfaces[i].result = sum_up(surfaces[i], *weather, options);
    const std::lock_guard guard(mutex);
    ++done;
    return !progress || progress(done, surfaces.size());
  });
  if (!finished) throw qv_interrupted();
  add_up_orientations(surfaces, study.sun);
}

}  // namespace qv
