#include "xmdf/xmdf_folders.h"

#include <array>
#include <string>

#include "support/text.h"

namespace quillet {
namespace {

struct Folder {
  DatasetKind kind;
  std::string_view name;
};

constexpr std::array folders{
    Folder{DatasetKind::series, "Temporal"},  Folder{DatasetKind::maximum, "Maximums"},
    Folder{DatasetKind::minimum, "Minimums"}, Folder{DatasetKind::special_times, "Times"},
    Folder{DatasetKind::fixed, "Fixed"},
};

}  // namespace

std::string_view XMDF_FOLDER(DatasetKind kind) {
  for (const Folder& folder : folders) {
    if (folder.kind == kind) return folder.name;
  }
  return "";
}

DatasetKind KIND_OF_XMDF_FOLDER(std::string_view name) {
  for (const Folder& folder : folders) {
    if (ASAME(folder.name, name)) return folder.kind;
  }
  return DatasetKind::other;
}

std::size_t FIND_XMDF_FOLDER(std::string_view path, DatasetKind kind) {
  return LOWERCASE(path).find(LOWERCASE("/" + std::string(XMDF_FOLDER(kind)) + "/"));
}

}  // namespace quillet
