// The vocabulary of results: what kind of quantity a file holds. The row numbers (from 1) are the
// result type numbers that other subsystems use.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace quillet {

struct ResultType {
  std::string_view code;  // as given with -type; case does not matter
  std::string_view name;  // as datasets are named
};

// The codes v and q stand twice (scalar, vector) and n/a seven times; the later row wins a lookup.
constexpr std::array<ResultType, 60> result_types{{
    {"h", "Water Level"},
    {"d", "Depth"},
    {"v", "Velocity"},
    {"q", "Unit Flow"},
    {"n", "Manning n"},
    {"n2", "Manning n2"},
    {"eVis", "Viscosity Coeff"},
    {"R", "Flow Regime"},
    {"E", "Energy"},
    {"Fr", "Froude No"},
    {"Haz", "Hazard"},
    {"ZH", "Bathymetry"},
    {"S1", "Morphology"},
    {"ME%", "Mass Error %"},
    {"SS", "Source Flow"},
    {"WI10", "Wind"},
    {"AP", "Atmospheric Pressure"},
    {"FLC", "Form Loss Coeff"},
    {"CWF", "Cell Width Factor"},
    {"Cr", "Courant No."},
    {"RC", "Route Category"},
    {"Time", "Time Outputs"},
    {"BSS", "Bed Shear Stress"},
    {"SP", "Stream Power"},
    {"MB1", "MB1"},
    {"MB2", "MB2"},
    {"ZUK0", "ZUK0"},
    {"ZUK1", "ZUK1"},
    {"029", "029"},
    {"030", "030"},
    {"UD1", "UD1"},
    {"UD2", "UD2"},
    {"UD3", "UD3"},
    {"UD4", "UD4"},
    {"UD5", "UD5"},
    {"UD6", "UD6"},
    {"UD7", "UD7"},
    {"UD8", "UD8"},
    {"UD9", "UD9"},
    {"UD10", "UD10"},
    {"Z0", "Z0"},
    {"Z1", "Z1"},
    {"Z2", "Z2"},
    {"Z3", "Z3"},
    {"Z4", "Z4"},
    {"Z5", "Z5"},
    {"Z6", "Z6"},
    {"Z7", "Z7"},
    {"Z8", "Z8"},
    {"Z9", "Z9"},
    {"v", "Vector Velocity"},
    {"q", "Vector Unit Flow"},
    {"W", "Vector Wind"},
    {"n/a", "054"},
    {"n/a", "055"},
    {"n/a", "056"},
    {"n/a", "057"},
    {"n/a", "058"},
    {"n/a", "059"},
    {"n/a", "060"},
}};

// Copies the name of every row whose code is the given one into `name`, first row to last, so that
// the last wins. An unknown code leaves `name` as it was: false.
bool LOOK_UP_TYPE_NAME(std::string_view code, std::string& name);

}  // namespace quillet
