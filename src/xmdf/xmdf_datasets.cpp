#include "xmdf/xmdf_datasets.h"

#include <algorithm>
#include <array>
#include <string>

#include "support/file_names.h"
#include "support/numbers.h"
#include "support/run_tally.h"
#include "support/text.h"
#include "xmdf/xmdf_folders.h"

namespace quillet {
namespace {

// The last folder of the path decides.
DatasetKind kind_of(const XmdfPath& path) {
  std::string folder = path.folder.empty() ? path.group : path.folder;
  folder = folder.substr(folder.rfind('/') + 1);
  return KIND_OF_XMDF_FOLDER(folder);
}

class XmdfDataset : public ResultDataset {
 public:
  XmdfDataset(XmdfDatasetReader& file_reader, const XmdfDatasetList& datasets,
              std::int32_t position, bool holds_vectors)
      : reader(file_reader),
        path(datasets.path(position)),
        split(datasets.split_paths[static_cast<std::size_t>(position) - 1]),
        vectors(holds_vectors) {
    text = BLANK(split.dataset) ? FILENAME(reader.file().file_name) : split.dataset;
    reader.open(path, vectors);
    hours = reader.times();
    reader.close();
  }

  const std::string& name() const override { return split.dataset; }
  const std::string& description() const override { return text; }
  DatasetKind kind() const override { return kind_of(split); }
  bool is_vector() const override { return vectors; }
  const std::vector<double>& times() const override { return hours; }
  std::string time_text(std::size_t output) const override { return PLAIN_DECIMAL(hours[output]); }
  bool shares_name() const override { return false; }

  void read(std::size_t output, RES_TYPE& record) override {
    if (!reader.is_open() || reader.path() != path) reader.open(path, vectors);
    reader.read(static_cast<std::int32_t>(output) + 1, "data", record);
    NOTE_TIME_READ(BYTES_OF(SHAPE_OF(record)));
    NOTE_TIMES_PASSED();
    if (output + 1 == hours.size()) reader.close();
  }

 private:
  XmdfDatasetReader& reader;
  std::string path;
  XmdfPath split;
  bool vectors;
  std::string text;
  std::vector<double> hours;
};

// Positions of the datasets that are wanted, in the order of the list.
std::vector<std::int32_t> wanted_positions(const XmdfFileHeader& header,
                                           const XmdfDatasetList& datasets) {
  std::vector<std::int32_t> positions;
  if (header.datasets().found()) {
    if (&datasets != &header.datasets()) return positions;
    for (const std::int32_t position : {datasets.temporal, datasets.maximums, datasets.minimums,
                                        datasets.times, datasets.selected}) {
      const bool is_new =
          std::find(positions.begin(), positions.end(), position) == positions.end();
      if (position != 0 && is_new) positions.push_back(position);
    }
    return positions;
  }
  for (std::int32_t position = 1; position <= datasets.count; ++position) {
    positions.push_back(position);
  }
  return positions;
}

}  // namespace

std::vector<std::unique_ptr<ResultDataset>> LIST_XMDF_DATASETS(XmdfDatasetReader& reader) {
  const XmdfFileHeader& header = reader.file();
  std::vector<std::unique_ptr<ResultDataset>> list;
  for (const bool vectors : {false, true}) {
    const XmdfDatasetList& datasets = vectors ? header.vectors : header.scalars;
    for (const std::int32_t position : wanted_positions(header, datasets)) {
      list.push_back(std::make_unique<XmdfDataset>(reader, datasets, position, vectors));
    }
  }
  return list;
}

}  // namespace quillet
