#include "xf/xf_text.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <vector>

#include "xf/xf_errors.h"
#include "xf/xf_handle.h"

namespace quillet {
namespace {

// Longer "texts" are damage.
constexpr std::size_t longest_text = std::size_t{1} << 20;

using ReadElements = std::function<herr_t(hid_t memory_type, void* memory)>;

std::string without_padding(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  const std::size_t last = text.find_last_not_of(' ');
  return std::string(text.substr(0, last == std::string_view::npos ? 0 : last + 1));
}

std::optional<std::string> variable_text(hid_t type, hid_t space, std::size_t count,
                                         const ReadElements& read) {
  std::vector<char*> texts(count, nullptr);
  if (read(type, texts.data()) < 0) return std::nullopt;
  std::string text = texts[0] == nullptr ? "" : without_padding(texts[0]);
  H5Dvlen_reclaim(type, space, H5P_DEFAULT, texts.data());
  return text;
}

std::optional<std::string> fixed_text(hid_t type, std::size_t size, std::size_t count,
                                      const ReadElements& read) {
  std::vector<char> bytes(size * count, '\0');
  if (read(type, bytes.data()) < 0) return std::nullopt;
  return without_padding({bytes.data(), size});
}

std::optional<std::string> first_text(hid_t type, hid_t space, const ReadElements& read) {
  if (type < 0 || space < 0 || H5Tget_class(type) != H5T_STRING) return std::nullopt;
  const hssize_t points = H5Sget_simple_extent_npoints(space);
  const std::size_t size = H5Tget_size(type);
  const auto count = static_cast<std::size_t>(std::max<hssize_t>(points, 0));
  if (count == 0 || size == 0 || count > longest_text / size) return std::nullopt;
  if (H5Tis_variable_str(type) > 0) return variable_text(type, space, count, read);
  return fixed_text(type, size, count, read);
}

XfTypeHandle fixed_text_type(const std::string& text) {
  XfTypeHandle type(H5Tcopy(H5T_C_S1));
  H5Tset_size(type.get(), text.size() + 1);
  return type;
}

XfSpaceHandle array_of_one() {
  const hsize_t extent = 1;
  return XfSpaceHandle(H5Screate_simple(1, &extent, nullptr));
}

XfStatus write_attribute(hid_t object, const char* name, hid_t type, const void* value) {
  const XfSpaceHandle space = array_of_one();
  XfAttributeHandle attribute(
      H5Acreate2(object, name, type, space.get(), H5P_DEFAULT, H5P_DEFAULT));
  const bool written =
      attribute.valid() && H5Awrite(attribute.get(), type, value) >= 0 && attribute.close();
  return written ? XfStatus{} : xf_hdf5_failure(std::string(name) + " cannot be written");
}

}  // namespace

std::optional<std::string> xf_attribute_text(hid_t object, const char* name) {
  if (H5Aexists(object, name) <= 0) return std::nullopt;
  const XfAttributeHandle attribute(H5Aopen(object, name, H5P_DEFAULT));
  if (!attribute.valid()) return std::nullopt;
  const XfTypeHandle type(H5Aget_type(attribute.get()));
  const XfSpaceHandle space(H5Aget_space(attribute.get()));
  return first_text(type.get(), space.get(), [&](hid_t memory_type, void* memory) {
    return H5Aread(attribute.get(), memory_type, memory);
  });
}

std::optional<std::string> xf_dataset_text(hid_t dataset) {
  const XfTypeHandle type(H5Dget_type(dataset));
  const XfSpaceHandle space(H5Dget_space(dataset));
  return first_text(type.get(), space.get(), [&](hid_t memory_type, void* memory) {
    return H5Dread(dataset, memory_type, H5S_ALL, H5S_ALL, H5P_DEFAULT, memory);
  });
}

bool xf_same_text(const std::string& a, const char* b) {
  const auto upper = [](char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
  };
  const std::string_view other = b;
  return std::equal(a.begin(), a.end(), other.begin(), other.end(),
                    [&](char c, char d) { return upper(c) == upper(d); });
}

XfStatus xf_write_text_attribute(hid_t object, const char* name, const std::string& text) {
  return write_attribute(object, name, fixed_text_type(text).get(), text.c_str());
}

XfStatus xf_write_integer_attribute(hid_t object, const char* name, int value) {
  return write_attribute(object, name, H5T_NATIVE_INT32, &value);
}

XfStatus xf_write_text_dataset(hid_t file, const char* name, const std::string& text) {
  const XfTypeHandle type = fixed_text_type(text);
  return xf_write_single(file, name, type.get(), type.get(), text.c_str());
}

XfStatus xf_write_single(hid_t file, const char* name, hid_t stored_type, hid_t memory_type,
                         const void* value) {
  const XfSpaceHandle space = array_of_one();
  const XfPropertiesHandle properties(H5Pcreate(H5P_DATASET_CREATE));
  H5Pset_obj_track_times(properties.get(), false);
  XfDatasetHandle dataset(
      H5Dcreate2(file, name, stored_type, space.get(), H5P_DEFAULT, properties.get(), H5P_DEFAULT));
  const bool written =
      dataset.valid() &&
      H5Dwrite(dataset.get(), memory_type, H5S_ALL, H5S_ALL, H5P_DEFAULT, value) >= 0 &&
      dataset.close();
  return written ? XfStatus{} : xf_hdf5_failure(std::string(name) + " cannot be written");
}

}  // namespace quillet
