#!/usr/bin/env python3
"""Checks, file by file, that each target includes only headers of the targets it may use, and each source its own header first."""
import pathlib
import re
import sys

# The same table as in docs/ARCHITECTURE.md: what a target may use directly; with it comes what those may use.
MAY_USE = {
    "core": [],
    "platform": ["core"],
    "reading": ["platform"],
    "axes": ["platform"],
    "expression": ["platform"],
    "model": ["reading", "axes", "expression"],
    "render": ["model"],
    "widgetkit": ["platform"],
    "sourceviews": ["model", "widgetkit"],
    "sidebar": ["model", "widgetkit"],
    "shell": ["render", "widgetkit", "sidebar"],
    "application": ["shell"],
    "commandline": ["model"],
    "velquin": ["application", "sourceviews", "commandline"],
    "packaging": ["commandline"],
}
GENERATED = re.compile(r"(^|/)ui_\w+\.h$|\.moc$|(^|/)moc_\w+\.cpp$|^Product\.h$")


def reach(target):
    reached = {target}
    for used in MAY_USE[target]:
        reached |= reach(used)
    return reached


def owners(root, faults):
    """The target of every file, from the lists in cmake/targets; an unlisted header goes with its source."""
    owner = {}
    for listing in sorted((root / "cmake/targets").glob("*.cmake")):
        target = listing.stem
        if target not in MAY_USE:
            faults.append(f"{listing.name}: the target has no row in the table of layers")
            continue
        for name in re.findall(r"^\s*(?:src/)?([\w/.]+\.(?:h|cpp))\b", listing.read_text(), re.M):
            if owner.setdefault(name, target) != target:
                faults.append(f"{name}: listed by {owner[name]} and by {target}")
    for file in sorted((root / "src").rglob("*.h")):
        name = str(file.relative_to(root / "src"))
        source = name.removesuffix(".h") + ".cpp"
        if name not in owner and source in owner:
            owner[name] = owner[source]
    return owner


def check(root):
    faults = []
    owner = owners(root, faults)
    for name in owner:
        if not (root / "src" / name).is_file():
            faults.append(f"{name}: listed, but there is no such file")
    for file in sorted((root / "src").rglob("*")):
        if file.suffix not in (".h", ".cpp"):
            continue
        name = str(file.relative_to(root / "src"))
        target = owner.get(name)
        if target is None:
            faults.append(f"{name}: in the list of no target")
            continue
        own = name.removesuffix(".cpp") + ".h"
        isFirst = file.suffix == ".cpp" and own in owner
        for number, line in enumerate(file.read_text().splitlines(), 1):
            include = re.match(r'\s*#\s*include\s*(["<])([^">]+)[">]', line)
            if not include:
                continue
            where, (bracket, header) = f"{name}:{number}", include.groups()
            if isFirst and header != own:
                faults.append(f"{where}: {own} comes first, so that it is known to compile alone")
            isFirst = False
            if bracket == "<":
                if target == "core" and re.match(r"Q[A-Z]|Qt|q[a-z]+\.h", header):
                    faults.append(f"{where}: core knows no {header}")
            elif header not in owner:
                if not GENERATED.search(header):
                    faults.append(f"{where}: {header} belongs to no target")
            elif owner[header] not in reach(target):
                faults.append(f"{where}: {target} may not use {header} of {owner[header]}")
    return faults


if __name__ == "__main__":
    found = check(pathlib.Path(sys.argv[1]))
    print("\n".join(found) or "every include keeps to its layer")
    sys.exit(1 if found else 0)
