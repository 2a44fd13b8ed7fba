// The floor under the operations on .dat files: one thread, large reads, a few arrays, one loop,
// large writes, and nothing but the work. No checks and no console. The outputs are those of
// quillet byte for byte (angles but for the last bit), so the time beyond the floor's is what the
// rest of the program costs.
//
//     floor_dat MODE OUT ...
//
// clang-format off
//     copy OUT IN
//     max-scalar|max-vector OUT NAME IN                  all output times but the last
//     max-scalar-stored|max-vector-stored OUT NAME IN    the last alone
//     max-water-level OUT NAME IN MESH
//     trim-scalar|trim-vector OUT NAME IN LIMIT
//     va OUT NAME IN
//     dif OUT NAME IN1 IN2
//     dif-wetdry OUT NAME IN1 IN2 LEVELS1 LEVELS2 MESH1 MESH2
// clang-format on
//
// NAME is the name of the output's dataset.

#include <cmath>
#include <cstdio>
#include <string_view>

#include "floor_files.h"
#include "floor_full_mesh.h"

namespace quillet_floor {
namespace {

struct Run {
  const char* output;
  const char* dataset;
  char** inputs;
};

// Calls work(first, count) for the pieces of all nodes.
template <typename Work>
void in_pieces(std::int64_t nodes, Work work) {
  for (std::int64_t first = 0; first < nodes; first += nodes_in_piece) {
    work(first, std::min(nodes_in_piece, nodes - first));
  }
}

inline float magnitude_of(float x, float y) {
  constexpr float negligible = 0.000001F;
  const float length = std::sqrt(x * x + y * y);
  const bool is_negligible = (std::fabs(x) <= negligible) & (std::fabs(y) <= negligible);
  return is_negligible ? 0.0F : length;
}

// ---- Maximum ----

void keep_larger(std::int64_t count, const float* __restrict value, float time,
                 float* __restrict running, float* __restrict times) {
  for (std::int64_t i = 0; i < count; ++i) {
    const bool wins = value[i] > running[i];
    running[i] = wins ? value[i] : running[i];
    times[i] = wins ? time : times[i];
  }
}

void keep_longer(std::int64_t count, const float* __restrict pairs, float time,
                 float* __restrict running_x, float* __restrict running_y,
                 float* __restrict magnitude, float* __restrict times) {
  for (std::int64_t i = 0; i < count; ++i) {
    const float x = pairs[2 * i];
    const float y = pairs[2 * i + 1];
    const float length = magnitude_of(x, y);
    const bool wins = length > magnitude[i];
    running_x[i] = wins ? x : running_x[i];
    running_y[i] = wins ? y : running_y[i];
    magnitude[i] = wins ? length : magnitude[i];
    times[i] = wins ? time : times[i];
  }
}

void keep_active(std::int64_t count, const std::int8_t* __restrict status,
                 std::int8_t* __restrict running) {
  for (std::int64_t i = 0; i < count; ++i) {
    const auto size = static_cast<std::int8_t>(status[i] < 0 ? -status[i] : status[i]);
    running[i] = std::max(size, running[i]);
  }
}

struct Maximum {
  explicit Maximum(const DatFile& input)
      : in(input),
        piece(make_array<float>(in.components * nodes_in_piece)),
        x(make_array<float>(in.nodes)),
        times(make_array<float>(in.nodes)),
        step_status(make_array<std::int8_t>(in.cells)),
        status(make_array<std::int8_t>(in.cells)) {
    if (in.components == 1) return;
    y = make_array<float>(in.nodes);
    magnitude = make_array<float>(in.nodes);
  }

  void fold(std::int64_t step, float time) {
    in.read_statuses(step, step_status);
    keep_active(in.cells, step_status, status);
    in_pieces(in.nodes, [&](std::int64_t first, std::int64_t count) {
      in.read_values(step, first, count, piece);
      if (in.components == 1) {
        keep_larger(count, piece, time, x + first, times + first);
      } else {
        keep_longer(count, piece, time, x + first, y + first, magnitude + first, times + first);
      }
    });
  }

