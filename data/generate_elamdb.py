#!/usr/bin/python3
"""Makes ElamDB12.txt, the default database, anew from Debian packages.

    apt-get install --no-install-recommends pymca-data python3-xraydb
    data/generate_elamdb.py             write data/ElamDB12.txt
    data/generate_elamdb.py --check     fail unless it is what would be written

How the sources (sources.py) become one file:

- Photoabsorption is the sum of the EPDL97 subshell curves. A subshell opens at
  the measured edge energy, not at the calculated threshold of EPDL97.
- Coherent and incoherent scattering are EPDL97 as it stands.
- Edges, yields, lines and Coster-Kronig probabilities are the Elam tables. A
  label names one subshell each: the group K-M4,5 becomes K-M4 and K-M5,
  divided by the radiative rates of EADL.
- An edge is a pair of points of equal energy, at which a reader of the file
  begins a new range; edges closer than MERGE share a pair.
- A range is read as a natural cubic spline in ln-ln. Its nodes are placed where
  that spline needs them to stay within TOLERANCE of the source.

Python 3 and its standard library; about ten seconds.
"""
import argparse
import bisect
import math
import os
import sys

import sources

FIRST, LAST = 0.1, 10000.0  # energies of every curve [keV]
ELEMENTS = range(1, 99)     # the Elam tables end with Z = 98
TOLERANCE = 0.0025          # of a curve between its nodes, relative
MERGE = 2e-4                # edges so close in ln(energy) become one
MARGIN = 1.002              # an edge keeps so far above the first energy
BARN = 0.6022140857         # [cm^2/g] of 1 barn an atom, times atomic weight
LN1000 = math.log(1000.0)   # from ln(energy/keV) to the ln(energy/eV) printed


# ------------------------------------------------------------ nodes of a range
class NaturalSpline:
    """Natural cubic spline through points of ascending abscissa."""

    def __init__(self, x, y):
        n = len(x)
        half = [0.0] * n  # half of the second derivative at each node
        diagonal, right = [1.0] * n, [0.0] * n
        for i in range(1, n - 1):
            below, above = x[i] - x[i - 1], x[i + 1] - x[i]
            factor = below / diagonal[i - 1] if i > 1 else 0.0
            diagonal[i] = 2 * (below + above) - factor * below
            right[i] = (3 * ((y[i + 1] - y[i]) / above
                             - (y[i] - y[i - 1]) / below)
                        - factor * right[i - 1])
        for i in range(n - 2, 0, -1):
            half[i] = (right[i] - (x[i + 1] - x[i]) * half[i + 1]) / diagonal[i]
        self.x, self.y, self.half = x, y, half

    def in_segment(self, i, t):
        width, d = self.x[i + 1] - self.x[i], t - self.x[i]
        low, high = self.half[i], self.half[i + 1]
        slope = (self.y[i + 1] - self.y[i]) / width - width * (2 * low + high) / 3
        return (((high - low) / (3 * width) * d + low) * d + slope) * d + self.y[i]


class Remembered:
    """A function that is asked for the same few abscissas again and again."""

    def __init__(self, function):
        self.function, self.values = function, {}

    def __call__(self, t):
        if t not in self.values:
            self.values[t] = self.function(t)
        return self.values[t]


class NodePlacer:
    """Places nodes in [low, high] so that the natural splines of all functions
    stay within TOLERANCE of them at eighths of each segment and at each node
    of the source."""
    FIRST_WIDTH = 0.7  # of a segment before it is halved, in ln(energy)
    LEAST_WIDTH = 4e-4  # two points closer than 1e-4 would read as an edge
    REACH = 6  # segments over which the removal of a node is felt

    def __init__(self, low, high, functions, source_nodes):
        self.functions = [Remembered(f) for f in functions]
        self.source = [t for t in source_nodes if low < t < high]
        n = max(1, round((high - low) / self.FIRST_WIDTH))
        self.x = [low + (high - low) * i / n for i in range(n)] + [high]

    def splines(self, x):
        return [NaturalSpline(x, [f(t) for t in x]) for f in self.functions]

    def fits(self, x, splines, i):
        a, b = x[i], x[i + 1]
        probes = [a + (b - a) * j / 8 for j in range(1, 8)]
        probes += self.source[bisect.bisect_right(self.source, a):
                              bisect.bisect_left(self.source, b)]
        return all(abs(s.in_segment(i, t) - f(t)) <= TOLERANCE
                   for s, f in zip(splines, self.functions) for t in probes)

    def halve(self):
        """Halves segments until all fit. True once they do."""
        x, splines = self.x, self.splines(self.x)
        added = [0.5 * (x[i] + x[i + 1]) for i in range(len(x) - 1)
                 if x[i + 1] - x[i] >= self.LEAST_WIDTH
                 and not self.fits(x, splines, i)]
        self.x = sorted(x + added)
        return not added

    def thin(self):
        """Halving leaves more nodes than are needed: drops one by one."""
        i = 1
        while i < len(self.x) - 1:
            fewer = self.x[:i] + self.x[i + 1:]
            splines = self.splines(fewer)
            near = range(max(0, i - self.REACH),
                         min(len(fewer) - 1, i + self.REACH - 1))
            if all(self.fits(fewer, splines, j) for j in near):
                self.x = fewer
            else:
                i += 1

    def place(self):
        while not self.halve():
            pass
        self.thin()
        return self.x


