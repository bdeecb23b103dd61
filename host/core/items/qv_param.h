#pragma once

#include <cstdint>
#include <string>

#include "utilities/qv_3dvector.h"
#include "utilities/qv_color.h"
#include "utilities/qv_list.h"
#include "utilities/qv_matrix.h"

namespace qv {

class qv_item;

/// How a parameter takes part in comparisons between items (`qv_item::is_similar_to`), and what
/// becomes of a reference to an item that is destroyed.
struct qv_param_options {
  /// Floats that differ by at most this count as the same value.
  float tolerance = 0;
  /// False leaves the parameter out of the comparison.
  bool compared = true;
  /// Of a list of items: an entry becomes null when its item is destroyed, so that the others stay
  /// where they are, for a list that stands beside another one. Otherwise the entry goes.
  bool keeps_places = false;
};

struct qv_param_declaration;

/// A named, typed, date-stamped value owned by an item.
///
/// Items declare their parameters in their constructor and reach them through accessors
/// (`core/items/qv_accessors.h`); the storage operations below are what those accessors, copying,
/// comparing and saving are made of. They neither stamp nor notify.
class qv_param {
 public:
  /// What kind of value a parameter holds; the codes are those of saved scenes.
  enum param_type : std::uint8_t {
    type_float = 0,
    type_int = 2,
    type_bool = 4,
    type_3dvector = 5,
    type_color = 6,
    type_matrix = 7,
    type_string = 8,
    type_enum = 9,
    type_item = 10,
    type_float_list = 11,
    type_unsigned_list = 12,
    type_int_list = 13,
    type_3dvector_list = 16,
    type_string_list = 17,
    type_enum_list = 18,
    type_item_list = 19
  };

  qv_param(const qv_param&) = delete;
  qv_param& operator=(const qv_param&) = delete;
  ~qv_param();

  /// The name given at declaration.
  const std::string& get_name() const;
  /// Kind of value, as declared.
  param_type get_param_type() const { return static_cast<param_type>(type_); }
  /// Date of the last modification of the value.
  unsigned int get_date() const { return date_; }
  /// Writes the modification date.
  void set_date(unsigned int date) { date_ = date; }
  /// Labels of an enumeration in index order; null for other kinds.
  const qv_list<std::string>* get_labels() const;
  /// How the value is compared between items, and what becomes of a reference.
  const qv_param_options& get_options() const;
  /// The item that declared the parameter; null once that item is gone.
  qv_item* get_owner() const;

  /// Changes the declared kind and nothing else: the storage keeps the kind of its first
  /// declaration, so that a class that holds the handle still reads a sound value, while its
  /// setter, which finds an unexpected kind, does nothing any more.
  void redeclare(param_type type) { type_ = type; }

  // The value in place. Each pair belongs to the kinds of the first declaration; reading another
  // kind gives that kind's zero or empty value, writing it does nothing.
  float get_float() const;
  void store_float(float value);
  /// Integers and enumeration indices.
  int get_int() const;
  void store_int(int value);
  bool get_bool() const;
  void store_bool(bool value);
  const qv_3dvector& get_3dvector() const;
  void store_3dvector(const qv_3dvector& value);
  const qv_color& get_color() const;
  void store_color(const qv_color& value);
  const qv_matrix& get_matrix() const;
  void store_matrix(const qv_matrix& value);
  const std::string& get_string() const;
  void store_string(const std::string& value);
  qv_item* get_item() const;
  void store_item(qv_item* value);
  const qv_list<float>& get_float_list() const;
  void store_float_list(const qv_list<float>& value);
  const qv_list<unsigned int>& get_unsigned_list() const;
  void store_unsigned_list(const qv_list<unsigned int>& value);
  /// Integers and enumeration indices.
  const qv_list<int>& get_int_list() const;
  void store_int_list(const qv_list<int>& value);
  const qv_list<qv_3dvector>& get_3dvector_list() const;
  void store_3dvector_list(const qv_list<qv_3dvector>& value);
  const qv_list<std::string>& get_string_list() const;
  void store_string_list(const qv_list<std::string>& value);
  const qv_list<qv_item*>& get_item_list() const;
  void store_item_list(const qv_list<qv_item*>& value);

  /// True when both hold the same kind and equal values (floats by ==, items by identity).
  bool has_same_value(const qv_param& other) const;
  /// As `has_same_value`, within the tolerance of the declaration.
  bool has_similar_value(const qv_param& other) const;
  /// Takes the value of a parameter of the same kind; false and nothing done for another kind.
  bool store_value_of(const qv_param& other);

 private:
  friend class qv_param_store;
  friend class qv_item;

  qv_param(unsigned int declaration, param_type type, bool in_store, unsigned int slot,
           unsigned int date);

  const qv_param_declaration& get_declaration() const;
  // Kind of the first declaration, and so of the storage.
  param_type get_kind() const { return static_cast<param_type>(kind_); }
  void link(qv_item* target);
  void unlink(qv_item* target);
  void forget(qv_item* target);

  // Models have very many parameters, so one takes 24 bytes: its declaration is an index into the
  // list of all, and its owner is found through the store or the further block in which it lies.
  std::uint32_t date_;
  std::uint32_t declaration_ : 16;
  std::uint32_t in_store_ : 1;  // else in a further block
  std::uint32_t slot_ : 5;
  std::uint32_t type_ : 5;
  std::uint32_t kind_ : 5;
  // Small values lie in place; strings, matrices and lists on the heap, where null stands for
  // empty. Equal ones may be shared.
  union storage {
    float number;
    int integer;
    bool flag;
    qv_3dvector vector;
    qv_color color;
    struct {
      qv_item* target;
      std::uint32_t position;  // of this parameter among the target's referring parameters
    } item;
    void* heap;
    storage() : color() {}
  } storage_;
};

}  // namespace qv