  // Values, then the number of the only input where it supplied one, then the times.
  void write(const Run& run) {
    const float* const won = in.components == 1 ? x : magnitude;
    DatOutput output(run.output, run.dataset, in, 3, in.components - 1);
    output.begin_step(111111, status);
    if (in.components == 1) {
      output.out.write(x, in.nodes * 4);
    } else {
      write_pairs(output.out);
    }
    output.begin_step(222222, status);
    in_pieces(in.nodes, [&](std::int64_t first, std::int64_t count) {
      for (std::int64_t i = 0; i < count; ++i) piece[i] = won[first + i] > 0 ? 1.0F : 0.0F;
      output.out.write(piece, count * 4);
    });
    output.begin_step(333333, status);
    output.out.write(times, in.nodes * 4);
    output.close();
  }

  void write_pairs(OutFile& out) {
    in_pieces(in.nodes, [&](std::int64_t first, std::int64_t count) {
      for (std::int64_t i = 0; i < count; ++i) {
        piece[2 * i] = x[first + i];
        piece[2 * i + 1] = y[first + i];
      }
      out.write(piece, count * 8);
    });
  }

  const DatFile& in;
  float* piece;
  float* x;
  float* y = nullptr;
  float* magnitude = nullptr;
  float* times;
  std::int8_t* step_status;
  std::int8_t* status;
};

void fold_all_but_last(Maximum& maximum) {
  const DatFile& in = maximum.in;
  for (std::int64_t step = 0; step < in.times - 1; ++step) maximum.fold(step, in.time(step));
}

void run_maximum(const Run& run) {
  const DatFile in(run.inputs[0]);
  Maximum maximum(in);
  fold_all_but_last(maximum);
  maximum.write(run);
}

void run_stored_maximum(const Run& run) {
  const DatFile in(run.inputs[0]);
  Maximum maximum(in);
  maximum.fold(in.times - 1, 0);
  std::fill_n(maximum.times, in.nodes, in.time(in.times - 1));
  maximum.write(run);
}

// Only nodes of active cells take part.
void run_water_level_maximum(const Run& run) {
  const DatFile in(run.inputs[0]);
  FullMesh mesh(in.nodes, in.cells);
  take_lines(run.inputs[1], mesh);
  Maximum maximum(in);
  fold_all_but_last(maximum);
  auto* const counts = make_array<std::uint8_t>(in.nodes);
  mesh.mark_active_nodes(maximum.status, counts);
  for (std::int64_t i = 0; i < in.nodes; ++i) {
    maximum.x[i] = counts[i] != 0 ? maximum.x[i] : 0.0F;
  }
  maximum.write(run);
}

// ---- Operations that write every output time ----

void limit_values(float* value, std::int64_t count, float limit) {
  for (std::int64_t i = 0; i < count; ++i) value[i] = value[i] < limit ? value[i] : limit;
}

void limit_vectors(float* pairs, std::int64_t count, float limit) {
  for (std::int64_t i = 0; i < count; ++i) {
    const float x = pairs[2 * i];
    const float y = pairs[2 * i + 1];
    const float magnitude = magnitude_of(x, y);
    const bool is_long = magnitude >= limit;
    pairs[2 * i] = is_long ? x * limit / magnitude : x;
    pairs[2 * i + 1] = is_long ? y * limit / magnitude : y;
  }
}

void run_trim(const Run& run) {
  const DatFile in(run.inputs[0]);
  const auto limit = static_cast<float>(std::atof(run.inputs[1]));
  DatOutput output(run.output, run.dataset, in, in.times, (in.components - 1) * in.times);
  auto* const status = make_array<std::int8_t>(in.cells);
  auto* const piece = make_array<float>(in.components * nodes_in_piece);
  for (std::int64_t step = 0; step < in.times; ++step) {
    in.read_statuses(step, status);
    output.begin_step(in.time(step), status);
    in_pieces(in.nodes, [&](std::int64_t first, std::int64_t count) {
      in.read_values(step, first, count, piece);
      if (in.components == 1) {
        limit_values(piece, count, limit);
      } else {
        limit_vectors(piece, count, limit);
      }
      output.out.write(piece, count * in.value_size());
    });
  }
  output.close();
}

// Arc tangent in degrees of a ratio of either sign, at most the tangent of 22.5 degrees, to 2e-11
// of it: Chebyshev interpolation.
inline double small_angle(double ratio) {
  const double z = ratio * ratio;
  double sum = 2.7003474474324403;
  sum = sum * z - 4.8467120194736975;
  sum = sum * z + 6.326057955059345;
  sum = sum * z - 8.182776533291413;
  sum = sum * z + 11.459090527088852;
  sum = sum * z - 19.098592480349065;
  return (sum * z + 57.295779511886394) * ratio;
}

inline float angle_of(float x, float y) {
  constexpr double half_octant = 0.41421356237309503;  // tangent of 22.5 degrees
  const double east = std::fabs(x);
  const double north = std::fabs(y);
  const double shorter = std::min(east, north);
  const double longer = std::max(east, north);
  const bool is_diagonal = shorter > half_octant * longer;
  const double numerator = is_diagonal ? shorter - longer : shorter;
  const double denominator = (is_diagonal ? shorter + longer : longer) + 1e-300;
  double angle = (is_diagonal ? 45.0 : 0.0) + small_angle(numerator / denominator);
  angle = east > north ? 90.0 - angle : angle;
  angle = std::signbit(y) ? 180.0 - angle : angle;
  return std::copysign(static_cast<float>(angle), x);
}

void take_angles(std::int64_t count, const float* __restrict pairs, float* __restrict angles) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) angles[i] = angle_of(pairs[2 * i], pairs[2 * i + 1]);
}

