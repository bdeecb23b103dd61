#pragma once

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <string>

#include "app/pictures/qv_picture.h"
#include "bim/qv_load_bim_items.h"
#include "core/items/qv_scene.h"
#include "core/shapes/qvi_polygon.h"
#include "tests/support/qv_test_buildings.h"

namespace qv_test {

/// A test with a scene to fill and draw.
class picture_of_scene : public testing::Test {
 protected:
  picture_of_scene() { qv_load_bim_items(); }
  // A fault would be laid to the next frame buffer.
  void TearDown() override { EXPECT_EQ(glGetError(), static_cast<unsigned int>(GL_NO_ERROR)); }

  /// Computes the scene and draws it, small and without a key.
  qv::qv_pixels draw(qv::qv_picture_view view = qv::qv_picture_view::iso,
                     qv::qv_picture_color color = qv::qv_picture_color::contact_type) {
    scene_.precompute();
    qv::qv_picture_options options = small();
    options.view = view;
    options.color = color;
    return draw(options);
  }
  qv::qv_pixels draw(const qv::qv_picture_options& options) {
    qv::qv_picture picture = draw(maker_, scene_, options);
    notes_ = picture.notes;
    return std::move(picture.pixels);
  }
  static qv::qv_picture draw(qv::qv_picture_maker& maker, qv::qv_scene& scene,
                             const qv::qv_picture_options& options) {
    qv::qv_picture_subject subject;
    subject.scene = &scene;
    return maker.draw(subject, options, "scene");
  }
  /// A small picture without a key.
  static qv::qv_picture_options small() {
    qv::qv_picture_options options;
    options.with_key = false;
    options.width = 160;
    options.height = 120;
    return options;
  }

  /// A surface of no wall.
  qv::qvi_polygon* add_surface(const qv::qv_list<qv::qv_3dvector>& contour) {
    return add_face(scene_, contour);
  }

  qv::qv_scene scene_;
  qv::qv_picture_maker maker_;
  std::vector<std::string> notes_;
};

}  // namespace qv_test
