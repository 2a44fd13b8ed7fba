// The walk through a file that finds its datasets.
#pragma once

#include <hdf5.h>

#include <string>
#include <vector>

#include "xf/xf_status.h"

namespace quillet {

struct XfDatasetPaths {
  std::vector<std::string> scalars;
  std::vector<std::string> vectors;
};

// Link-name order, depth first. Every object is visited once, under the first path that leads to
// it; soft and external links are not followed.
XfStatus xf_list_datasets(hid_t file, XfDatasetPaths& paths);

}  // namespace quillet
