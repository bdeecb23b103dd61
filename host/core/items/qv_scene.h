#pragma once

#include <map>
#include <memory>
#include <string>
#include <typeindex>
#include <typeinfo>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/items/qv_item.h"
#include "core/items/qv_scene_observer.h"

namespace qv {

class qv_raytracer;
class qv_raytracing_layer;

/// The root of a tree of items: everything of one model. Item type "scene".
///
/// The scene keeps indexes of its items by type, of references between them and of what changed
/// when, all kept up to date by the notifications, so that the questions below cost what their
/// answer costs and not a walk over the model.
class qv_scene : public qv_item {
 public:
  qv_scene();
  qv_scene(const qv_scene&) = delete;
  qv_scene& operator=(const qv_scene&) = delete;
  ~qv_scene() override;

  /// An empty scene.
  qv_item* copy() const override;

  /// All items of the scene of this type or one that derives from it, depth first, parents before
  /// children, without the scene itself. Valid until items are added or removed. Costs nothing when
  /// none was.
  const qv_list<qv_item*>& get_items(const std::string& type_name);

  /// The items of type `type_name` whose parameter `param_name` (an item or a list of items) refers
  /// to `item`, any such parameter when `param_name` is empty, each once, in scene order. Time
  /// proportional to the number of references to `item`.
  qv_list<qv_item*> get_referrers(const std::string& type_name, const std::string& param_name,
                                  const qv_item* item);

  /// Latest date at which a parameter `param_name` of an item of type `type_name` changed, any
  /// parameter (the name included) when `param_name` is empty. The arrival or departure of an item
  /// counts as a change of all its parameters. 0 when nothing of the kind ever happened.
  unsigned int get_last_change(const std::string& type_name, const std::string& param_name) const;

  /// The scene's ray tracer over the meshes whose ray-tracing layers contain `layer_name`, kept in
  /// step with the scene. Call `update()` on it before tracing. The scene owns it.
  qv_raytracer* get_raytracer(const std::string& layer_name);

  /// Runs `precompute` of every item, parents first, and again until nothing changes any more, at
  /// most `largest_pass_count` times. An unchanged scene costs next to nothing.
  void precompute() override;
  static constexpr int largest_pass_count = 8;

  /// Inserts `item` unless the scene holds a similar one of the same type, and returns the item
  /// that the scene holds afterwards. An inserted item moves from its parent to the end of the
  /// scene; items that its parameters refer to and the scene lacks come along in the same way, and
  /// the references follow to what the scene then holds. `record` announces the changes of
  /// references to `record_change` first.
  qv_item* insert_without_duplication(qv_item* item, bool compare_names, bool record);

  /// A change of parameter `param_name` of `item` is about to be made and may be undone later. The
  /// base keeps no history.
  virtual void record_change(qv_item* item, const std::string& param_name);

  /// True while a `qv_silence` on this scene lives.
  bool is_silent() const { return silence_count_ > 0; }

  /// The item selected last and still selected, or null.
  qv_item* get_selected_item() const { return selected_item_; }

  /// The observer of class T, made on the first call (it then learns of every item already there).
  template <class T>
  T* get_observer() {
    auto& slot = observers_by_class_[std::type_index(typeid(T))];
    if (slot == nullptr) slot = add_observer(std::make_unique<T>());
    return static_cast<T*>(slot);
  }
  /// Adds an observer that the scene owns; it learns of every item already there.
  qv_scene_observer* add_observer(std::unique_ptr<qv_scene_observer> observer);

  /// Draws every item of the scene.
  void render_opengl(bool selection) override;

 private:
  friend class qv_item;
  friend class qv_silence;

  struct type_index_entry {
    qv_list<qv_item*> items;
    bool stale = true;
  };
  struct type_changes {
    unsigned int any = 0;
    unsigned int membership = 0;
    std::unordered_map<std::string, unsigned int> by_param;
  };

  // Bookkeeping of an added subtree, of one about to be removed, and of a changed parameter.
  void arrive(qv_item* root);
  void leave(qv_item* root);
  void note_change(qv_item* item, const std::string& name, unsigned int date);

  type_changes& get_changes(const qv_item_type* type);
  bool is_at_end(const qv_item* root) const;
  void index_arrival(qv_item* item, bool at_end);
  void index_departure(qv_item* item);
  void renumber();
  qv_item* bring_along(qv_item* item, bool compare_names, bool record,
                       std::unordered_map<qv_item*, qv_item*>& brought);

  std::unordered_map<std::string, type_index_entry> items_by_type_;
  std::vector<type_changes> changes_;  // by type index
  std::vector<std::unique_ptr<qv_scene_observer>> observers_;
  std::unordered_map<std::type_index, qv_scene_observer*> observers_by_class_;
  std::map<std::string, qv_raytracing_layer*> raytracing_layers_;
  std::unordered_set<qv_item*> left_during_pass_;
  bool precomputing_ = false;
  int silence_count_ = 0;
  unsigned int last_order_ = 0;
  unsigned int precomputed_date_ = 0;
  qv_item* selected_item_ = nullptr;
};

/// While it lives, changes in a scene are made without notifications: `item_added`, `item_changed`
/// and `item_removed` are not called. Dates, indexes and observers still follow each change.
/// Silences nest; a null scene is left alone.
class qv_silence {
 public:
  explicit qv_silence(qv_scene* scene) : scene_(scene) {
    if (scene_ != nullptr) ++scene_->silence_count_;
  }
  ~qv_silence() {
    if (scene_ != nullptr) --scene_->silence_count_;
  }
  qv_silence(const qv_silence&) = delete;
  qv_silence& operator=(const qv_silence&) = delete;

 private:
  qv_scene* scene_;
};

}  // namespace qv
