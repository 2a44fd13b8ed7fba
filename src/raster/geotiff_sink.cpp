#include "raster/geotiff_sink.h"

#include <fmt/format.h>

#include <array>
#include <limits>
#include <vector>

#include "raster/tile_packer.h"
#include "support/console.h"
#include "support/text.h"

namespace quillet {
namespace {

// Tags that the library does not know by itself.
constexpr std::uint32_t pixel_scale_tag = 33550;
constexpr std::uint32_t tie_point_tag = 33922;
constexpr std::uint32_t geo_key_tag = 34735;
constexpr std::uint32_t geo_text_tag = 34737;
constexpr std::uint32_t gdal_metadata_tag = 42112;
constexpr std::uint32_t gdal_no_data_tag = 42113;

TIFFFieldInfo field(std::uint32_t tag, TIFFDataType type, const char* name) {
  const bool is_text = type == TIFF_ASCII;
  const short count = is_text ? TIFF_VARIABLE : TIFF_VARIABLE2;
  // The library never changes the name.
  return {tag,
          count,
          count,
          type,
          FIELD_CUSTOM,
          1,
          static_cast<unsigned char>(is_text ? 0 : 1),
          const_cast<char*>(name)};
}

void add_fields(TIFF* tiff) {
  const std::array fields{field(pixel_scale_tag, TIFF_DOUBLE, "ModelPixelScale"),
                          field(tie_point_tag, TIFF_DOUBLE, "ModelTiepoint"),
                          field(geo_key_tag, TIFF_SHORT, "GeoKeyDirectory"),
                          field(geo_text_tag, TIFF_ASCII, "GeoAsciiParams"),
                          field(gdal_metadata_tag, TIFF_ASCII, "GDALMetadata"),
                          field(gdal_no_data_tag, TIFF_ASCII, "GDALNoData")};
  TIFFMergeFieldInfo(tiff, fields.data(), static_cast<std::uint32_t>(fields.size()));
}

std::int64_t tiles_along(std::int32_t cells) {
  return (std::int64_t{cells} + tile_side - 1) / tile_side;
}

// A file of 4 GiB or more needs 64-bit offsets. What does not compress grows a little, and the
// directory has two entries for each tile.
bool needs_big_tiff(const RasterDescription& raster) {
  constexpr double limit = 4.0 * 1024 * 1024 * 1024;
  constexpr double growth = 1.001;
  constexpr double directory_per_tile = 16 + 512;
  const RasterGrid& grid = raster.grid;
  const auto bands = static_cast<double>(raster.bands);
  const double cells = bands * grid.columns * grid.rows;
  const double tiles = bands * static_cast<double>(tiles_along(grid.columns)) *
                       static_cast<double>(tiles_along(grid.rows));
  return cells * sizeof(float) * growth + tiles * directory_per_tile > limit;
}

struct TiffFields {
  TIFF* tiff;
  bool accepted = true;

