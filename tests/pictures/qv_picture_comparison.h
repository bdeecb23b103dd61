#pragma once

#include <gtest/gtest.h>

#include <string>

#include "app/pictures/qv_pixels.h"

namespace qv_test {

/// A picture from a PNG file; empty, and a failure of the running test, when it cannot be read.
qv::qv_pixels read_png(const std::string& path);

/// Success when `picture` looks like the stored one: the same size, and no more than 1 % of the
/// pixels differ by more than 40 of 255 in a channel, since drivers round borders of triangles and
/// letters in their own ways. On failure the picture and its differences (dark: the same) lie in
/// the folder that the message names.
///
/// Stored pictures are those of tests/pictures/stored; with QV_STORE_PICTURES in the environment
/// `picture` is stored in the place of the old one, for whoever changed it on purpose to look at.
testing::AssertionResult looks_like_stored(const qv::qv_pixels& picture, const std::string& name);

/// One channel of a pixel, 0 … 255.
int red(std::uint32_t pixel);
int green(std::uint32_t pixel);
int blue(std::uint32_t pixel);

}  // namespace qv_test
