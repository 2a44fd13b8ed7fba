#!/usr/bin/python3
"""Runs quillet on the example model and compares its XMDF outputs, read with h5py, with values that
numpy works out from the inputs: paths, attributes, types, extents, values, activity, ranges.

Usage: check_xmdf_outputs.py QUILLET EXAMPLE_MODEL
Exit status 1 when something differs.
"""

import pathlib
import subprocess
import sys
import tempfile

import h5py
import numpy as np

ATTRIBUTES = {"Data Type": 0, "DatasetCompression": 0, "DatasetUnits": b"m", "TimeUnits": b"Hours"}


def magnitudes(values):
    x, y = values[..., 0], values[..., 1]
    lengths = np.sqrt(x * x + y * y)
    return np.where((abs(x) <= np.float32(1e-6)) & (abs(y) <= np.float32(1e-6)), 0, lengths)


class Series:
    """Times, values and activity of one dataset."""

    def __init__(self, times, values, active):
        self.times = np.atleast_1d(times).astype("f8")
        self.values = np.asarray(values, "f4")
        self.active = np.asarray(active, "u1")

    @classmethod
    def read(cls, folder, name, path):
        with h5py.File(folder / name) as file:
            group = file[path]
            return cls(group["Times"][()], group["Values"][()], group["Active"][()])


def maps(value, source, time, marker, active):
    """The maps of a maximum; the time map only for one input."""
    kinds = {"Value": value, "Source": source, "Time": time}
    return {kind: Series(marker, np.asarray(array)[None], active[None])
            for kind, array in kinds.items() if array is not None}


def first_extreme(data, better):
    """Running extreme from 0 on: value, source, time; the first of equal values."""
    best = np.zeros(data.values.shape[1:], "f4")
    when = np.zeros(len(best), "f4")
    source = np.zeros(len(best), "f4")
    size = magnitudes if data.values.ndim == 3 else (lambda values: values)
    for time, values in zip(data.times, data.values):
        wins = better(size(values), size(best))
        best[wins], when[wins], source[wins] = values[wins], time, 1
    return best, source, when


def with_magnitudes(name, series, magnitude_name=None):
    lengths = Series(series.times, magnitudes(series.values), series.active)
    return {name: series, magnitude_name or name + "_mag": lengths}


def trimmed(data, limit):
    limit = np.float32(limit)
    if data.values.ndim == 2:
        return Series(data.times, np.minimum(data.values, limit), data.active)
    lengths = magnitudes(data.values)[..., None]
    long = lengths >= limit
    values = np.where(long, data.values * limit / np.where(long, lengths, 1), data.values)
    return Series(data.times, values, data.active)


def directions(data):
    x, y = (data.values[..., i].astype("f8") for i in (0, 1))
    return Series(data.times, np.arctan2(x, y) * 57.29577951308232, data.active)


def at(data, time):
    i = int(np.argmin(abs(data.times - time)))
    return Series(data.times[i], data.values[i:i + 1], data.active[i:i + 1])