# ---------------------------------------------------------------- printed form
def printed(t):
    """ln(energy/eV) with six decimals, and what a reader makes of it."""
    text = "%.6f" % (t + LN1000)
    return text, float(text) - LN1000


def printed_boundary(t, upwards=False):
    """The same with eight decimals, for the end of a range.

    Rounded towards the inside of the data, and on until log(exp(x)) == x, so
    that a range ends where the next one begins to the last bit and an edge of
    the curve never lies above the energy of its Edge line.
    """
    if upwards:
        n, step = math.ceil((t + LN1000) * 1e8 - 1e-6), 1
    else:
        n, step = math.floor((t + LN1000) * 1e8 + 1e-6), -1
    while True:
        text = "%.8f" % (n / 1e8)
        x = float(text) - LN1000
        if math.log(math.exp(x)) == x:
            return text, x
        n += step


def rows_of(boundaries, curves_between, source_nodes):
    """Lines of numbers: ln(energy/eV) and, for each curve, its value and the
    second derivative, 0, that the format has a place for."""
    rows = []
    for low, high in zip(boundaries, boundaries[1:]):
        curves = curves_between(low[1], high[1])
        nodes = NodePlacer(low[1], high[1], curves, source_nodes).place()
        texts = [low] + [printed(t) for t in nodes[1:-1]] + [high]
        for text, x in texts:
            values = "".join(" %.6f 0" % curve(x) for curve in curves)
            rows.append("  " + text + values)
    return rows


# ----------------------------------------------------------------- one element
class ElementWriter:
    """The lines of one element."""
    ENDS = printed_boundary(math.log(FIRST)), printed_boundary(math.log(LAST),
                                                               upwards=True)

    def __init__(self, element, epdl, xraydb, rates):
        self.element = element
        self.scale = math.log(BARN / float(element.weight))
        self.shells = epdl.photo[element.Z]
        self.scattering = epdl.coherent[element.Z], epdl.incoherent[element.Z]
        self.levels = xraydb.levels[element.symbol]
        self.transitions = xraydb.lines[element.symbol]
        self.coster_kronig = xraydb.coster_kronig
        self.rates = rates
        self.open_shells()
        self.boundaries = self.join_edges()
        self.jumps = self.jump_ratios()

    def open_shells(self):
        """Moves each threshold to the measured edge, where there is one."""
        for designator, shell in self.shells.items():
            level = self.levels.get(sources.SUBSHELLS.get(designator))
            edge = level.energy if level else 0
            if edge and max(edge, math.exp(shell.threshold)) >= FIRST:
                shell.open_at(math.log(edge))

    def join_edges(self):
        """Ends of the ranges; moves the thresholds exactly there."""
        first, last = self.ENDS
        inner = []
        for shell in sorted(self.shells.values(), key=lambda s: s.threshold):
            energy = math.exp(shell.threshold)
            if energy >= LAST:
                continue
            if energy <= FIRST * MARGIN:
                if shell.threshold >= first[1]:
                    shell.open_at(first[1] - 1e-9)  # open over the whole range
            elif inner and shell.threshold - inner[-1][1] < MERGE:
                shell.open_at(inner[-1][1])
            else:
                inner.append(printed_boundary(shell.threshold))
                shell.open_at(inner[-1][1])
        return [first] + inner + [last]

    def photo(self, t, above=True):
        return self.scale + math.log(sum(s.value(t, above)
                                         for s in self.shells.values()))

    def jump_ratios(self):
        return {t: math.exp(self.photo(t) - self.photo(t, above=False))
                for _, t in self.boundaries[1:-1]}

    def photo_rows(self):
        nodes = sorted({t for s in self.shells.values() for t in s.x})
        return rows_of(
            self.boundaries,
            lambda low, high: [lambda t: self.photo(t, above=t != high)], nodes)

    def scatter_rows(self):
        """Coherent scattering has cusps at the thresholds of EPDL97 itself;
        those of K, L and M end a range."""
        cusps = []
        for designator, shell in self.shells.items():
            inside = FIRST * 1.01 < math.exp(shell.source_threshold) < LAST
            if inside and designator <= sources.DESIGNATORS["M5"]:
                cusps.append(shell.source_threshold)
        boundaries = [self.ENDS[0]]
        for t in sorted(cusps):
            boundary = printed_boundary(t)
            if len(boundaries) == 1 or boundary[1] - boundaries[-1][1] > 1e-3:
                boundaries.append(boundary)
        boundaries.append(self.ENDS[1])
        nodes = sorted({t for curve in self.scattering for t in curve.x})
        curves = [lambda t, curve=curve: curve(t) + self.scale
                  for curve in self.scattering]
        return rows_of(boundaries, lambda low, high: curves, nodes)

    def edge_rows(self):
        rows = []
        for name, level in self.levels.items():
            designator = sources.DESIGNATORS.get(name)
            inside = FIRST * MARGIN < level.energy < LAST
            if not inside or designator not in self.shells:
                continue
            jump = self.jumps.get(self.shells[designator].threshold, 1.0)
            rows.append("Edge %s %.7g %.6g %.5g" % (
                name, level.energy * 1000, level.fluorescence_yield, jump))
            rows += self.line_rows(name) + self.coster_kronig_rows(name)
        return rows

    def line_rows(self, name):
        rows = ["  %s-%s %s %.7g %.6g" % (name, t.end, t.siegbahn,
                                          t.energy * 1000, t.intensity)
                for t in self.single_lines(name)]
        return [" Lines"] + rows if rows else []

    def single_lines(self, name):
        for line in self.transitions:
            if members(line.start)[0] != name:
                continue
            ends = members(line.end)
            if len(ends) == 1:
                yield line
                continue
            for end, share in zip(ends, self.shares(name, ends)):
                if share > 0:
                    yield line._replace(end=end, energy=self.difference(
                        name, end, line.energy),
                        intensity=line.intensity * share)

    def shares(self, name, ends):
        """How a group divides: by the rates of EADL; where it has none, by the
        number of electrons."""
        rates = self.rates.get((self.element.Z, sources.DESIGNATORS[name]), {})
        weights = [rates.get(sources.DESIGNATORS[end], 0.0) for end in ends]
        if not sum(weights) > 0:
            weights = [sources.OCCUPATION[int(end[1:])] for end in ends]
        return [w / sum(weights) for w in weights]

    def difference(self, start, end, otherwise):
        if end not in self.levels:
            return otherwise
        return self.levels[start].energy - self.levels[end].energy

    def coster_kronig_rows(self, name):
        found = self.coster_kronig[self.element.symbol, name]
        if not found:
            return []
        return [" CK" + "".join(" %s %.6g" % (c.end, c.direct) for c in found),
                " CKtotal" + "".join(" %s %.6g" % (c.end, c.total)
                                     for c in found)]

    def rows(self):
        head = "Element %s %d %s %s" % (self.element.symbol, self.element.Z,
                                        self.element.weight,
                                        self.element.density)
        return ([head] + self.edge_rows() + ["Photo"] + self.photo_rows()
                + ["Scatter"] + self.scatter_rows() + ["EndElement"])


