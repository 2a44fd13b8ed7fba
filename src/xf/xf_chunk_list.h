// Where the chunks of a dataset lie, read from the file itself. HDF5 finds chunks one at a time,
// lets no other thread do it and keeps what it has met of its lists.
#pragma once

#include <vector>

#include "xf/xf_table.h"

namespace quillet {

// The places of all chunks, row by row, from the list that the earliest format has. Nothing when
// the file has another kind of list, when a chunk is missing or does not lie within the file, or
// when the list contradicts what HDF5 has told about the table.
std::vector<XfChunkPlace> xf_list_chunks(const XfTable& table);

}  // namespace quillet