void run_flow_direction(const Run& run) {
  const DatFile in(run.inputs[0]);
  DatOutput output(run.output, run.dataset, in, in.times, 0);
  auto* const status = make_array<std::int8_t>(in.cells);
  auto* const pairs = make_array<float>(2 * nodes_in_piece);
  auto* const angles = make_array<float>(nodes_in_piece);
  for (std::int64_t step = 0; step < in.times; ++step) {
    in.read_statuses(step, status);
    output.begin_step(in.time(step), status);
    in_pieces(in.nodes, [&](std::int64_t first, std::int64_t count) {
      in.read_values(step, first, count, pairs);
      take_angles(count, pairs, angles);
      output.out.write(angles, count * 4);
    });
  }
  output.close();
}

// ---- Difference ----

struct WetDry {
  DatFile levels1, levels2;
  const float* bed1;
  const float* bed2;
  float* piece1;
  float* piece2;
};

void subtract_where_wet(std::int64_t count, float* __restrict v1, const float* __restrict v2,
                        const float* __restrict level1, const float* __restrict level2,
                        const float* __restrict bed1, const float* __restrict bed2) {
  constexpr float wet_depth = 0.001F;
  for (std::int64_t i = 0; i < count; ++i) {
    const bool wet1 = bed1[i] + wet_depth < level1[i];
    const bool wet2 = bed2[i] + wet_depth < level2[i];
    const float wet_in_first = wet2 ? v1[i] - v2[i] : 99.0F;
    const float dry_in_first = wet2 ? -99.0F : 0.0F;
    v1[i] = wet1 ? wet_in_first : dry_in_first;
  }
}

void combine_statuses(std::int64_t count, std::int8_t* __restrict first,
                      const std::int8_t* __restrict second, bool either) {
  if (either) {
    for (std::int64_t i = 0; i < count; ++i) first[i] = (first[i] == 1) | (second[i] == 1);
  } else {
    for (std::int64_t i = 0; i < count; ++i) first[i] = (first[i] == 1) & (second[i] == 1);
  }
}

struct Difference {
  Difference(const Run& r)
      : run(r),
        in1(run.inputs[0]),
        in2(run.inputs[1]),
        status1(make_array<std::int8_t>(in1.cells)),
        status2(make_array<std::int8_t>(in1.cells)),
        piece1(make_array<float>(nodes_in_piece)),
        piece2(make_array<float>(nodes_in_piece)) {}

