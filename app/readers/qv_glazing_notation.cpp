#include "app/readers/qv_glazing_notation.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <optional>
#include <vector>

#include "app/readers/qv_input_error.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_glass.h"
#include "bim/materials/qvi_glazing_interlayer.h"
#include "bim/materials/qvi_glazing_pv.h"

namespace qv {
namespace {

constexpr float millimetre = 0.001f;
constexpr double thickest_layer = 1000;  // mm; more is a slip of the pen

// Soda lime float glass. Conductivity and emissivity: EN 673.
constexpr float glass_conductivity = 1.0f;  // W/(m·K)
constexpr float glass_emissivity = 0.837f;
constexpr double refractive_index = 1.52;
// Absorption of ordinary clear float: some 0.83 of the sun and 0.90 of the light pass 4 mm.
constexpr double solar_absorption = 25.0;  // 1/m
constexpr double light_absorption = 4.5;   // 1/m

struct optics {
  double transmittance;
  double reflectance;
};

// A pane with two plane faces, all reflexions between them counted.
optics clear_pane(double thickness, double absorption) {
  const double ratio = (refractive_index - 1) / (refractive_index + 1);
  const double r = ratio * ratio;                      // of one face
  const double a = std::exp(-absorption * thickness);  // of one passage
  const double passages = 1 - r * r * a * a;
  return {(1 - r) * (1 - r) * a / passages, r + r * (1 - r) * (1 - r) * a * a / passages};
}

/// A coating on 4 mm of clear float, figures of the usual kind; thicker glass keeps the part of the
/// transmittance that clear glass of its thickness keeps.
struct coating {
  const char* name;
  float emissivity;
  optics solar;             // reflectance of the coated side
  double solar_glass_side;  // reflectance of the other one
  optics light;
  double light_glass_side;
};
constexpr coating coatings[] = {
    {"low-e", 0.037f, {0.60, 0.28}, 0.24, {0.88, 0.05}, 0.05},
    {"sun-control", 0.02f, {0.27, 0.42}, 0.31, {0.56, 0.11}, 0.15},
};
constexpr double coated_thickness = 0.004;  // m

enum class side { front, back, both };

void set_coating(qvi_glazing_glass& pane, const coating& kind, side coated) {
  const double solar = kind.solar.transmittance *
                       clear_pane(pane.get_thickness(), solar_absorption).transmittance /
                       clear_pane(coated_thickness, solar_absorption).transmittance;
  const double light = kind.light.transmittance *
                       clear_pane(pane.get_thickness(), light_absorption).transmittance /
                       clear_pane(coated_thickness, light_absorption).transmittance;
  const bool front = coated != side::back;
  const bool back = coated != side::front;
  const auto reflectance = [](bool is_coated, double of_coating, double of_glass) {
    return static_cast<float>(is_coated ? of_coating : of_glass);
  };
  pane.set_solar_transmittance(static_cast<float>(solar));
  pane.set_visible_transmittance(static_cast<float>(light));
  pane.set_solar_reflectance_front(
      reflectance(front, kind.solar.reflectance, kind.solar_glass_side));
  pane.set_solar_reflectance_back(reflectance(back, kind.solar.reflectance, kind.solar_glass_side));
  pane.set_visible_reflectance_front(
      reflectance(front, kind.light.reflectance, kind.light_glass_side));
  pane.set_visible_reflectance_back(
      reflectance(back, kind.light.reflectance, kind.light_glass_side));
  if (front) pane.set_thermal_emissivity_front(kind.emissivity);
  if (back) pane.set_thermal_emissivity_back(kind.emissivity);
}

// --- reading ---

using words = std::vector<std::string>;

// Split at blanks, in lower case.
words split_words(std::string_view text) {
  words result;
  bool in_word = false;
  for (const char c : text) {
    const bool blank = c == ' ' || c == '\t' || c == '\n' || c == '\r';
    if (!blank && !in_word) result.emplace_back();
    in_word = !blank;
    if (!blank) result.back() += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return result;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\n\r";
  const std::size_t begin = text.find_first_not_of(blanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

// The number at the start of a word; the rest of the word is its unit.
std::optional<double> read_number(std::string_view word, std::string_view unit) {
  double value = 0;
  const auto [end, fault] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (fault != std::errc() || !std::isfinite(value)) return std::nullopt;
  const std::string_view rest(end, static_cast<std::size_t>(word.data() + word.size() - end));
  return rest.empty() || rest == unit ? std::optional(value) : std::nullopt;
}

class layer_reader {
 public:
  layer_reader(std::string_view text, bool behind_gap, const std::string& place)
      : text_(trimmed(text)), behind_gap_(behind_gap), place_(place), words_(split_words(text)) {}

  qvi_glazing_layer* read() {
    if (words_.empty()) fail("is empty", "give a thickness in millimetres, as in \"4\"");
    const auto millimetres = read_number(words_[0], "mm");
    if (!millimetres || !(*millimetres > 0) || *millimetres > thickest_layer)
      fail("does not begin with a thickness",
           "give it in millimetres, as in \"4\" or \"16 argon\"");
    next_ = 1;
    if (next_ < words_.size() && words_[next_] == "mm") ++next_;
    thickness_ = static_cast<float>(*millimetres) * millimetre;
    if (next_ == words_.size() || is_word("clear") || find_coating() != nullptr) return read_pane();
    if (is_word("interlayer")) return read_film<qvi_glazing_interlayer>();
    if (is_word("pv")) return read_film<qvi_glazing_pv>();
    return read_gap();
  }

 private:
  [[noreturn]] void fail(const std::string& problem, const std::string& advice) const {
    throw qv_input_error(qv_input_error::kind::bad_input,
                         {place_, 0, "layer", qv_one_line(std::string(text_))}, problem, advice);
  }
  bool is_word(std::string_view word) const {
    return next_ < words_.size() && words_[next_] == word;
  }
  const coating* find_coating() const {
    for (const coating& kind : coatings)
      if (is_word(kind.name)) return &kind;
    return nullptr;
  }
  void expect_end() const {
    if (next_ < words_.size())
      fail("ends with \"" + words_[next_] + "\", which says nothing here",
           "leave it out, or separate layers by \"/\"");
  }
  template <class T>
  std::unique_ptr<T, qv_item_destroyer> make(const std::string& name) const {
    std::unique_ptr<T, qv_item_destroyer> layer(new T);
    layer->set_thickness(thickness_);
    layer->set_name(name);
    return layer;
  }

  qvi_glazing_layer* read_pane() {
    const coating* const kind = find_coating();
    side coated = behind_gap_ ? side::front : side::back;
    if (next_ < words_.size()) ++next_;
    if (kind != nullptr && next_ < words_.size()) {
      if (is_word("front"))
        coated = side::front;
      else if (is_word("back"))
        coated = side::back;
      else if (is_word("both"))
        coated = side::both;
      else
        fail("has no side \"" + words_[next_] + "\" to be coated", "write front, back or both");
      ++next_;
    }
    expect_end();
    const char* const sides[] = {" front", " back", " both"};
    auto pane = make<qvi_glazing_glass>(
        kind == nullptr ? "clear" : kind->name + std::string(sides[static_cast<int>(coated)]));
    qv_set_clear_glass(*pane, thickness_);
    if (kind != nullptr) set_coating(*pane, *kind, coated);
    return pane.release();
  }

  template <class T>
  qvi_glazing_layer* read_film() {
    const std::string name = words_[next_++];
    expect_end();
    return make<T>(name).release();
  }

  // Pure, or pairs of a gas and its share; air fills up.
  qvi_glazing_layer* read_gap() {
    const auto& gases = qvi_glazing_gaz::get_gaz_type_list();
    const int pure_count = static_cast<int>(qvi_glazing_gaz::gaz_type::other);
    qv_list<float> shares = {0, 0, 0, 0, 0};
    double sum = 0;
    int first_gas = -1;
    bool has_shares = false;
    std::string name;
    while (next_ < words_.size()) {
      int gas = 0;
      while (gas < pure_count && gases[gas] != words_[next_]) ++gas;
      if (gas == pure_count)
        fail("\"" + words_[next_] + "\" is no gas and no kind of pane",
             "give one of air, argon, krypton, xenon, sf6, or clear, low-e, sun-control, "
             "interlayer, pv");
      if (first_gas < 0) first_gas = gas;
      name += (name.empty() ? "" : " ") + words_[next_++];
      double share = 100;
      if (next_ < words_.size() && words_[next_].ends_with('%')) {
        const auto percent = read_number(words_[next_], "%");
        if (!percent || *percent < 0 || *percent > 100)
          fail("\"" + words_[next_] + "\" is no share of a gas", "write 90%");
        share = *percent;
        has_shares = true;
        name += " " + words_[next_++];
      } else if (next_ < words_.size()) {
        fail("does not tell how much of it is " + gases[gas], "write argon 90% krypton 10%");
      } else if (has_shares) {
        share = 100 - sum;
      }
      shares[gas] += static_cast<float>(share / 100);
      sum += share;
    }
    constexpr double rounding = 1e-6;
    if (sum > 100 + rounding) fail("holds more than 100% of gas", "let the shares add up to 100%");
    if (sum < 100) shares[0] += static_cast<float>((100 - sum) / 100);
    auto gap = make<qvi_glazing_gaz>(name);
    if (has_shares) {
      gap->set_gaz_type(qvi_glazing_gaz::gaz_type::other);
      gap->set_gaz_mixing(shares);
    } else {
      gap->set_gaz_type(static_cast<qvi_glazing_gaz::gaz_type>(first_gas));
    }
    return gap.release();
  }

  std::string_view text_;
  bool behind_gap_;
  const std::string& place_;
  words words_;
  std::size_t next_ = 0;
  float thickness_ = 0;
};

}  // namespace

void qv_set_clear_glass(qvi_glazing_glass& pane, float thickness) {
  const optics solar = clear_pane(thickness, solar_absorption);
  const optics light = clear_pane(thickness, light_absorption);
  pane.set_thickness(thickness);
  pane.set_conductivity(glass_conductivity);
  pane.set_solar_transmittance(static_cast<float>(solar.transmittance));
  pane.set_solar_reflectance_front(static_cast<float>(solar.reflectance));
  pane.set_solar_reflectance_back(static_cast<float>(solar.reflectance));
  pane.set_visible_transmittance(static_cast<float>(light.transmittance));
  pane.set_visible_reflectance_front(static_cast<float>(light.reflectance));
  pane.set_visible_reflectance_back(static_cast<float>(light.reflectance));
  pane.set_thermal_transmittance(0.0f);
  pane.set_thermal_emissivity_front(glass_emissivity);
  pane.set_thermal_emissivity_back(glass_emissivity);
}

qvi_glazing_layer* qv_read_glazing_layer_notation(std::string_view text, bool behind_gap,
                                                  const std::string& place) {
  return layer_reader(text, behind_gap, place).read();
}

qv_owned_glazing qv_read_glazing_notation(const std::string& text) {
  qv_owned_glazing glazing(new qvi_glazing);
  glazing->set_name(qv_one_line(text));
  qv_list<qvi_glazing_layer*> layers;
  bool behind_gap = false;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find('/', begin), text.size());
    qvi_glazing_layer* const layer = qv_read_glazing_layer_notation(
        std::string_view(text).substr(begin, end - begin), behind_gap, "the glazing");
    glazing->add_child(layer, -1);
    layers.append(layer);
    behind_gap = behind_gap || layer->has_type("glazing_gaz");
    begin = end + 1;
  }
  glazing->set_layers(layers);
  return glazing;
}

}  // namespace qv