class Checker:
    def __init__(self, quillet, folder):
        self.quillet = quillet
        self.folder = folder
        self.failures = 0

    def check(self, options, output, group, expected, ulps=0):
        run = subprocess.run([self.quillet, "-b", *options], cwd=self.folder, text=True,
                             stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
        try:
            assert run.returncode == 0, f"exit status {run.returncode}"
            assert not (self.folder / f"{output}.part").exists(), "a temporary file is left"
            self.compare(self.folder / output, group, expected, ulps)
        except (AssertionError, OSError) as error:
            self.failures += 1
            print(f"{' '.join(options)}: {error}\n{run.stdout}")

    def compare(self, name, group, expected, ulps):
        assert name.read_bytes()[8] == 0, "superblock version is not 0"
        with h5py.File(name) as file:
            assert file["File Type"].shape == (1,) and file["File Type"][0] == b"Xmdf", "file type"
            assert file["File Version"][0] == np.float32(2.1), "file version"
            found = []
            file.visititems(lambda path, item: found.append((path, item)))
            for path, item in found:
                times = h5py.h5g.get_objinfo(file.id, path.encode()).mtime
                assert times == 0, f"{path} states the time {times}"
            groups = [(path, item) for path, item in found if isinstance(item, h5py.Group)]
            datasets = {path for path, item in groups if "Values" in item}
            assert datasets == {f"{group}/{dataset}" for dataset in expected}, f"found {datasets}"
            top, folder = group.split("/")
            for path in (top, group):
                assert dict(file[path].attrs)["Grouptype"][0] == b"GENERIC", path
            for dataset, series in expected.items():
                self.compare_dataset(file[f"{group}/{dataset}"], dataset, series, ulps)

    @staticmethod
    def compare_dataset(group, name, series, ulps):
        kind = b"DATASET VECTOR" if series.values.ndim == 3 else b"DATASET SCALAR"
        attributes = dict(group.attrs)
        assert all(value.shape == (1,) for value in attributes.values()), "attribute extents"
        found = {attribute: value[0] for attribute, value in attributes.items()}
        assert found == {**ATTRIBUTES, "Grouptype": kind}, f"{name}: attributes {found}"
        assert group.attrs["Data Type"].dtype == "<i4" and group.attrs["DatasetCompression"].dtype == "<i4"
        assert set(group) == {"Times", "Values", "Mins", "Maxs", "Active"}, f"{name}: {set(group)}"
        sizes = magnitudes(series.values) if series.values.ndim == 3 else series.values
        members = {"Times": series.times, "Values": series.values, "Active": series.active,
                   "Mins": sizes.min(axis=1), "Maxs": sizes.max(axis=1)}
        for member, array in members.items():
            data = group[member]
            assert data.dtype == array.dtype, f"{name}/{member}: type {data.dtype}"
            assert data.shape == array.shape, f"{name}/{member}: extents {data.shape}"
            assert data.maxshape[0] is None, f"{name}/{member} cannot be extended"
            assert data.chunks[1:] == data.shape[1:], f"{name}/{member}: chunks {data.chunks}"
            allowed = ulps * np.spacing(abs(array)) if member in ("Values", "Mins", "Maxs") else 0
            worst = abs(data[()].astype("f8") - array).max()
            assert np.all(abs(data[()].astype("f8") - array) <= allowed), \
                f"{name}/{member} differs by {worst}"


def bed_elevations(folder):
    lines = (folder / "run1.2dm").read_text().splitlines()
    return np.array([line.split()[4] for line in lines if line.startswith("ND ")], "f8").astype("f4")


def nodes_of_active_cells(folder, active):
    nodes = np.zeros(len(bed_elevations(folder)), bool)
    lines = (folder / "run1.2dm").read_text().splitlines()
    cells = [line.split() for line in lines if line[:3] in ("E3T", "E4Q")]
    for cell, status in zip(sorted(cells, key=lambda card: int(card[1])), active):
        if status == 1:
            nodes[[int(text) - 1 for text in cell[2:2 + int(cell[0][1])]]] = True
    return nodes


def expected_difference(folder, bed1, bed2):
    data = [Series.read(folder, f"run{i}.xmdf", f"run{i}/Temporal/Depth") for i in (1, 2)]
    levels = [Series.read(folder, f"run{i}.xmdf", f"run{i}/Temporal/Water Level") for i in (1, 2)]
    dry_depth = np.float32(0.001)
    wet1, wet2 = bed1 + dry_depth < levels[0].values, bed2 + dry_depth < levels[1].values
    values = np.where(wet1 & wet2, data[0].values - data[1].values,
                      np.where(wet1, 99, np.where(wet2, -99, 0)))
    return Series(data[0].times, values, data[0].active | data[1].active)


def check_extremes(checker, folder):
    depth, velocity, depth2 = (Series.read(folder, f"{run}.xmdf", f"{run}/{path}") for run, path in
                               (("run1", "Temporal/Depth"), ("run1", "Temporal/Vector Velocity"),
                                ("run2", "Maximums/Depth")))
    wet = depth.active.max(axis=0)
    found = maps(*first_extreme(depth, np.greater), 111111, wet)
    checker.check(["-max", "-ignore_mm", "-typed", "run1.xmdf", "-out", "max"], "max.xmdf",
                  "MaxMax/Maximums", {f"Max {kind}": series for kind, series in found.items()})
    for operation, better, marker, name in (("-max", np.greater, 111111, "Max"),
                                            ("-min", np.less, -111111, "Min")):
        active = velocity.active.max(axis=0) if name == "Max" else velocity.active.min(axis=0)
        found = maps(*first_extreme(velocity, better), marker, active)
        expected = {f"{name} {kind}": series for kind, series in found.items()}
        expected.update(with_magnitudes(f"{name} Value", found["Value"]))
        checker.check([operation, "-ignore_mm", "-typev", "run1.xmdf", "-out", "v"], "v.xmdf",
                      f"{name}{name}/{name}imums", expected)

    stored = Series.read(folder, "run1.xmdf", "run1/Maximums/Depth")
    first, second = stored.values[0], depth2.values[0]
    source = np.where(second > np.maximum(first, 0), 2, np.where(first > 0, 1, 0))
    found = maps(np.maximum(0, np.maximum(first, second)), source, None, 111111,
                 stored.active[0] | depth2.active[0])
    checker.check(["-max", "-typed", "run1.xmdf", "run2.xmdf"], "run1(maxmax).xmdf",
                  "MaxMax/Maximums", {f"Max {kind}": series for kind, series in found.items()})


def check_levels(checker, folder):
    """Only the nodes of active cells take part, file by file."""
    best, source = np.float32(0), 0
    runs = [Series.read(folder, f"{run}.xmdf", f"{run}/Maximums/Water Level")
            for run in ("run1", "run2")]
    for number, run in enumerate(runs, 1):
        wins = nodes_of_active_cells(folder, run.active[0]) & (run.values[0] > best)
        best, source = np.where(wins, run.values[0], best), np.where(wins, number, source)
    assert set(source) == {0, 1, 2}, "every kind of node is there"
    found = maps(best, source, None, 111111, runs[0].active[0] | runs[1].active[0])
    checker.check(["-max", "-typeh", "-2dm", "run1.2dm", "run1.xmdf", "run2.xmdf"],
                  "run1(maxmax).xmdf", "MaxMax/Maximums",
                  {f"Max {kind}": series for kind, series in found.items()})


def check_rewrites(checker, folder):
    depth, velocity, most, least = (Series.read(folder, "run1.xmdf", f"run1/{path}") for path in
                                    ("Temporal/Depth", "Temporal/Vector Velocity",
                                     "Maximums/Vector Velocity", "Minimums/Vector Velocity"))
    checker.check(["-trim0.5", "-typed", "run1.xmdf"], "run1(trim0.5).xmdf", "Trim/Temporal",
                  {"trim0.5": trimmed(depth, 0.5)})
    for time, data, in_folder in ((None, velocity, "Temporal"), (1, at(velocity, 1), "Temporal"),
                                  (99999, most, "Maximums"), (-99999, least, "Minimums")):
        chosen = [] if time is None else [f"-t{time}"]
        checker.check(["-trim0.25", "-typev", *chosen, "run1.xmdf", "-out", "t"], "t.xmdf",
                      f"Trim/{in_folder}", with_magnitudes("trim0.25", trimmed(data, 0.25)))
        dataset = "Vector Angle" + ("" if in_folder == "Temporal" else " " + in_folder)
        checker.check(["-va", "-typev", *chosen, "run1.xmdf"], "run1_v_va.xmdf",
                      f"Velocity Angle/{in_folder}", {dataset: directions(data)}, ulps=1)

    first_hours = Series(velocity.times[:3], velocity.values[:3], velocity.active[:3])
    checker.check(["-rangeA0", "-rangeB1", "-typev", "run1.xmdf"], "run1(range).xmdf",
                  "Range/Temporal", with_magnitudes("Vector Velocity", first_hours, "Velocity"))
    here = folder.name
    checker.check(["-rangeA0", "-rangeB1", "-v3", f"../{here}/run1.xmdf", "-out", "r"], "r.xmdf",
                  "Range/Temporal", with_magnitudes(f"Range .._{here}_run1", first_hours))


def main():
    quillet, model = sys.argv[1:]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        subprocess.run([model, "--nodes", "1000", "--times", "6", "--compress", "1", folder],
                       check=True, stdout=subprocess.DEVNULL)
        checker = Checker(quillet, folder)
        check_extremes(checker, folder)
        check_levels(checker, folder)
        check_rewrites(checker, folder)
        bed1 = bed_elevations(folder)
        difference = {"diff_run1 - run2": expected_difference(folder, bed1, bed1)}
        checker.check(["-dif", "-typed", "run1.xmdf", "run2.xmdf", "-2dm", "run1.2dm"],
                      "run1 - run2.xmdf", "Difference/Temporal", difference)
    return 1 if checker.failures else 0


if __name__ == "__main__":
    sys.exit(main())
