// The mesh as an EnSight Gold geometry file, in its text and its binary form. Both move the mesh to
// a local origin and say in a log file by how much.
#pragma once

#include <string>

#include "ensight/ensight_mesh.h"
#include "ensight/export_steps.h"

namespace quillet {

// Write the mesh moved by its x and y minimum, and the log file, as steps of an export: with
// helpers in sight the files are complete when the steps have been told. The mesh stays until then.
// End the run when a file cannot be written.
//
// The text form is the one that case files name. In it x and y from 1,000 m on are plain decimals,
// and the corners of a 9-node quadrilateral stand before its mid-sides, as viewers draw it. The
// binary form goes round an element, corner, mid-side, corner, ... It is a stream without record
// markers: texts of 80 bytes, 32-bit integers, x and y as 64-bit and z as 32-bit reals, all
// little-endian. Those mixed widths, and the part without a number, are what its readers expect;
// general readers of EnSight Gold do not take it.
void WRITE_ENSIGHT_GEO_TEXT(const EnsightMesh& mesh, const std::string& file_name,
                            ExportSteps& steps);
void WRITE_ENSIGHT_GEO_BINARY(const EnsightMesh& mesh, const std::string& file_name,
                              ExportSteps& steps);

// The name of a geometry file's log file.
std::string GEOMETRY_LOG_NAME(const std::string& file_name);

}  // namespace quillet
