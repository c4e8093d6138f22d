"""Fails on an #include that goes up the floors of src/, on a circle between folders of one floor, and on a caller of
the library that includes more of the project than zor_api.h. Usage: check_floors.py <root of the source tree>"""

import pathlib
import re
import sys

FLOORS = {
    "api": 9, "build": 8, "persistence/database": 7, "datatypes/results": 6, "selection": 5, "surrogates": 4,
    "datatypes": 3, "calculator": 3, "calculator/signals": 3, "calculator/functions": 3, "optimizer": 3, "doe": 3,
    "random_variables": 3, "values": 2, "statistics": 2, "persistence/archive": 1, "support": 0,
}
# Who sees the public header only, and what else of the project's own each may include.
CALLERS = {
    "tools/zor": ["src/api/option_list.inc"],
    "examples": [],
    "tests/api": ["tests/support", "tests/golden/read_golden.h", "src/api/option_list.inc"],
}
SUFFIXES = {".h", ".c", ".cpp", ".inc"}

root = pathlib.Path(sys.argv[1]).resolve()
errors = []


def includes(folder):
    """Yields (file, the project's file that it includes), both relative to the root."""
    for file in sorted(p for p in (root / folder).rglob("*") if p.suffix in SUFFIXES):
        for name in re.findall(r'^\s*#\s*include\s*["<]([^">]+)[">]', file.read_text(encoding="utf-8"), re.MULTILINE):
            for base in (file.parent, root / "src", root / "tests", root / "include"):
                if (base / name).is_file():
                    yield file.relative_to(root), (base / name).resolve().relative_to(root)
                    break


def room(path):
    """The folder of FLOORS that a file of src/ stands in: the longest that matches."""
    inside = path.relative_to("src").as_posix()
    return max((f for f in FLOORS if inside.startswith(f + "/")), key=len, default=None)


def find_circle(uses, start, at, seen):
    """True if a way over `uses` leads from `at` back to `start`."""
    return any(to == start or (to not in seen and find_circle(uses, start, to, seen | {to})) for to in uses.get(at, ()))


beside = {}  # room -> rooms of the same floor that it includes
for file, included in includes("src"):
    if included.parts[0] != "src":
        if room(file) != "api" or included.parts[0] != "include":
            errors.append(f"{file} includes {included}, which is outside of src/")
        continue
    user, used = room(file), room(included)
    if user is None or used is None:
        errors.append(f"{file} or {included} stands on no floor")
    elif FLOORS[used] > FLOORS[user]:
        errors.append(f"{file} (floor {FLOORS[user]}) includes {included} (floor {FLOORS[used]})")
    elif FLOORS[used] == FLOORS[user] and used != user:
        beside.setdefault(user, set()).add(used)
errors += [f"src/{r} includes itself by way of its neighbours" for r in sorted(beside) if find_circle(beside, r, r, {r})]

for caller, more in CALLERS.items():
    for file, included in includes(caller):
        if not any(included.is_relative_to(a) for a in ["include/zor_api.h", caller, *more]):
            errors.append(f"{file} includes {included}; {caller} sees zor_api.h only")

print("\n".join(errors) or "All includes go downwards.")
sys.exit(bool(errors))
