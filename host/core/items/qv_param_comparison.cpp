#include <cmath>

#include "core/items/qv_param.h"
#include "core/items/qv_shared_value.h"

// How parameters compare with each other, and take over each other's values.

namespace qv {

namespace {

bool within(float a, float b, float tolerance) {
  return a == b || std::fabs(static_cast<double>(a) - static_cast<double>(b)) <=
                       static_cast<double>(tolerance);
}

}  // namespace

bool qv_param::has_same_value(const qv_param& other) const {
  if (get_kind() != other.get_kind()) return false;
  switch (get_kind()) {
    case type_float:
      return get_float() == other.get_float();
    case type_int:
    case type_enum:
      return get_int() == other.get_int();
    case type_bool:
      return get_bool() == other.get_bool();
    case type_3dvector:
      return get_3dvector() == other.get_3dvector();
    case type_color:
      return get_color() == other.get_color();
    case type_matrix:
      return get_matrix() == other.get_matrix();
    case type_string:
      return get_string() == other.get_string();
    case type_item:
      return get_item() == other.get_item();
    case type_float_list:
      return get_float_list() == other.get_float_list();
    case type_unsigned_list:
      return get_unsigned_list() == other.get_unsigned_list();
    case type_int_list:
    case type_enum_list:
      return get_int_list() == other.get_int_list();
    case type_3dvector_list:
      return get_3dvector_list() == other.get_3dvector_list();
    case type_string_list:
      return get_string_list() == other.get_string_list();
    case type_item_list:
      return get_item_list() == other.get_item_list();
  }
  return false;
}

bool qv_param::has_similar_value(const qv_param& other) const {
  const float tolerance = get_options().tolerance;
  if (tolerance <= 0 || get_kind() != other.get_kind()) {
    return has_same_value(other);
  }
  if (get_kind() == type_float) return within(get_float(), other.get_float(), tolerance);
  if (get_kind() == type_float_list) {
    const qv_list<float>& a = get_float_list();
    const qv_list<float>& b = other.get_float_list();
    if (a.get_count() != b.get_count()) return false;
    for (int i = 0; i < a.get_count(); ++i) {
      if (!within(a[i], b[i], tolerance)) return false;
    }
    return true;
  }
  return has_same_value(other);
}

bool qv_param::store_value_of(const qv_param& other) {
  if (get_kind() != other.get_kind()) return false;
  switch (get_kind()) {
    case type_float:
      store_float(other.get_float());
      break;
    case type_int:
    case type_enum:
      store_int(other.get_int());
      break;
    case type_bool:
      store_bool(other.get_bool());
      break;
    case type_3dvector:
      store_3dvector(other.get_3dvector());
      break;
    case type_color:
      store_color(other.get_color());
      break;
    case type_matrix:
      share_heap_value<qv_matrix>(storage_.heap, other.storage_.heap);
      break;
    case type_string:
      share_heap_value<std::string>(storage_.heap, other.storage_.heap);
      break;
    case type_item:
      store_item(other.get_item());
      break;
    case type_float_list:
      share_heap_value<qv_list<float>>(storage_.heap, other.storage_.heap);
      break;
    case type_unsigned_list:
      share_heap_value<qv_list<unsigned int>>(storage_.heap, other.storage_.heap);
      break;
    case type_int_list:
    case type_enum_list:
      share_heap_value<qv_list<int>>(storage_.heap, other.storage_.heap);
      break;
    case type_3dvector_list:
      share_heap_value<qv_list<qv_3dvector>>(storage_.heap, other.storage_.heap);
      break;
    case type_string_list:
      share_heap_value<qv_list<std::string>>(storage_.heap, other.storage_.heap);
      break;
    case type_item_list:
      store_item_list(other.get_item_list());
      break;
  }
  return true;
}

}  // namespace qv
