"""The .dat files of the example, read without the program, for the checks in Python."""

import struct
import sys

import numpy as np


def check(condition, message):
    if not condition:
        sys.exit("FAILED: " + message)


def read_dat(name):
    """(dataset name, list of (time, statuses, values)); values are (n,) or (n, 2)."""
    data = open(name, "rb").read()
    position, width, dataset, steps = 4, 1, "", []
    while True:
        (card,) = struct.unpack_from("<i", data, position)
        position += 4
        if card in (100, 110, 120, 170, 180):
            (item,) = struct.unpack_from("<i", data, position)
            position += 4
            if card == 170:
                nodes = item
            if card == 180:
                cells = item
        elif card == 140:
            width = 2
        elif card == 190:
            dataset = data[position : position + 40].decode().rstrip()
            position += 40
        elif card == 200:
            check(data[position] == 1, "every output time of the example states its statuses")
            (time,) = struct.unpack_from("<f", data, position + 1)
            statuses = np.frombuffer(data, np.int8, cells, position + 5)
            position += 5 + cells
            values = np.frombuffer(data, "<f4", nodes * width, position)
            position += 4 * nodes * width
            steps.append((time, statuses, values if width == 1 else values.reshape(-1, 2)))
        elif card == 210:
            return dataset, steps
        else:
            check(card == 130, f"{name}: card {card}")