  template <typename... Values>
  void set(std::uint32_t tag, Values... values) {
    accepted = accepted && TIFFSetField(tiff, tag, values...) != 0;
  }
};

void set_layout(const RasterDescription& raster, TiffFields& fields) {
  fields.set(TIFFTAG_IMAGEWIDTH, raster.grid.columns);
  fields.set(TIFFTAG_IMAGELENGTH, raster.grid.rows);
  fields.set(TIFFTAG_TILEWIDTH, tile_side);
  fields.set(TIFFTAG_TILELENGTH, tile_side);
  fields.set(TIFFTAG_SAMPLESPERPIXEL, static_cast<int>(raster.bands));
  fields.set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_SEPARATE);
  fields.set(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  fields.set(TIFFTAG_BITSPERSAMPLE, 32);
  fields.set(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
  fields.set(TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
  fields.set(TIFFTAG_PREDICTOR, PREDICTOR_FLOATINGPOINT);
  // All bands but the first are extra samples, of no special meaning.
  const std::vector<std::uint16_t> extra(raster.bands - 1, EXTRASAMPLE_UNSPECIFIED);
  if (!extra.empty())
    fields.set(TIFFTAG_EXTRASAMPLES, static_cast<int>(extra.size()), extra.data());
}

// The keys: their version, then id, place (0: the value stands here), count and value of each.
void set_place_on_map(const RasterDescription& raster, TiffFields& fields) {
  const RasterGrid& grid = raster.grid;
  const std::array<double, 3> scale{grid.cell_size, grid.cell_size, 0};
  const std::array<double, 6> tie_point{0, 0, 0, grid.left, grid.top, 0};
  fields.set(pixel_scale_tag, std::uint32_t{scale.size()}, scale.data());
  fields.set(tie_point_tag, std::uint32_t{tie_point.size()}, tie_point.data());
  // Without keys values are those of areas, and nothing is said of the coordinate system.
  if (!raster.coordinate_system) return;
  const auto code = static_cast<std::uint16_t>(*raster.coordinate_system);
  const std::string text = "EPSG:" + std::to_string(code) + "|";
  const auto length = static_cast<std::uint16_t>(text.size());
  const std::array<std::uint16_t, 20> keys{1, 1, 0,    4,     1024,   0, 1,    1, 1025, 0,
                                           1, 1, 1026, 34737, length, 0, 3072, 0, 1,    code};
  fields.set(geo_key_tag, std::uint32_t{keys.size()}, keys.data());
  fields.set(geo_text_tag, text.c_str());
}

// Readers of this tag know what a band is called by its role.
std::string band_names_as_xml(const std::vector<std::string>& names) {
  std::string xml = "<GDALMetadata>\n";
  for (std::size_t i = 0; i < names.size(); ++i) {
    xml += fmt::format(
        "  <Item name=\"DESCRIPTION\" sample=\"{}\" role=\"description\">{}</Item>\n", i, names[i]);
  }
  return xml + "</GDALMetadata>\n";
}

// The name, of a raster whose bands and tiles the format can number. Else ends the run.
const std::string& name_of_possible(const std::string& file_name, const RasterDescription& raster) {
  const RasterGrid& grid = raster.grid;
  const std::int64_t a_band = tiles_along(grid.columns) * tiles_along(grid.rows);
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  constexpr std::size_t most_bands = 65535;
  const std::size_t bands = raster.bands;
  if (bands > most_bands || a_band > most / static_cast<std::int64_t>(bands)) {
    FAIL_RUN(fmt::format("ERROR - The raster is too large: {} x {} cells, {} output times",
                         grid.columns, grid.rows, bands));
  }
  return file_name;
}

}  // namespace

GeotiffSink::GeotiffSink(const std::string& file_name, const RasterDescription& raster)
    : unit(name_of_possible(file_name, raster)), stream(unit, needs_big_tiff(raster)) {
  TiffFields fields{stream.tiff()};
  add_fields(fields.tiff);
  set_layout(raster, fields);
  set_place_on_map(raster, fields);
  fields.set(gdal_no_data_tag, fmt::format("{}", raster_no_data).c_str());
  if (!fields.accepted) stream.fail();
}

BlockSize GeotiffSink::block_size() const {
  return {tile_side, tile_side};
}

std::unique_ptr<BlockPacker> GeotiffSink::make_packer() const {
  return std::make_unique<TilePacker>();
}

// The library changes the bytes only in files of the other byte order.
void GeotiffSink::write(std::string_view bytes) {
  const auto size = static_cast<tmsize_t>(bytes.size());
  char* const data = const_cast<char*>(bytes.data());
  if (TIFFWriteRawTile(stream.tiff(), next_tile++, data, size) != size) stream.fail();
  stream.pass_on();
}

void GeotiffSink::close() {
  TiffFields fields{stream.tiff()};
  fields.set(gdal_metadata_tag, band_names_as_xml(band_names).c_str());
  if (!fields.accepted) stream.fail();
  stream.finish();
  unit.complete();
}

}  // namespace quillet
