#!/usr/bin/env python3
"""Checks that each room of the house includes only rooms below it, and that no file includes itself by a circle.

A room may include itself and the rooms named for it. The rooms of the application's middle share the session's records
and the prompt loop, and call each other; shell's table, start-up and main stand above them all.
"""
import os
import re
import sys

MIDDLE = ["store", "display", "enhance", "edit", "filters"]
ALLOWED = {
    "services": [],
    "RIO": [],
    "forms": ["services"],
    "tools": ["RIO", "services"],
    **{room: ["services", "forms", "RIO", "shell"] + MIDDLE for room in MIDDLE},
    "shell": ["services", "forms", "RIO"] + MIDDLE,
}
# What the middle may take of the shell: records and declarations that the top fills.
SHELL_HEADERS = {"shell/session.h", "shell/prompt.h", "shell/menu.h", "shell/startup.h"}
# Headers of other rooms that a lower room may not see, but for these.
EXCEPTIONS = {("tools", "services/symbols.h"), ("tools", "services/builtin_fonts.h"), ("tools", "services/jpeg_driver.h")}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)


def includes(path):
    with open(path, encoding="utf-8") as stream:
        return INCLUDE.findall(stream.read())


def room_of(path):
    return path.split("/")[0] if "/" in path else ""


def check_rooms(graph):
    complaints = []
    for path, wanted in graph.items():
        room = room_of(path)
        for other in wanted:
            target = room_of(other)
            if target in ("", room):
                continue
            if room not in ALLOWED or target not in ALLOWED[room]:
                complaints.append(f"{path}: may not include {other}")
            elif room in MIDDLE and target == "shell" and other not in SHELL_HEADERS:
                complaints.append(f"{path}: may not include {other} of the shell")
            elif room == "tools" and target == "services" and (room, other) not in EXCEPTIONS:
                complaints.append(f"{path}: may not include {other}")
    return complaints


def check_circles(graph):
    complaints, state = [], {}

    def visit(path, trail):
        if state.get(path) == "done":
            return
        if path in trail:
            complaints.append("circle: " + " -> ".join(trail[trail.index(path):] + [path]))
            return
        for other in graph.get(path, []):
            if other.endswith(".h"):
                visit(other, trail + [path])
        state[path] = "done"

    for path in graph:
        visit(path, [])
    return complaints


def main():
    root = sys.argv[1]
    graph = {}
    for folder, _, files in os.walk(root):
        for name in files:
            if name.endswith((".h", ".cpp")):
                full = os.path.join(folder, name)
                path = os.path.relpath(full, root)
                graph[path] = includes(full)
    missing = [f"{p}: no such header {o}" for p, w in graph.items() for o in w if o not in graph and "/" in o]
    complaints = check_rooms(graph) + check_circles(graph) + missing
    for line in complaints:
        print(line)
    print(f"{len(graph)} files, {len(complaints)} complaints")
    return 1 if complaints or len(graph) < 50 else 0


if __name__ == "__main__":
    sys.exit(main())
