#include <unordered_map>

#include "core/items/qv_item.h"
#include "utilities/qv_date.h"

namespace qv {

bool qv_item::is_similar_to(qv_item* other, bool compare_names) {
  if (other == this) return true;
  if (other == nullptr || other->type_ != type_) return false;
  if (compare_names && other->get_name() != get_name()) return false;
  if (other->get_param_count() != get_param_count()) return false;
  for (int i = 0; i < get_param_count(); ++i) {
    const qv_param* mine = get_param(i);
    const qv_param* theirs = other->get_param(i);
    if (mine->get_name() != theirs->get_name()) return false;
    if (mine->get_options().compared && !mine->has_similar_value(*theirs)) return false;
  }
  return true;
}

int qv_item::copy_params(const qv_item* source) {
  if (source == nullptr || source == this) return 0;
  int matched = 0;
  for (int i = 0; i < get_param_count(); ++i) {
    qv_param* mine = get_param(i);
    const qv_param* theirs =
        i < source->get_param_count() && source->get_param(i)->get_name() == mine->get_name()
            ? source->get_param(i)
            : source->find_param(mine->get_name());
    if (theirs == nullptr || theirs->get_param_type() != mine->get_param_type()) continue;
    ++matched;
    if (mine == theirs || mine->has_same_value(*theirs)) continue;
    mine->set_date(qv_get_new_date());
    mine->store_value_of(*theirs);
    announce_change(mine->get_name());
  }
  return matched;
}

namespace {

/// Makes references of `item` to originals refer to their copies.
void redirect_references(qv_item* item, const std::unordered_map<qv_item*, qv_item*>& copies) {
  const auto redirected = [&copies](qv_item* target) {
    const auto found = copies.find(target);
    return found == copies.end() ? target : found->second;
  };
  for (int i = 0; i < item->get_param_count(); ++i) {
    qv_param* param = item->get_param(i);
    if (param->get_param_type() == qv_param::type_item) {
      item->set_param_value<qv_item*>(param, redirected(param->get_item()));
    } else if (param->get_param_type() == qv_param::type_item_list) {
      qv_list<qv_item*> targets = param->get_item_list();
      for (qv_item*& target : targets) target = redirected(target);
      item->set_param_value<qv_list<qv_item*>>(param, targets);
    }
  }
}

}  // namespace

qv_item* qv_item::full_copy() const {
  std::unordered_map<qv_item*, qv_item*> copies;
  const std::vector<qv_item*> originals = list_subtree();
  qv_item* root = nullptr;
  for (qv_item* original : originals) {
    qv_item* made = original->copy();
    if (made == nullptr) {
      destroy(root);
      return nullptr;
    }
    copies.emplace(original, made);
    if (root == nullptr) {
      root = made;
    } else {
      copies[original->parent_]->add_child(made, -1);
    }
    // Some classes give a new item a name.
    made->name_ =
        original->name_ == nullptr ? nullptr : std::make_unique<std::string>(*original->name_);
    made->set_source(original);
    made->copy_params(original);
  }
  for (qv_item* original : originals) redirect_references(copies[original], copies);
  return root;
}

}  // namespace qv
