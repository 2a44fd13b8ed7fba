"""The forms in which .2dm files are written, made from a plain one in the full form.

Each form is a function that writes the header line, the nodes and the elements, all given as lines.
"""

import random

def values_of(line):
    return line.split()


def each_line(change):
    """A form that changes lines of nodes and elements one by one."""
    def write(header, nodes, elements, out):
        out.write(header)
        for line in nodes:
            out.write(change(values_of(line)))
        for line in elements:
            out.write(change(values_of(line)))
    return write


def with_reals(style):
    def change(values):
        if values[0] == "ND":
            values[2:5] = [style % float(value) for value in values[2:5]]
        return " ".join(values) + "\n"
    return each_line(change)


def with_code(style):
    def change(values):
        if values[0] == "E3T":
            values[-1] = style(values[-1])
        return " ".join(values) + "\n"
    return each_line(change)


def plain(header, nodes, elements, out):
    out.write(header)
    out.writelines(nodes)
    out.writelines(elements)


def elements_first(header, nodes, elements, out):
    plain(header, elements, nodes, out)


def shuffled_ids(header, nodes, elements, out):
    mixed = random.Random(1)
    nodes, elements = nodes[:], elements[:]
    mixed.shuffle(nodes)
    mixed.shuffle(elements)
    plain(header, nodes, elements, out)


def fixed_columns(values):
    if values[0] == "ND":
        head = "ND%9s%18s%18s%14s" % tuple(values[1:5])
        return head + "".join("%10s" % value for value in values[5:]) + "\n"
    return values[0] + "".join("%9s" % value for value in values[1:]) + "\n"


def shorter(header_length, element_values, code_values):
    """An older or the finite-volume form: fewer values, as the shorter header line tells."""
    def write(header, nodes, elements, out):
        out.write((header.split("\n")[0][:header_length].rstrip() or "MESH2D") + "\n")
        for line in nodes:
            out.write(" ".join(values_of(line)[:5]) + "\n")
        for line in elements:
            values = values_of(line)
            dropped = code_values if values[0] == "E3T" else element_values
            out.write(" ".join(values[:-dropped]) + "\n")
    return write


FORMS = {
    "plain": plain,
    "elements-first": elements_first,
    "one-letter-codes": with_code(lambda code: code[0]),
    "quoted-codes": with_code(lambda code: f"'{code}'"),
    "exponents": with_reals("%.9E"),
    "long-exponents": with_reals("%.16e"),
    "long-decimals": with_reals("%.11f"),
    "tabs": each_line(lambda values: "\t".join(values) + "\n"),
    "commas": each_line(lambda values: values[0] + " " + ",".join(values[1:]) + "\n"),
    "cr-lf": each_line(lambda values: " ".join(values) + "\r\n"),
    "fixed-columns": each_line(fixed_columns),
    "shuffled-ids": shuffled_ids,
    "pre-2005": shorter(60, 1, 2),
    "finite-volume": shorter(6, 3, 4),
}


def write_forms(source, folder):
    """Writes every form that is not there yet; returns their files by name."""
    names = {name: folder / f"{name}.2dm" for name in FORMS}
    missing = [name for name in FORMS if not names[name].exists()]
    if missing:
        with open(source) as file:
            header, *lines = file
        nodes = [line for line in lines if line.startswith("ND")]
        elements = [line for line in lines if line.startswith("E")]
    for name in missing:
        part = names[name].with_suffix(".part")
        with open(part, "w", newline="") as out:
            FORMS[name](header, nodes, elements, out)
        part.rename(names[name])
    return names
