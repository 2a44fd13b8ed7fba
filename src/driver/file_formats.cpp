#include "driver/file_formats.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "dat/dat_sink.h"
#include "support/file_names.h"
#include "xmdf/xmdf_sink.h"

namespace quillet {
namespace {

template <typename Sink>
std::unique_ptr<ResultSink> create(const std::string& file_name, const DatasetNames& names) {
  return std::make_unique<Sink>(file_name, names);
}

struct FileFormat {
  FileKind kind;
  std::string_view extension;
  std::unique_ptr<ResultSink> (*create)(const std::string&, const DatasetNames&);  // of results
};

constexpr std::array formats{
    FileFormat{FileKind::dat, ".dat", create<DatSink>},
    FileFormat{FileKind::xmdf, ".xmdf", create<XmdfSink>},
    FileFormat{FileKind::text, ".txt", nullptr},
};

const FileFormat& format_of(FileKind kind) {
  return *std::find_if(formats.begin(), formats.end(),
                       [&](const FileFormat& format) { return format.kind == kind; });
}

}  // namespace

std::string EXTENSION_OF(FileKind kind) {
  return std::string(format_of(kind).extension);
}

std::optional<FileKind> KIND_OF_RESULTS(const std::string& file_name) {
  const std::string extension = FILEEXT(file_name);
  for (const FileFormat& format : formats) {
    if (format.create != nullptr && format.extension == extension) return format.kind;
  }
  return std::nullopt;
}

void ADD_EXTENSION(FileKind kind, std::string& file_name) {
  const std::string_view extension = format_of(kind).extension;
  if (FILEEXT(file_name) != extension) file_name += extension;
}

std::unique_ptr<ResultSink> CREATE_OUTPUT(FileKind kind, const std::string& file_name,
                                          const DatasetNames& names) {
  return format_of(kind).create(file_name, names);
}

}  // namespace quillet
