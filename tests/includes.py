#!/usr/bin/env python3
"""Holds every file of core/ and cli/ against the floors of the house.

A file includes "floor/File.h" only from its own floor and from those that cmake/floors.txt names for it. What tells
one system from another stays in core/platform: no file elsewhere is compiled in parts, and none includes a header
that only one system has.
"""

import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*(["<])([^">]+)[">]')
CONDITION = re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif)\b")
ONE_SYSTEMS_HEADER = re.compile(
    r"^(linux/|mach/|mach-o/|dispatch/|os/|objc/|sys/(syscall|vfs|statfs|sysmacros|attr|mount|sysctl|random|inotify|fsuid)\.h"
    r"|copyfile\.h|removefile\.h|libproc\.h|membership\.h|Core\w+/|Foundation/|AppKit/|CommonCrypto/)"
)
SYSTEM_FOLDERS = {"linux", "macos"}


def read_floors(text):
    """The floors in order, each with the floors it may include from."""
    floors = {}
    for line in text.splitlines():
        line = line.split("#")[0].strip()
        if not line:
            continue
        name, _, below = line.partition(":")
        name, below = name.strip(), below.split()
        strangers = [floor for floor in below if floor not in floors]
        if strangers:
            raise ValueError(f"{name} stands on {', '.join(strangers)}, which no line above it names")
        floors[name] = set(below)
    return floors


def problems_of(path, text, floors):
    """What is wrong with one file; `path` is relative to the root of the tree."""
    parts = pathlib.PurePath(path).parts
    floor = "cli" if parts[0] == "cli" else parts[1]
    if floor not in floors:
        return [f"{path}: cmake/floors.txt does not know the floor {floor}"]
    one_system = floor == "platform" and parts[2] in SYSTEM_FOLDERS
    problems = []
    for number, line in enumerate(text.splitlines(), start=1):
        where = f"{path}:{number}"
        if CONDITION.match(line) and floor != "platform":
            problems.append(f"{where}: only core/platform is compiled in parts: {line.strip()}")
        include = INCLUDE.match(line)
        if not include:
            continue
        quoted, header = include.group(1) == '"', include.group(2)
        if not quoted:
            if ONE_SYSTEMS_HEADER.match(header) and not one_system:
                problems.append(f"{where}: <{header}> belongs to one system; its place is core/platform/<system>")
            continue
        lower = header.split("/")[0]
        if "/" not in header or lower not in floors:
            problems.append(f'{where}: "{header}" names no floor')
        elif lower != floor and lower not in floors[floor]:
            problems.append(f'{where}: {floor} may not include "{header}"')
        elif lower == "platform" and header.split("/")[1] in SYSTEM_FOLDERS and not one_system:
            problems.append(f'{where}: "{header}" belongs to one system')
    return problems


def sources():
    for folder in ("core", "cli"):
        for path in sorted((ROOT / folder).rglob("*")):
            if path.suffix in {".h", ".cpp", ".mm"}:
                yield path.relative_to(ROOT).as_posix(), path.read_text(encoding="utf-8")


class IncludesTest(unittest.TestCase):
    def test_the_house_stands_on_its_floors(self):
        floors = read_floors((ROOT / "cmake" / "floors.txt").read_text(encoding="utf-8"))
        self.assertEqual([problem for path, text in sources() for problem in problems_of(path, text, floors)], [])

    def test_every_breach_is_found(self):
        floors = read_floors("base : # the lowest\nplatform : base\nstores : base platform\ncli : base stores\n")
        breaches = [
            ("core/base/A.h", '#include "stores/B.h"'),
            ("cli/A.cpp", '#include "platform/B.h"'),
            ("core/stores/A.cpp", "#ifdef __APPLE__"),
            ("core/stores/A.cpp", "#include <sys/syscall.h>"),
            ("core/platform/A.h", "#include <CoreFoundation/CoreFoundation.h>"),
            ("core/stores/A.cpp", '#include "platform/linux/B.h"'),
        ]
        for path, text in breaches:
            self.assertEqual(len(problems_of(path, text, floors)), 1, (path, text))


if __name__ == "__main__":
    unittest.main()
