#include "xf/xf_file.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

#include "support/system_files.h"
#include "xf/xf_errors.h"
#include "xf/xf_file_state.h"
#include "xf/xf_member.h"
#include "xf/xf_table.h"
#include "xf/xf_text.h"

namespace quillet {
namespace {

constexpr const char* file_type_name = "/File Type";
constexpr const char* file_type = "Xmdf";
constexpr const char* file_version_name = "/File Version";
constexpr float file_version = 2.1F;

// HDF5 itself locks nothing: inputs stay free for their writers, and outputs are locked by whoever
// writes them here.
XfPropertiesHandle access_properties() {
  XfPropertiesHandle properties(H5Pcreate(H5P_FILE_ACCESS));
  H5Pset_file_locking(properties.get(), false, true);
  return properties;
}

// HDF5 keeps what it meets of headers and lists of chunks, in several times the memory that they
// take in the file. It must not be more the more output times there are.
XfPropertiesHandle properties_for_reading() {
  constexpr std::size_t kept_bytes = std::size_t{256} << 10;
  XfPropertiesHandle properties = access_properties();
  H5AC_cache_config_t cache{};
  cache.version = H5AC__CURR_CACHE_CONFIG_VERSION;
  if (H5Pget_mdc_config(properties.get(), &cache) < 0) return properties;
  cache.set_initial_size = true;
  cache.initial_size = cache.min_size = cache.max_size = kept_bytes;
  cache.incr_mode = H5C_incr__off;
  cache.flash_incr_mode = H5C_flash_incr__off;
  cache.decr_mode = H5C_decr__off;
  H5Pset_mdc_config(properties.get(), &cache);
  return properties;
}

// A pipe or a device is not opened, nor a file that another program holds locked because it is
// writing it. No lock is kept: who wants to go on writing the file must not be refused.
XfStatus check_input(const std::string& name) {
  std::int64_t size = 0;
  std::string reason;
  const SystemFile file = OPEN_REGULAR_FILE(name, size, reason);
  if (file == no_file) return XF_FAILURE(reason);
  const bool is_locked = IS_LOCKED_BY_WRITER(file);
  CLOSE_SYSTEM_FILE(file);
  return is_locked ? XF_FAILURE("another program is writing it") : XfStatus{};
}

// The library's own words for a failure tell less on some systems than an opening of our own.
std::string reason_for_reading(const std::string& name, const std::string& words) {
  std::string reason;
  std::int64_t size = 0;
  const SystemFile file = OPEN_REGULAR_FILE(name, size, reason);
  if (file == no_file) return reason;
  CLOSE_SYSTEM_FILE(file);
  return words;
}

XfStatus opening_failure(const std::string& name, const XfLastError& error) {
  if (!error.advice.empty()) return XF_FAILURE(error.advice);
  if (!error.truncation.empty()) return XF_FAILURE("truncated, " + error.truncation);
  if (!error.system_reason.empty()) {
    return XF_FAILURE(reason_for_reading(name, error.system_reason));
  }
  if (H5Fis_hdf5(name.c_str()) > 0) return XF_FAILURE("damaged or truncated HDF5 file");
  return XF_FAILURE("not an HDF5 file");
}

XfStatus check_file_type(hid_t file) {
  XfMember member = xf_open_member(file, file_type_name, H5P_DEFAULT);
  if (member.state == XfMember::State::elsewhere) return member.status();
  if (!member.is_present()) {
    return XF_FAILURE("an HDF5 file but not an XMDF file, it has no File Type");
  }
  const std::optional<std::string> found = xf_dataset_text(member.dataset.get());
  if (found && xf_same_text(*found, file_type)) return {};
  return XF_FAILURE("an HDF5 file but not an XMDF file, " +
                    (found ? "expected File Type Xmdf, found " + *found : "it has no File Type"));
}

// What else stands at the root is looked at when it is asked for, but never elsewhere.
XfStatus check_place_of_version(hid_t file) {
  const XfMember member = xf_open_member(file, file_version_name, H5P_DEFAULT);
  return member.state == XfMember::State::elsewhere ? member.status() : XfStatus{};
}

XfStatus check_root(hid_t file) {
  XfStatus status = check_file_type(file);
  return status.ok() ? check_place_of_version(file) : status;
}

// Some file systems write a file that was emptied to the disk when it is next closed, by whoever
// has opened it, and let the closer wait: that is now, not when it is full.
void close_while_empty(const std::string& name) {
  std::int64_t size = 0;
  std::string reason;
  const SystemFile file = OPEN_REGULAR_FILE(name, size, reason);
  if (file != no_file) CLOSE_SYSTEM_FILE(file);
}

XfFileHandle create_file(const std::string& name) {
  const XfPropertiesHandle creation(H5Pcreate(H5P_FILE_CREATE));
  // Equal runs give equal bytes: no times in the file.
  H5Pset_obj_track_times(creation.get(), false);
  const XfPropertiesHandle access = access_properties();
  // Old viewers read the earliest format only.
  H5Pset_libver_bounds(access.get(), H5F_LIBVER_EARLIEST, H5F_LIBVER_V18);
  H5Pset_fclose_degree(access.get(), H5F_CLOSE_SEMI);
  XfFileHandle created(H5Fcreate(name.c_str(), H5F_ACC_TRUNC, creation.get(), access.get()));
  close_while_empty(name);
  return created;
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

bool close_id(XfFileState& file) {
  const FileAtRisk reading(file.opened_name, xf_fatal_damage);
  return file.id.close();
}

// Cutting a file to the length that it has gives back the blocks beyond. Some file systems write
// its end to the disk first, so it is not done when there are none.
void give_back_beyond_end(const std::filesystem::path& name, std::uint64_t reserved_end) noexcept {
  std::error_code error;
  const auto size = std::filesystem::file_size(name, error);
  if (!error && size < reserved_end) std::filesystem::resize_file(name, size, error);
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
  return xf_guard_reading(file->opened_name, [&] {
    XfStatus status = list_once(*file);
    if (status.ok()) paths = (*file->paths).*kind;
    return status;
  });
}

XfStatus get_info(const XfFile& file, std::vector<std::string> XfDatasetPaths::*kind,
                  XfDatasetsInfo& info) {
  return xf_guard_reading(file->opened_name, [&] {
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

XfStatus open_file(const std::string& name, XfFile& file) {
  xf_prepare_hdf5();
  XfStatus status = check_input(name);
  if (!status.ok()) return status;
  const XfPropertiesHandle access = properties_for_reading();
  // Inflated chunks are kept only where a table asks for it.
  H5Pset_cache(access.get(), 0, 0, 0, H5D_CHUNK_CACHE_W0_DEFAULT);
  XfFileHandle opened(H5Fopen(name.c_str(), H5F_ACC_RDONLY, access.get()));
  if (!opened.valid()) return opening_failure(name, xf_last_error());
  status = check_root(opened.get());
  if (!status.ok()) return status;
  file.reset(new XfFileState(std::move(opened), ""));
  file->opened_name = name;
  file->descriptor = xf_system_file(file->id.get());
  file->opened_size = SYSTEM_FILE_SIZE(file->descriptor);
  file->stored = XfStoredFile(file->id.get());
  return {};
}

XfStatus create_xmdf_file(const std::string& name, XfFile& file) {
  xf_prepare_hdf5();
  XfFileHandle created = create_file(name);
  if (!created.valid()) return xf_hdf5_failure("the file cannot be created");
  XfStatus status = xf_write_text_dataset(created.get(), file_type_name, file_type);
  if (status.ok()) {
    status = xf_write_single(created.get(), file_version_name, H5T_IEEE_F32LE, H5T_NATIVE_FLOAT,
                             &file_version);
  }
  if (status.ok()) file.reset(new XfFileState(std::move(created), name));
  return status;
}

}  // namespace

XfFileState::~XfFileState() {
  close_id(*this);
  if (!created_name.empty()) give_back_beyond_end(created_name, reserved_end);
}

void XfFileCloser::operator()(XfFileState* state) const {
  delete state;
}

XfStatus XF_OPEN_FILE(const std::string& name, XfFile& file, const XfTrialScope& tried) {
  return xf_guard_reading(name, [&] {
    XfStatus status = open_file(name, file);
    if (status.ok()) file->tried = tried;
    return status;
  });
}

XfStatus XF_CREATE_FILE(const std::string& name, XfFile& file) {
  return xf_guard_memory([&] { return create_xmdf_file(name, file); });
}

void XF_EXPECT_SIZE(const XfFile& file, std::int64_t bytes) {
  hsize_t size = 0;
  const SystemFile descriptor = xf_system_file(file->id.get());
  if (bytes <= 0 || descriptor < 0 || H5Fget_filesize(file->id.get(), &size) < 0) return;
  // The file must not look longer than what HDF5 has written.
  file->reserved_end =
      std::max<std::uint64_t>(file->reserved_end, size + static_cast<hsize_t>(bytes));
  // What a full disk could give is given back: the guess may be too high.
  if (!RESERVE_BEYOND_END(descriptor, static_cast<std::int64_t>(size), bytes)) {
    give_back_beyond_end(file->created_name, file->reserved_end);
  }
}

XfStatus XF_CLOSE_FILE(XfFile& file) {
  if (!file) return {};
  XfStatus status = file->created_name.empty() ? XfStatus{} : write_what_is_left(*file);
  if (!close_id(*file) && status.ok()) status = incomplete();
  file.reset();
  return status;
}

XfStatus XF_GET_LIBRARY_VERSION_FILE(const XfFile& file, float& version) {
  const FileAtRisk reading(file->opened_name, xf_fatal_damage);
  const XfStatus missing = XF_FAILURE("File Version is missing or no number");
  const XfMember member = xf_open_member(file->id.get(), file_version_name, H5P_DEFAULT);
  const hid_t dataset = member.dataset.get();
  if (!member.is_present() || !holds_numbers(dataset)) return missing;
  const XfSpaceHandle space(H5Dget_space(dataset));
  std::array<float, 16> values{};
  const hssize_t count = H5Sget_simple_extent_npoints(space.get());
  if (count < 1 || count > static_cast<hssize_t>(values.size())) return missing;
  if (H5Dread(dataset, H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()) < 0) {
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
