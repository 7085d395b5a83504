"""Readers of the files from which the default database is made.

Every file comes with a Debian package (bookworm):

  pymca-data        EPDL97: photon cross sections by subshell (D. E. Cullen,
                    J. H. Hubbell, L. Kissel, UCRL-50400 Vol. 6 Rev. 5, 1997)
                    EADL: radiative rates (S. T. Perkins et al., UCRL-50400
                    Vol. 30, 1991)
  python3-xraydb    edge energies, fluorescence yields, lines, Coster-Kronig
                    probabilities (W. T. Elam, B. D. Ravel, J. R. Sieber,
                    Radiat. Phys. Chem. 63 (2002) 121)

Inside, energies are in keV, cross sections in barn an atom; curves live on
natural logarithms of both.
"""
import bisect
import collections
import csv
import math
import os
import sqlite3

EPDL97 = "/usr/share/pymca/EPDL97/EPDL97.DAT"
EADL = "/usr/share/pymca/EPDL97/EADL.DAT"
XRAYDB = "/usr/lib/python3/dist-packages/xraydb/xraydb.sqlite"
PACKAGES = "pymca-data python3-xraydb"
ELEMENTS = os.path.join(os.path.dirname(os.path.abspath(__file__)),
                        "tables", "elements.csv")

# Subshell of an ENDL designator, ENDL manual UCRL-TR-212956, table of electron
# subshells. Designators of whole shells (2, 4, 7, ...) do not occur.
SUBSHELLS = {
    1: "K", 3: "L1", 5: "L2", 6: "L3", 8: "M1", 10: "M2", 11: "M3", 13: "M4",
    14: "M5", 16: "N1", 18: "N2", 19: "N3", 21: "N4", 22: "N5", 24: "N6",
    25: "N7", 27: "O1", 29: "O2", 30: "O3", 32: "O4", 33: "O5", 35: "O6",
    36: "O7", 38: "O8", 39: "O9", 41: "P1", 43: "P2", 44: "P3", 46: "P4",
    47: "P5"}
DESIGNATORS = {name: number for number, name in SUBSHELLS.items()}

# Electrons of a filled subshell, 2 j + 1, by the number behind the letter.
OCCUPATION = {1: 2, 2: 2, 3: 4, 4: 4, 5: 6, 6: 6, 7: 8, 8: 8, 9: 10}

Element = collections.namedtuple("Element", "Z symbol density weight")
Level = collections.namedtuple("Level", "energy fluorescence_yield")
Transition = collections.namedtuple("Transition",
                                    "start end siegbahn energy intensity")
CosterKronig = collections.namedtuple("CosterKronig", "end direct total")


class LogCurve:
    """ln(cross section) over ln(energy), linear between the nodes: the
    interpolation that EPDL97 prescribes."""

    def __init__(self, rows):
        """`rows`: energy [MeV] and cross section [barn]; zeros are left out."""
        points = [(math.log(e * 1000), math.log(s)) for e, s in rows if s > 0]
        self.x = [x for x, _ in points]
        self.y = [y for _, y in points]

    def __call__(self, t):
        x, y = self.x, self.y
        i = min(max(bisect.bisect_right(x, t) - 1, 0), len(x) - 2)
        return y[i] + (y[i + 1] - y[i]) * (t - x[i]) / (x[i + 1] - x[i])


class SubshellCurve(LogCurve):
    """Photoionization of one subshell, with a threshold that can be moved.

    The thresholds of EPDL97 are calculated (Fe K 7.083 keV, measured 7.112
    keV). Near a moved threshold the curve moves along; the shift dies out
    exponentially further up, where the curve is that of EPDL97 again.
    """
    DECAY = 0.05         # length of the decay in ln(energy): 5 % in energy
    DECAY_PER_SHIFT = 4  # at least so many times the shift, to stay monotonic

    def __init__(self, rows):
        super().__init__(rows)
        self.source_threshold = self.x[0]
        self.open_at(self.source_threshold)

    def open_at(self, t):
        self.threshold = t
        self.shift = self.source_threshold - t
        self.decay = max(self.DECAY, self.DECAY_PER_SHIFT * abs(self.shift))

    def value(self, t, above=True):
        """Cross section [barn]. At the threshold itself that of the upper
        side if `above`, else 0."""
        if t < self.threshold or (t == self.threshold and not above):
            return 0.0
        shift = self.shift * math.exp(-(t - self.threshold) / self.decay)
        return math.exp(self(max(t + shift, self.source_threshold)))


