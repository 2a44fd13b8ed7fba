#pragma once

#include <vector>

namespace quillet::example {

// What makes one run differ from the other.
struct SCENARIO_TYPE {
  const char* name;
  double peak_rise;    // of the river above its base flow, at the upstream edge (m)
  double peak_share;   // of the flood's duration, until the peak passes the upstream edge
  double levee_raise;  // (m)
};

// The second flood is larger and faster and meets a raised levee: it stands higher between the
// levee and the right valley side, but less of it comes over.
constexpr SCENARIO_TYPE scenarios[] = {{"run1", 3.05, 0.30, 0.0}, {"run2", 3.25, 0.27, 0.35}};

// Stations down the valley at which the flood is known at one output time. Behind the stations of
// the river stand those of the ponds behind the levee: one array, so that a node's place in it says
// which of the two it belongs to.
constexpr int stations = 151;

struct FLOOD_PROFILE_TYPE {
  std::vector<float> surface;  // 2 x stations: elevation of the water surface (m)
  std::vector<float> rate;     // 2 x stations: its rise (m/h)
};

// One profile per output time. The river is a formula: depth at its deepest point
//   y(s, t) = base + rise * exp(-s / 25 km) * g((t - s / celerity) / time to peak),
//   g(u) = (u * exp(1 - u))^4 for u > 0, else 0,
// a single-peaked hydrograph that travels down the valley and flattens. The ponds take what flows
// over the levee (a weir, head^1.5), pass it down the valley and drain:
//   dr/dt = inflow - speed * dr/ds - r / drain time, r = depth above the ponds' floor,
// integrated with explicit upwind steps. `times` are multiples of half an hour from 0 (h).
std::vector<FLOOD_PROFILE_TYPE> flood_profiles(const SCENARIO_TYPE& scenario,
                                               const std::vector<float>& times);

}  // namespace quillet::example
