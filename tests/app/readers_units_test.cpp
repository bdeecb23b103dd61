#include "app/readers/qv_units.h"

#include <gtest/gtest.h>

namespace {

using qv::qv_find_unit;
using qv::qv_quantity;

double to_model(qv_quantity quantity, const char* unit, double value) {
  const auto found = qv_find_unit(quantity, unit);
  EXPECT_TRUE(found.has_value()) << unit;
  return found ? found->to_model(value) : 0;
}

}  // namespace

TEST(qv_units, converts_every_length_of_gbxml) {
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::length, "Meters", 2), 2);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::length, "Kilometers", 2), 2000);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::length, "Centimeters", 2), 0.02);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::length, "Millimeters", 2), 0.002);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::length, "Feet", 10), 3.048);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::length, "Inches", 100), 2.54);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::length, "Yards", 10), 9.144);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::length, "Miles", 1), 1609.344);
}

TEST(qv_units, makes_areas_and_volumes_from_every_length) {
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::area, "SquareMeters", 3), 3);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::area, "SquareFeet", 100), 9.290304);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::area, "SquareInches", 10000), 6.4516);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::area, "SquareKilometers", 1), 1e6);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::volume, "CubicMeters", 3), 3);
  EXPECT_NEAR(to_model(qv_quantity::volume, "CubicFeet", 1000), 28.316846592, 1e-12);
  EXPECT_NEAR(to_model(qv_quantity::volume, "CubicYards", 1), 0.764554857984, 1e-15);
}

TEST(qv_units, converts_temperatures_to_degrees_celsius) {
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::temperature, "C", 21), 21);
  EXPECT_NEAR(to_model(qv_quantity::temperature, "F", 68), 20, 1e-12);
  EXPECT_NEAR(to_model(qv_quantity::temperature, "F", -40), -40, 1e-12);
  EXPECT_NEAR(to_model(qv_quantity::temperature, "K", 293.15), 20, 1e-12);
  EXPECT_NEAR(to_model(qv_quantity::temperature, "R", 491.67), 0, 1e-9);
}

TEST(qv_units, converts_the_units_of_materials) {
  // 1 Btu/(h·ft·°F) = 1.730735 W/(m·K); 1 lb/ft³ = 16.01846 kg/m³; 1 Btu/(lb·°F) = 4186.8 J/(kg·K);
  // 1 h·ft²·°F/Btu = 0.1761102 m²·K/W; 1 Btu/(h·ft²·°F) = 5.678263 W/(m²·K).
  EXPECT_NEAR(to_model(qv_quantity::conductivity, "BtuPerHourFtF", 1), 1.730735, 1e-6);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::conductivity, "WPerCmC", 0.01), 1);
  EXPECT_NEAR(to_model(qv_quantity::density, "LbsPerCubicFt", 1), 16.01846, 1e-5);
  EXPECT_NEAR(to_model(qv_quantity::density, "LbsPerCubicIn", 1), 27679.90, 1e-2);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::density, "GramsPerCubicCm", 2.3), 2300);
  EXPECT_NEAR(to_model(qv_quantity::specific_heat, "BTUPerLbF", 1), 4186.8, 1e-6);
  EXPECT_NEAR(to_model(qv_quantity::thermal_resistance, "HrSquareFtFPerBTU", 1), 0.1761102, 1e-7);
  EXPECT_NEAR(to_model(qv_quantity::thermal_transmittance, "BtuPerHourSquareFtF", 1), 5.678263,
              1e-6);
}

TEST(qv_units, makes_nothing_of_case_blanks_and_british_spelling) {
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::length, "METERS", 1), 1);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::length, "metres", 1), 1);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::length, "foot", 1), 0.3048);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::area, "square metres", 1), 1);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::area, "Squarefeet", 1), 0.09290304);
  EXPECT_DOUBLE_EQ(to_model(qv_quantity::conductivity, "WPerMeterk", 1), 1);
}

TEST(qv_units, knows_no_unit_of_another_quantity_or_of_no_sense) {
  EXPECT_FALSE(qv_find_unit(qv_quantity::length, "SquareMeters"));
  EXPECT_FALSE(qv_find_unit(qv_quantity::area, "Meters"));
  EXPECT_FALSE(qv_find_unit(qv_quantity::length, "UnitID"));
  EXPECT_FALSE(qv_find_unit(qv_quantity::length, ""));
  EXPECT_FALSE(qv_find_unit(qv_quantity::temperature, "Meters"));
  EXPECT_FALSE(qv_find_unit(qv_quantity::thermal_resistance, "WPerMeterK"));
}
