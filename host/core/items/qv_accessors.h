#pragma once

#include <cassert>
#include <cstdint>
#include <limits>
#include <new>
#include <type_traits>

#include "core/items/qv_item.h"

// The vocabulary of item class headers. A class reads like the table of its parameters:
//
//   class qvi_matter : public qvi_shader {
//     QV_ITEM_CLASS(qvi_matter, qvi_shader, "matter")
//    public:
//     enum class material_typology : int { heavy_structure, light_structure, … };
//     QV_ENUM_LIST(material_typology, "heavy_structure", "light_structure", …)
//
//     QV_PARAM_ENUM(material_typology, typology, material_typology::other)
//     QV_PARAM(float, conductivity, 0.0f, {.tolerance = 0.001f})   // W/(m·K)
//   };
//
// and its source has one line, QV_ITEM_CLASS_IMPLEMENTATION(qvi_matter), beside its own logic.
//
// Each parameter line declares the parameter with its default when an item is constructed (in the
// order of the lines, after the class's type is installed), keeps its index as X_param_, and gives
// get_X, get_X_date and set_X.

/// Opens an item class: constructors, assignment, destructor, `copy`, and the registration of its
/// type. The class goes on with public members.
#define QV_ITEM_CLASS(class_name, base_name, item_type_name)                      \
 public:                                                                          \
  class_name();                                                                   \
  class_name(const class_name&);                                                  \
  class_name& operator=(const class_name&);                                       \
  ~class_name() override;                                                         \
  /** A new item of this class with default values; null when memory is short. */ \
  ::qv::qv_item* copy() const override;                                           \
                                                                                  \
 private:                                                                         \
  static inline ::qv::qv_item_type* type_record_ = nullptr;                       \
  struct type_installer {                                                         \
    explicit type_installer(class_name* item) {                                   \
      item->template install_type<class_name>(type_record_, item_type_name);      \
    }                                                                             \
  };                                                                              \
  [[no_unique_address]] type_installer type_installer_{this};                     \
                                                                                  \
 public:

/// The constructors, assignment, destructor and `copy` of QV_ITEM_CLASS, for a class whose
/// constructor has nothing to add.
#define QV_ITEM_CLASS_IMPLEMENTATION(class_name) \
  class_name::class_name() = default;            \
  QV_ITEM_CLASS_COPYING(class_name)

/// As QV_ITEM_CLASS_IMPLEMENTATION without the default constructor, for a class that writes its
/// own.
#define QV_ITEM_CLASS_COPYING(class_name)                         \
  class_name::class_name(const class_name&) = default;            \
  class_name& class_name::operator=(const class_name&) = default; \
  class_name::~class_name() = default;                            \
  ::qv::qv_item* class_name::copy() const {                       \
    return ::qv::qv_new_item<class_name>();                       \
  }

/// The static label list of an enumeration: `get_<enum>_list()`, index 0 first, filled on the first
/// call.
#define QV_ENUM_LIST(enum_name, ...)                                  \
  static const ::qv::qv_list<std::string>& get_##enum_name##_list() { \
    static ::qv::qv_list<std::string> labels;                         \
    if (labels.get_count() == 0)                                      \
      for (const char* label : {__VA_ARGS__}) labels.append(label);   \
    return labels;                                                    \
  }

namespace qv {

/// How a setter takes its value: numbers, enumerations and pointers by value, what is larger by
/// reference.
template <class T>
using qv_setter_argument = std::conditional_t<std::is_scalar_v<T>, T, const T&>;

}  // namespace qv

