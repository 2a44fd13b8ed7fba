// Members of groups that may be opened: datasets of this file. A file never makes anybody open
// another one.
#pragma once

#include <hdf5.h>

#include <string>

#include "xf/xf_handle.h"
#include "xf/xf_status.h"

namespace quillet {

struct XfMember {
  enum class State { present, absent, elsewhere, damaged };

  State state = State::absent;
  XfDatasetHandle dataset;
  XfPropertiesHandle properties;  // as it was created
  std::string name;

  bool is_present() const { return state == State::present; }
  // Why it is not there.
  XfStatus status() const;
};

// Whether a member of the name is in this file; what stands behind a soft link is absent.
XfMember::State xf_look_for_member(hid_t group, const char* name);

// Opens the dataset, with H5P_DEFAULT or an access of the caller's.
XfMember xf_open_member(hid_t group, const char* name, hid_t access);

}  // namespace quillet
