#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "core/items/qv_item.h"
#include "core/items/qv_scene.h"
#include "utilities/qv_log.h"

namespace qv_test {

/// One notification: the item concerned and, for changes, the parameter's name.
struct notification {
  qv::qv_item* item;
  std::string name;
  friend bool operator==(const notification& a, const notification& b) {
    return a.item == b.item && a.name == b.name;
  }
};

/// A scene that writes down what it is told, in order.
class recording_scene : public qv::qv_scene {
 public:
  std::vector<notification> changed;
  std::vector<qv::qv_item*> added;
  std::vector<qv::qv_item*> removed;
  /// Changes announced before they were made.
  std::vector<notification> announced;

  ~recording_scene() override = default;

  /// Number of notifications that parameter `name` of `item` changed; of any parameter when `name`
  /// is empty.
  int count_changes(const qv::qv_item* item, const std::string& name = "") const {
    return static_cast<int>(std::count_if(
        changed.begin(), changed.end(),
        [&](const notification& n) { return n.item == item && (name.empty() || n.name == name); }));
  }
  void forget() {
    changed.clear();
    added.clear();
    removed.clear();
    announced.clear();
  }
  void record_change(qv::qv_item* item, const std::string& name) override {
    announced.push_back({item, name});
    qv_scene::record_change(item, name);
  }

 protected:
  void item_added(qv::qv_item* item) override {
    added.push_back(item);
    qv_scene::item_added(item);
  }
  void item_changed(qv::qv_item* item, const std::string& name) override {
    changed.push_back({item, name});
    qv_scene::item_changed(item, name);
  }
  void item_removed(qv::qv_item* item) override {
    removed.push_back(item);
    qv_scene::item_removed(item);
  }
};

/// Takes the lines of the application's log for as long as it lives.
class log_recorder {
 public:
  log_recorder()
      : previous_(
            qv::qv_set_log_handler([this](const std::string& line) { lines.push_back(line); })) {}
  log_recorder(const log_recorder&) = delete;
  log_recorder& operator=(const log_recorder&) = delete;
  ~log_recorder() { qv::qv_set_log_handler(std::move(previous_)); }

  std::vector<std::string> lines;

 private:
  qv::qv_log_handler previous_;
};

/// A list as a standard vector, which a failed comparison prints.
template <class T>
std::vector<T> to_vector(const qv::qv_list<T>& list) {
  return {list.begin(), list.end()};
}

}  // namespace qv_test
