#include "xf/xf_file.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

#include "support/system_files.h"
#include "xf/xf_errors.h"
#include "xf/xf_file_state.h"
#include "xf/xf_table.h"
#include "xf/xf_text.h"

namespace quillet {
namespace {

constexpr const char* file_type_name = "/File Type";
constexpr const char* file_type = "Xmdf";
constexpr const char* file_version_name = "/File Version";
constexpr float file_version = 2.1F;

XfPropertiesHandle access_properties(bool locking, bool writing) {
  XfPropertiesHandle properties(H5Pcreate(H5P_FILE_ACCESS));
  // Who writes a file here holds a lock of its own on it.
  H5Pset_file_locking(properties.get(), locking && !writing, true);
  if (writing) {
    // Old viewers read the earliest format only.
    H5Pset_libver_bounds(properties.get(), H5F_LIBVER_EARLIEST, H5F_LIBVER_V18);
    H5Pset_fclose_degree(properties.get(), H5F_CLOSE_SEMI);
  }
  return properties;
}

// Opens or creates, again without locks when the file system refuses them. `error` is of the last
// attempt; it is taken before anything else is asked of HDF5, which would clear it.
template <typename Open>
XfFileHandle with_or_without_locks(bool writing, XfLastError& error, Open open) {
  XfFileHandle file;
  for (const bool locking : {true, false}) {
    const XfPropertiesHandle access = access_properties(locking, writing);
    file = XfFileHandle(open(access.get()));
    if (!file.valid()) error = xf_last_error();
    if (file.valid() || !error.lock_refused) break;
  }
  return file;
}

XfStatus opening_failure(const std::string& name, const XfLastError& error) {
  if (error.locked_by_other) return XF_FAILURE("another program is writing it");
  if (!error.truncation.empty()) return XF_FAILURE("truncated, " + error.truncation);
  if (!error.system_reason.empty()) return XF_FAILURE(error.system_reason);
  if (H5Fis_hdf5(name.c_str()) > 0) return XF_FAILURE("damaged or truncated HDF5 file");
  return XF_FAILURE("not an HDF5 file");
}

XfStatus check_file_type(hid_t file) {
  const std::optional<std::string> found = xf_dataset_text(file, file_type_name);
  if (found && xf_same_text(*found, file_type)) return {};
  return XF_FAILURE(found ? "an HDF5 file but not an XMDF file, expected File Type Xmdf, found " +
                                *found
                          : "an HDF5 file but not an XMDF file, it has no File Type");
}

XfFileHandle create_file(const std::string& name, XfLastError& error) {
  const XfPropertiesHandle creation(H5Pcreate(H5P_FILE_CREATE));
  // Equal runs give equal bytes: no times in the file.
  H5Pset_obj_track_times(creation.get(), false);
  return with_or_without_locks(true, error, [&](hid_t access) {
    return H5Fcreate(name.c_str(), H5F_ACC_TRUNC, creation.get(), access);
  });
}

bool holds_numbers(hid_t dataset) {
  const XfTypeHandle type(H5Dget_type(dataset));
  return xf_is_number(type.get());
}

XfStatus incomplete() {
  return xf_hdf5_failure("the file cannot be completed");
}

// HDF5 keeps back headers and lists of chunks; closing the file tells less well what became of
// them.
XfStatus write_what_is_left(const XfFileState& file) {
  return H5Fflush(file.id.get(), H5F_SCOPE_LOCAL) >= 0 ? XfStatus{} : incomplete();
}

// Cutting a file to the length that it has gives back the blocks beyond.
void give_back_reserve(const std::string& name) {
  std::error_code error;
  const auto size = std::filesystem::file_size(name, error);
  if (!error) std::filesystem::resize_file(name, size, error);
}

XfStatus list_once(XfFileState& file) {
  if (file.paths) return {};
  XfDatasetPaths paths;
  XfStatus status = xf_list_datasets(file.id.get(), paths);
  if (status.ok()) file.paths = std::move(paths);
  return status;
}

XfStatus get_paths(const XfFile& file, std::vector<std::string> XfDatasetPaths::*kind,
                   std::vector<std::string>& paths) {
  return xf_guard_memory([&] {
    XfStatus status = list_once(*file);
    if (status.ok()) paths = (*file->paths).*kind;
    return status;
  });
}

XfStatus get_info(const XfFile& file, std::vector<std::string> XfDatasetPaths::*kind,
                  XfDatasetsInfo& info) {
  return xf_guard_memory([&] {
    XfStatus status = list_once(*file);
    if (!status.ok()) return status;
    const std::vector<std::string>& paths = (*file->paths).*kind;
    info = {static_cast<std::int32_t>(paths.size()), 0};
    for (const std::string& path : paths) {
      info.longest_path = std::max(info.longest_path, static_cast<std::int32_t>(path.size()));
    }
    return status;
  });
}

}  // namespace

XfFileState::~XfFileState() {
  id.close();
  if (!created_name.empty()) give_back_reserve(created_name);
}

void XfFileCloser::operator()(XfFileState* state) const {
  delete state;
}

XfStatus XF_OPEN_FILE(const std::string& name, XfFile& file) {
  xf_prepare_hdf5();
  XfLastError error;
  XfFileHandle opened = with_or_without_locks(
      false, error, [&](hid_t access) { return H5Fopen(name.c_str(), H5F_ACC_RDONLY, access); });
  if (!opened.valid()) return opening_failure(name, error);
  XfStatus status = check_file_type(opened.get());
  if (status.ok()) file.reset(new XfFileState(std::move(opened), ""));
  return status;
}

XfStatus XF_CREATE_FILE(const std::string& name, XfFile& file) {
  xf_prepare_hdf5();
  XfLastError error;
  XfFileHandle created = create_file(name, error);
  if (!created.valid()) {
    return XF_FAILURE(error.system_reason.empty() ? "the file cannot be created"
                                                  : error.system_reason);
  }
  XfStatus status = xf_write_text_dataset(created.get(), file_type_name, file_type);
  if (status.ok()) {
    status = xf_write_single(created.get(), file_version_name, H5T_IEEE_F32LE, H5T_NATIVE_FLOAT,
                             &file_version);
  }
  if (!status.ok()) return status;
  file.reset(new XfFileState(std::move(created), name));
  return {};
}

void XF_EXPECT_SIZE(const XfFile& file, std::int64_t bytes) {
  hsize_t size = 0;
  void* descriptor = nullptr;  // behind HDF5's usual file driver
  if (bytes <= 0 || H5Fget_filesize(file->id.get(), &size) < 0 ||
      H5Fget_vfd_handle(file->id.get(), H5P_DEFAULT, &descriptor) < 0) {
    return;
  }
  // The file must not look longer than what HDF5 has written.
  const bool reserved = RESERVE_BEYOND_END(*static_cast<const SystemFile*>(descriptor),
                                           static_cast<std::int64_t>(size), bytes);
  // What a full disk could give is given back: the guess may be too high.
  if (!reserved) give_back_reserve(file->created_name);
}

XfStatus XF_CLOSE_FILE(XfFile& file) {
  if (!file) return {};
  XfStatus status = file->created_name.empty() ? XfStatus{} : write_what_is_left(*file);
  if (!file->id.close() && status.ok()) status = incomplete();
  file.reset();
  return status;
}

XfStatus XF_GET_LIBRARY_VERSION_FILE(const XfFile& file, float& version) {
  const XfStatus missing = XF_FAILURE("File Version is missing or no number");
  const hid_t id = file->id.get();
  if (H5Lexists(id, file_version_name, H5P_DEFAULT) <= 0) return missing;
  const XfDatasetHandle dataset(H5Dopen2(id, file_version_name, H5P_DEFAULT));
  if (!dataset.valid() || !holds_numbers(dataset.get())) return missing;
  const XfSpaceHandle space(H5Dget_space(dataset.get()));
  std::array<float, 16> values{};
  const hssize_t count = H5Sget_simple_extent_npoints(space.get());
  if (count < 1 || count > static_cast<hssize_t>(values.size())) return missing;
  if (H5Dread(dataset.get(), H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()) < 0) {
    return missing;
  }
  version = values[0];
  return {};
}

XfStatus XF_GET_SCALAR_DATASETS_INFO(const XfFile& file, XfDatasetsInfo& info) {
  return get_info(file, &XfDatasetPaths::scalars, info);
}

XfStatus XF_GET_VECTOR_DATASETS_INFO(const XfFile& file, XfDatasetsInfo& info) {
  return get_info(file, &XfDatasetPaths::vectors, info);
}

XfStatus XF_GET_SCALAR_DATASET_PATHS(const XfFile& file, std::vector<std::string>& paths) {
  return get_paths(file, &XfDatasetPaths::scalars, paths);
}

XfStatus XF_GET_VECTOR_DATASET_PATHS(const XfFile& file, std::vector<std::string>& paths) {
  return get_paths(file, &XfDatasetPaths::vectors, paths);
}

}  // namespace quillet