def endl_number(field):
    """A number whose exponent may lack its letter, such as 1.5-3."""
    text = field.replace(" ", "")
    if not text:
        return 0.0
    for i in range(1, len(text)):
        if text[i] in "+-" and text[i - 1] not in "eE":
            return float(text[:i] + "e" + text[i:])
    return float(text)


EndlTable = collections.namedtuple("EndlTable",
                                   "Z outgoing C I S subshell rows")


def endl_tables(path):
    """The tables of a file in ENDL format: two head lines, rows of numbers in
    columns of 11, and a line with a lone 1 in column 72."""
    with open(path, encoding="latin-1") as file:
        for head in file:
            if not head.strip():
                continue
            kind = next(file)
            rows = []
            for line in file:
                if line[71:72] == "1" and not line[:71].strip():
                    break
                line = line.rstrip()
                rows.append(tuple(endl_number(line[k:k + 11])
                                  for k in range(0, len(line), 11)))
            yield EndlTable(Z=int(head[:6]) // 1000, outgoing=int(head[10:12]),
                            C=int(kind[0:2]), I=int(kind[2:5]),
                            S=int(kind[5:8]),
                            subshell=int(endl_number(kind[21:32])), rows=rows)


class Epdl97:
    """Curves by atomic number: `coherent`, `incoherent`, and `photo`, a
    SubshellCurve for each designator."""
    COHERENT, INCOHERENT, PHOTOELECTRIC = 71, 72, 73  # reaction C
    CROSS_SECTION = 0                                 # property I
    BY_SUBSHELL = 91                                  # modifier S

    def __init__(self, path=EPDL97):
        self.coherent, self.incoherent = {}, {}
        self.photo = collections.defaultdict(dict)
        for t in endl_tables(path):
            if t.I != self.CROSS_SECTION or t.outgoing != 0:
                continue
            if t.C == self.COHERENT:
                self.coherent[t.Z] = LogCurve(t.rows)
            elif t.C == self.INCOHERENT:
                self.incoherent[t.Z] = LogCurve(t.rows)
            elif t.C == self.PHOTOELECTRIC and t.S == self.BY_SUBSHELL:
                self.photo[t.Z][t.subshell] = SubshellCurve(t.rows)


def radiative_rates(path=EADL):
    """{(Z, designator of the vacancy): {designator: probability}}"""
    photon, transition = 7, 931  # outgoing particle, property I
    return {(t.Z, t.subshell): {int(row[0]): row[1] for row in t.rows}
            for t in endl_tables(path)
            if t.I == transition and t.outgoing == photon}


class XrayDb:
    """Levels, lines and Coster-Kronig probabilities by symbol."""

    def __init__(self, path=XRAYDB):
        database = sqlite3.connect("file:%s?mode=ro" % path, uri=True)
        self.version = database.execute(
            "select tag from Version order by id desc limit 1").fetchone()[0]
        self.levels = collections.defaultdict(dict)
        for symbol, name, energy, fluorescence in database.execute(
                "select element, iupac_symbol, absorption_edge, "
                "fluorescence_yield from xray_levels order by id"):
            self.levels[symbol][name] = Level(energy / 1000, fluorescence)
        self.lines = collections.defaultdict(list)
        for symbol, start, end, siegbahn, energy, intensity in database.execute(
                "select element, initial_level, final_level, siegbahn_symbol, "
                "emission_energy, intensity from xray_transitions order by id"):
            self.lines[symbol].append(
                Transition(start, end, siegbahn, energy / 1000, intensity))
        self.coster_kronig = collections.defaultdict(list)
        for symbol, start, end, direct, total in database.execute(
                "select element, initial_level, final_level, "
                "transition_probability, total_transition_probability "
                "from Coster_Kronig order by id"):
            self.coster_kronig[symbol, start].append(
                CosterKronig(end, direct, total))
        database.close()


def elements(path=ELEMENTS):
    """{Z: Element}; density and weight stay text, as they are written on."""
    with open(path, encoding="ascii", newline="") as file:
        rows = list(csv.reader(file))[1:]
    return {int(Z): Element(int(Z), symbol, density, weight)
            for Z, symbol, density, weight in rows}


def missing():
    """Those of the source files that are not installed."""
    return [path for path in (EPDL97, EADL, XRAYDB) if not os.path.exists(path)]
