#!/usr/bin/env python3
"""Compares what the shared library exports with the list in the repository.

    check_symbols.py LIBRARY LIST            fails where they differ
    check_symbols.py --update LIBRARY LIST   writes the list anew

The list shows in a review what a release adds to the interface or takes away.
"""
import re
import subprocess
import sys


# Starts of names that the linker and the OpenMP run time add.
MARKS = ("_init", "_fini", "_edata", "_end", "__bss")


def defined(library, *options):
    """Names of the defined dynamic symbols, each once."""
    out = subprocess.run(["nm", "-D", "--defined-only", *options, library],
                         check=True, capture_output=True, text=True).stdout
    names = {line.split(" ", 2)[2].split("@@")[0] for line in out.splitlines()}
    return {name for name in names if not name.startswith(MARKS)}


def private(mangled):
    """True in an unnamed namespace and in the standard library's."""
    in_std = re.match(r"_Z(Z|GV|T[ISV])*N?K?St", mangled) is not None
    return in_std or "_GLOBAL__N_" in mangled


def main():
    update = sys.argv[1] == "--update"
    library, path = sys.argv[-2:]
    names = defined(library, "--demangle")
    if update:
        with open(path, "w", encoding="ascii") as out:
            out.writelines(name + "\n" for name in sorted(names))
        return 0
    with open(path, encoding="ascii") as listed:
        expected = set(listed.read().splitlines())
    findings = ["private: " + n for n in sorted(defined(library)) if private(n)]
    findings += ["not in the list: " + n for n in sorted(names - expected)]
    findings += ["gone: " + n for n in sorted(expected - names)]
    print("\n".join(findings) or f"{len(names)} symbols, as listed")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
