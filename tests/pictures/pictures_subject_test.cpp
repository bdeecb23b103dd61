#include <gtest/gtest.h>

#include "app/pictures/qv_picture_subject.h"
#include "app/study/qv_study.h"
#include "bim/envelope/qvi_wall.h"
#include "tests/app/qv_gbxml_text.h"

namespace {

TEST(qv_picture_subject, knows_a_wall_by_every_element_that_it_was_made_of) {
  const qv::qv_gbxml_model model = qv_gbxml_text().box("room", {0, 0, 0}, {4, 5, 3}).read();
  const qv::qv_list<qv::qv_item*>& walls = model.scene->get_items("wall");
  auto* const merged = static_cast<qv::qvi_wall*>(walls[1]);
  const std::string first = merged->get_source_ids()[0];
  const std::string other = static_cast<qv::qvi_wall*>(walls[0])->get_source_ids()[0];
  merged->set_source_ids({first, "twin", other});
  const qv::qv_model_findings findings = qv::qv_compute_model(model, {});
  const qv::qv_picture_subject subject =
      qv::qv_make_picture_subject(model, qv::qv_gather_study(model, findings));
  EXPECT_EQ(subject.items_by_id.at(first), merged);
  EXPECT_EQ(subject.items_by_id.at("twin"), merged);
  EXPECT_EQ(subject.items_by_id.at(other), walls[0]);  // what a study calls so goes first
}

}  // namespace
