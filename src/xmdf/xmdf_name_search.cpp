#include "xmdf/xmdf_name_search.h"

#include <algorithm>

#include "support/console.h"
#include "support/text.h"

namespace quillet {
namespace {

bool is_called(const XmdfPath& path, const std::string& wanted) {
  return LOWERCASE(TRIMF(path.dataset)) == wanted;
}

bool lists(const XmdfDatasetList& datasets, const std::string& wanted) {
  return std::any_of(datasets.split_paths.begin(), datasets.split_paths.end(),
                     [&](const XmdfPath& path) { return is_called(path, wanted); });
}

}  // namespace

XmdfNameSearch::XmdfNameSearch(const XmdfFileHeader& header, std::string_view type_name)
    : wanted(LOWERCASE(TRIMF(type_name))),
      has_exact(lists(header.scalars, wanted) || lists(header.vectors, wanted)) {}

bool XmdfNameSearch::finds(const XmdfDatasetList& datasets, std::size_t i) const {
  const XmdfPath& path = datasets.split_paths[i];
  if (wanted.empty() || !FLAGEXISTS(path.dataset, wanted)) return false;
  const std::string quoted_path = QUOTED(datasets.paths[i]);
  const bool is_exact = is_called(path, wanted);
  if (has_exact && !is_exact) {
    SAY("WARNING - Not used, its name differs: " + quoted_path);
    return false;
  }
  SAY("Found: " + quoted_path);
  if (!is_exact) SAY("WARNING - Dataset is not called as the type: " + quoted_path);
  return true;
}

void CHOOSE_XMDF_DATASET(std::int32_t& chosen, std::int32_t position, const std::string& path) {
  if (chosen != 0) SAY("WARNING - More than one dataset matches, using " + QUOTED(path));
  chosen = position;
}

}  // namespace quillet
