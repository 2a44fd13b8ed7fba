#pragma once

#include <string>

namespace quillet::example {

// The forms of a .2dm file: with all geo-referencing values, with the seven older ones, or with
// none, which is how a finite-volume engine writes its mesh.
enum class MeshForm { full, pre2005, fv };

struct MODEL_OPTIONS_TYPE {
  std::string folder = ".";
  int nodes = 5000;
  int times = 24;
  int scenarios = 2;
  MeshForm form = MeshForm::full;
  bool quad9 = false;
  bool stored_maxima = true;
  bool xmdf = true;
  int compression = 0;      // deflate level; 0 is none
  int times_per_chunk = 1;  // output times
  bool help = false;
};

// Throws std::runtime_error with one line about the first argument that is not understood.
MODEL_OPTIONS_TYPE parse_options(int count, const char* const* arguments);

const char* usage_text();

}  // namespace quillet::example
