#include "xf/xf_member.h"

namespace quillet {
namespace {

using State = XfMember::State;

// Not to be asked for its extents before this is known: HDF5 would look for them in other files.
State place_of_data(hid_t properties) {
  const bool elsewhere =
      H5Pget_layout(properties) == H5D_VIRTUAL || H5Pget_external_count(properties) > 0;
  return elsewhere ? State::elsewhere : State::present;
}

}  // namespace

XfStatus XfMember::status() const {
  switch (state) {
    case State::present:
      break;
    case State::absent:
      return XF_FAILURE(name + " is missing");
    case State::elsewhere:
      return XF_FAILURE(name + " keeps its data in other files");
    case State::damaged:
      return XF_FAILURE(name + " is damaged or no dataset");
  }
  return {};
}

State xf_look_for_member(hid_t group, const char* name) {
  H5L_info_t link{};
  if (H5Lget_info(group, name, &link, H5P_DEFAULT) < 0) {
    return H5Lexists(group, name, H5P_DEFAULT) == 0 ? State::absent : State::damaged;
  }
  if (link.type == H5L_TYPE_HARD) return State::present;
  return link.type == H5L_TYPE_SOFT ? State::absent : State::elsewhere;
}

XfMember xf_open_member(hid_t group, const char* name, hid_t access) {
  XfMember member;
  member.name = name;
  member.state = xf_look_for_member(group, name);
  if (!member.is_present()) return member;
  member.dataset = XfDatasetHandle(H5Dopen2(group, name, access));
  if (member.dataset.valid()) {
    member.properties = XfPropertiesHandle(H5Dget_create_plist(member.dataset.get()));
  }
  member.state =
      member.properties.valid() ? place_of_data(member.properties.get()) : State::damaged;
  return member;
}

}  // namespace quillet
