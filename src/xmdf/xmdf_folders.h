// The folders of an XMDF file, which tell what the datasets in them are.
#pragma once

#include <string_view>

#include "results/dataset_kind.h"

namespace quillet {

// "Temporal" for a series; empty for `other`.
std::string_view XMDF_FOLDER(DatasetKind kind);

// Case does not matter; any other name is of the kind `other`.
DatasetKind KIND_OF_XMDF_FOLDER(std::string_view folder);

}  // namespace quillet