def members(label):
    """The subshells of a label: M4 and M5 of "M4,5"."""
    shell = label.rstrip("0123456789,")
    return ([shell + number for number in label[len(shell):].split(",")]
            if "," in label else [label])


# ------------------------------------------------------------------- the file
HEAD = """\
// Photon data of the elements, made by data/generate_elamdb.py.
// Cross sections: EPDL97 (D. E. Cullen, J. H. Hubbell, L. Kissel, UCRL-50400
//   Vol. 6 Rev. 5, 1997), Debian package pymca-data; opened at measured edges.
// Edges, yields, lines, Coster-Kronig: W. T. Elam, B. D. Ravel, J. R. Sieber,
//   Radiat. Phys. Chem. 63 (2002) 121; XrayDB {version} (CC0), Debian package
//   python3-xraydb. Line groups are divided by the radiative rates of EADL
//   (S. T. Perkins et al., UCRL-50400 Vol. 30, 1991).
// {first:g} to {last:g} keV; nodes for natural cubic splines in ln-ln within {tolerance:g} %."""


def database():
    table, epdl = sources.elements(), sources.Epdl97()
    xraydb, rates = sources.XrayDb(), sources.radiative_rates()
    rows = [HEAD.format(version=xraydb.version, first=FIRST, last=LAST,
                        tolerance=100 * TOLERANCE)]
    for Z in ELEMENTS:
        rows += ElementWriter(table[Z], epdl, xraydb, rates).rows()
    return "\n".join(rows + ["End", ""])


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("--check", action="store_true",
                        help="compare with the file instead of writing it")
    parser.add_argument("--output", default=os.path.join(
        os.path.dirname(os.path.abspath(__file__)), "ElamDB12.txt"))
    arguments = parser.parse_args()
    if sources.missing():
        print("missing: %s\ninstall: apt-get install %s" % (
            ", ".join(sources.missing()), sources.PACKAGES), file=sys.stderr)
        return 77  # what ctest takes for a skipped test
    text = database()
    if not arguments.check:
        with open(arguments.output, "w", encoding="ascii", newline="\n") as out:
            out.write(text)
        return 0
    with open(arguments.output, encoding="ascii", newline="\n") as file:
        if file.read() == text:
            return 0
    print("%s differs from what its sources give" % arguments.output,
          file=sys.stderr)
    return 1


if __name__ == "__main__":
    sys.exit(main())
