#include "driver/output_type.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "support/console.h"

namespace quillet {
namespace {

// A kind that was once marked stays marked; XMDF prevails over .dat, both over text.
struct Marks {
  bool xmdf = false;
  bool dat = false;
};

void mark_by_inputs(const std::vector<FileKind>& input_kinds, Marks& marks) {
  const auto count = [&](FileKind kind) {
    return std::count(input_kinds.begin(), input_kinds.end(), kind);
  };
  if (count(FileKind::dat) == 0) {
    SAY_APART("Only XMDF inputs.");
    marks.xmdf = true;
  } else if (count(FileKind::xmdf) == 0) {
    SAY_APART("Only DAT inputs.");
    marks.dat = true;
  } else {
    SAY_APART("Both XMDF and DAT inputs");
    marks.xmdf = true;
  }
}

void mark_by_name(const std::string& output_name, Marks& marks) {
  const std::optional<FileKind> kind = KIND_OF_RESULTS(output_name);
  if (kind == FileKind::xmdf) {
    SAY("Specified output file is .xmdf type");
    marks.xmdf = true;
  } else if (kind == FileKind::dat) {
    SAY("Specified output file is .dat type");
    marks.dat = true;
  } else {
    SAY("Specified output file has no extension");
  }
}

std::string_view announcement(FileKind kind) {
  switch (kind) {
    case FileKind::dat:
      return "Using DAT for output type";
    case FileKind::xmdf:
      return "Using XMDF for output type";
    case FileKind::text:
      return "Output file is a text file";
  }
  return "";
}

}  // namespace

FileKind SETTLE_OUTPUT_TYPE(OutputKind output, const RunOptions& options,
                            const std::vector<FileKind>& input_kinds, OutputNaming& naming) {
  Marks marks;
  if (output == OutputKind::own) return FileKind::text;
  if (output == OutputKind::results) mark_by_inputs(input_kinds, marks);
  if (options.output_name) mark_by_name(*options.output_name, marks);
  const FileKind kind = marks.xmdf ? FileKind::xmdf : marks.dat ? FileKind::dat : FileKind::text;
  if (output == OutputKind::conversion) return kind;

  SAY_APART(announcement(kind));
  ADD_EXTENSION(kind, naming.base_file_name);
  return kind;
}

}  // namespace quillet
