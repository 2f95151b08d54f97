#!/usr/bin/env python3
"""Checks who includes whom: every folder includes only what ARROWS allows, and no folder reaches itself.

Prints each include line that breaks the rules and exits with 1; prints nothing on success.
docs/architecture.md draws the same arrows. Usage: scripts/check-layers.py [FOLDER OF THE TREE]
"""

import pathlib
import re
import sys

# Folder, or single header: what it may include besides itself. No other folder of the tree is allowed.
ARROWS = {
    "ofx": [],
    "platform": [],
    "libraries/services": [],
    "libraries/exceptions": ["libraries/services", "platform"],
    "libraries/Processor": ["libraries/exceptions", "libraries/services", "platform"],
    "engine/map": ["libraries"],
    "engine/kernels": ["engine/map"],
    "engine/pass": ["engine/map", "libraries"],
    "engine/filter": ["engine/kernels", "engine/map", "engine/pass", "libraries"],
    # Interfaces of the driver and the stages; headers that include only maps and masks.
    "engine/TemporalState.h": ["engine/map"],
    "engine/RenderObserver.h": ["engine/map"],
    "engine/RecordExchange.h": [],
    "engine/FillParameters.h": ["engine/map", "engine/mask"],
    "engine/RenderContext.h": ["engine/map", "engine/FillParameters.h", "engine/RecordExchange.h",
                               "engine/RenderObserver.h", "libraries"],
    "engine/mask": ["engine/map", "engine/pass", "engine/filter", "libraries"],
    "engine/boundary": ["engine/kernels", "engine/map", "engine/pass", "engine/filter", "engine/mask", "libraries"],
    "engine/quilt": ["engine/kernels", "engine/map", "engine/pass", "engine/filter", "engine/TemporalState.h",
                     "engine/RenderObserver.h", "libraries"],
    "engine": ["engine/kernels", "engine/map", "engine/pass", "engine/filter", "engine/mask", "engine/boundary", "engine/quilt",
               "engine/TemporalState.h", "engine/RecordExchange.h", "engine/RenderObserver.h", "engine/FillParameters.h",
               "engine/RenderContext.h", "libraries"],
    "products/OFX/Support": ["ofx", "engine/map", "engine/pass", "engine", "libraries", "platform"],
    "overlay": ["products/OFX/Support", "ofx", "platform", "libraries"],
    # Only the names: the command line and the viewer refer to the effect's parameters by them.
    "effect/ParameterNames.h": [],
    "effect": ["effect/ParameterNames.h", "overlay", "products/OFX/Support", "ofx", "engine", "libraries", "platform"],
    "picture": ["ofx"],
    "quality": ["picture", "ofx"],
    "host": ["picture", "ofx", "platform"],
    "host/imitation": ["host", "picture", "ofx"],
    "files": ["picture", "ofx", "platform"],
    # The module round OpenImageIO; the rest of files/ knows its interface only.
    "files/oiio": ["files", "picture", "ofx"],
    "render": ["effect/ParameterNames.h", "host", "files", "picture", "ofx", "platform"],
    "fill": ["effect/ParameterNames.h", "quality", "render", "host", "files", "picture", "ofx"],
    "farm": ["render", "files"],
    "viewer/model": ["effect/ParameterNames.h", "fill", "quality", "render", "host", "files", "picture", "ofx"],
    "viewer/window": ["effect/ParameterNames.h", "viewer/model", "fill", "quality", "render", "host", "files", "picture", "ofx"],
    "inspect": ["host", "picture", "ofx"],
    "sheet": ["picture", "ofx"],
    "command": ["effect/ParameterNames.h", "viewer/model", "viewer/window", "inspect", "sheet", "farm", "fill", "quality", "render", "host",
                "files", "picture", "ofx"],
}
# Tests and benchmarks may include anything; no other folder includes them.
FREE = ["tests", "bench"]


def room_of(path):
    """The most specific entry of ARROWS for a path; None if there is none."""
    rooms = [room for room in ARROWS if path == room or path.startswith(room + "/")]
    return max(rooms, key=len, default=None)


def allowed(room, other):
    return room == other or any(other == arrow or other.startswith(arrow + "/") for arrow in ARROWS[room])


def wrong_includes(root):
    for source in sorted(root.rglob("*")):
        path = source.relative_to(root).as_posix()
        if source.suffix not in (".h", ".cpp") or path.startswith(("build/", *(f + "/" for f in FREE))):
            continue
        room = room_of(path)
        if room is None:
            yield f"{path}: its folder is not in the list of scripts/check-layers.py"
            continue
        for number, line in enumerate(source.read_text(encoding="utf-8").splitlines(), 1):
            include = re.match(r'\s*#\s*include\s+"([^"]+)"', line)
            if not include:
                continue
            other = room_of(include.group(1))
            if other is None or not (root / include.group(1)).is_file():
                yield f"{path}:{number}: {include.group(1)} is no file of the tree, written from its root"
            elif not allowed(room, other):
                yield f"{path}:{number}: {room} may not include {include.group(1)}"


def circle():
    """Folders that lead back to the first of them, or None."""
    def walk(room, trail):
        if room in trail:
            return trail[trail.index(room):] + [room]
        for arrow in ARROWS[room] if room in ARROWS else []:
            for other in [r for r in ARROWS if r == arrow or r.startswith(arrow + "/")]:
                # A folder with subfolders may be above them.
                if other != room and (found := walk(other, trail + [room])):
                    return found
        return None

    return next((found for room in ARROWS if (found := walk(room, []))), None)


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent).resolve()
    problems = list(wrong_includes(root))
    if found := circle():
        problems.append("a circle: " + " -> ".join(found))
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
