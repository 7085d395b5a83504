"""Reads a table for Monte Carlo programs: python3 read_table.py FILE"""
import sys


def read_table(name):
    with open(name) as file:
        lines = file.read().splitlines()
    tag = lines[0].split("\t")
    table = {"material": tag[2], "kind": tag[3], "density": float(lines[1].split()[2])}
    size, count, first, step = int(tag[4]), int(tag[5]), float(tag[6]), float(tag[7])
    data = [[float(x) for x in line.split()] for line in lines if line[:1] != "#"]
    if table["kind"] == "Fluo":  # the lines of the edges stand ahead of the rows
        table["edges"] = [
            {"energy": edge[0], "lines": list(zip(edge[2::3], edge[3::3], edge[4::3]))}
            for edge in data[:size]
        ]
        data = data[size:]
    table["energies"] = [first + i * step for i in range(len(data))]
    if table["kind"] == "Brems":
        table["total"] = [row.pop(0) for row in data]
    table["rows"] = data
    assert len(data) == count or table["kind"] in ("ACRP", "Fluo"), "rows are missing"
    return table


if __name__ == "__main__":
    table = read_table(sys.argv[1])
    rows, energies = table["rows"], table["energies"]
    print(f"{table['kind']} of {table['material']}, {table['density']} g/cm^3")
    print(f"{len(rows)} rows of {len(rows[0]) if rows else 0} numbers", end="")
    print(f" from {energies[0]:g} to {energies[-1]:g} keV" if rows else "")