  void perform(WetDry* wet_dry) {
    DatOutput output(run.output, run.dataset, in1, in1.times, 0);
    for (std::int64_t step = 0; step < in1.times; ++step) {
      in1.read_statuses(step, status1);
      in2.read_statuses(step, status2);
      combine_statuses(in1.cells, status1, status2, wet_dry != nullptr);
      output.begin_step(in1.time(step), status1);
      in_pieces(in1.nodes, [&](std::int64_t first, std::int64_t count) {
        in1.read_values(step, first, count, piece1);
        in2.read_values(step, first, count, piece2);
        subtract(wet_dry, step, first, count);
        output.out.write(piece1, count * 4);
      });
    }
    output.close();
  }

  void subtract(WetDry* wet_dry, std::int64_t step, std::int64_t first, std::int64_t count) {
    if (wet_dry == nullptr) {
      for (std::int64_t i = 0; i < count; ++i) piece1[i] -= piece2[i];
      return;
    }
    wet_dry->levels1.read_values(step, first, count, wet_dry->piece1);
    wet_dry->levels2.read_values(step, first, count, wet_dry->piece2);
    subtract_where_wet(count, piece1, piece2, wet_dry->piece1, wet_dry->piece2,
                       wet_dry->bed1 + first, wet_dry->bed2 + first);
  }

  const Run& run;
  DatFile in1, in2;
  std::int8_t* status1;
  std::int8_t* status2;
  float* piece1;
  float* piece2;
};

void run_difference(const Run& run) {
  Difference(run).perform(nullptr);
}

void run_wet_dry_difference(const Run& run) {
  Difference difference(run);
  const std::int64_t nodes = difference.in1.nodes;
  NodeElevations bed1{make_array<float>(nodes)};
  NodeElevations bed2{make_array<float>(nodes)};
  take_lines(run.inputs[4], bed1);
  take_lines(run.inputs[5], bed2);
  WetDry wet_dry{DatFile(run.inputs[2]),
                 DatFile(run.inputs[3]),
                 bed1.z,
                 bed2.z,
                 make_array<float>(nodes_in_piece),
                 make_array<float>(nodes_in_piece)};
  difference.perform(&wet_dry);
}

void run_copy(const Run& run) {
  const DatFile in(run.dataset);  // it has no dataset name
  OutFile out(run.output, in.size);
  constexpr std::int64_t piece = 256 << 10;
  auto* const bytes = make_array<char>(piece);
  for (std::int64_t at = 0; at < in.size; at += piece) {
    const std::int64_t count = std::min(piece, in.size - at);
    in.read(at, bytes, count);
    out.write(bytes, count);
  }
  out.close();
}

struct Mode {
  std::string_view name;
  int arguments;
  void (*perform)(const Run& run);
};

constexpr Mode modes[] = {
    {"copy", 2, run_copy},
    {"max-scalar", 3, run_maximum},
    {"max-vector", 3, run_maximum},
    {"max-scalar-stored", 3, run_stored_maximum},
    {"max-vector-stored", 3, run_stored_maximum},
    {"max-water-level", 4, run_water_level_maximum},
    {"trim-scalar", 4, run_trim},
    {"trim-vector", 4, run_trim},
    {"va", 3, run_flow_direction},
    {"dif", 4, run_difference},
    {"dif-wetdry", 8, run_wet_dry_difference},
};

int run_mode(int count, char** arguments) {
  for (const Mode& mode : modes) {
    if (count != mode.arguments + 2 || mode.name != arguments[1]) continue;
    mode.perform({arguments[2], arguments[3], arguments + 4});
    return EXIT_SUCCESS;
  }
  std::fputs("floor_dat MODE OUT NAME IN..., see the head of the source\n", stderr);
  return EXIT_FAILURE;
}

}  // namespace
}  // namespace quillet_floor

int main(int count, char** arguments) {
  return quillet_floor::run_mode(count, arguments);
}
