#!/usr/bin/python3
"""What scripts do that make a raster of a mesh result today, timed with the tools they use.

    peer_raster.py PEER MESH.2dm FILE.dat CELL

Interpolates the first output time of a .dat file of scalars linearly at the centres of square cells
around the mesh, by matplotlib (over the triangles of the mesh), scipy or gdal (both over triangles
of their own between the nodes; they cannot know dry elements). Prints the seconds from the read
values to the raster in memory, and the peak of memory.
"""

import resource
import sys
import time

import numpy as np


def read_mesh(name):
    xy, triangles = [], []
    for line in open(name):
        values = line.split()
        if values[0] == "ND":
            xy.append((float(values[2]), float(values[3])))
        elif values[0] in ("E3T", "E4Q"):
            ids = [int(text) - 1 for text in values[2 : 2 + int(values[0][1])]]
            triangles.append(ids[:3])
            if len(ids) == 4:
                triangles.append([ids[0], ids[2], ids[3]])
    return np.array(xy), np.array(triangles)


def read_values(name):
    head = np.fromfile(name, "<i4", 12)
    nodes, cells = int(head[9]), int(head[11])
    return np.fromfile(name, "<f4", nodes, offset=92 + 9 + cells).astype(float)


def centres(low, high, cell):
    first = np.floor(low / cell)
    return cell * (first + 0.5 + np.arange(np.ceil(high / cell) - first))


def by_matplotlib(xy, triangles, values, x, y):
    from matplotlib.tri import LinearTriInterpolator, Triangulation
    interpolate = LinearTriInterpolator(Triangulation(xy[:, 0], xy[:, 1], triangles), values)
    return np.array([interpolate(x, np.full_like(x, row)).filled(-9999) for row in y], "f4")


def by_scipy(xy, _, values, x, y):
    from scipy.interpolate import LinearNDInterpolator
    interpolate = LinearNDInterpolator(xy, values, -9999)
    return np.array([interpolate(x, np.full_like(x, row)) for row in y], "f4")


def by_gdal(xy, _, values, x, y):
    from osgeo import gdal, ogr
    gdal.UseExceptions()
    source = gdal.GetDriverByName("Memory").Create("nodes", 0, 0, 0)
    layer = source.CreateLayer("nodes", geom_type=ogr.wkbPoint25D)
    for place, value in zip(xy, values):
        feature = ogr.Feature(layer.GetLayerDefn())
        feature.SetGeometryDirectly(ogr.CreateGeometryFromWkt(f"POINT ({place[0]} {place[1]} {value})"))
        layer.CreateFeature(feature)
    half = (x[1] - x[0]) / 2
    options = gdal.GridOptions(format="MEM", outputType=gdal.GDT_Float32, width=len(x), height=len(y),
                               outputBounds=[x[0] - half, y[0] - half, x[-1] + half, y[-1] + half],
                               algorithm="linear:radius=0:nodata=-9999")
    return gdal.Grid("", source, options=options).ReadAsArray()


def main():
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    peer = {"matplotlib": by_matplotlib, "scipy": by_scipy, "gdal": by_gdal}[sys.argv[1]]
    xy, triangles = read_mesh(sys.argv[2])
    values = read_values(sys.argv[3])
    cell = float(sys.argv[4])
    low, high = xy.min(0), xy.max(0)
    x, y = centres(low[0], high[0], cell), centres(low[1], high[1], cell)
    start = time.monotonic()
    raster = peer(xy, triangles, values, x, y)
    seconds = time.monotonic() - start
    memory = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024
    there = raster[raster != -9999]
    print(f"{sys.argv[1]}: {raster.shape[1]} x {raster.shape[0]} cells, {seconds:.1f} s, {memory:.0f} MiB, "
          f"{there.size} values, mean {there.mean(dtype=float):.6f}")


if __name__ == "__main__":
    main()
