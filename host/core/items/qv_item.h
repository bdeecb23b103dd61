#pragma once

#include <memory>
#include <new>
#include <string>
#include <vector>

#include "core/items/qv_item_type.h"
#include "core/items/qv_param_store.h"
#include "core/items/qv_referrer_list.h"
#include "utilities/qv_box.h"
#include "utilities/qv_list.h"

namespace qv {

class qv_scene;

/// Base of everything that lives in a scene: a named node of a tree with typed, dated parameters.
///
/// A parent owns its children; the scene is an item and the root of its tree. Item-valued
/// parameters refer to other items without owning them: they go upwards or sideways in the tree.
///
/// Dates. Every change stamps the item and its ancestors with a fresh date, so that `get_date()`
/// costs nothing and lazy computations compare it with the date of their last run. A new item bears
/// the date of its construction.
///
/// Notifications. `item_added`, `item_changed` and `item_removed` go from the item concerned up
/// through its ancestors to the scene. A class that overrides one calls its base class's version,
/// which does the stamping.
///
/// Nothing here may be called from two threads at once, but for reading.
class qv_item {
 public:
  qv_item();
  /// A copy shares its source's parameters (the very same values from then on) and stands alone: no
  /// parent, no children. Either may be destroyed first.
  qv_item(const qv_item& other);
  /// Lets go of this item's parameters and shares `other`'s; parent and children stay.
  qv_item& operator=(const qv_item& other);

  // --- virtual operations, in their fixed order ---

  /// A new item of the same class with default values; null when memory is short.
  virtual qv_item* copy() const;
  /// Same type, same name when `compare_names`, and the same value of every compared parameter,
  /// floats within their declared tolerance. Null is similar to nothing.
  virtual bool is_similar_to(qv_item* other, bool compare_names);
  /// Brings derived values up to date. Called for every item by the scene's `precompute`, and by
  /// whoever needs the values earlier. Cheap when nothing changed.
  virtual void precompute();
  /// An HTML fragment for the information panel: name, type and each parameter.
  virtual std::string get_html_information();
  /// The same as plain text, a line each.
  virtual std::string get_txt_information();
  /// A link to the item: `<a href="item:UNIQUE-ID">name</a>`, with the name escaped for HTML.
  virtual std::string get_html_link();
  /// Bounds of the item's own geometry, without its children. Empty here.
  virtual qv_box get_local_bounding_box();
  /// Draws the item into the current OpenGL context; `selection` draws its highlight instead. The
  /// base draws nothing: the scene draws each of its items.
  virtual void render_opengl(bool selection);
  /// Draws the bare surface in the current colour.
  virtual void render_opengl_raw();
  /// Draws the bare contour in the current colour.
  virtual void render_opengl_contour_raw();

 protected:
  /// `item` was added somewhere under this one.
  virtual void item_added(qv_item* item);
  /// Parameter `name` of `item`, this item or one under it, changed.
  virtual void item_changed(qv_item* item, const std::string& name);
  /// `item` was removed from under this one.
  virtual void item_removed(qv_item* item);

  virtual ~qv_item();

 public:
  /// The size tells the constructor how many parameters to make room for.
  static void* operator new(std::size_t size);
  static void* operator new(std::size_t size, const std::nothrow_t&) noexcept;
  static void* operator new(std::size_t size, void* place) { return ::operator new(size, place); }
  static void operator delete(void* memory);
  static void operator delete(void* memory, const std::nothrow_t&) noexcept;

  // --- parameters ---
  // Each call declares a parameter with its default and returns it; the item owns it. A name
  // declared twice returns the parameter declared first.

