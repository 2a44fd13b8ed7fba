#include "operations/points.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "points/csv_rows.h"
#include "points/point_location.h"
#include "points/points_file.h"
#include "results/written_values.h"
#include "support/console.h"
#include "support/numbers.h"
#include "support/output_unit.h"
#include "support/run_tally.h"
#include "support/text.h"
#include "support/vector_magnitude.h"

namespace quillet {
namespace {

std::vector<PointPlaces> locate(const PartMesh& mesh, const std::vector<NamedPoint>& points) {
  std::vector<MapPoint> on_map;
  on_map.reserve(points.size());
  for (const NamedPoint& point : points) on_map.push_back({point.x, point.y});
  std::vector<PointPlaces> places = LOCATE_POINTS(mesh, on_map);
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (places[i].empty()) SAY("WARNING - Point is outside the mesh: " + QUOTED(points[i].name));
  }
  return places;
}

void sort_and_thin(std::vector<std::int32_t>& indices) {
  std::sort(indices.begin(), indices.end());
  indices.erase(std::unique(indices.begin(), indices.end()), indices.end());
}

// What stands around the points is all that need be read.
void limit_reading(const std::vector<PointPlaces>& all_places, bool per_element,
                   ResultSource& source) {
  std::vector<std::int32_t> nodes;
  std::vector<std::int32_t> cells;
  for (const PointPlaces& places : all_places) {
    for (const auto& [part, weights, nearest] : places) {
      cells.push_back(part.element);
      const auto begin = part.nodes.begin();
      if (!per_element) nodes.insert(nodes.end(), begin, begin + part.corners());
    }
  }
  if (per_element) nodes = cells;
  sort_and_thin(nodes);
  sort_and_thin(cells);
  source.limit_to(nodes, cells);
}

class SeriesWriter {
 public:
  SeriesWriter(const std::vector<NamedPoint>& named_points,
               const std::vector<PointPlaces>& point_places, const std::string& file_name)
      : points(named_points), places(point_places), had_value(points.size()), file(file_name) {}

  void write_header(bool is_vector) {
    file.write("time");
    for (const NamedPoint& point : points) {
      if (is_vector) {
        write_field(CSV_FIELD(point.name + "_x"));
        write_field(CSV_FIELD(point.name + "_y"));
      } else {
        write_field(CSV_FIELD(point.name));
      }
    }
    file.write("\n");
  }

  void write_row(const MeshMap& map, const RES_TYPE& step) {
    ++RUN_TALLY().times_written;
    file.write(AREAL(step.time));
    const MeshValues x = map.values_of(step, step.nd.x);
    const MeshValues y = map.values_of(step, step.nd.y);
    for (std::size_t i = 0; i < points.size(); ++i) {
      const float along_x = write_value(i, x);
      NOTE_WRITTEN_VALUE(step.is_vector ? VECTOR_MAGNITUDE(along_x, write_value(i, y)) : along_x);
    }
    file.write("\n");
  }

  void close() {
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (had_value[i] || places[i].empty()) continue;
      SAY("WARNING - Point is dry at all times: " + QUOTED(points[i].name));
    }
    file.complete();
  }

 private:
  void write_field(const std::string& text) {
    file.write(",");
    file.write(text);
  }

  // Returns the value, or not a number.
  float write_value(std::size_t point, const MeshValues& values) {
    const std::optional<float> value = VALUE_AT(places[point], values);
    if (value) had_value[point] = true;
    write_field(value ? AREAL(*value) : "");
    return value.value_or(std::numeric_limits<float>::quiet_NaN());
  }

  const std::vector<NamedPoint>& points;
  const std::vector<PointPlaces>& places;
  std::vector<bool> had_value;
  OutputUnit file;
};

}  // namespace

void RUN_POINTS(const MeshMapJob& job, const PointsRequest& request) {
  const std::vector<NamedPoint> points = READ_POINTS_FILE(request.points_file);
  MeshMap map(job);
  const std::vector<PointPlaces> places = locate(map.mesh(), points);
  limit_reading(places, map.per_element(), *job.inputs.sources.front());
  SAY_APART(fmt::format("Writing time series at {} points and {} output times: {}", points.size(),
                        map.times().size(), request.output_name));
  SeriesWriter series(points, places, request.output_name);
  series.write_header(job.shape.is_vector);
  map.read_each([&](const RES_TYPE& step) { series.write_row(map, step); });
  SAY_APART("Closing files and exiting");
  SAY("");
  series.close();
}

}  // namespace quillet
