#include "utilities/qv_matrix.h"

#include <algorithm>
#include <numbers>

namespace qv {

namespace {

// Cofactors of the upper-left 3 × 3 part; they are exact enough in double precision for every
// product of three single-precision elements that can be told from zero.
struct cofactors {
  double of[3][3];
  double determinant;
};

cofactors get_cofactors(const qv_matrix& m) {
  cofactors c;
  for (int i = 0; i < 3; ++i) {
    const int i1 = (i + 1) % 3, i2 = (i + 2) % 3;
    for (int j = 0; j < 3; ++j) {
      const int j1 = (j + 1) % 3, j2 = (j + 2) % 3;
      c.of[i][j] = static_cast<double>(m.get(i1, j1)) * m.get(i2, j2) -
                   static_cast<double>(m.get(i1, j2)) * m.get(i2, j1);
    }
  }
  c.determinant = m.get(0, 0) * c.of[0][0] + m.get(0, 1) * c.of[0][1] + m.get(0, 2) * c.of[0][2];
  return c;
}

// Cosine and sine of an angle in degrees, exact at the multiples of 90°.
void exact_cos_sin(float degrees, double& cosine, double& sine) {
  const double turned = std::remainder(static_cast<double>(degrees), 360.0);
  if (turned == 0) {
    cosine = 1, sine = 0;
  } else if (std::fabs(turned) == 180) {
    cosine = -1, sine = 0;
  } else if (std::fabs(turned) == 90) {
    cosine = 0, sine = turned > 0 ? 1 : -1;
  } else {
    const double angle = turned * std::numbers::pi / 180.0;
    cosine = std::cos(angle), sine = std::sin(angle);
  }
}

}  // namespace

qv_matrix::qv_matrix() {
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column) elements_[row][column] = row == column ? 1.0f : 0.0f;
}

qv_matrix qv_matrix::rotation(int axis, float degrees) {
  qv_matrix result;
  if (axis < 0 || axis > 2 || !std::isfinite(degrees)) return result;
  double cosine, sine;
  exact_cos_sin(degrees, cosine, sine);
  const int first = (axis + 1) % 3, second = (axis + 2) % 3;
  result.elements_[first][first] = result.elements_[second][second] = static_cast<float>(cosine);
  result.elements_[second][first] = static_cast<float>(sine);
  result.elements_[first][second] = static_cast<float>(-sine + 0.0);
  return result;
}

qv_matrix qv_matrix::translation(const qv_3dvector& v) {
  qv_matrix result;
  result.elements_[0][3] = v.x;
  result.elements_[1][3] = v.y;
  result.elements_[2][3] = v.z;
  return result;
}

qv_matrix qv_matrix::scaling(const qv_3dvector& factors) {
  qv_matrix result;
  result.elements_[0][0] = factors.x;
  result.elements_[1][1] = factors.y;
  result.elements_[2][2] = factors.z;
  return result;
}

qv_matrix& qv_matrix::operator*=(const qv_matrix& right) {
  const qv_matrix left = *this;
  const qv_matrix other = right;
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      double sum = 0;
      for (int k = 0; k < 4; ++k)
        sum += static_cast<double>(left.elements_[row][k]) * other.elements_[k][column];
      elements_[row][column] = static_cast<float>(sum);
    }
  }
  return *this;
}

bool operator==(const qv_matrix& a, const qv_matrix& b) {
  return std::equal(&a.elements_[0][0], &a.elements_[0][0] + 16, &b.elements_[0][0]);
}

qv_3dvector qv_matrix::transform_point(const qv_3dvector& point) const {
  const auto row = [&](int i) {
    return static_cast<float>(static_cast<double>(elements_[i][0]) * point.x +
                              static_cast<double>(elements_[i][1]) * point.y +
                              static_cast<double>(elements_[i][2]) * point.z + elements_[i][3]);
  };
  return {row(0), row(1), row(2)};
}

qv_3dvector qv_matrix::transform_direction(const qv_3dvector& direction) const {
  const auto row = [&](int i) {
    return static_cast<float>(static_cast<double>(elements_[i][0]) * direction.x +
                              static_cast<double>(elements_[i][1]) * direction.y +
                              static_cast<double>(elements_[i][2]) * direction.z);
  };
  return {row(0), row(1), row(2)};
}

qv_3dvector qv_matrix::transform_normal(const qv_3dvector& normal) const {
  const cofactors c = get_cofactors(*this);
  if (c.determinant == 0 || !std::isfinite(c.determinant) || !normal.is_finite()) return {};
  double turned[3];
  for (int i = 0; i < 3; ++i)
    turned[i] = c.of[i][0] * normal.x + c.of[i][1] * normal.y + c.of[i][2] * normal.z;
  const double length =
      std::sqrt(turned[0] * turned[0] + turned[1] * turned[1] + turned[2] * turned[2]);
  if (!(length > 0) || !std::isfinite(length)) return {};
  return {static_cast<float>(turned[0] / length), static_cast<float>(turned[1] / length),
          static_cast<float>(turned[2] / length)};
}

float qv_matrix::get_determinant() const {
  return static_cast<float>(get_cofactors(*this).determinant);
}

qv_matrix qv_matrix::get_inverse() const {
  const cofactors c = get_cofactors(*this);
  if (c.determinant == 0 || !std::isfinite(c.determinant)) return {};
  qv_matrix result;
  for (int row = 0; row < 3; ++row) {
    double moved = 0;
    for (int column = 0; column < 3; ++column) {
      const double element = c.of[column][row] / c.determinant;
      result.elements_[row][column] = static_cast<float>(element + 0.0);
      moved -= element * elements_[column][3];
    }
    result.elements_[row][3] = static_cast<float>(moved + 0.0);
  }
  return result;
}

}  // namespace qv
