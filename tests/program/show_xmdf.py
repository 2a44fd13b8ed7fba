"""Prints every group and dataset of an XMDF file, one line each, read with h5py."""
import sys

import h5py


def numbers(array):
    return " ".join(f"{value:g}" for value in array.reshape(-1))


def show(path, group):
    if not isinstance(group, h5py.Group):
        return
    text = lambda name: group.attrs[name][0].decode()
    if "Values" not in group:
        print(path, text("Grouptype"))
        return
    print(path, text("Grouptype"), text("DatasetUnits"), text("TimeUnits"))
    for name in ("Times", "Values", "Mins", "Maxs", "Active"):
        if name in group:
            member = group[name]
            extents = "x".join(map(str, member.shape))
            print(f"  {name} {member.dtype} {extents}: {numbers(member[()])}".rstrip())


with h5py.File(sys.argv[1], "r") as file:
    assert file["File Type"][0] == b"Xmdf"
    file.visititems(show)
