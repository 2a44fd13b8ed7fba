#include "xf/xf_chunk_list.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <optional>

namespace quillet {
namespace {

using Bytes = std::vector<std::byte>;

// Numbers in the file are little-endian, as this processor's.
template <typename Number>
Number number_at(const Bytes& bytes, std::size_t place) {
  Number number = 0;
  std::memcpy(&number, bytes.data() + place, sizeof(number));
  return number;
}

std::optional<Bytes> bytes_at(const XfStoredFile& file, std::uint64_t address, std::uint64_t size) {
  if (address > file.size() || size > file.size() - address) return std::nullopt;
  Bytes bytes(size);
  if (!file.read(address, bytes.data(), size)) return std::nullopt;
  return bytes;
}

// Addresses and lengths have 8 bytes.
constexpr std::size_t address_size = 8;

// The header of an object, in the earliest format: blocks of messages, of which one may tell where
// the next block is.
class ObjectHeader {
 public:
  ObjectHeader(const XfStoredFile& stored_file, std::uint64_t address) : file(stored_file) {
    const std::optional<Bytes> prefix = bytes_at(file, address, prefix_size);
    if (!prefix || number_at<std::uint8_t>(*prefix, 0) != 1) return;
    blocks.push_back({address + prefix_size, number_at<std::uint32_t>(*prefix, 8)});
  }

  // What the only message of the type holds.
  std::optional<Bytes> message(std::uint16_t type) {
    std::optional<Bytes> found;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
      if (i == most_blocks || !look_through(blocks[i], type, found)) return std::nullopt;
    }
    return found;
  }

 private:
  static constexpr std::size_t prefix_size = 16;
  static constexpr std::size_t message_head = 8;
  static constexpr std::uint16_t continuation = 0x10;
  static constexpr std::uint8_t is_shared = 2;
  static constexpr std::size_t most_blocks = 64;
  static constexpr std::uint64_t largest_block = 1 << 20;

  struct Block {
    std::uint64_t address = 0;
    std::uint64_t size = 0;
  };

  // False when there are two, or the block is none.
  bool look_through(Block block, std::uint16_t type, std::optional<Bytes>& found) {
    if (block.size > largest_block) return false;
    const std::optional<Bytes> bytes = bytes_at(file, block.address, block.size);
    if (!bytes) return false;
    for (std::size_t place = 0; place + message_head <= bytes->size();) {
      const std::size_t data = place + message_head;
      const std::size_t size = number_at<std::uint16_t>(*bytes, place + 2);
      if (size > bytes->size() - data) return false;
      const auto message_type = number_at<std::uint16_t>(*bytes, place);
      if (message_type == continuation) {
        if (size < 2 * address_size) return false;
        blocks.push_back({number_at<std::uint64_t>(*bytes, data),
                          number_at<std::uint64_t>(*bytes, data + address_size)});
      } else if (message_type == type) {
        if (found || (number_at<std::uint8_t>(*bytes, place + 4) & is_shared) != 0) return false;
        found = Bytes(bytes->begin() + static_cast<std::ptrdiff_t>(data),
                      bytes->begin() + static_cast<std::ptrdiff_t>(data + size));
      }
      place = data + size;
    }
    return true;
  }

  const XfStoredFile& file;
  std::vector<Block> blocks;
};

// In the dataset's own order; the size of an element comes last.
std::vector<std::uint64_t> chunk_extents(const XfTable& table) {
  if (table.rank == 1) return {table.chunk_columns, table.stored_size};
  if (table.rank == 2) return {table.chunk_rows, table.chunk_columns, table.stored_size};
  return {table.chunk_rows, table.chunk_columns, table.chunk_components, table.stored_size};
}

// The root of the tree of chunks.
std::optional<std::uint64_t> tree_address(const XfTable& table) {
  constexpr std::uint16_t layout_message = 8;
  constexpr std::array<std::uint8_t, 2> version_and_class = {3, 2};  // chunked
  constexpr std::size_t address_place = 3;
  constexpr std::size_t extents_place = address_place + address_size;
  H5O_info_t info{};
  if (H5Oget_info2(table.dataset.get(), &info, H5O_INFO_BASIC) < 0) return std::nullopt;
  const std::optional<Bytes> layout = ObjectHeader(table.file, info.addr).message(layout_message);
  const std::vector<std::uint64_t> extents = chunk_extents(table);
  if (!layout || layout->size() < extents_place + 4 * extents.size() ||
      std::memcmp(layout->data(), version_and_class.data(), version_and_class.size()) != 0 ||
      number_at<std::uint8_t>(*layout, 2) != extents.size()) {
    return std::nullopt;
  }
  for (std::size_t i = 0; i < extents.size(); ++i) {
    if (number_at<std::uint32_t>(*layout, extents_place + 4 * i) != extents[i]) return std::nullopt;
  }
  return number_at<std::uint64_t>(*layout, address_place);
}

// A tree whose leaves list chunks in the order of their coordinates.
class ChunkTree {
 public:
  explicit ChunkTree(const XfTable& described_table)
      : table(described_table),
        key_size(8 + 8 * (static_cast<std::size_t>(table.rank) + 1)),
        chunk_count(xf_chunk_count(table)) {}

