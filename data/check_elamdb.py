#!/usr/bin/python3
"""Measures how well ElamDB12.txt stands for its sources and for other tables.

    data/check_elamdb.py                      form, and errors against EPDL97
    data/check_elamdb.py --xcom FILE          and against XCOM, from the Debian
                                              package python-fisx-common
    data/check_elamdb.py --elam FILE          and against the Elam tables
    data/check_elamdb.py --endf DIR           and against ENDF/B tapes, one file
                                              an element: ZZZ_Sym_000.endf

Reader and spline are written for this script and share nothing with the
generator. Exits with status 1 if the file does not hold to its form or misses
one of the LIMITS. Python 3 and its standard library only.
"""
import argparse
import bisect
import collections
import glob
import math
import os
import random
import statistics
import sys

import sources

LN1000 = math.log(1000.0)
BARN = 0.6022140857  # [cm^2/g] of 1 barn an atom, times atomic weight
SAMPLES, SEED = 10000, 20240607
NEAR = 0.02  # so close to an edge two tables differ by its position alone

# Largest errors against EPDL97, relative; docs/data.md states them.
LIMITS = {"photo": 0.004, "coherent": 0.003, "incoherent": 0.003}

KINDS = ("photo", "coherent", "incoherent")
SHELLS = {"K", "K1"} | {letter + str(i) for letter, count in
                        (("L", 3), ("M", 5), ("N", 7), ("O", 9), ("P", 11),
                         ("Q", 3)) for i in range(1, count + 1)}

Edge = collections.namedtuple("Edge", "shell energy jump lines")


# ------------------------------------------------------------------ the reader
class Curve:
    """Natural cubic splines in ln-ln between the points of equal energy."""

    def __init__(self, points):
        points = sorted(points, key=lambda p: p[0])
        self.starts, self.ranges = [], []
        pieces = [[points[0]]]
        for before, point in zip(points, points[1:]):
            if abs(math.exp(point[0] - before[0]) - 1) > 1e-4:
                pieces[-1].append(point)
            else:
                pieces.append([point])
        for piece in pieces:
            self.starts.append(piece[0][0])
            self.ranges.append((piece, second_derivatives(piece)))

    def logarithm(self, t, piece=None):
        if piece is None:
            piece = max(bisect.bisect_right(self.starts, t) - 1, 0)
        points, second = self.ranges[piece]
        if len(points) == 1:
            return points[0][1]
        i = bisect.bisect_right(points, (t, math.inf)) - 1
        i = min(max(i, 0), len(points) - 2)
        (xa, ya), (xb, yb) = points[i], points[i + 1]
        h = xb - xa
        a, b = (xb - t) / h, (t - xa) / h
        return (a * ya + b * yb + ((a * a * a - a) * second[i]
                                   + (b * b * b - b) * second[i + 1]) * h * h / 6)

    def __call__(self, energy):
        return math.exp(self.logarithm(math.log(energy)))

    def edges(self):
        """{energy: ratio} of the range boundaries."""
        return {math.exp(t): math.exp(self.logarithm(t, i + 1)
                                      - self.logarithm(t, i))
                for i, t in enumerate(self.starts[1:])}


def second_derivatives(points):
    """Those of the natural cubic spline, by elimination."""
    n = len(points)
    second, work = [0.0] * n, [0.0] * n
    for i in range(1, n - 1):
        (xa, ya), (x, y), (xb, yb) = points[i - 1:i + 2]
        left = (x - xa) / (xb - xa)
        pivot = left * second[i - 1] + 2
        second[i] = (left - 1) / pivot
        bend = (yb - y) / (xb - x) - (y - ya) / (x - xa)
        work[i] = (6 * bend / (xb - xa) - left * work[i - 1]) / pivot
    for i in range(n - 2, 0, -1):
        second[i] = second[i] * second[i + 1] + work[i]
    second[0] = 0.0
    return second


class Record:
    """One element as the file has it."""

    def __init__(self, words):
        self.symbol, self.Z = words[1], int(words[2])
        self.weight, self.density = float(words[3]), float(words[4])
        self.edges, self.points = [], {kind: [] for kind in KINDS}

    def finish(self):
        self.curves = {kind: Curve(self.points[kind]) for kind in KINDS}
        return self


def shell_of(label, where):
    if label not in SHELLS:
        raise SystemExit("%s: no subshell: %s" % (where, label))
    return label


