#!/usr/bin/env python3
"""Compares what the shared library exports with the list in the repository.

    check_symbols.py LIBRARY LIST            fails where they differ
    check_symbols.py --update LIBRARY LIST   writes the list anew

The list shows in a review what a release adds to the interface or takes away.
"""
import subprocess
import sys


def exported(library):
    """Names of the defined dynamic symbols, demangled, each once."""
    out = subprocess.run(["nm", "-DC", "--defined-only", library], check=True,
                         capture_output=True, text=True).stdout
    names = set()
    for line in out.splitlines():
        name = line.split(" ", 2)[2]
        # The assembler's marks of the OpenMP and linker run time.
        if not name.startswith(("_init", "_fini", "_edata", "_end", "__bss")):
            names.add(name.split("@@")[0])
    return names


def private(name):
    return "(anonymous namespace)" in name or name.startswith("std::")


def main():
    update = sys.argv[1] == "--update"
    library, path = sys.argv[-2:]
    names = exported(library)
    if update:
        with open(path, "w", encoding="ascii") as out:
            out.writelines(name + "\n" for name in sorted(names))
        return 0
    with open(path, encoding="ascii") as listed:
        expected = set(listed.read().splitlines())
    findings = ["private: " + n for n in sorted(names) if private(n)]
    findings += ["not in the list: " + n for n in sorted(names - expected)]
    findings += ["gone: " + n for n in sorted(expected - names)]
    print("\n".join(findings) or f"{len(names)} symbols, as listed")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
