#pragma once

#include <string>
#include <type_traits>

#include "core/items/qv_param.h"
#include "utilities/qv_date.h"

namespace qv {

// One trait for each kind of parameter value: the kind that its declaration has, which declared
// kinds its setter accepts, how the value is read in place, when two values are equal, how one is
// stored. Accessors, setter and declaration are all made of these.

class qv_item;

/// Items derive from qv_item singly and first, so an item and its class share one address: the cast
/// needs no definition of the class, and a header can name a class that it only declares.
template <class T>
T* qv_item_cast(qv_item* item) {
  return reinterpret_cast<T*>(item);
}

template <class T>
struct qv_param_traits;

template <>
struct qv_param_traits<float> {
  using result = float;
  static constexpr qv_param::param_type declared = qv_param::type_float;
  static constexpr bool accepts(int type) { return type == qv_param::type_float; }
  static result get(const qv_param& p) { return p.get_float(); }
  static bool equals(const qv_param& p, float v) { return p.get_float() == v; }
  static void store(qv_param& p, float v) { p.store_float(v); }
};

template <class E>
requires std::is_enum_v<E> || std::is_same_v<E, int>
struct qv_param_traits<E> {
  using result = E;
  static constexpr qv_param::param_type declared =
      std::is_enum_v<E> ? qv_param::type_enum : qv_param::type_int;
  static constexpr bool accepts(int type) {
    return type == qv_param::type_int || type == qv_param::type_enum;
  }
  static result get(const qv_param& p) { return static_cast<E>(p.get_int()); }
  static bool equals(const qv_param& p, E v) { return p.get_int() == static_cast<int>(v); }
  static void store(qv_param& p, E v) { p.store_int(static_cast<int>(v)); }
};

template <>
struct qv_param_traits<bool> {
  using result = bool;
  static constexpr qv_param::param_type declared = qv_param::type_bool;
  static constexpr bool accepts(int type) { return type == qv_param::type_bool; }
  static result get(const qv_param& p) { return p.get_bool(); }
  static bool equals(const qv_param& p, bool v) { return p.get_bool() == v; }
  static void store(qv_param& p, bool v) { p.store_bool(v); }
};

// The kinds whose value lies in the parameter as the accessor shows it: read by reference.
#define QV_PARAM_TRAITS(type, stem, code)                                                \
  template <>                                                                            \
  struct qv_param_traits<type> {                                                         \
    using result = const type&;                                                          \
    static constexpr qv_param::param_type declared = qv_param::code;                     \
    static constexpr bool accepts(int t) { return t == qv_param::code; }                 \
    static result get(const qv_param& p) { return p.get_##stem(); }                      \
    static bool equals(const qv_param& p, const type& v) { return p.get_##stem() == v; } \
    static void store(qv_param& p, const type& v) { p.store_##stem(v); }                 \
  };
QV_PARAM_TRAITS(qv_3dvector, 3dvector, type_3dvector)
QV_PARAM_TRAITS(qv_color, color, type_color)
QV_PARAM_TRAITS(qv_matrix, matrix, type_matrix)
QV_PARAM_TRAITS(std::string, string, type_string)
QV_PARAM_TRAITS(qv_list<float>, float_list, type_float_list)
QV_PARAM_TRAITS(qv_list<unsigned int>, unsigned_list, type_unsigned_list)
QV_PARAM_TRAITS(qv_list<qv_3dvector>, 3dvector_list, type_3dvector_list)
QV_PARAM_TRAITS(qv_list<std::string>, string_list, type_string_list)
#undef QV_PARAM_TRAITS

template <class T>
struct qv_param_traits<T*> {
  using result = T*;
  static constexpr qv_param::param_type declared = qv_param::type_item;
  static constexpr bool accepts(int type) { return type == qv_param::type_item; }
  static result get(const qv_param& p) { return qv_item_cast<T>(p.get_item()); }
  static bool equals(const qv_param& p, T* v) { return p.get_item() == as_item(v); }
  static void store(qv_param& p, T* v) { p.store_item(as_item(v)); }
  static qv_item* as_item(T* v) {
    return reinterpret_cast<qv_item*>(const_cast<std::remove_const_t<T>*>(v));
  }
};

template <class E>
requires std::is_enum_v<E> || std::is_same_v<E, int>
struct qv_param_traits<qv_list<E>> {
  using result = qv_list<E>;
  static constexpr qv_param::param_type declared =
      std::is_enum_v<E> ? qv_param::type_enum_list : qv_param::type_int_list;
  static constexpr bool accepts(int type) {
    return type == qv_param::type_int_list || type == qv_param::type_enum_list;
  }
  static result get(const qv_param& p) {
    qv_list<E> list;
    list.reserve(p.get_int_list().get_count());
    for (int index : p.get_int_list()) list.append(static_cast<E>(index));
    return list;
  }
  static bool equals(const qv_param& p, const qv_list<E>& v) {
    const qv_list<int>& stored = p.get_int_list();
    if (stored.get_count() != v.get_count()) return false;
    for (int i = 0; i < v.get_count(); ++i)
      if (stored[i] != static_cast<int>(v[i])) return false;
    return true;
  }
  static void store(qv_param& p, const qv_list<E>& v) {
    qv_list<int> list;
    list.reserve(v.get_count());
    for (E index : v) list.append(static_cast<int>(index));
    p.store_int_list(list);
  }
};

template <class T>
struct qv_param_traits<qv_list<T*>> {
  using result = qv_list<T*>;
  static constexpr qv_param::param_type declared = qv_param::type_item_list;
  static constexpr bool accepts(int type) { return type == qv_param::type_item_list; }
  static result get(const qv_param& p) {
    qv_list<T*> list;
    list.reserve(p.get_item_list().get_count());
    for (qv_item* item : p.get_item_list()) list.append(qv_item_cast<T>(item));
    return list;
  }
  static bool equals(const qv_param& p, const qv_list<T*>& v) {
    const qv_list<qv_item*>& stored = p.get_item_list();
    if (stored.get_count() != v.get_count()) return false;
    for (int i = 0; i < v.get_count(); ++i)
      if (stored[i] != qv_param_traits<T*>::as_item(v[i])) return false;
    return true;
  }
  static void store(qv_param& p, const qv_list<T*>& v) {
    qv_list<qv_item*> list;
    list.reserve(v.get_count());
    for (T* item : v) list.append(qv_param_traits<T*>::as_item(item));
    p.store_item_list(list);
  }
};

}  // namespace qv
