#!/usr/bin/env python3
"""Turns the tables of this folder into the sources that hold them.

    python3 data/tables/generate.py          write the sources
    python3 data/tables/generate.py --check  fail where one is out of date

A value is copied as the table writes it. A table of another layout than its
source expects is refused.
"""

import csv
import pathlib
import sys

TABLES = pathlib.Path(__file__).resolve().parent
LIBRARY = TABLES.parent.parent / "photarium"


def rows(name, columns, count):
    """The rows of a table below its head line, as lists of text."""
    with open(TABLES / name, newline="", encoding="ascii") as file:
        body = list(csv.reader(file))[1:]
    if len(body) != count or any(len(row) != columns for row in body):
        sys.exit(f"{name}: expected {count} rows of {columns} columns")
    return body


def ascending(name, table, keys):
    """Refuses rows out of the order of their first `keys` columns."""
    found = [tuple(float(field) for field in row[:keys]) for row in table]
    if any(a >= b for a, b in zip(found, found[1:])):
        sys.exit(f"{name}: rows are not in ascending order")


def wrapped(fields):
    """Comma-separated fields in lines of at most 80 columns."""
    lines, line = [], " "
    for field in fields:
        if len(line) + len(field) + 2 > 80:
            lines.append(line)
            line = " "
        line += f" {field},"
    return "\n".join(lines + [line])


def head(table, *includes):
    lines = [f"// Made by data/tables/generate.py from {table}; edit that."]
    lines += [""] + [f'#include "photarium/{name}"' for name in includes]
    return "\n".join(lines).rstrip() + "\n\n// clang-format off\n"


def elements():
    table = rows("elements.csv", 4, 119)
    ascending("elements.csv", table, 1)
    symbols = wrapped(f'"{row[1]}"' for row in table)
    densities = wrapped(row[2] for row in table)
    masses = wrapped(row[3] for row in table)
    return (
        head("elements.csv", "foundation/elements.h")
        + f"std::string const Elements[ElementsCount] = {{\n{symbols}\n}};\n\n"
        + "// [g/cm^3]\n"
        + f"double const Densities[ElementsCount] = {{\n{densities}\n}};\n\n"
        + "// [g/mol]\n"
        + f"double const MassNumbers[ElementsCount] = {{\n{masses}\n}};\n"
    )


def block(name, keys, values, count, describe):
    """The body of a block with a comment ahead of each group of rows."""
    table = rows(name, keys + values, count)
    ascending(name, table, keys)
    lines, group = [], None
    for row in table:
        if row[: keys - 1] != group:
            group = row[: keys - 1]
            lines.append("  // " + describe(*group))
        lines.append(f"  {', '.join(row[keys:])},  // {row[keys - 1]}")
    return "\n".join(lines)


def bremsstrahlung():
    spectrum = block("xspec_values.csv", 2, 12, 220, lambda z: f"Z = {z}")
    shape = block(
        "shape_values.csv", 3, 4, 216, lambda c, z: f"coefficient {c}, Z = {z}"
    )
    return (
        head(
            "xspec_values.csv and\n// shape_values.csv",
            "foundation/bremsstrahlung_tables.h",
        )
        + "// [mb], after R. H. Pratt et al., At. Data Nucl. Data Tables 20\n"
        + "// (1977) 175, mostly reconstructed; a row for each energy [keV].\n"
        + f"double const XSpecValues[] = {{\n{spectrum}\n}};\n\n"
        + "// After L. Kissel, C. A. Quarles, R. H. Pratt, At. Data Nucl. Data\n"
        + "// Tables 28 (1983) 381, mostly calculated anew; a row for each\n"
        + "// energy [keV].\n"
        + f"double const ShapeValues[] = {{\n{shape}\n}};\n"
    )


def radiative_loss():
    table = rows("radiative_loss.csv", 10, 101)
    ascending("radiative_loss.csv", table, 1)
    body = "\n".join(f"  {{{', '.join(row[1:])}}},  // {row[0]}" for row in table)
    return (
        "#pragma once\n\n"
        + head("radiative_loss.csv").replace("\n\n", "\n", 1)
        + "// Coefficients of the radiative energy loss for each atomic number,\n"
        + "// unscaled; fits to the stopping powers of ICRU Report 37 (1984).\n"
        + f"inline constexpr double RadiativeLoss[101][9] = {{\n{body}\n}};\n"
    )


SOURCES = {
    "foundation/elements.cpp": elements,
    "foundation/bremsstrahlung_tables.cpp": bremsstrahlung,
    "material/radiative_loss_table.h": radiative_loss,
}


def main():
    check = sys.argv[1:] == ["--check"]
    if sys.argv[1:] and not check:
        sys.exit(__doc__)
    stale = []
    for name, make in SOURCES.items():
        path, text = LIBRARY / name, make()
        if not check:
            path.write_text(text, encoding="ascii")
        elif not path.exists() or path.read_text(encoding="ascii") != text:
            stale.append(f"photarium/{name}")
    if stale:
        sys.exit("run data/tables/generate.py, out of date: " + " ".join(stale))


main()
