#!/usr/bin/python3
"""Compares two .dat files value by value. Exit status 1 when they differ by more than they may.

Usage: compare_dat.py bits N A B    values by at most N units in their last place
       compare_dat.py close A B     values as a script's in 32-bit reals may differ
"""

import sys

import numpy as np

from peer_dat import DatFile


def differs_in_bits(a, b, most):
    first, second = (values.view("i4").astype("i8") for values in (a, b))
    return np.abs(first - second).max() > most


def is_far(a, b):
    return not np.allclose(a, b, rtol=1e-5, atol=1e-6)


def same(first, second, differs):
    a, b = DatFile(first), DatFile(second)
    if (a.header, a.times) != (b.header, b.times) or a.times == 0:
        return False
    return not any(x["time"] != y["time"] or np.any(x["status"] != y["status"]) or
                   differs(x["values"], y["values"]) for x, y in zip(a.steps(), b.steps()))


def main():
    how, *bits, first, second = sys.argv[1:]
    return 0 if same(first, second, is_far if how == "close" else
                     lambda a, b: differs_in_bits(a, b, int(bits[0]))) else 1


if __name__ == "__main__":
    sys.exit(main())