  qv_param* add_param_float(const std::string& name, float value, const qv_param_options& = {});
  qv_param* add_param_int(const std::string& name, int value, const qv_param_options& = {});
  qv_param* add_param_bool(const std::string& name, bool value, const qv_param_options& = {});
  qv_param* add_param_enum(const std::string& name, const qv_list<std::string>& labels, int value,
                           const qv_param_options& = {});
  qv_param* add_param_string(const std::string& name, const std::string& value,
                             const qv_param_options& = {});
  qv_param* add_param_3dvector(const std::string& name, const qv_3dvector& value,
                               const qv_param_options& = {});
  qv_param* add_param_color(const std::string& name, const qv_color& value,
                            const qv_param_options& = {});
  qv_param* add_param_matrix(const std::string& name, const qv_param_options& = {});
  qv_param* add_param_item(const std::string& name, const qv_param_options& = {});
  qv_param* add_param_item_list(const std::string& name, const qv_param_options& = {});
  qv_param* add_param_float_list(const std::string& name, const qv_param_options& = {});
  qv_param* add_param_int_list(const std::string& name, const qv_param_options& = {});
  qv_param* add_param_unsigned_list(const std::string& name, const qv_param_options& = {});
  qv_param* add_param_enum_list(const std::string& name, const qv_list<std::string>& labels,
                                const qv_param_options& = {});
  qv_param* add_param_string_list(const std::string& name, const qv_param_options& = {});
  qv_param* add_param_3dvector_list(const std::string& name, const qv_param_options& = {});

  /// What parameters of this name, kind, labels and options have in common, as a number: the same
  /// for the same values. Class headers keep it for each of their lines (qv_accessors.h).
  static unsigned int get_declaration(const std::string& name, qv_param::param_type type,
                                      const qv_list<std::string>* labels,
                                      const qv_param_options& options);
  /// Declares a parameter by the number of its declaration, with the value 0, null or empty, and
  /// returns its index.
  int add_param(unsigned int declaration);

  int get_param_count() const { return params_->get_count(); }
  /// Parameter `index` in declaration order.
  qv_param* get_param(int index) const { return params_->get(index); }
  /// The parameter of that name, or null.
  qv_param* find_param(const std::string& name) const;

  /// Takes the value of every parameter of `source` that this item has under the same name and
  /// kind; what differs is stamped and announced like any change. Returns how many parameters were
  /// matched.
  int copy_params(const qv_item* source);
  /// A copy of the item with its name, its parameters and copies of its children. References within
  /// the copied subtree point into the copy; the copy's source is this item.
  qv_item* full_copy() const;

  // --- identity ---

  const std::string& get_name() const { return name_ == nullptr ? no_name_ : *name_; }
  /// Announced as a change of "name" when different.
  void set_name(const std::string& name);
  /// Given at the first call, random and unlike any other, and kept.
  const std::string& get_unique_id() const;
  /// True when an id was given already; asking gives none.
  bool has_unique_id() const { return unique_id_ != nullptr && !unique_id_->empty(); }
  void set_unique_id(const std::string& id);
  qv_item_type* get_item_type() const { return type_; }
  /// True for the name of the item's type and of each type above it.
  bool has_type(const std::string& type_name) const { return type_->derives_from(type_name); }
  /// True only for the name of the item's own type.
  bool has_exact_type(const std::string& type_name) const { return type_->get_name() == type_name; }

  // --- dates ---

  /// Latest modification of the item, its parameters, and everything under it.
  unsigned int get_date() const { return date_; }
  /// Latest modification of the item's own name and parameters.
  unsigned int get_local_date() const { return local_date_; }

  // --- tree ---

  qv_scene* get_scene() const { return scene_; }
  qv_item* get_parent() const { return parent_; }
  const qv_list<qv_item*>& get_children() const { return children_; }
  /// The item this one was made from, or null.
  qv_item* get_source() const { return rarities_ == nullptr ? nullptr : rarities_->source; }
  void set_source(qv_item* source);
  /// Puts `item` among the children before position `index`, at the end when `index` is negative or
  /// too large, taking it from its former parent. Null, the item itself and its ancestors are
  /// refused (nothing happens).
  void add_child(qv_item* item, int index);
  /// Takes the item out of its parent, and so out of its scene; it stays alive with its subtree and
  /// belongs to the caller.
  void remove();
  /// Removes and frees the item with its subtree. References to the freed items from parameters of
  /// other items become null, list entries disappear, both dated and announced. Null is ignored.
  static void destroy(qv_item* item);
  /// This item and everything under it of the given type or a descendant of it, depth first,
  /// parents before children.
  qv_list<qv_item*> collect(const std::string& type_name) const;