def read(path, groups=False):
    """{symbol: Record}; where `groups` is set, labels of groups may occur."""
    records, record, section = {}, None, ""
    with open(path, encoding="latin-1") as file:
        for number, line in enumerate(file, 1):
            words = line.split()
            where = "%s:%d" % (path, number)
            if not words or words[0].startswith("//"):
                continue
            if not line.startswith(" "):
                section = words[0]
                if section == "Element":
                    record = Record(words)
                elif section == "Edge":
                    shell_of(words[1], where)
                    record.edges.append(Edge(words[1], float(words[2]) / 1000,
                                             float(words[4]), []))
                elif section == "EndElement":
                    records[record.symbol] = record.finish()
                elif section == "End":
                    return records
                elif section not in ("Photo", "Scatter"):
                    raise SystemExit("%s: unknown word %s" % (where, section))
            elif section == "Photo":
                record.points["photo"].append(
                    (float(words[0]) - LN1000, float(words[1])))
            elif section == "Scatter":
                t = float(words[0]) - LN1000
                record.points["coherent"].append((t, float(words[1])))
                record.points["incoherent"].append((t, float(words[3])))
            elif words[0] not in ("Lines", "CK", "CKtotal"):
                if not groups:
                    shell_of(words[0].partition("-")[2], where)
                record.edges[-1].lines.append((words[0], float(words[2]) / 1000,
                                               float(words[3])))
    raise SystemExit("%s: no End" % path)


# ------------------------------------------------------------------------ form
def check_form(records):
    """Findings, one text each."""
    findings = []
    if [r.Z for r in records.values()] != list(range(1, 99)):
        findings.append("not the elements 1 to 98")
    for r in records.values():
        jumps = r.curves["photo"].edges()
        for edge in r.edges:
            at = min(jumps, key=lambda e: abs(e - edge.energy), default=0)
            if abs(at / edge.energy - 1) > 2.5e-4:
                findings.append("%s %s: the curve has no edge at %g keV"
                                % (r.symbol, edge.shell, edge.energy))
            elif at > edge.energy and at / edge.energy - 1 < 1e-6:
                findings.append("%s %s: the curve's edge lies above its own"
                                % (r.symbol, edge.shell))
            elif abs(jumps[at] / edge.jump - 1) > 1e-3:
                findings.append("%s %s: jump %g, the curve has %g"
                                % (r.symbol, edge.shell, edge.jump, jumps[at]))
            total = sum(intensity for _, _, intensity in edge.lines)
            if edge.lines and abs(total - 1) > 0.01:
                findings.append("%s %s: lines sum to %g"
                                % (r.symbol, edge.shell, total))
            findings += ["%s %s: energy %g keV" % (r.symbol, label, energy)
                         for label, energy, _ in edge.lines
                         if not 0 < energy <= edge.energy]
    return findings


# ------------------------------------------------------------------ comparison
class Errors:
    """Relative deviations by kind and element."""

    def __init__(self, title):
        self.title = title
        self.found = collections.defaultdict(lambda: collections.defaultdict(list))

    def add(self, kind, symbol, value, reference):
        self.found[kind][symbol].append(abs(value / reference - 1))

    def largest(self, kind):
        return max((max(v), s) for s, v in self.found[kind].items())

    def report(self):
        print("\n%s" % self.title)
        for kind, by_symbol in self.found.items():
            every = sorted(e for v in by_symbol.values() for e in v)
            worst, symbol = self.largest(kind)
            print("  %-18s %7d points  median %.3f %%  95 %% of them within "
                  "%.3f %%  largest %.3f %% (%s)"
                  % (kind, len(every), 100 * statistics.median(every),
                     100 * every[int(0.95 * (len(every) - 1))],
                     100 * worst, symbol))


def source_curves(record, epdl):
    """EPDL97 with its thresholds where the file has its edges."""
    scale = math.log(BARN / record.weight)
    boundaries = record.curves["photo"].starts
    shells = epdl.photo[record.Z]
    levels = {edge.shell: edge.energy for edge in record.edges}
    for designator, shell in shells.items():
        edge = levels.get(sources.SUBSHELLS.get(designator))
        if edge:
            shell.open_at(min(boundaries, key=lambda t: abs(t - math.log(edge))))
    return {"photo": lambda t: scale + math.log(sum(s.value(t)
                                                    for s in shells.values())),
            "coherent": lambda t: scale + epdl.coherent[record.Z](t),
            "incoherent": lambda t: scale + epdl.incoherent[record.Z](t)}


