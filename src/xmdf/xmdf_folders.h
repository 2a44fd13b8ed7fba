// The folders of an XMDF file, which tell what the datasets in them are.
#pragma once

#include <cstddef>
#include <string_view>

#include "results/dataset_kind.h"

namespace quillet {

// "Temporal" for a series; empty for `other`.
std::string_view XMDF_FOLDER(DatasetKind kind);

// Case does not matter; any other name is of the kind `other`.
DatasetKind KIND_OF_XMDF_FOLDER(std::string_view folder);

// Where the folder's name, between separators, stands in the path of a dataset; npos where it does
// not. Case does not matter.
std::size_t FIND_XMDF_FOLDER(std::string_view path, DatasetKind kind);

}  // namespace quillet
