#!/usr/bin/env python3
"""Writes the section of docs/guide.md on the parameters.

    docs/parameters.py                    writes the section between its markers
    docs/parameters.py --check            writes nothing; exit code 1 when the section is out of date
    docs/parameters.py --pictures FOLDER  renders the pictures too, from the files of docs/scenes.sh there

Names, labels, hints, defaults and ranges come from `tesseret describe --context General --json`.
docs/parameters.json holds a text for each parameter and, where a picture can show it, the scene to
render and the values to show. A parameter that is missing in one of the two is an error.
"""

import argparse
import json
import subprocess
import sys
import textwrap
from pathlib import Path

DOCS = Path(__file__).resolve().parent
GUIDE = DOCS / "guide.md"
BEGIN = "<!-- parameters: written by docs/parameters.py -->\n"
END = "<!-- parameters: end -->\n"


def described(tesseret):
    """The parameters of the General context, in the order of the table."""
    command = [tesseret, "describe", "--context", "General", "--json"]
    effect = json.loads(subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout)
    return effect["contexts"][0]["parameters"]


def number(value):
    """A number in plain notation: 0.2 rather than the nearest float, 9000000 rather than 9e+06."""
    return f"{value:.6f}".rstrip("0").rstrip(".")


def numbers(values):
    return ",".join(number(value) for value in (values if isinstance(values, list) else [values]))


def facts(parameter):
    kind, default = parameter["type"], parameter.get("default")
    if kind == "PushButton":
        return "a button"
    if kind == "Boolean":
        text = f"a switch, {'on' if default else 'off'} by default"
    elif kind == "Choice":
        options = parameter["options"]
        text = f"one of {', '.join(f'`{o}`' for o in options)}; `{options[default]}` by default"
    else:
        name = {"Integer": "an integer", "Double": "a number", "Double2D": "a point"}[kind]
        low, high = (numbers(parameter[key][:1]) for key in ("min", "max"))
        shown = [numbers(parameter[key][:1]) for key in ("displayMin", "displayMax")]
        text = (f"{name} from {low} to {high}, {numbers(default)} by default; "
                f"the slider goes from {shown[0]} to {shown[1]}")
    return text + ("; can be animated" if parameter["animates"] else "")


def picture_name(parameter):
    return f"pictures/parameter-{parameter['name']}.jpg"


def setting(name, value):
    """An assignment as typed on a command line."""
    return f'`{name}="{value}"`' if set(value) & set(" >") else f"`{name}={value}`"


def paragraph(text):
    return textwrap.fill(text, 115, break_long_words=False, break_on_hyphens=False) + "\n"


def entry(parameter, ours):
    name, hint = parameter["name"], parameter["hint"]
    says = f' The host shows: "{hint}"' if hint else ""
    parts = [f"### {parameter['label']}\n", paragraph(f"`{name}`: {facts(parameter)}.{says}"),
             paragraph(ours["text"])]
    if "values" in ours:
        shown = " | ".join(setting(name, value) for value in ours["values"])
        parts += [f"![{parameter['label']}]({picture_name(parameter)})\n",
                  paragraph(f"{shown}: {ours['caption']}.")]
    return "\n".join(parts) + "\n"


def section(parameters, data):
    entries = data["parameters"]
    table = [parameter["name"] for parameter in parameters]
    faults = [f"docs/parameters.json lacks {name}" for name in table if name not in entries]
    faults += [f"the effect has no parameter {name}" for name in entries if name not in table]
    if faults:
        sys.exit("\n".join(f"parameters: {fault}" for fault in faults))
    return "".join(entry(parameter, entries[parameter["name"]]) for parameter in parameters)


def replaced(guide, text):
    before, begin, rest = guide.partition(BEGIN)
    _, end, after = rest.partition(END)
    if not begin or not end:
        sys.exit("parameters: docs/guide.md lacks the markers of the section on parameters")
    return before + begin + "\n" + text + end + after


def quietly(command, folder):
    """Runs a command; its messages are shown only when it fails."""
    done = subprocess.run(command, cwd=folder, stderr=subprocess.PIPE, text=True)
    if done.returncode:
        sys.exit(f"parameters: {' '.join(command)}\n{done.stderr}")


def render(tesseret, folder, arguments, frames, index):
    """Renders one value; returns one picture, or for a sequence one for each frame."""
    output = f"shown-{index}" + (".#.png" if frames else ".png")
    sequence = ["--frames", ",".join(map(str, frames))] if frames else []
    quietly([tesseret, "render", "--quiet", "--output", output, *sequence, *arguments], folder)
    return [output.replace("#", str(frame)) for frame in frames] or [output]


def draw(tesseret, folder, parameter, ours, scenes):
    """Sets the pictures of all values side by side."""
    scene = scenes[ours["scene"]]
    pictures = []
    for index, value in enumerate(ours["values"]):
        further = ours.get("also", {}).get(value, [])
        assignment = f"{parameter['name']}={value}"
        pictures += render(tesseret, folder, [*scene["arguments"], *further, assignment],
                           scene.get("frames", []), index)
    for picture in pictures:
        crop = ["-crop", scene["crop"], "+repage"] if "crop" in scene else []
        quietly(["gm", "convert", picture, "+matte", *crop, picture], folder)
    side = max(140, min(300, 700 // len(pictures)))
    quietly(["gm", "montage", "-tile", f"{len(pictures)}x1", "-geometry", f"{side}x{side}+3+0",
             "-background", "white", *pictures, "-quality", "82",
             str(DOCS / picture_name(parameter))], folder)


def main():
    options = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    options.add_argument("--tesseret", default=str(DOCS.parent / "build/release/bin/tesseret"))
    options.add_argument("--check", action="store_true")
    options.add_argument("--pictures", metavar="FOLDER")
    arguments = options.parse_args()

    data = json.loads((DOCS / "parameters.json").read_text(encoding="utf-8"))
    parameters = described(arguments.tesseret)
    guide = GUIDE.read_text(encoding="utf-8")
    wanted = replaced(guide, section(parameters, data))
    shown = [p for p in parameters if "values" in data["parameters"][p["name"]]]

    if arguments.check:
        missing = [picture_name(p) for p in shown if not (DOCS / picture_name(p)).is_file()]
        if wanted != guide or missing:
            sys.exit("parameters: docs/guide.md differs from the effect's description, or lacks a picture; "
                     "run docs/make-pictures.sh " + " ".join(missing))
        return
    if arguments.pictures:
        for parameter in shown:
            draw(arguments.tesseret, arguments.pictures, parameter,
                 data["parameters"][parameter["name"]], data["scenes"])
    if wanted != guide:
        GUIDE.write_text(wanted, encoding="utf-8")


main()
