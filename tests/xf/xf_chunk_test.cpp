// Chunks read without HDF5: their places are what HDF5 says, and what is kept of large ones.
#include <array>
#include <bit>
#include <numeric>
#include <random>

#include "in_crew_of.h"
#include "xf/xf_chunk_reader.h"
#include "xf_test_files.h"

namespace quillet {
namespace {

void deflate(hid_t properties) {
  H5Pset_deflate(properties, 1);
}
void shuffle_and_deflate(hid_t properties) {
  H5Pset_shuffle(properties);
  H5Pset_deflate(properties, 6);
}

class XfChunkTest : public XfTest {
 protected:
  // Any values, "Values" in a file of their own, opened as a table.
  void open_values(const Shape& shape, hid_t access = H5P_DEFAULT, hid_t creation = H5P_DEFAULT) {
    table = {};
    file.close();
    std::mt19937 random(20261122);
    const hsize_t count = std::accumulate(shape.extents.begin(), shape.extents.end(), hsize_t{1},
                                          std::multiplies<>());
    values.clear();
    for (hsize_t i = 0; i < count; ++i) values.push_back(static_cast<float>(random() % 100));
    {
      const XfFileHandle created(H5Fcreate(path("v.h5").c_str(), H5F_ACC_TRUNC, creation, access));
      make_member(created.get(), "Values", H5T_IEEE_F32LE, shape, H5T_NATIVE_FLOAT, values);
    }
    file = XfFileHandle(H5Fopen(path("v.h5").c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
    ASSERT_OK(xf_open_table(file.get(), "Values", static_cast<int>(shape.extents.size()),
                            XfStoredFile(file.get()), table));
  }

  void expect_places_of_hdf5() {
    ASSERT_EQ(table.places.size(), xf_chunk_count(table));
    hsize_t chunk = 0;
    for (hsize_t row = 0; row < table.rows; row += table.chunk_rows) {
      for (hsize_t column = 0; column < table.columns; column += table.chunk_columns) {
        const std::array<hsize_t, 3> first = xf_coordinates(table, row, column);
        unsigned mask = 0;
        haddr_t address = 0;
        hsize_t size = 0;
        ASSERT_GE(
            H5Dget_chunk_info_by_coord(table.dataset.get(), first.data(), &mask, &address, &size),
            0);
        const XfChunkPlace& place = table.places[chunk++];
        ASSERT_EQ(place.address, address);
        ASSERT_EQ(place.size, size);
        ASSERT_EQ(place.skipped_filters, mask);
      }
    }
  }

  // What the reader reads of a row.
  XfStatus read_row(XfChunkReader& reader, hsize_t row, std::vector<float>& read) {
    read.assign(table.columns, -1);
    auto* const memory = reinterpret_cast<std::byte*>(read.data());
    return reader.read_row(row, memory,
                           [&](std::size_t first, std::size_t count, const std::byte* elements) {
                             std::copy_n(elements, 4 * count, memory + 4 * first);
                           });
  }

  void expect_row(XfChunkReader& reader, hsize_t row) {
    std::vector<float> read;
    ASSERT_OK(read_row(reader, row, read));
    const auto begin = values.begin() + static_cast<std::ptrdiff_t>(row * table.columns);
    EXPECT_TRUE(std::equal(read.begin(), read.end(), begin)) << row;
  }

  // So that nothing can be inflated any more.
  void damage_all_chunks() {
    std::string bytes = folder.read("v.h5");
    for (const XfChunkPlace& place : table.places) {
      bytes.replace(place.address, place.size, std::string(place.size, '\xFF'));
    }
    folder.write("v.h5", bytes);
  }

  std::vector<float> values;
  XfFileHandle file;
  XfTable table;
};

TEST_F(XfChunkTest, LieWhereHdf5SaysThatTheyLie) {
  const std::vector<Shape> shapes = {
      {{1}, {10}, {}},
      {{2000}, {10}, {}},
      {{1995}, {10}, deflate},
      {{5000, 2}, {1, 2}, {}},  // lists of lists of lists
      {{9, 2000}, {1, 700}, shuffle_and_deflate},
      {{70, 100}, {3, 30}, deflate},
      {{70, 1000}, {3, 300}, {}},
      {{200, 9, 2}, {1, 4, 2}, deflate},
      {{5, 9, 2}, {2, 9, 2}, {}},
  };
  for (const Shape& shape : shapes) {
    SCOPED_TRACE(::testing::PrintToString(shape.chunk));
    open_values(shape);
    expect_places_of_hdf5();
  }
  open_values({{4, 6}, {}, {}});
  ASSERT_EQ(table.places.size(), 1U);
  EXPECT_EQ(table.places[0].address, H5Dget_offset(table.dataset.get()));
}

TEST_F(XfChunkTest, OfOtherFormsAreLeftToHdf5) {
  const XfPropertiesHandle latest(H5Pcreate(H5P_FILE_ACCESS));
  H5Pset_libver_bounds(latest.get(), H5F_LIBVER_LATEST, H5F_LIBVER_LATEST);
  open_values({{30, 8}, {1, 8}, deflate}, latest.get());
  EXPECT_TRUE(table.places.empty());

  const XfPropertiesHandle behind_others(H5Pcreate(H5P_FILE_CREATE));
  H5Pset_userblock(behind_others.get(), 512);
  for (const Shape& shape : {Shape{{30, 8}, {1, 8}, deflate}, Shape{{30, 8}, {}, {}}}) {
    open_values(shape, H5P_DEFAULT, behind_others.get());
    EXPECT_TRUE(table.places.empty());
  }

  const auto checksum = [](hid_t properties) { H5Pset_fletcher32(properties); };
  for (const Shape& shape : {Shape{{30, 8}, {1, 8}, checksum}, Shape{{30, 8, 2}, {1, 8, 1}, {}},
                             Shape{{30, 8}, {10, 2}, {}}}) {
    open_values(shape);
    EXPECT_TRUE(table.places.empty());
  }
}

TEST_F(XfChunkTest, AreDamagedWhereTheirChecksumDoesNotHold) {
  const auto checked = [](hid_t properties) {
    shuffle_and_deflate(properties);
    H5Pset_fletcher32(properties);
  };
  // Of even and odd lengths.
  for (hsize_t width = 997; width < 1003; ++width) {
    open_values({{2, width}, {1, width}, checked});
    XfChunkReader reader(table);
    expect_row(reader, 0);
    std::string bytes = folder.read("v.h5");
    const std::size_t last = table.places[0].address + table.places[0].size - 1;
    bytes[last] = static_cast<char>(bytes[last] ^ 1);
    folder.write("v.h5", bytes);
    std::vector<float> read;
    expect_failure(read_row(reader, 0, read),
                   "Values of output time 1 has damaged compressed bytes");
    expect_row(reader, 1);
  }
}

// Rows of chunks take 960 bytes; there is room for three output times.
TEST_F(XfChunkTest, ThatAreTooLargeSideBySideAreInflatedOncePerWindow) {
  open_values({{20, 25}, {8, 10}, deflate});
  XfChunkReader reader(table, {.chunk_row = 350});
  for (hsize_t row = 0; row < 20; ++row) expect_row(reader, row);
  for (const hsize_t row : {7, 8, 0, 19, 3}) expect_row(reader, row);
  damage_all_chunks();
  std::vector<float> read;
  for (const hsize_t row : {3, 4, 5}) expect_row(reader, row);
  EXPECT_FALSE(read_row(reader, 6, read).ok());
  EXPECT_FALSE(read_row(reader, 3, read).ok());
}

TEST_F(XfChunkTest, FillWindowsByACrewToo) {
  open_values({{20, 25}, {8, 10}, shuffle_and_deflate});
  for (const int threads : {2, 3, 8}) {
    test::in_crew_of(threads, [&] {
      XfChunkReader reader(table, {.smallest_shared_table = 0, .chunk_row = 350});
      for (hsize_t row = 0; row < 20; ++row) expect_row(reader, row);
      for (const hsize_t row : {3, 4, 5, 6, 17, 18, 19}) expect_row(reader, row);
    });
  }
}

TEST_F(XfChunkTest, StayAsLongAsTheyAreNeeded) {
  for (const hsize_t width : {10, 25}) {
    open_values({{20, 25}, {8, width}, deflate});
    const XfChunkMemory memory{.chunk_row = hsize_t{width == 25 ? 100U : 1000U}};
    XfChunkReader reader(table, memory);
    expect_row(reader, 8);
    damage_all_chunks();
    std::vector<float> read;
    for (hsize_t row = 9; row < 16; ++row) expect_row(reader, row);
    EXPECT_FALSE(read_row(reader, 16, read).ok());
  }
}

}  // namespace
}  // namespace quillet