  // --- view ---

  /// World bounds of the item and everything under it, kept until something under it changes.
  const qv_box& get_bounding_box();
  bool is_selected() const { return selected_; }
  bool is_mouseover() const { return mouseover_; }
  void set_selected(bool selected);
  void set_mouseover(bool mouseover) { mouseover_ = mouseover; }

  /// The setter of every parameter. Does nothing when the declared kind is not one that T accepts
  /// or when the value is equal; else stamps a fresh date, stores, and calls `item_changed(this,
  /// name)`.
  template <class T>
  void set_param_value(qv_param* param, const T& value);

 protected:
  void set_item_type(qv_item_type* type) { type_ = type; }

  /// First step of every constructor: registers the class on its first run (record, sample), then
  /// installs its record.
  template <class T>
  void install_type(qv_item_type*& record, const char* type_name);

 private:
  friend class qv_param;
  friend class qv_scene;

  // What most items never have.
  struct rarities {
    qv_item* source = nullptr;
    std::vector<qv_item*> derived;  // items of which this one is the source
    unsigned int box_date = 0;      // 0: no box yet
    qv_box box;
  };

  // Item and scene take note of a change; the notification follows unless the scene keeps silence.
  void announce_change(const std::string& name);
  void take_note_of_change(const std::string& name);
  // This item and its ancestors were modified at `date`.
  void stamp_upwards(unsigned int date);
  // Out of the parent and the scene, dated and announced.
  void detach();
  int find_position_in_parent() const;
  // No parameter and no source link refers to this item any more.
  void release_referrers();
  // Frees items that have no parent outside the list, parents first in it.
  static void free_items(const std::vector<qv_item*>& doomed);
  // The subtree in depth-first order, this item first.
  std::vector<qv_item*> list_subtree() const;

  rarities& get_rarities();

  static const std::string no_name_;

  qv_item_type* type_;
  std::unique_ptr<std::string> name_;               // null for the empty name
  mutable std::unique_ptr<std::string> unique_id_;  // most items are never asked for theirs
  qv_param_store* params_;                          // shared with copies
  qv_item* parent_ = nullptr;
  qv_scene* scene_ = nullptr;
  qv_list<qv_item*> children_;
  qv_referrer_list referrers_;  // parameters that refer to this item
  std::unique_ptr<rarities> rarities_;
  unsigned int date_;
  unsigned int local_date_;
  unsigned int order_ = 0;  // rank in the scene's depth-first order; 0 not known
  int position_ = 0;        // where to look first among the parent's children
  bool selected_ = false;
  bool mouseover_ = false;
  bool doomed_ = false;  // being freed: what happens to it is not announced
};

/// `collect` with the pointers of class T; `type_name` must be T's type or one that derives from
/// it.
template <class T>
qv_list<T*> qv_collect(const qv_item* item, const std::string& type_name) {
  qv_list<T*> result;
  for (qv_item* found : item->collect(type_name)) result.append(static_cast<T*>(found));
  return result;
}

}  // namespace qv

#include "core/items/qv_param_traits.h"

namespace qv {

template <class T>
void qv_item::set_param_value(qv_param* param, const T& value) {
  using traits = qv_param_traits<T>;
  if (!traits::accepts(param->get_param_type()) || traits::equals(*param, value)) return;
  param->set_date(qv_get_new_date());
  traits::store(*param, value);
  announce_change(param->get_name());
}

template <class T>
void qv_item::install_type(qv_item_type*& record, const char* type_name) {
  if (record == nullptr) {
    record = new qv_item_type(type_name, type_);
    record->set_sample(new T);
  }
  type_ = record;
}

}  // namespace qv
