#include "core/items/qv_scene.h"

#include <algorithm>
#include <mutex>

#include "core/items/qv_accessors.h"
#include "core/items/qv_param_sharers.h"
#include "core/light/qv_raytracing_layer.h"
#include "utilities/qv_date.h"

namespace qv {

qv_scene::qv_scene() {
  static qv_item_type* type_record = nullptr;
  install_type<qv_scene>(type_record, "scene");
  scene_ = this;
}

qv_scene::~qv_scene() {
  observers_.clear();
  observers_by_class_.clear();
  std::vector<qv_item*> doomed = list_subtree();
  doomed.erase(doomed.begin());
  children_.clear();
  for (qv_item* item : doomed) item->scene_ = nullptr;
  free_items(doomed);
  scene_ = nullptr;
}

qv_item* qv_scene::copy() const {
  return qv_new_item<qv_scene>();
}

// --- items by type ---

namespace {

/// Guards the lists of items by type, which are made when first asked for: solar computations ask
/// from several threads. Uncontended it costs some 20 ns.
std::mutex& list_mutex() {
  static std::mutex instance;
  return instance;
}

}  // namespace

const qv_list<qv_item*>& qv_scene::get_items(const std::string& type_name) {
  const std::lock_guard guard(list_mutex());
  type_index_entry& entry = items_by_type_[type_name];
  if (!entry.stale) return entry.items;
  const qv_item_type* const type = qv_item_type::find(type_name);
  entry.items.resize(0);
  last_order_ = 0;
  for (qv_item* item : list_subtree()) {
    if (item == this) continue;
    item->order_ = ++last_order_;
    if (type != nullptr && item->get_item_type()->derives_from(type)) entry.items.append(item);
  }
  entry.stale = type == nullptr;
  return entry.items;
}

bool qv_scene::is_at_end(const qv_item* root) const {
  for (const qv_item* item = root; item != this; item = item->parent_) {
    const qv_list<qv_item*>& siblings = item->parent_->children_;
    if (siblings[siblings.get_count() - 1] != item) return false;
  }
  return true;
}

void qv_scene::index_arrival(qv_item* item, bool at_end) {
  item->order_ = at_end ? ++last_order_ : 0;
  if (items_by_type_.empty()) return;
  for (const qv_item_type* type = item->type_; type != nullptr; type = type->get_parent()) {
    const auto found = items_by_type_.find(type->get_name());
    if (found == items_by_type_.end() || found->second.stale) continue;
    if (at_end) {
      found->second.items.append(item);
    } else {
      found->second.stale = true;
    }
  }
}

void qv_scene::index_departure(qv_item* item) {
  for (const qv_item_type* type = item->type_; type != nullptr; type = type->get_parent()) {
    const auto found = items_by_type_.find(type->get_name());
    if (found == items_by_type_.end() || found->second.stale) continue;
    // A fresh list is sorted by the items' order: whatever arrives elsewhere than at its end makes
    // it stale.
    qv_list<qv_item*>& items = found->second.items;
    qv_item** const place =
        std::lower_bound(items.begin(), items.end(), item,
                         [](const qv_item* a, const qv_item* b) { return a->order_ < b->order_; });
    std::move(place + 1, items.end(), place);
    items.resize(items.get_count() - 1);
  }
}

void qv_scene::renumber() {
  last_order_ = 0;
  for (qv_item* item : list_subtree()) {
    if (item != this) item->order_ = ++last_order_;
  }
}

namespace {

/// Whether a parameter of that name, any one when the name is empty, refers to `target`.
bool refers(const qv_item& item, const std::string& param_name, const qv_item* target) {
  for (int i = 0; i < item.get_param_count(); ++i) {
    const qv_param& param = *item.get_param(i);
    if (!param_name.empty() && param.get_name() != param_name) continue;
    const qv_list<qv_item*>& list = param.get_item_list();
    if (param.get_item() == target || std::find(list.begin(), list.end(), target) != list.end())
      return true;
  }
  return false;
}

}  // namespace

qv_list<qv_item*> qv_scene::get_referrers(const std::string& type_name,
                                          const std::string& param_name, const qv_item* item) {
  qv_list<qv_item*> found;
  const qv_item_type* const type = qv_item_type::find(type_name);
  if (item == nullptr || type == nullptr) return found;
  bool ordered = true;
  for (const qv_param* param : item->referrers_) {
    qv_item* const owner = param->get_owner();
    if (owner == nullptr || owner->scene_ != this || owner == this) continue;
    if (!param_name.empty() && param->get_name() != param_name) continue;
    if (!owner->type_->derives_from(type)) continue;
    ordered = ordered && owner->order_ != 0;
    found.append(owner);
  }
  for (qv_item* sharer : qv_param_sharers::get_all()) {
    if (sharer->scene_ != this || !sharer->type_->derives_from(type)) continue;
    if (!refers(*sharer, param_name, item)) continue;
    ordered = ordered && sharer->order_ != 0;
    found.append(sharer);
  }
  if (!ordered && found.get_count() > 1) renumber();
  std::sort(found.begin(), found.end(),
            [](const qv_item* a, const qv_item* b) { return a->order_ < b->order_; });
  found.resize(static_cast<int>(std::unique(found.begin(), found.end()) - found.begin()));
  return found;
}

qv_raytracer* qv_scene::get_raytracer(const std::string& layer_name) {
  qv_raytracing_layer*& layer = raytracing_layers_[layer_name];
  if (layer == nullptr) {
    auto made = std::make_unique<qv_raytracing_layer>(layer_name);
    layer = made.get();
    add_observer(std::move(made));
  }
  return layer->get_raytracer();
}

// --- changes ---

qv_scene::type_changes& qv_scene::get_changes(const qv_item_type* type) {
  const auto index = static_cast<std::size_t>(type->get_index());
  if (index >= changes_.size()) changes_.resize(index + 1);
  return changes_[index];
}

void qv_scene::note_change(qv_item* item, const std::string& name, unsigned int date) {
  type_changes& changes = get_changes(item->type_);
  changes.any = date;
  changes.by_param[name] = date;
  for (std::size_t i = 0; i < observers_.size(); ++i) observers_[i]->item_changed(item, name);
}

unsigned int qv_scene::get_last_change(const std::string& type_name,
                                       const std::string& param_name) const {
  const qv_item_type* const type = qv_item_type::find(type_name);
  if (type == nullptr) return 0;
  unsigned int latest = 0;
  for (const qv_item_type* candidate : qv_item_type::get_types()) {
    const auto index = static_cast<std::size_t>(candidate->get_index());
    if (index >= changes_.size() || !candidate->derives_from(type)) continue;
    const type_changes& changes = changes_[index];
    latest = std::max(latest, changes.membership);
    if (param_name.empty()) {
      latest = std::max(latest, changes.any);
    } else if (const auto found = changes.by_param.find(param_name);
               found != changes.by_param.end()) {
      latest = std::max(latest, found->second);
    }
  }
  return latest;
}

void qv_scene::arrive(qv_item* root) {
  const bool at_end = is_at_end(root);
  const unsigned int date = qv_get_date();
  const std::vector<qv_item*> arrivals = root->list_subtree();
  for (qv_item* item : arrivals) {
    item->scene_ = this;
    index_arrival(item, at_end);
    get_changes(item->type_).membership = date;
    if (precomputing_) left_during_pass_.erase(item);
  }
  for (std::size_t i = 0; i < observers_.size(); ++i) {
    for (qv_item* item : arrivals) observers_[i]->item_arrived(item);
  }
}

void qv_scene::leave(qv_item* root) {
  const std::vector<qv_item*> departures = root->list_subtree();
  for (std::size_t i = 0; i < observers_.size(); ++i) {
    for (qv_item* item : departures) observers_[i]->item_left(item);
  }
  const unsigned int date = qv_get_new_date();
  for (qv_item* item : departures) {
    index_departure(item);
    get_changes(item->type_).membership = date;
    if (item == selected_item_) selected_item_ = nullptr;
    if (precomputing_) left_during_pass_.insert(item);
    item->scene_ = nullptr;
  }
}

qv_scene_observer* qv_scene::add_observer(std::unique_ptr<qv_scene_observer> observer) {
  observers_.push_back(std::move(observer));
  qv_scene_observer* const added = observers_.back().get();
  for (qv_item* item : list_subtree()) {
    if (item != this) added->item_arrived(item);
  }
  return added;
}

// --- precompute ---

void qv_scene::precompute() {
  if (precomputing_ || get_date() <= precomputed_date_) return;
  precomputing_ = true;
  bool settled = false;
  for (int pass = 0; pass < largest_pass_count && !settled; ++pass) {
    const unsigned int date_before = get_date();
    left_during_pass_.clear();
    const qv_list<qv_item*> items = get_items("item");
    for (qv_item* item : items) {
      if (left_during_pass_.empty() || !left_during_pass_.contains(item)) item->precompute();
    }
    settled = get_date() == date_before;
  }
  precomputed_date_ = settled ? qv_get_date() : 0;
  left_during_pass_.clear();
  precomputing_ = false;
}

// --- insertion ---

void qv_scene::record_change(qv_item*, const std::string&) {}

qv_item* qv_scene::insert_without_duplication(qv_item* item, bool compare_names, bool record) {
  std::unordered_map<qv_item*, qv_item*> brought;
  return bring_along(item, compare_names, record, brought);
}

qv_item* qv_scene::bring_along(qv_item* item, bool compare_names, bool record,
                               std::unordered_map<qv_item*, qv_item*>& brought) {
  if (item == nullptr || item->scene_ == this) return item;
  if (const auto known = brought.find(item); known != brought.end()) return known->second;
  for (qv_item* present : qv_list<qv_item*>(get_items(item->type_->get_name()))) {
    if (present->type_ != item->type_ || !present->is_similar_to(item, compare_names)) continue;
    brought[item] = present;
    return present;
  }
  add_child(item, -1);
  brought[item] = item;

  for (qv_item* moved : item->list_subtree()) {
    for (int i = 0; i < moved->get_param_count(); ++i) {
      qv_param* param = moved->get_param(i);
      if (param->get_param_type() == qv_param::type_item) {
        qv_item* target = bring_along(param->get_item(), compare_names, record, brought);
        if (target == param->get_item()) continue;
        if (record) record_change(moved, param->get_name());
        moved->set_param_value<qv_item*>(param, target);
      } else if (param->get_param_type() == qv_param::type_item_list) {
        qv_list<qv_item*> targets = param->get_item_list();
        for (qv_item*& target : targets) {
          target = bring_along(target, compare_names, record, brought);
        }
        if (targets == param->get_item_list()) continue;
        if (record) record_change(moved, param->get_name());
        moved->set_param_value<qv_list<qv_item*>>(param, targets);
      }
    }
  }
  return item;
}

void qv_scene::render_opengl(bool selection) {
  const qv_list<qv_item*> items = get_items("item");
  for (qv_item* item : items) item->render_opengl(selection);
}

}  // namespace qv
