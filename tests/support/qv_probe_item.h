#pragma once

#include <functional>

#include "core/items/qv_accessors.h"

namespace qv_test {

/// An item with one parameter of each kind, which tells what it is notified of.
class probe_item : public qv::qv_item {
  QV_ITEM_CLASS(probe_item, qv::qv_item, "test_probe")

  enum class phase : int { solid, liquid, vapour };
  QV_ENUM_LIST(phase, "solid", "liquid", "vapour")

  QV_PARAM(float, number, 1.5f)
  QV_PARAM(int, count, 7)
  QV_PARAM(bool, flag, true)
  QV_PARAM_ENUM(phase, phase, phase::liquid)
  QV_PARAM(std::string, text, "abc")
  QV_PARAM(qv::qv_3dvector, point, qv::qv_3dvector(1, 2, 3))
  QV_PARAM(qv::qv_color, color, qv::qv_color(0.1f, 0.2f, 0.3f, 0.4f))
  QV_PARAM(qv::qv_matrix, matrix, qv::qv_matrix())
  QV_PARAM_ITEM(qv::qv_item, link)
  QV_PARAM_ITEM_LIST(qv::qv_item, links)
  QV_PARAM_LIST(float, numbers)
  QV_PARAM_LIST(int, counts)
  QV_PARAM_LIST(unsigned int, sizes)
  QV_PARAM_ENUM_LIST(probe_item, phase, phases)
  QV_PARAM_LIST(std::string, texts)
  QV_PARAM_LIST(qv::qv_3dvector, points)
  QV_PARAM(float, roughly, 0.0f, {.tolerance = 0.5f})
  QV_PARAM(float, ignored, 0.0f, {.compared = false})

  /// Called at each notification, before the base class acts on it.
  std::function<void(qv::qv_item*, const std::string&)> when_changed;
  std::function<void(qv::qv_item*)> when_added;
  std::function<void(qv::qv_item*)> when_removed;
  /// Called by each precompute.
  std::function<void()> when_precomputed;
  int precompute_count = 0;

  void precompute() override {
    ++precompute_count;
    qv_item::precompute();
    if (when_precomputed) when_precomputed();
  }

  /// Parameters are reached by name as everything outside a class does it.
  qv::qv_param* param(const char* name) const { return find_param(name); }

 protected:
  void item_changed(qv::qv_item* item, const std::string& name) override {
    if (when_changed) when_changed(item, name);
    qv_item::item_changed(item, name);
  }
  void item_added(qv::qv_item* item) override {
    if (when_added) when_added(item);
    qv_item::item_added(item);
  }
  void item_removed(qv::qv_item* item) override {
    if (when_removed) when_removed(item);
    qv_item::item_removed(item);
  }
};

/// A kind of probe: a type with a parent of its own room.
class derived_probe_item : public probe_item {
  QV_ITEM_CLASS(derived_probe_item, probe_item, "test_derived_probe")
  QV_PARAM(float, extra, 2.0f)
};

}  // namespace qv_test
