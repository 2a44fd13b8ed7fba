// HDF5 identifiers that close themselves.
#pragma once

#include <hdf5.h>

#include <utility>

namespace quillet {

template <herr_t (*close_id)(hid_t)>
class XfHandle {
 public:
  XfHandle() = default;
  explicit XfHandle(hid_t new_id) : id(new_id) {}
  XfHandle(XfHandle&& other) noexcept : id(std::exchange(other.id, H5I_INVALID_HID)) {}
  XfHandle& operator=(XfHandle&& other) noexcept {
    std::swap(id, other.id);
    return *this;
  }
  ~XfHandle() { close(); }

  hid_t get() const { return id; }
  bool valid() const { return id >= 0; }
  // False when HDF5 could not close it (what was still to be written could not be).
  bool close() {
    const hid_t closing = std::exchange(id, H5I_INVALID_HID);
    return closing < 0 || close_id(closing) >= 0;
  }

 private:
  hid_t id = H5I_INVALID_HID;
};

using XfFileHandle = XfHandle<H5Fclose>;
using XfGroupHandle = XfHandle<H5Gclose>;
using XfDatasetHandle = XfHandle<H5Dclose>;
using XfAttributeHandle = XfHandle<H5Aclose>;
using XfTypeHandle = XfHandle<H5Tclose>;
using XfSpaceHandle = XfHandle<H5Sclose>;
using XfPropertiesHandle = XfHandle<H5Pclose>;

}  // namespace quillet