  bool list_all(std::uint64_t root) {
    const std::optional<Node> node = read_node(root);
    return node && node->level <= most_levels && list(*node) && places.size() == chunk_count;
  }

  std::vector<XfChunkPlace> places;

 private:
  static constexpr int most_levels = 16;
  static constexpr std::size_t head_size = 24;
  static constexpr std::size_t usual_entries = 64;

  struct Node {
    int level = 0;  // 0: a leaf
    std::size_t count = 0;
    Bytes bytes;  // a head, then entries of a key and an address each
  };

  // Most files have room for 64 entries in a node: these are read with its head.
  std::optional<Node> read_node(std::uint64_t address) const {
    constexpr std::array<char, 5> chunk_tree = {'T', 'R', 'E', 'E', 1};
    std::optional<Bytes> bytes = bytes_up_to(address, head_size + usual_entries * entry_size());
    if (!bytes || std::memcmp(bytes->data(), chunk_tree.data(), chunk_tree.size()) != 0) {
      return std::nullopt;
    }
    Node node{.level = number_at<std::uint8_t>(*bytes, 5),
              .count = number_at<std::uint16_t>(*bytes, 6),
              .bytes = {}};
    const std::size_t size = head_size + node.count * entry_size();
    if (size > bytes->size()) bytes = bytes_at(table.file, address, size);
    if (!bytes) return std::nullopt;
    node.bytes = std::move(*bytes);
    return node;
  }

  // As many as the file has, but a head.
  std::optional<Bytes> bytes_up_to(std::uint64_t address, std::uint64_t most) const {
    const std::uint64_t end = table.file.size();
    if (address > end || end - address < head_size) return std::nullopt;
    return bytes_at(table.file, address, std::min(most, end - address));
  }

  bool list(const Node& node) {
    for (std::size_t i = 0; i < node.count; ++i) {
      const std::size_t entry = head_size + i * entry_size();
      const auto address = number_at<std::uint64_t>(node.bytes, entry + key_size);
      if (!(node.level == 0 ? add_chunk(node, entry, address) : list_below(node, address))) {
        return false;
      }
    }
    return node.count > 0;
  }

  bool list_below(const Node& node, std::uint64_t address) {
    const std::optional<Node> child = read_node(address);
    return child && child->level == node.level - 1 && list(*child);
  }

  // The next one in order, whole, within the file.
  bool add_chunk(const Node& node, std::size_t key, std::uint64_t address) {
    const XfChunkPlace place{address, number_at<std::uint32_t>(node.bytes, key),
                             number_at<std::uint32_t>(node.bytes, key + 4)};
    const bool fits = place.size > 0 && address <= table.file.size() &&
                      place.size <= table.file.size() - address &&
                      (table.filtered || place.size == xf_chunk_bytes(table));
    if (!fits || places.size() == chunk_count || !is_next(node, key + 8)) return false;
    places.push_back(place);
    return true;
  }

  bool is_next(const Node& node, std::size_t offsets) const {
    const hsize_t per_row = xf_chunks_per_row(table);
    const std::array<hsize_t, 3> first =
        xf_coordinates(table, places.size() / per_row * table.chunk_rows,
                       places.size() % per_row * table.chunk_columns);
    const auto rank = static_cast<std::size_t>(table.rank);
    for (std::size_t i = 0; i <= rank; ++i) {
      const std::uint64_t expected = i < rank ? first[i] : 0;
      if (number_at<std::uint64_t>(node.bytes, offsets + 8 * i) != expected) return false;
    }
    return true;
  }

  std::size_t entry_size() const { return key_size + address_size; }

  const XfTable& table;
  std::size_t key_size;
  hsize_t chunk_count;
};

}  // namespace

std::vector<XfChunkPlace> xf_list_chunks(const XfTable& table) {
  if (!table.file.is_readable()) return {};
  const std::optional<std::uint64_t> root = tree_address(table);
  ChunkTree tree(table);
  if (!root || !tree.list_all(*root)) return {};
  tree.places.shrink_to_fit();
  return std::move(tree.places);
}

}  // namespace quillet
