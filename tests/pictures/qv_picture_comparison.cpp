#include "tests/pictures/qv_picture_comparison.h"

#include <cairo.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>

#include "app/pictures/qv_canvas.h"
#include "tests/support/qv_test_paths.h"

namespace qv_test {
namespace {

namespace fs = std::filesystem;

constexpr int largest_difference = 40;
constexpr double largest_share = 0.01;

int difference(std::uint32_t a, std::uint32_t b) {
  return std::max(
      {std::abs(red(a) - red(b)), std::abs(green(a) - green(b)), std::abs(blue(a) - blue(b))});
}

void write(const fs::path& path, const qv::qv_pixels& picture) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << qv::qv_encode_png(picture);
}

}  // namespace

int red(std::uint32_t pixel) {
  return static_cast<int>(pixel >> 16U & 0xffU);
}
int green(std::uint32_t pixel) {
  return static_cast<int>(pixel >> 8U & 0xffU);
}
int blue(std::uint32_t pixel) {
  return static_cast<int>(pixel & 0xffU);
}

qv::qv_pixels read_png(const std::string& path) {
  const std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> surface(
      cairo_image_surface_create_from_png(path.c_str()), &cairo_surface_destroy);
  qv::qv_pixels picture;
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) {
    ADD_FAILURE() << "cannot read " << path;
    return picture;
  }
  picture.width = cairo_image_surface_get_width(surface.get());
  picture.height = cairo_image_surface_get_height(surface.get());
  const unsigned char* const data = cairo_image_surface_get_data(surface.get());
  const int stride = cairo_image_surface_get_stride(surface.get());
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      std::uint32_t pixel = 0;
      std::memcpy(&pixel, data + static_cast<std::ptrdiff_t>(y) * stride + 4 * x, sizeof pixel);
      picture.rows.push_back(pixel & 0x00ffffffU);
    }
  }
  return picture;
}

testing::AssertionResult looks_like_stored(const qv::qv_pixels& picture, const std::string& name) {
  const fs::path stored_path = fs::path(QV_SOURCE_DIR "/tests/pictures/stored") / (name + ".png");
  if (std::getenv("QV_STORE_PICTURES") != nullptr) write(stored_path, picture);
  const qv::qv_pixels stored = read_png(stored_path);
  const fs::path folder = QV_DIFFERENCE_DIR;
  if (stored.width != picture.width || stored.height != picture.height) {
    write(folder / (name + ".png"), picture);
    return testing::AssertionFailure()
           << name << " has another size than stored; it lies in " << folder;
  }
  qv::qv_pixels differences = picture;
  std::size_t count = 0;
  for (std::size_t i = 0; i < picture.rows.size(); ++i) {
    const int found = difference(picture.rows[i], stored.rows[i]);
    if (found > largest_difference) ++count;
    differences.rows[i] = static_cast<std::uint32_t>(found) * 0x010101U;
  }
  const double share = static_cast<double>(count) / static_cast<double>(picture.rows.size());
  if (share <= largest_share) return testing::AssertionSuccess();
  write(folder / (name + ".png"), picture);
  write(folder / (name + "-difference.png"), differences);
  return testing::AssertionFailure()
         << name << ": " << 100 * share << " % of the pixels differ; see " << folder;
}

}  // namespace qv_test
