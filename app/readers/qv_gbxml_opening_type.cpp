#include "app/readers/qv_gbxml_opening_type.h"

#include <array>
#include <cstddef>
#include <string>
#include <utility>

namespace {

using type = qv::qv_gbxml_opening_type;

constexpr std::array<const char*, 7> names = {"FixedWindow",
                                              "OperableWindow",
                                              "FixedSkylight",
                                              "OperableSkylight",
                                              "SlidingDoor",
                                              "NonSlidingDoor",
                                              "Air"};

std::string lower_case(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return lower;
}

}  // namespace

namespace qv {

qv_gbxml_opening_type qv_find_opening_type(std::string_view text, bool& guessed) {
  const std::string lower = lower_case(text);
  guessed = false;
  for (std::size_t i = 0; i < names.size(); ++i)
    if (lower == lower_case(names[i])) return static_cast<type>(i);
  guessed = true;
  constexpr std::pair<const char*, type> words[] = {{"skylight", type::fixed_skylight},
                                                    {"door", type::non_sliding_door},
                                                    {"window", type::fixed_window},
                                                    {"air", type::air}};
  for (const auto& [word, meant] : words)
    if (lower.find(word) != std::string::npos) return meant;
  return type::fixed_window;
}

const char* qv_get_opening_type_name(qv_gbxml_opening_type type) {
  return names[static_cast<std::size_t>(type)];
}

qvi_opening::opening_type qv_choose_opening_type(qv_gbxml_opening_type opening) {
  switch (opening) {
    case type::fixed_window:
    case type::operable_window:
      break;
    case type::fixed_skylight:
    case type::operable_skylight:
      return qvi_opening::opening_type::skylight;
    case type::sliding_door:
    case type::non_sliding_door:
    case type::air:
      return qvi_opening::opening_type::door;
  }
  return qvi_opening::opening_type::window;
}

bool qv_is_leaf(qv_gbxml_opening_type opening) {
  return opening == type::non_sliding_door;
}

}  // namespace qv
