#include <gtest/gtest.h>

#include "app/pictures/qv_picture.h"
#include "app/readers/qv_gbxml_reader.h"
#include "app/study/qv_study.h"
#include "bim/qv_load_bim_items.h"
#include "tests/pictures/qv_picture_comparison.h"
#include "tests/support/qv_test_paths.h"

namespace {

using qv::qv_picture_color;
using qv::qv_picture_view;

struct wanted {
  const char* name;
  qv_picture_view view;
  qv_picture_color color;
  int storey;                 // −1: all
  const char* selected = "";  // id
};

// Every view and every colouring at least once.
constexpr wanted pictures[] = {
    {"iso-contact-type", qv_picture_view::iso, qv_picture_color::contact_type, -1},
    {"north-u", qv_picture_view::north, qv_picture_color::u, -1},
    {"east-type", qv_picture_view::east, qv_picture_color::type, -1},
    {"south-material", qv_picture_view::south, qv_picture_color::material, -1},
    {"west-storey", qv_picture_view::west, qv_picture_color::storey, -1},
    {"perspective-zone", qv_picture_view::perspective, qv_picture_color::zone, -1},
    {"above-contact-type", qv_picture_view::plan, qv_picture_color::contact_type, -1},
    {"plan-0-zone", qv_picture_view::plan, qv_picture_color::zone, 0},
    {"plan-2-u", qv_picture_view::plan, qv_picture_color::u, 2},
    {"iso-1-contact-type", qv_picture_view::iso, qv_picture_color::contact_type, 1},
    {"thermal-bridges", qv_picture_view::iso, qv_picture_color::thermal_bridges, -1},
    {"iso-selected-room", qv_picture_view::iso, qv_picture_color::type, -1, "chambre-1"},
};

TEST(qv_picture_of_the_sample, looks_as_stored_in_every_view_and_colouring) {
  qv_load_bim_items();
  const qv::qv_gbxml_model model = qv::qv_read_gbxml(QV_SOURCE_DIR "/samples/house.xml");
  const qv::qv_model_findings findings = qv::qv_compute_model(model, {});
  const qv::qv_picture_subject subject =
      qv::qv_make_picture_subject(model, qv::qv_gather_study(model, findings));
  qv::qv_picture_maker maker;
  for (const wanted& one : pictures) {
    qv::qv_picture_options options;
    options.view = one.view;
    options.color = one.color;
    if (one.storey >= 0) options.storey = one.storey;
    options.with_key = false;
    options.width = 160;
    options.height = 120;
    qv::qv_item* selected = nullptr;
    if (*one.selected != '\0') selected = subject.items_by_id.at(one.selected);
    if (selected != nullptr) selected->set_selected(true);
    EXPECT_TRUE(qv_test::looks_like_stored(maker.draw(subject, options, "house").pixels, one.name));
    if (selected != nullptr) selected->set_selected(false);
  }
}

}  // namespace