def against_epdl(records):
    errors = Errors("EPDL97, 1 to 1000 keV, random energies")
    epdl = sources.Epdl97()
    rng = random.Random(SEED)
    for record in records.values():
        source = source_curves(record, epdl)
        for _ in range(SAMPLES):
            t = rng.uniform(0.0, math.log(1000.0))
            for kind, curve in record.curves.items():
                errors.add(kind, record.symbol, math.exp(curve.logarithm(t)),
                           math.exp(source[kind](t)))
    return errors


def off_edges(energy, records_edges):
    return all(abs(energy / e - 1) > NEAR for e in records_edges)


def compare_nodes(errors, record, tables, low, high):
    """At the nodes (energy, value) of `tables`, by kind, off the edges."""
    edges = list(record.curves["photo"].edges())
    for kind, nodes in tables.items():
        for energy, value in nodes:
            if not (low <= energy <= high and value > 0
                    and off_edges(energy, edges)):
                continue
            if kind == "sum":
                ours = sum(c(energy) for c in record.curves.values())
            else:
                ours = record.curves[kind](energy)
            errors.add(kind, record.symbol, ours, value)


def against_xcom(records, path):
    errors = Errors("XCOM, 5 to 600 keV, its nodes off the edges")
    tables, table = {}, None
    with open(path, encoding="latin-1") as file:
        for line in file:
            if line.startswith("#S"):
                table = tables.setdefault(line.split()[2],
                                          collections.defaultdict(list))
            elif table is not None and line[0] not in "#\n":
                e, coherent, incoherent, _, photo = map(float, line.split()[:5])
                for kind, value in (("photo", photo), ("coherent", coherent),
                                    ("incoherent", incoherent),
                                    ("sum", photo + coherent + incoherent)):
                    table[kind].append((e, value))
    for symbol, record in records.items():
        compare_nodes(errors, record, tables.get(symbol, {}), 5, 600)
    return errors


def against_elam(records, path):
    errors = Errors("Elam tables, 5 to 150 keV, off the edges")
    energies = [5 * 30 ** (k / 299) for k in range(300)]
    for symbol, other in read(path, groups=True).items():
        if symbol in records:
            compare_nodes(errors, records[symbol],
                          {kind: [(e, other.curves[kind](e)) for e in energies]
                           for kind in KINDS}, 5, 150)
    return errors


def endf_table(lines, mt):
    """[(energy [keV], value [barn])] of a section of file 23, whose law is
    linear throughout."""
    rows = [line for line in lines if line[70:75] == "23%3d" % mt]
    pairs = int(rows[1][55:66])
    numbers = [sources.endl_number(line[k:k + 11])
               for line in rows[3:] for k in range(0, 66, 11)]
    return [(e / 1000, s) for e, s in zip(numbers[0:2 * pairs:2],
                                          numbers[1:2 * pairs:2])]


def against_endf(records, folder):
    errors = Errors("ENDF/B tapes, 1 to 1000 keV, their nodes off the edges")
    for path in sorted(glob.glob(os.path.join(folder, "*_000.endf"))):
        record = records[os.path.basename(path).split("_")[1]]
        with open(path, encoding="latin-1") as file:
            lines = file.read().splitlines()
        factor = BARN / record.weight
        compare_nodes(errors, record,
                      {kind: [(e, s * factor) for e, s in endf_table(lines, mt)]
                       for kind, mt in (("photo", 522), ("coherent", 502),
                                        ("incoherent", 504))}, 1, 1000)
    return errors


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("file", nargs="?",
                        default=os.path.join(here, "ElamDB12.txt"))
    parser.add_argument("--xcom")
    parser.add_argument("--elam")
    parser.add_argument("--endf")
    arguments = parser.parse_args()

    records = read(arguments.file)
    findings = check_form(records)
    for finding in findings:
        print(finding)
    print("%d elements, %d edges, %d lines, %d photo and %d scatter nodes" % (
        len(records), sum(len(r.edges) for r in records.values()),
        sum(len(e.lines) for r in records.values() for e in r.edges),
        sum(len(r.points["photo"]) for r in records.values()),
        sum(len(r.points["coherent"]) for r in records.values())))
    if os.path.exists(sources.EPDL97):
        errors = against_epdl(records)
        errors.report()
        findings += [kind for kind, limit in LIMITS.items()
                     if errors.largest(kind)[0] > limit]
    for compare, source in ((against_xcom, arguments.xcom),
                            (against_elam, arguments.elam),
                            (against_endf, arguments.endf)):
        if source:
            compare(records, source).report()
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
