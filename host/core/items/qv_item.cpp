#include "core/items/qv_item.h"

#include <algorithm>
#include <utility>

#include "core/items/qv_accessors.h"
#include "core/items/qv_param_sharers.h"
#include "core/items/qv_param_store.h"
#include "core/items/qv_scene.h"
#include "utilities/qv_date.h"
#include "utilities/qv_uuid.h"

namespace qv {

namespace {

// Bytes of the item that was last given memory and is not constructed yet; 0 for none.
std::size_t size_of_next_item = 0;

qv_item_type* get_root_type() {
  static auto* const type = new qv_item_type("item", nullptr);
  return type;
}

}  // namespace

const std::string qv_item::no_name_;

// --- construction ---

void* qv_item::operator new(std::size_t size) {
  void* const memory = ::operator new(size);
  size_of_next_item = size;
  return memory;
}

void* qv_item::operator new(std::size_t size, const std::nothrow_t&) noexcept {
  void* const memory = ::operator new(size, std::nothrow);
  if (memory != nullptr) size_of_next_item = size;
  return memory;
}

void qv_item::operator delete(void* memory) {
  ::operator delete(memory);
}

void qv_item::operator delete(void* memory, const std::nothrow_t&) noexcept {
  ::operator delete(memory);
}

qv_item::qv_item()
    : type_(get_root_type()),
      params_(qv_param_store::make(this, std::exchange(size_of_next_item, 0))),
      date_(qv_get_new_date()),
      local_date_(date_) {
  if (type_->get_sample() != nullptr) return;
  type_->set_sample(this);  // ends the recursion of what follows
  try {
    type_->set_sample(new qv_item);
  } catch (...) {
    params_->release();  // nobody destroys an item whose construction failed
    throw;
  }
}

qv_item::qv_item(const qv_item& other)
    : type_(other.type_),
      name_(other.name_ == nullptr ? nullptr : std::make_unique<std::string>(*other.name_)),
      params_(other.params_),
      date_(qv_get_new_date()),
      local_date_(date_) {
  qv_param_sharers::add(this);
  params_->retain();
  size_of_next_item = 0;
}

qv_item& qv_item::operator=(const qv_item& other) {
  if (this == &other) return *this;
  name_ = other.name_ == nullptr ? nullptr : std::make_unique<std::string>(*other.name_);
  if (params_ != other.params_) {
    // Otherwise it shares already, with another one.
    if (params_->get_owner() == this) {
      params_->orphan();
      qv_param_sharers::add(this);
    }
    other.params_->retain();
    params_->release();
    params_ = other.params_;
  }
  type_ = other.type_;
  local_date_ = qv_get_new_date();
  stamp_upwards(local_date_);
  return *this;
}

qv_item::~qv_item() {
  if (parent_ != nullptr) detach();
  if (!children_.is_empty()) {
    std::vector<qv_item*> doomed = list_subtree();
    doomed.erase(doomed.begin());
    children_.clear();
    free_items(doomed);
  }
  if (params_->get_owner() == this) {
    params_->orphan();
  } else {
    qv_param_sharers::remove(this);
  }
  set_source(nullptr);
  doomed_ = true;
  release_referrers();
  params_->release();
}

qv_item* qv_item::copy() const {
  return qv_new_item<qv_item>();
}

void qv_item::precompute() {}

qv_box qv_item::get_local_bounding_box() {
  return {};
}

void qv_item::render_opengl(bool) {}
void qv_item::render_opengl_raw() {}
void qv_item::render_opengl_contour_raw() {}

// --- parameters ---

unsigned int qv_item::get_declaration(const std::string& name, qv_param::param_type type,
                                      const qv_list<std::string>* labels,
                                      const qv_param_options& options) {
  return qv_param_declaration::get_index(name, type, labels, options);
}

int qv_item::add_param(unsigned int declaration) {
  return params_->add(declaration, local_date_);
}

qv_param* qv_item::add_param_float(const std::string& name, float value,
                                   const qv_param_options& options) {
  qv_param* param =
      get_param(add_param(get_declaration(name, qv_param::type_float, nullptr, options)));
  param->store_float(value);
  return param;
}

qv_param* qv_item::add_param_int(const std::string& name, int value,
                                 const qv_param_options& options) {
  qv_param* param =
      get_param(add_param(get_declaration(name, qv_param::type_int, nullptr, options)));
  param->store_int(value);
  return param;
}

qv_param* qv_item::add_param_bool(const std::string& name, bool value,
                                  const qv_param_options& options) {
  qv_param* param =
      get_param(add_param(get_declaration(name, qv_param::type_bool, nullptr, options)));
  param->store_bool(value);
  return param;
}

qv_param* qv_item::add_param_enum(const std::string& name, const qv_list<std::string>& labels,
                                  int value, const qv_param_options& options) {
  qv_param* param =
      get_param(add_param(get_declaration(name, qv_param::type_enum, &labels, options)));
  param->store_int(value);
  return param;
}

qv_param* qv_item::add_param_string(const std::string& name, const std::string& value,
                                    const qv_param_options& options) {
  qv_param* param =
      get_param(add_param(get_declaration(name, qv_param::type_string, nullptr, options)));
  param->store_string(value);
  return param;
}

qv_param* qv_item::add_param_3dvector(const std::string& name, const qv_3dvector& value,
                                      const qv_param_options& options) {
  qv_param* param =
      get_param(add_param(get_declaration(name, qv_param::type_3dvector, nullptr, options)));
  param->store_3dvector(value);
  return param;
}

qv_param* qv_item::add_param_color(const std::string& name, const qv_color& value,
                                   const qv_param_options& options) {
  qv_param* param =
      get_param(add_param(get_declaration(name, qv_param::type_color, nullptr, options)));
  param->store_color(value);
  return param;
}

qv_param* qv_item::add_param_matrix(const std::string& name, const qv_param_options& options) {
  return get_param(add_param(get_declaration(name, qv_param::type_matrix, nullptr, options)));
}

qv_param* qv_item::add_param_item(const std::string& name, const qv_param_options& options) {
  return get_param(add_param(get_declaration(name, qv_param::type_item, nullptr, options)));
}

qv_param* qv_item::add_param_item_list(const std::string& name, const qv_param_options& options) {
  return get_param(add_param(get_declaration(name, qv_param::type_item_list, nullptr, options)));
}

qv_param* qv_item::add_param_float_list(const std::string& name, const qv_param_options& options) {
  return get_param(add_param(get_declaration(name, qv_param::type_float_list, nullptr, options)));
}

qv_param* qv_item::add_param_int_list(const std::string& name, const qv_param_options& options) {
  return get_param(add_param(get_declaration(name, qv_param::type_int_list, nullptr, options)));
}

qv_param* qv_item::add_param_unsigned_list(const std::string& name,
                                           const qv_param_options& options) {
  return get_param(
      add_param(get_declaration(name, qv_param::type_unsigned_list, nullptr, options)));
}

qv_param* qv_item::add_param_enum_list(const std::string& name, const qv_list<std::string>& labels,
                                       const qv_param_options& options) {
  return get_param(add_param(get_declaration(name, qv_param::type_enum_list, &labels, options)));
}

qv_param* qv_item::add_param_string_list(const std::string& name, const qv_param_options& options) {
  return get_param(add_param(get_declaration(name, qv_param::type_string_list, nullptr, options)));
}

qv_param* qv_item::add_param_3dvector_list(const std::string& name,
                                           const qv_param_options& options) {
  return get_param(
      add_param(get_declaration(name, qv_param::type_3dvector_list, nullptr, options)));
}

qv_param* qv_item::find_param(const std::string& name) const {
  return params_->find(name);
}

// --- identity ---

void qv_item::set_name(const std::string& name) {
  if (get_name() == name) return;
  qv_get_new_date();
  name_ = name.empty() ? nullptr : std::make_unique<std::string>(name);
  announce_change("name");
}

const std::string& qv_item::get_unique_id() const {
  if (!has_unique_id()) unique_id_ = std::make_unique<std::string>(qv_uuid());
  return *unique_id_;
}

void qv_item::set_unique_id(const std::string& id) {
  if (has_unique_id() ? *unique_id_ == id : id.empty()) return;
  qv_get_new_date();
  unique_id_ = std::make_unique<std::string>(id);
  announce_change("unique_id");
}

// --- notifications ---

void qv_item::item_added(qv_item* item) {
  if (parent_ != nullptr) parent_->item_added(item);
}

void qv_item::item_changed(qv_item* item, const std::string& name) {
  if (item == this) take_note_of_change(name);
  if (parent_ != nullptr) parent_->item_changed(item, name);
}

void qv_item::item_removed(qv_item* item) {
  if (parent_ != nullptr) parent_->item_removed(item);
}

void qv_item::announce_change(const std::string& name) {
  if (scene_ != nullptr && scene_->is_silent()) {
    take_note_of_change(name);
  } else {
    item_changed(this, name);
  }
}

void qv_item::take_note_of_change(const std::string& name) {
  const auto note = [&name, date = qv_get_date()](qv_item* item) {
    item->local_date_ = date;
    item->stamp_upwards(date);
    if (item->scene_ != nullptr) item->scene_->note_change(item, name, date);
  };
  note(this);
  // What shares the parameter has changed as well, wherever it is.
  if (qv_param_sharers::get_all().empty() || find_param(name) == nullptr) return;
  qv_item* const owner = params_->get_owner();
  if (owner != nullptr && owner != this) note(owner);
  for (qv_item* sharer : qv_param_sharers::get_all()) {
    if (sharer != this && sharer->params_ == params_) note(sharer);
  }
}

void qv_item::stamp_upwards(unsigned int date) {
  for (qv_item* item = this; item != nullptr; item = item->parent_) item->date_ = date;
}

// --- tree ---

qv_item::rarities& qv_item::get_rarities() {
  if (rarities_ == nullptr) rarities_ = std::make_unique<rarities>();
  return *rarities_;
}

void qv_item::set_source(qv_item* source) {
  qv_item* const before = get_source();
  if (source == before) return;
  if (before != nullptr) {
    std::vector<qv_item*>& derived = before->get_rarities().derived;
    const auto found = std::find(derived.rbegin(), derived.rend(), this);
    if (found != derived.rend()) {
      *found = derived.back();
      derived.pop_back();
    }
  }
  get_rarities().source = source;
  if (source != nullptr) source->get_rarities().derived.push_back(this);
}

void qv_item::add_child(qv_item* item, int index) {
  if (item == nullptr || item == this || item->scene_ == item) return;
  if (!item->children_.is_empty()) {
    for (const qv_item* above = parent_; above != nullptr; above = above->parent_) {
      if (above == item) return;
    }
  }
  if (item->parent_ != nullptr) item->detach();

  const int count = children_.get_count();
  children_.append(item);
  if (index >= 0 && index < count) {
    std::rotate(children_.begin() + index, children_.end() - 1, children_.end());
    item->position_ = index;
  } else {
    item->position_ = count;
  }
  item->parent_ = this;
  stamp_upwards(qv_get_new_date());
  if (scene_ != nullptr) scene_->arrive(item);
  if (scene_ == nullptr || !scene_->is_silent()) item_added(item);
}

void qv_item::remove() {
  if (parent_ != nullptr) detach();
}

void qv_item::detach() {
  qv_item* const parent = parent_;
  if (scene_ != nullptr) scene_->leave(this);
  const int position = find_position_in_parent();
  qv_list<qv_item*>& siblings = parent->children_;
  std::move(siblings.begin() + position + 1, siblings.end(), siblings.begin() + position);
  siblings.resize(siblings.get_count() - 1);
  parent_ = nullptr;
  parent->stamp_upwards(qv_get_new_date());
  if (parent->scene_ == nullptr || !parent->scene_->is_silent()) parent->item_removed(this);
}

int qv_item::find_position_in_parent() const {
  // Additions and removals before this item shift it by a few places: look around its last known
  // place.
  const qv_list<qv_item*>& siblings = parent_->children_;
  const int count = siblings.get_count();
  for (int distance = 0; distance <= count; ++distance) {
    for (const int position : {position_ - distance, position_ + distance}) {
      if (position >= 0 && position < count && siblings[position] == this) return position;
    }
  }
  return siblings.find(const_cast<qv_item*>(this));
}

std::vector<qv_item*> qv_item::list_subtree() const {
  std::vector<qv_item*> subtree;
  std::vector<qv_item*> pending{const_cast<qv_item*>(this)};
  while (!pending.empty()) {
    qv_item* item = pending.back();
    pending.pop_back();
    subtree.push_back(item);
    for (int i = item->children_.get_count() - 1; i >= 0; --i)
      pending.push_back(item->children_[i]);
  }
  return subtree;
}

qv_list<qv_item*> qv_item::collect(const std::string& type_name) const {
  qv_list<qv_item*> found;
  const qv_item_type* const type = qv_item_type::find(type_name);
  if (type == nullptr) return found;
  if (children_.is_empty()) {
    if (type_->derives_from(type)) found.append(const_cast<qv_item*>(this));
    return found;
  }
  for (qv_item* item : list_subtree()) {
    if (item->type_->derives_from(type)) found.append(item);
  }
  return found;
}

void qv_item::destroy(qv_item* item) {
  if (item == nullptr) return;
  item->remove();
  free_items(item->list_subtree());
}

void qv_item::free_items(const std::vector<qv_item*>& doomed) {
  for (qv_item* item : doomed) item->doomed_ = true;
  for (qv_item* item : doomed) item->release_referrers();
  for (auto item = doomed.rbegin(); item != doomed.rend(); ++item) {
    (*item)->children_.clear();
    (*item)->parent_ = nullptr;
    (*item)->scene_ = nullptr;
    delete *item;
  }
}

void qv_item::release_referrers() {
  while (referrers_.get_count() > 0) {
    qv_param* const param = referrers_[referrers_.get_count() - 1];
    qv_item* const owner = param->get_owner();
    const bool announced = owner != nullptr && !owner->doomed_;
    if (announced) param->set_date(qv_get_new_date());
    param->forget(this);
    if (announced) owner->announce_change(param->get_name());
  }
  if (rarities_ == nullptr) return;
  for (qv_item* derived : rarities_->derived) derived->rarities_->source = nullptr;
  rarities_->derived.clear();
}

// --- view ---

const qv_box& qv_item::get_bounding_box() {
  // Stale boxes, parents first: a box that is still right stops the descent.
  std::vector<qv_item*> stale;
  std::vector<qv_item*> pending{this};
  while (!pending.empty()) {
    qv_item* item = pending.back();
    pending.pop_back();
    if (item->rarities_ != nullptr && item->rarities_->box_date >= item->date_) continue;
    stale.push_back(item);
    for (qv_item* child : item->children_) pending.push_back(child);
  }
  for (auto item = stale.rbegin(); item != stale.rend(); ++item) {
    const unsigned int date = (*item)->date_;
    qv_box box = (*item)->get_local_bounding_box();
    for (const qv_item* child : (*item)->children_) {
      if (child->rarities_ != nullptr && child->rarities_->box_date != 0)
        box.enlarge(child->rarities_->box);
    }
    rarities& own = (*item)->get_rarities();
    own.box_date = date;
    own.box = box;
  }
  return rarities_->box;
}

void qv_item::set_selected(bool selected) {
  selected_ = selected;
  if (scene_ == nullptr) return;
  if (selected) {
    scene_->selected_item_ = this;
  } else if (scene_->selected_item_ == this) {
    scene_->selected_item_ = nullptr;
  }
}

}  // namespace qv