/// What every parameter line has in common: accessors of type T over the parameter handle.
#define QV_PARAM_ACCESSORS(T_, name)                                                      \
  ::qv::qv_param_traits<QV_UNPAREN T_>::result get_##name() const {                       \
    return ::qv::qv_param_traits<QV_UNPAREN T_>::get(*this->get_param(name##_param_));    \
  }                                                                                       \
  unsigned int get_##name##_date() const {                                                \
    return this->get_param(name##_param_)->get_date();                                    \
  }                                                                                       \
  void set_##name(::qv::qv_setter_argument<QV_UNPAREN T_> value) {                        \
    this->template set_param_value<QV_UNPAREN T_>(this->get_param(name##_param_), value); \
  }
#define QV_UNPAREN(...) __VA_ARGS__

/// A scalar, string, vector, colour or matrix parameter: QV_PARAM(float, psi, 0.0f[, {options}]).
#define QV_PARAM(type, name, ...)                            \
  QV_PARAM_ACCESSORS((type), name)                           \
 private:                                                    \
  std::uint8_t name##_param_ = ::qv::qv_declare_param<type>( \
      this, [] { return #name; }, __VA_ARGS__);              \
                                                             \
 public:

/// An enumeration parameter over an enumeration of the class: QV_PARAM_ENUM(wall_type, wall_type,
/// wall_type::floor).
#define QV_PARAM_ENUM(enum_name, name, default_value)                       \
  QV_PARAM_ACCESSORS((enum_name), name)                                     \
 private:                                                                   \
  std::uint8_t name##_param_ = ::qv::qv_declare_enum<enum_name>(            \
      this, [] { return #name; }, get_##enum_name##_list(), default_value); \
                                                                            \
 public:

/// A list of enumeration values: QV_PARAM_ENUM_LIST(qvi_wall, contact_type, contact_types).
#define QV_PARAM_ENUM_LIST(owner_class, enum_name, name)                                     \
  QV_PARAM_ACCESSORS((::qv::qv_list<owner_class::enum_name>), name)                          \
 private:                                                                                    \
  std::uint8_t name##_param_ = ::qv::qv_declare_enum<::qv::qv_list<owner_class::enum_name>>( \
      this, [] { return #name; }, owner_class::get_##enum_name##_list(), {});                \
                                                                                             \
 public:

/// A reference to another item, initially null: QV_PARAM_ITEM(qvi_building, building[, {options}]).
#define QV_PARAM_ITEM(type, name, ...)                                                      \
  QV_PARAM_ACCESSORS((type*), name)                                                         \
 private:                                                                                   \
  std::uint8_t name##_param_ =                                                              \
      ::qv::qv_declare_empty<type*>(this, [] { return #name; } __VA_OPT__(, ) __VA_ARGS__); \
                                                                                            \
 public:

/// A list of references, initially empty: QV_PARAM_ITEM_LIST(qvi_matter, layers[, {options}]).
#define QV_PARAM_ITEM_LIST(type, name, ...)                                  \
  QV_PARAM_ACCESSORS((::qv::qv_list<type*>), name)                           \
 private:                                                                    \
  std::uint8_t name##_param_ = ::qv::qv_declare_empty<::qv::qv_list<type*>>( \
      this, [] { return #name; } __VA_OPT__(, ) __VA_ARGS__);                \
                                                                             \
 public:

/// A list of values (float, unsigned int, std::string or qv_3dvector), initially empty:
/// QV_PARAM_LIST(float, floors[, {options}]).
#define QV_PARAM_LIST(type, name, ...)                                      \
  QV_PARAM_ACCESSORS((::qv::qv_list<type>), name)                           \
 private:                                                                   \
  std::uint8_t name##_param_ = ::qv::qv_declare_empty<::qv::qv_list<type>>( \
      this, [] { return #name; } __VA_OPT__(, ) __VA_ARGS__);               \
                                                                            \
 public:

namespace qv {

/// A new item of class T with default values, or null when memory is short.
template <class T>
T* qv_new_item() {
  try {
    return new T;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

// Each line of a class header has its declaration looked up once, when the first item of the class
// is made: `name` is a function without state, of a type of its own for each line, that returns the
// parameter's name. Name, labels and options are therefore the same at every call.

/// Declares a parameter of `item` that starts as 0, null or empty, and returns its index.
template <class T, class Name>
std::uint8_t qv_declare_empty(qv_item* item, Name name, const qv_param_options& options = {}) {
  static const unsigned int declaration =
      qv_item::get_declaration(name(), qv_param_traits<T>::declared, nullptr, options);
  const int index = item->add_param(declaration);
  assert(index <= std::numeric_limits<std::uint8_t>::max());
  return static_cast<std::uint8_t>(index);
}

/// Declares a parameter of `item` that starts as `value`; a matrix starts as identity.
template <class T, class Name>
std::uint8_t qv_declare_param(qv_item* item, Name name, const std::type_identity_t<T>& value,
                              const qv_param_options& options = {}) {
  const std::uint8_t index = qv_declare_empty<T>(item, name, options);
  if constexpr (!std::is_same_v<T, qv_matrix>)
    qv_param_traits<T>::store(*item->get_param(index), value);
  return index;
}

/// Declares an enumeration that starts as `value`, or a list of enumeration values that starts
/// empty.
template <class T, class Name>
std::uint8_t qv_declare_enum(qv_item* item, Name name, const qv_list<std::string>& labels,
                             const std::type_identity_t<T>& value) {
  static const unsigned int declaration =
      qv_item::get_declaration(name(), qv_param_traits<T>::declared, &labels, {});
  const int index = item->add_param(declaration);
  assert(index <= std::numeric_limits<std::uint8_t>::max());
  if constexpr (std::is_enum_v<T>) qv_param_traits<T>::store(*item->get_param(index), value);
  return static_cast<std::uint8_t>(index);
}

}  // namespace qv
