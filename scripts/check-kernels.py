#!/usr/bin/env python3
"""Checks that the objects of the kernels for one instruction set export their table and nothing that could be shared.

The linker keeps one copy of a weak function that several objects hold; from such an object it could be one that not
every processor runs. Prints each offender and ends with 1. Usage: scripts/check-kernels.py OBJECT...
"""

import pathlib
import subprocess
import sys

NAMES = {"Sse41.cpp": "kSse41Table", "Avx2.cpp": "kAvx2Table"}


def offenders(path, table):
    listing = subprocess.run(["nm", "--defined-only", "--demangle", path], check=True, capture_output=True, text=True)
    symbols = [line.split(maxsplit=2)[1:] for line in listing.stdout.splitlines()]
    if not any(name.endswith("::" + table) for kind, name in symbols if kind.isupper()):
        yield f"{path}: {table} is missing"
    for kind, name in symbols:
        # Lower case: local. What remains is global or weak. 32-bit code finds its own address through a function that
        # every processor runs.
        if name.startswith("__x86.get_pc_thunk."):
            continue
        if (kind.isupper() or kind in "uvw") and not name.endswith("::" + table):
            yield f"{path}: {kind} {name}"


def main():
    objects = {name: path for path in sys.argv[1:] if (name := pathlib.Path(path).stem) in NAMES}
    found = [line for name, path in objects.items() for line in offenders(path, NAMES[name])]
    found += [f"{name} is not among the objects" for name in NAMES if name not in objects]
    for line in found:
        print(line)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
