// Which datasets of an XMDF file are of a type, told from their own names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "xmdf/xmdf_file_header.h"

namespace quillet {

// Datasets that are called as the type; only where the file has none, those whose names hold it.
// Groups and folders do not count: "Wind" is not "Vector Wind", nor anything in "Wind setup/". Case
// does not matter. An empty type name finds nothing.
class XmdfNameSearch {
 public:
  XmdfNameSearch(const XmdfFileHeader& header, std::string_view type_name);

  // Whether dataset i (from 0) of one of the file's lists is of the type. Says what was found, and
  // what comes close but is passed over.
  bool finds(const XmdfDatasetList& datasets, std::size_t i) const;

 private:
  std::string wanted;  // lower case
  bool has_exact = false;
};

// Makes the dataset at this position the chosen one. Warns when it takes the place of another.
void CHOOSE_XMDF_DATASET(std::int32_t& chosen, std::int32_t position, const std::string& path);

}  // namespace quillet
