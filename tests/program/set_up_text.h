// What the console shows of a run on .dat files with the dataset name "data".
#pragma once

#include <string>
#include <vector>

#include "dat_builder.h"

namespace quillet::testing {

struct SetUpText {
  struct Input {
    std::string name, type, mesh;
  };
  std::string operation;
  std::vector<Input> inputs;
  DatShape shape;
  std::string output{};  // empty: opened by the operation itself
  std::string output_kind = "\nOnly DAT inputs.\n\nUsing DAT for output type\n";
};

inline std::string HEADER_TEXT(const std::string& file, const DatShape& shape) {
  return "Reading Header for: " + file + "\nNumber Cells: " + std::to_string(shape.cells) +
         "\nNumber Nodes: " + std::to_string(shape.nodes) + "\nData Description: data\n";
}

// From the start to the operation.
inline std::string SET_UP(const SetUpText& run) {
  std::string files, headers, types, arrays;
  int number = 0;
  for (const auto& [name, type, mesh] : run.inputs) {
    files += "   File  " + std::to_string(++number) + ": " + name + "\n";
    headers += HEADER_TEXT(name, run.shape);
    types += "\nSMS data type identified as: \"" + type + "\"\n2dm filename: \"" + mesh + "\"\n";
  }
  for (const std::string label :
       {"nd1", "nd2", "nd3", "nd4", "sf", "sfo",   "ff",    "v1",       "v2",     "o1",
        "o2",  "h1",  "h2",  "z1",  "z2", "nceok", "res_%", "wk_res_%", "geom_%", "geom2_%"}) {
    arrays += "\nAllocation " + label + "\n    Done.\n";
  }
  return "\nBuild 2020-07-AH\n\n\nChecking operational flags.\nOpertational flag " + run.operation +
         "\n\nFound 1 operational flags specified.\n\nAllocating arrays for processing " +
         std::to_string(number) + " files.\n   Done.\n\nORVANE Results Files:\n" + files +
         "\nDefault time search tolerance = 0.0001\nUse -dttol<tolerance> to set.\n" +
         run.output_kind + (run.output.empty() ? "" : "Output .dat File: " + run.output + "\n") +
         headers +
         "\nChecking that .dat and .xmdf files have same number nodes and cells...\n\nAll files "
         "have the same number of nodes and cells.\n" +
         types + "\nAllocating RAM for a mesh of " + std::to_string(run.shape.nodes) +
         " nodes and " + std::to_string(run.shape.cells) + " cells...\n" + arrays;
}

inline std::string READ_TEXT(const std::string& hours, bool is_last = false) {
  return "Call ReadDatFile.\nReading data for time " + hours + "\nDone.\nDone.\n" +
         (is_last ? "End of .dat file.\n" : "");
}
inline std::string WRITE_TEXT(const std::string& output) {
  return "Writing output data to: " + output + "\nDone.\n";
}
inline std::string FIRST_WRITE_TEXT(const std::string& output) {
  return "Writing header inforamtion to .dat file: " + output + "\nDone\n" + WRITE_TEXT(output);
}

constexpr const char* closing_text = "Writing END cards\nClosing output file.\nDone\n";
constexpr const char* end_text = "\nPress Enter to Close\n";

}  // namespace quillet::testing
