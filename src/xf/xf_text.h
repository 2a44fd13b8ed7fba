// Texts stored in XMDF files. Writers differ in everything: fixed or variable length, padded with
// nulls or blanks, as a scalar or as an array of one.
#pragma once

#include <hdf5.h>

#include <optional>
#include <string>

#include "xf/xf_status.h"

namespace quillet {

// The first text of an attribute or of a dataset, without its padding. Nothing when it does not
// exist or is no text.
std::optional<std::string> xf_attribute_text(hid_t object, const char* name);
std::optional<std::string> xf_dataset_text(hid_t dataset);

// Same letters, whatever their case.
bool xf_same_text(const std::string& a, const char* b);

// Writers for what every reader expects: fixed length with a closing null, arrays of one.
XfStatus xf_write_text_attribute(hid_t object, const char* name, const std::string& text);
XfStatus xf_write_integer_attribute(hid_t object, const char* name, int value);
XfStatus xf_write_text_dataset(hid_t file, const char* name, const std::string& text);
// A dataset of one element; `memory_type` is how `value` stands in memory.
XfStatus xf_write_single(hid_t file, const char* name, hid_t stored_type, hid_t memory_type,
                         const void* value);

}  // namespace quillet
