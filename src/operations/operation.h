// The operations, and how the console names each. A run performs exactly one.
#pragma once

#include <array>
#include <string_view>

namespace quillet {

// In the order in which they are reported.
enum class Operation {
  max,
  min,
  dif,
  dur,
  ddur,
  keep,
  range,
  remove,
  trim,
  times,
  xnfo,
  va,
  con,
  conv,
  ensight,
  toi,
};

struct OperationName {
  Operation operation;
  std::string_view flag;
  std::string_view meaning;
};

constexpr std::array<OperationName, 16> operation_names{{
    {Operation::max, "-max", "maximum"},
    {Operation::min, "-min", "minimum"},
    {Operation::dif, "-dif", "difference"},
    {Operation::dur, "-dur", "duration"},
    {Operation::ddur, "-ddur", "difference in duration"},
    {Operation::keep, "-k", "keep"},
    {Operation::range, "-range", "range"},
    {Operation::remove, "-r", "remove"},
    {Operation::trim, "-trim", "trim"},
    {Operation::times, "-times", "times"},
    {Operation::xnfo, "-xnfo", "XMDF information"},
    {Operation::va, "-va", "velocity angle"},
    {Operation::con, "-con", "concatenate"},
    {Operation::conv, "-conv", "convert"},
    {Operation::ensight, "-ensight", "convert to ensight"},
    {Operation::toi, "-toi", "time to increase"},
}};

}  // namespace quillet
