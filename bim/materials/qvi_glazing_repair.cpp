#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_glazing_glass.h"
#include "bim/materials/qvi_glazing_pv.h"

namespace qv {

namespace {

/// Builds the repaired stack layer by layer, reading the given one from the outside in.
class stack_repair {
 public:
  stack_repair(qvi_glazing* glazing, int wanted_pv_count)
      : glazing_(glazing), wanted_pv_count_(wanted_pv_count) {}

  void take(qvi_glazing_layer* layer) {
    if (layer->has_type("glazing_gaz")) {
      if (panes_since_gap_ == 0) add_pane();
      panes_since_gap_ = 0;
    } else if (layer->has_type("glazing_pv")) {
      take_pv(layer);
      return;
    } else if (layer->has_exact_type("glazing_glass")) {
      template_ = layer;
      ++panes_since_gap_;
    }
    stack_.append(layer);
  }

  /// The last group of panes, then the photovoltaic layers that are missing.
  void finish() {
    if (panes_since_gap_ == 0) add_pane();
    for (; kept_pv_.get_count() < wanted_pv_count_; changed_ = true) {
      auto* const pv = new qvi_glazing_pv;
      glazing_->add_child(pv, -1);
      stack_.append(pv);
      kept_pv_.append(pv);
    }
  }

  bool has_changed() const { return changed_; }
  const qv_list<qvi_glazing_layer*>& get_stack() const { return stack_; }

 private:
  void add_pane() {
    qvi_glazing_layer* const pane = template_ == nullptr
                                        ? new qvi_glazing_glass
                                        : static_cast<qvi_glazing_layer*>(template_->full_copy());
    glazing_->add_child(pane, -1);
    stack_.append(pane);
    changed_ = true;
  }

  void take_pv(qvi_glazing_layer* layer) {
    if (kept_pv_.get_count() < wanted_pv_count_) {
      kept_pv_.append(layer);
      stack_.append(layer);
      return;
    }
    changed_ = true;
    // The same layer may stand in the stack twice: what was kept, or destroyed already, is only
    // taken out.
    if (kept_pv_.contains(layer)) return;
    if (!dropped_pv_.contains(layer)) dropped_pv_.append(layer);
  }

 public:
  void destroy_dropped() {
    for (qvi_glazing_layer* layer : dropped_pv_) qv_item::destroy(layer);
  }

 private:
  qvi_glazing* glazing_;
  int wanted_pv_count_;
  qv_list<qvi_glazing_layer*> stack_;
  qv_list<qvi_glazing_layer*> kept_pv_;
  qv_list<qvi_glazing_layer*> dropped_pv_;
  qvi_glazing_layer* template_ = nullptr;
  int panes_since_gap_ = 0;
  bool changed_ = false;
};

}  // namespace

bool qvi_glazing::check_glazing(bool with_pv) {
  stack_repair repair(this, with_pv ? 1 : 0);
  for (qvi_glazing_layer* layer : get_layers()) {
    if (layer != nullptr) repair.take(layer);
  }
  repair.finish();
  repair.destroy_dropped();
  if (repair.has_changed()) set_layers(repair.get_stack());
  return repair.has_changed();
}

}  // namespace qv
