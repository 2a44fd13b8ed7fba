// Files, as the system is asked for them. Here alone the platforms differ: names are UTF-8,
// positions and sizes are 64-bit bytes, nothing is translated. A routine that fails tells why by
// SYSTEM_REASON, asked right after it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace quillet {

// An open file; no_file stands for none.
using SystemFile = int;
constexpr SystemFile no_file = -1;

// Why the last of these routines failed: "No space left on device".
std::string SYSTEM_REASON();

// Opens a regular file for reading and tells its length; no_file and the reason for anything else
// (a folder, a pipe, a device). Other programs may read, write, rename and remove it meanwhile.
SystemFile OPEN_REGULAR_FILE(const std::string& name, std::int64_t& size, std::string& reason);

// The same open file once more, to be closed by itself: reading one moves no position of the other.
// no_file when the system has none to give.
SystemFile SECOND_SYSTEM_FILE(SystemFile file);

// Opens a file for writing, made when it is not there and otherwise left as it is; no_file and the
// reason also for a link and for anything but a regular file.
SystemFile OPEN_OUTPUT_FILE(const std::string& name, std::string& reason);

// Creates the file or empties the one that is there, for writing; no_file and the reason also for
// anything but a regular file.
SystemFile CREATE_OUTPUT_FILE(const std::string& name, std::string& reason);

// Locks the file until it is closed. False when another process has locked it; a file system that
// has no locks counts as done.
bool LOCK_SYSTEM_FILE(SystemFile file);

// True when a program that is writing the file has locked it. No lock is kept.
bool IS_LOCKED_BY_WRITER(SystemFile file);

// The length of the file as it is now, in bytes; -1 when the system does not tell.
std::int64_t SYSTEM_FILE_SIZE(SystemFile file);

// True when the name leads to this file itself: another process may have renamed or removed it.
bool NAMES_SYSTEM_FILE(const std::string& name, SystemFile file);

// False when the system tells only now that it could not write something. The file stays open.
bool SYSTEM_FILE_IS_WRITTEN(SystemFile file);

// False when the system could not write what it held back.
bool CLOSE_SYSTEM_FILE(SystemFile file);

// One read or write at the most that the system takes at a time: how many bytes, or -1. The read
// leaves the file's position alone and gives 0 at its end.
std::int64_t READ_SOME_AT(SystemFile file, std::int64_t position, void* destination,
                          std::int64_t count);
std::int64_t WRITE_SOME(SystemFile file, const void* data, std::int64_t count);

// What is written next goes over the first bytes.
bool GO_TO_START_OF_FILE(SystemFile file);

// Room on the disk for a file that will have `bytes` bytes; its length may become that already.
// False when the system has no such thing or not the room, of which it may have given a part.
bool RESERVE_FILE_ROOM(SystemFile file, std::int64_t bytes);

// The same from `size` on for one that grows by `bytes` and keeps its length; `file` is behind a
// library's own descriptor.
bool RESERVE_BEYOND_END(SystemFile file, std::int64_t size, std::int64_t bytes);

// Cuts the file to `bytes` bytes and gives back what was reserved beyond.
bool CUT_FILE(SystemFile file, std::int64_t bytes);

// False and the reason when another file must not take the place of what has this name: it is no
// regular file or, where the system minds, write-protected or open in another program. True when
// there is nothing.
bool MAY_BE_REPLACED(const std::string& name, std::string& reason);

// Gives the file its other name, in the place of the one that has it. It may be open here.
bool RENAME_FILE(const std::string& from, const std::string& to);

// Removes a file, not a folder. True also when there is none. It may be open here.
bool REMOVE_FILE(const std::string& name);

}  // namespace quillet
