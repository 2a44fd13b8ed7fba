#!/usr/bin/python3
"""Times --grid and --points against their floors, run by run, with one thread.

Makes its inputs with quillet_example_model (about 1 million nodes and 1.16 million elements) in a work
folder and uses them again when they are there: the model's own mesh of quadrilaterals and triangles,
and one of triangles alone whose elements stand in no order. Builds nothing. docs/benchmarks.md says
what the columns mean.
"""

import argparse
import multiprocessing
import os
import pathlib
import random
import statistics
import subprocess
import sys
import time

CELL = "0.4633"  # 25 million cells around the model


def make_model(programs, folder, nodes):
    mixed = folder / "mixed"
    if not (mixed / "run1_d.dat").exists():
        subprocess.run([programs / "quillet_example_model", "--nodes", str(nodes), "--times", "60",
                        "--scenarios", "1", "--no-xmdf", "--no-stored-maxima", mixed],
                       check=True, stdout=subprocess.DEVNULL)
        for time_taken in ("3", "4", "5"):
            subprocess.run([programs / "quillet", "-b", "-k" + time_taken, "-out",
                            mixed / f"at{time_taken}_h.dat", mixed / "run1_h.dat"],
                           check=True, stdout=subprocess.DEVNULL)
        subprocess.run([programs / "quillet", "-b", "-con", "-out", mixed / "three_h.dat",
                        *(mixed / f"at{text}_h.dat" for text in "345")],
                       check=True, stdout=subprocess.DEVNULL)
        write_points(mixed)
    return mixed


def write_points(folder):
    random.seed(1)
    with open(folder / "run1.2dm") as mesh:
        places = [line.split()[2:4] for line in mesh if line.startswith("ND")]
    with open(folder / "points.csv", "w") as out:
        out.write("name,x,y\n")
        for number, (x, y) in enumerate(random.sample(places, 1000)):
            out.write(f"p{number},{float(x) + 0.2:.3f},{float(y) + 0.1:.3f}\n")


def statuses_for(data, cells, chosen):
    """The bytes of a .dat file with other cells: `chosen` says which old one each new one is."""
    nodes = int.from_bytes(data[36:40], "little")
    out = bytearray(data[:44] + len(chosen).to_bytes(4, "little") + data[48:92])
    step = 9 + cells + 4 * nodes
    for at in range(92, len(data) - 4, step):
        statuses = data[at + 9:at + 9 + cells]
        out += data[at:at + 9] + bytes(statuses[i] for i in chosen)
        out += data[at + 9 + cells:at + step]
    return bytes(out + data[-4:])


def make_triangles(mixed, folder):
    target = folder / "triangles"
    if (target / "three_h.dat").exists():
        return target
    target.mkdir(exist_ok=True)
    head, elements = [], []
    for line in open(mixed / "run1.2dm"):
        values = line.split()
        if values[0] == "E4Q":
            a, b, c, d = values[2:6]
            old = int(values[1]) - 1
            elements += [(old, (a, b, c)), (old, (a, c, d))]
        elif values[0] == "E3T":
            elements.append((int(values[1]) - 1, tuple(values[2:5])))
        else:
            head.append(line)
    random.Random(2).shuffle(elements)
    with open(target / "three.2dm", "w") as mesh:
        mesh.writelines(head)
        for number, (_, corners) in enumerate(elements, 1):
            mesh.write(f"E3T {number} {' '.join(corners)} 1 1 1 1 LO\n")
    data = (mixed / "three_h.dat").read_bytes()
    cells = int.from_bytes(data[44:48], "little")
    (target / "three_h.dat").write_bytes(statuses_for(data, cells, [old for old, _ in elements]))
    return target


def make_inputs(programs, folder, nodes):
    make_triangles(make_model(programs, folder, nodes), folder)


def run(command, folder):
    """Wall and processor time of a command, and its peak of memory in MiB."""
    start = time.monotonic()
    process = subprocess.Popen([str(part) for part in command], cwd=folder, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"failed: {command}")
    return time.monotonic() - start, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def compare(name, folder, pairs, floor, quillet, deflating=None):
    """deflating is the floor that deflates: what it takes beyond the other is deflate's own."""
    kinds = [floor, deflating or floor, quillet]
    rounds = [[run(kind, folder) for kind in kinds] for _ in range(pairs + 1)][1:]
    for column, measure in enumerate(("wall", "cpu")):
        plain, deflated, own = (statistics.median(r[kind][column] for r in rounds)
                                for kind in range(3))
        deflate = deflated - plain if deflating else 0
        ratio = statistics.median((r[2][column] - deflate) / r[0][column] for r in rounds)
        memory = max(r[2][2] for r in rounds)
        print(f"{name:<22}{measure:<6}{plain:>9.3f}{deflate:>10.3f}{own:>11.3f}{ratio:>8.2f}"
              f"{memory:>8.0f}", flush=True)


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=pathlib.Path, default=root / "build" / "bench")
    parser.add_argument("--work", type=pathlib.Path, default=pathlib.Path("/tmp/quillet-bench/raster"))
    parser.add_argument("--nodes", type=int, default=1000000)
    parser.add_argument("--pairs", type=int, default=5)
    options = parser.parse_args()
    programs = options.build / "bin"
    options.work.mkdir(parents=True, exist_ok=True)
    # In a process of its own: what this one has used at most would count as its children's.
    maker = multiprocessing.get_context("spawn").Process(
        target=make_inputs, args=(programs, options.work, options.nodes))
    maker.start()
    maker.join()
    mixed, triangles = options.work / "mixed", options.work / "triangles"
    quillet = [programs / "quillet", "--strict", "--threads=1"]
    floor = [programs / "floor_raster"]
    print(f"{'':<22}{'':<6}{'floor s':>9}{'deflate s':>10}{'quillet s':>11}{'ratio':>8}{'MiB':>8}")
    for name, folder, mesh in (("grid, mixed", mixed, "run1.2dm"),
                               ("grid, triangles", triangles, "three.2dm")):
        draw = [*floor, "grid", mesh, "three_h.dat", CELL, "floor.raw", "all"]
        own = [*quillet, "--grid=" + CELL, "-nowetdry", "-2dm", mesh, "-out", "out.tif", "three_h.dat"]
        compare(name, folder, options.pairs, draw, own, [*draw, "deflate"])
    compare("points", mixed, options.pairs, [*floor, "read", "run1.2dm", "run1_d.dat"],
            [*quillet, "--points=points.csv", "-out", "out.csv", "run1_d.dat"])
    return 0


if __name__ == "__main__":
    sys.exit(main())
