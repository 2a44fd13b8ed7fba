#include "dat_writer.h"

#include <array>
#include <bit>

namespace quillet::example {

static_assert(std::endian::native == std::endian::little, "the files are little-endian");

DatWriter::DatWriter(const std::string& path, const std::string& name, bool vector,
                     std::int32_t nodes, std::int32_t cells)
    : file_(path) {
  const std::array<std::int32_t, 13> cards = {
      3000, 100, 3, 110, 4, 120, 1, vector ? 140 : 130, 170, nodes, 180, cells, 190};
  std::string padded_name = name;
  padded_name.resize(40, ' ');
  file_.write(cards.data(), sizeof(cards));
  file_.write(padded_name.data(), padded_name.size());
}

void DatWriter::write(float hours, const std::vector<std::int8_t>& statuses,
                      const std::vector<float>& values) {
  constexpr std::int32_t card = 200;
  constexpr std::int8_t statuses_follow = 1;
  file_.write(&card, sizeof(card));
  file_.write(&statuses_follow, sizeof(statuses_follow));
  file_.write(&hours, sizeof(hours));
  file_.write(statuses.data(), statuses.size());
  file_.write(values.data(), values.size() * sizeof(float));
}

void DatWriter::close() {
  constexpr std::int32_t card = 210;
  file_.write(&card, sizeof(card));
  file_.close();
}

}  // namespace quillet::example
