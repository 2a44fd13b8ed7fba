// What an earlier export of the same name leaves behind when it had more output times or datasets.
#pragma once

#include <functional>
#include <set>
#include <string>

namespace quillet {

// Names, all without a folder, that a case file points to.
struct OlderExport {
  std::set<std::string> series;  // file bases: "run1_Depth" of "run1_Depth.****"
  std::set<std::string> files;   // "run1Max.0001", "run1_hrs.const"

  // True for one of the files, and for a file of a series: its base and four digits.
  bool points_to(const std::string& own_name) const;
};

// Nothing when there is no such file, it is no regular file, or it cannot be read.
OlderExport READ_OLDER_EXPORT(const std::string& case_name);

// Removes the regular files beside the new case file that the older export points to, except those
// that are to be kept (told by their names without the folder) and those that are younger than the
// new case file: another run may have begun since. What cannot be removed stays.
void REMOVE_LEFT_OVER_FILES(const OlderExport& older, const std::string& case_name,
                            const std::function<bool(const std::string&)>& is_kept);

}  // namespace quillet
