// Headers of XMDF files that say what they should not, and the program run on them as a whole: one
// line or a complete result, within bounds of time and memory.
//
// One change in so many is tried; with QUILLET_ALL_DAMAGE in the environment all are, which takes
// some minutes: scripts/damage.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>

#include "xmdf_builder.h"

namespace quillet::testing {
namespace {

using Places = std::set<std::size_t>;

std::uint64_t number_at(const std::string& bytes, std::size_t place) {
  std::uint64_t number = 0;
  std::memcpy(&number, bytes.data() + place, sizeof number);
  return number;
}

void add_words(std::size_t first, std::size_t length, Places& places) {
  for (std::size_t word = 0; word < length; word += 4) places.insert(first + word);
}

// An object header, and where its messages say that it goes on (type 16, of 16 bytes: an address
// and a length).
void add_header(const std::string& bytes, std::size_t first, std::size_t length, Places& places) {
  const std::string goes_on("\x10\0\x10\0", 4);
  add_words(first, length, places);
  for (std::size_t place = first; place + 24 <= first + length; place += 8) {
    if (bytes.compare(place, goes_on.size(), goes_on) != 0) continue;
    add_words(number_at(bytes, place + 8), number_at(bytes, place + 16), places);
  }
}

struct Headers {
  const std::string& bytes;
  Places& places;
};

herr_t add_header_of(hid_t /*file*/, const char* /*name*/, const H5O_info_t* info, void* data) {
  constexpr std::size_t prefix = 16;
  const auto& [bytes, places] = *static_cast<Headers*>(data);
  // Of what is in several pieces the first one stands here.
  std::uint32_t length = 0;
  std::memcpy(&length, bytes.data() + info->addr + 8, sizeof length);
  add_header(bytes, info->addr, prefix + length, places);
  return 0;
}

// Every word of the superblock, of all object headers, and of the lists that groups and chunks are
// kept in (B-trees, their leaves and heaps).
Places telling_places(const Workspace& folder, const std::string& bytes) {
  constexpr std::size_t superblock = 96;
  constexpr std::size_t start_of_list = 72;
  Places places;
  add_words(0, superblock, places);
  for (const char* const signature : {"TREE", "SNOD", "HEAP"}) {
    for (auto at = bytes.find(signature); at != std::string::npos;
         at = bytes.find(signature, at + 1)) {
      add_words(at, start_of_list, places);
    }
  }
  const XfFileHandle file(H5Fopen(folder.path("a.xmdf").c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
  Headers headers{bytes, places};
  EXPECT_GE(
      H5Ovisit2(file.get(), H5_INDEX_NAME, H5_ITER_INC, add_header_of, &headers, H5O_INFO_BASIC),
      0);
  return places;
}

// Nothing, everything, the largest positive number, one, the end of the file, the place itself.
std::vector<std::string> telling_words(std::size_t place, std::size_t file_size) {
  const auto word = [](std::uint64_t value, std::size_t size) {
    return std::string(reinterpret_cast<const char*>(&value), size);
  };
  return {word(0, 8),         word(UINT64_MAX, 8), word(UINT64_MAX >> 1, 8),
          word(file_size, 8), word(place, 8),      word(0, 4),
          word(1, 4),         word(0x7fffffff, 4), word(UINT32_MAX, 4),
          word(0xff, 1),      word(0x80, 1)};
}

struct Change {
  std::size_t place;
  std::string word;
};

// One in `step`.
std::vector<Change> changes(const Workspace& folder, const std::string& bytes, std::size_t step) {
  std::vector<Change> chosen;
  std::size_t count = 0;
  for (const std::size_t place : telling_places(folder, bytes)) {
    for (const std::string& word : telling_words(place, bytes.size())) {
      const bool fits = place + word.size() <= bytes.size();
      if (fits && count++ % step == 0) chosen.push_back({place, word});
    }
  }
  return chosen;
}

// A scalar and a vector, each with statuses, and a stored maximum; chunks of half a row.
void make_sound_file(const Workspace& folder) {
  const auto time = [](float hours, std::size_t count) {
    return DatTime{hours, {1, 0, 1}, std::vector<float>(count, hours + 1)};
  };
  const DatShape scalar{6, 3, false};
  const DatShape vector{6, 3, true};
  XmdfForm form;
  form.chunk_nodes = 3;
  form.filters = [](hid_t properties) { H5Pset_deflate(properties, 1); };
  MAKE_XMDF(folder, "a.xmdf",
            {{"run1/Temporal/Depth", scalar, {time(0, 6), time(1, 6), time(2, 6)}},
             {"run1/Temporal/Velocity", vector, {time(0, 12), time(1, 12)}},
             {"run1/Maximums/Depth", scalar, {time(0, 6)}}},
            form);
}

// Whatever the damage, a run is complete or says why not. HDF5 leaves memory behind when a damaged
// header stops it: that is no finding under the sanitizers.
void expect_line_or_result(const Workspace& folder, const std::vector<std::string>& arguments) {
  const RunSettings bounds{.address_space = rlim_t{1} << 30,
                           .time_limit = std::chrono::seconds(20),
                           .environment = {"ASAN_OPTIONS=detect_leaks=0"}};
  const RunResult run = RUN(folder, arguments, bounds);
  EXPECT_TRUE(run.ended_well()) << "signal " << run.signal << "\n" << run.output;
  const int errors = run.count_lines_with("ERROR");
  EXPECT_LE(errors, 1) << run.output;
  EXPECT_EQ(folder.has("r.xmdf"), errors == 0) << run.output;
  std::filesystem::remove(folder.path("r.xmdf"));
  std::filesystem::remove(folder.path("r.xmdf.part"));
}

TEST(StructureDamage, GivesALineOrAResult) {
  const std::size_t step = std::getenv("QUILLET_ALL_DAMAGE") != nullptr ? 1 : 97;
  const std::vector<std::vector<std::string>> operations{
      {"-max", "-b", "-typed", "a.xmdf", "-out", "r.xmdf"},
      {"-max", "-b", "-typev", "a.xmdf", "-out", "r.xmdf"},
      {"-trim1", "-b", "-pathMaximums/Depth", "a.xmdf", "-out", "r.xmdf"}};
  const Workspace folder;
  make_sound_file(folder);
  for (const auto& operation : operations) expect_line_or_result(folder, operation);
  const std::string sound = folder.read("a.xmdf");
  const std::vector<Change> chosen = changes(folder, sound, step);
  EXPECT_GT(chosen.size(), 10000 / step);
  for (std::size_t i = 0; i < chosen.size(); ++i) {
    const auto& [place, word] = chosen[i];
    folder.write("a.xmdf", std::string(sound).replace(place, word.size(), word));
    SCOPED_TRACE("change " + std::to_string(i) + ", byte " + std::to_string(place));
    expect_line_or_result(folder, operations[i % operations.size()]);
    if (::testing::Test::HasFailure()) return;
  }
  std::printf("%zu changes\n", chosen.size());
}

}  // namespace
}  // namespace quillet::testing
