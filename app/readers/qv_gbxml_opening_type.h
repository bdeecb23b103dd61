#pragma once

#include <string_view>

#include "bim/envelope/qvi_opening.h"

namespace qv {

/// What gbXML's attribute "openingType" of an Opening says.
enum class qv_gbxml_opening_type : int {
  fixed_window,
  operable_window,
  fixed_skylight,
  operable_skylight,
  sliding_door,
  non_sliding_door,
  air
};

/// The type called `text`; upper and lower case make no difference. Another text is `guessed` from
/// the word in it ("skylight", "door", "window", "air"), and is a fixed window where it holds none.
qv_gbxml_opening_type qv_find_opening_type(std::string_view text, bool& guessed);

/// gbXML's word for a type.
const char* qv_get_opening_type_name(qv_gbxml_opening_type type);

/// The type of the opening item: windows are windows, skylights skylights, and doors and openings
/// that nothing fills doors.
qvi_opening::opening_type qv_choose_opening_type(qv_gbxml_opening_type type);

/// Whether a door's leaf fills the opening where nothing else is said: sliding doors are glazed as
/// a rule, the others are not.
bool qv_is_leaf(qv_gbxml_opening_type type);

}  // namespace qv
