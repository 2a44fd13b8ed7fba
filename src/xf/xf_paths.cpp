#include "xf/xf_paths.h"

#include <array>
#include <new>
#include <set>

#include "xf/xf_handle.h"
#include "xf/xf_member.h"
#include "xf/xf_text.h"

namespace quillet {
namespace {

constexpr int deepest_level = 64;

enum class GroupKind { folder, scalar, vector, other };

struct Walk {
  XfDatasetPaths& paths;
  std::set<haddr_t> visited;
};

herr_t keep_hard_link(hid_t /*group*/, const char* name, const H5L_info_t* info, void* names) {
  if (info->type != H5L_TYPE_HARD) return 0;
  try {
    static_cast<std::vector<std::string>*>(names)->emplace_back(name);
  } catch (const std::bad_alloc&) {
    return -1;
  }
  return 0;
}

// A dataset that keeps its values elsewhere is one that cannot be read.
GroupKind kind_by_rank(const XfMember& values) {
  if (!values.is_present()) return GroupKind::scalar;
  const XfSpaceHandle space(H5Dget_space(values.dataset.get()));
  const int rank = space.valid() ? H5Sget_simple_extent_ndims(space.get()) : 0;
  std::array<hsize_t, H5S_MAX_RANK> extents{};
  if (rank > 0) H5Sget_simple_extent_dims(space.get(), extents.data(), nullptr);
  if (rank == 2) return GroupKind::scalar;
  return rank == 3 && extents[2] == 2 ? GroupKind::vector : GroupKind::other;
}

GroupKind kind_by_members(hid_t group) {
  const auto is_there = [](const XfMember& member) {
    return member.is_present() || member.state == XfMember::State::elsewhere;
  };
  if (!is_there(xf_open_member(group, "Times", H5P_DEFAULT))) return GroupKind::folder;
  const XfMember values = xf_open_member(group, "Values", H5P_DEFAULT);
  return is_there(values) ? kind_by_rank(values) : GroupKind::folder;
}

GroupKind kind_of_group(hid_t group) {
  const std::string text = xf_attribute_text(group, "Grouptype").value_or("");
  if (text.empty()) return kind_by_members(group);
  if (xf_same_text(text, "DATASET SCALAR")) return GroupKind::scalar;
  if (xf_same_text(text, "DATASET VECTOR")) return GroupKind::vector;
  const bool folder = xf_same_text(text, "GENERIC") || xf_same_text(text, "MULTI DATASETS");
  return folder ? GroupKind::folder : GroupKind::other;
}

XfStatus walk_folder(hid_t group, const std::string& path, int level, Walk& walk);

XfStatus walk_group(hid_t group, const std::string& path, int level, Walk& walk) {
  switch (kind_of_group(group)) {
    case GroupKind::folder:
      return walk_folder(group, path + "/", level + 1, walk);
    case GroupKind::scalar:
      walk.paths.scalars.push_back(path);
      break;
    case GroupKind::vector:
      walk.paths.vectors.push_back(path);
      break;
    case GroupKind::other:
      break;
  }
  return {};
}

XfStatus walk_link(hid_t folder, const std::string& name, const std::string& path, int level,
                   Walk& walk) {
  H5O_info_t info{};
  if (H5Oget_info_by_name2(folder, name.c_str(), &info, H5O_INFO_BASIC, H5P_DEFAULT) < 0) {
    return XF_FAILURE("damaged, cannot read the object " + path);
  }
  if (info.type != H5O_TYPE_GROUP || !walk.visited.insert(info.addr).second) return {};
  const XfGroupHandle group(H5Gopen2(folder, name.c_str(), H5P_DEFAULT));
  if (!group.valid()) return XF_FAILURE("damaged, cannot read the group " + path);
  return walk_group(group.get(), path, level, walk);
}

// `path` is empty for the root and ends in a slash otherwise.
XfStatus walk_folder(hid_t group, const std::string& path, int level, Walk& walk) {
  if (level > deepest_level) return XF_FAILURE("groups are nested too deeply at " + path);
  std::vector<std::string> names;
  hsize_t position = 0;
  if (H5Literate(group, H5_INDEX_NAME, H5_ITER_INC, &position, keep_hard_link, &names) < 0) {
    return XF_FAILURE("damaged, cannot list the group /" + path);
  }
  for (const std::string& name : names) {
    XfStatus status = walk_link(group, name, path + name, level, walk);
    if (!status.ok()) return status;
  }
  return {};
}

}  // namespace

XfStatus xf_list_datasets(hid_t file, XfDatasetPaths& paths) {
  const XfGroupHandle root(H5Gopen2(file, "/", H5P_DEFAULT));
  H5O_info_t info{};
  if (!root.valid() || H5Oget_info2(root.get(), &info, H5O_INFO_BASIC) < 0) {
    return XF_FAILURE("damaged, cannot read the root group");
  }
  Walk walk{paths, {info.addr}};
  return walk_folder(root.get(), "", 0, walk);
}

}  // namespace quillet
