#!/usr/bin/env python3
"""Checks which version of the C library a shared library needs: none of its symbols may be newer than the given one.

Prints each symbol that is too new, with its version, and exits with 1; prints nothing on success. A library without any
versioned symbol is an error, with 2, as is a file that readelf cannot read.
Usage: scripts/check-symbols.py GLIBC LIBRARY, for example 2.17 Tesseret.ofx
"""

import re
import subprocess
import sys


def version_of(text):
    return tuple(int(number) for number in text.split("."))


def glibc_needs(library):
    """Pairs of a symbol that the library takes from the C library and its version, as text, and the names of the
    C library's features that it needs besides."""
    command = ["readelf", "--wide", "--dyn-syms", "--version-info", library]
    listing = subprocess.run(command, check=True, capture_output=True, text=True)
    if listing.stderr:
        raise ValueError(listing.stderr.strip())
    # "    19: 0000000000000000     0 FUNC    GLOBAL DEFAULT  UND memcpy@GLIBC_2.14 (4)"
    symbols = re.findall(r" UND (\S+?)@+GLIBC_([0-9.]+)\b", listing.stdout)
    # "  0x0040:   Name: GLIBC_ABI_DT_RELR  Flags: none  Version: 6"
    return symbols, re.findall(r"Name: (GLIBC_[A-Z]\w*)", listing.stdout)


def main():
    if len(sys.argv) != 3:
        print(__doc__.splitlines()[-1], file=sys.stderr)
        return 2
    newest, library = sys.argv[1:]
    try:
        symbols, features = glibc_needs(library)
    except (subprocess.CalledProcessError, ValueError) as error:
        print(f"{library}: {getattr(error, 'stderr', None) or error}", file=sys.stderr)
        return 2
    if not symbols:
        print(f"{library}: no symbol of the C library is versioned", file=sys.stderr)
        return 2
    offenders = sorted({pair for pair in symbols if version_of(pair[1]) > version_of(newest)})
    for name, version in offenders:
        print(f"{library}: {name} needs glibc {version}, which is newer than {newest}")
    for feature in features:
        print(f"{library}: needs {feature}, which older systems lack")
    return 1 if offenders or features else 0


if __name__ == "__main__":
    sys.exit(main())
