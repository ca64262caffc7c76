#!/usr/bin/env python3
"""Opens files by awkward names, from the command line and from the form, and reads them again.

usage: file_names.py KESTREL_SCRIPT
"""
import os
import subprocess
import sys
import tempfile

LONG_DIRECTORY = os.path.join("d" * 120, "e" * 120)
NAMES = [
    "plain.pgm",
    "Mixed Case.PGM",
    "mixed case.pgm",
    "gr\u00fcn und \u00c5lesund.pgm",
    "\u4e2d\u6587.pgm",
    "tilde~1.pgm",
    os.path.join("Folder With Blanks", "UPPER.PGM"),
    os.path.join(LONG_DIRECTORY, "a name that nobody would type " + "x" * 60 + ".pgm"),
]


def write_graymap(path, level):
    os.makedirs(os.path.dirname(path) or ".", exist_ok=True)
    with open(path, "wb") as stream:
        stream.write(b"P5\n3 2\n255\n" + bytes([level] * 6))


def play(program, lines):
    with open("names.script", "w", encoding="utf-8") as stream:
        stream.write("\n".join(lines) + "\n")
    done = subprocess.run([program, "names.script"], capture_output=True, text=True, timeout=120)
    if done.returncode != 0:
        sys.exit(f"{done.stderr.strip()}\nin the script:\n" + "\n".join(lines))


def expect_image(level):
    return ["expect message 2 \"\"", "expect windows 1", f"expect band 0 0 0 {level}", f"expect band 0 2 1 {level}"]


def expect_read_again(level):
    return ["run refetch_file", *expect_image(level)]


# Letters beyond Latin-1 cannot be typed: such names are picked from the list, as those in the form's directory can be.
def choices(folder, name):
    steps = []
    if all(ord(letter) < 256 for letter in name):
        steps += [f'field "  filename" "{spelling}"' for spelling in (name, os.path.join(folder, name))]
    if os.sep not in name:
        steps.append(f'list "files" "{name}"')
    return steps


def main():
    program = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory(prefix="kestrel names ") as folder:
        os.chdir(folder)
        levels = {name: 20 + 10 * i for i, name in enumerate(NAMES)}
        for name, level in levels.items():
            write_graymap(name, level)
        for name, level in levels.items():
            for spelling in (name, os.path.join(folder, name), "./" + name):
                play(program, [f'args "{spelling}"', *expect_image(level), *expect_read_again(level)])
        # All of them in one session through the form, so that names that differ only in case stand side by side.
        steps = [f'args "{NAMES[0]}"']
        for name, level in levels.items():
            for choice in choices(folder, name):
                steps += ['menu "File/Open..."', choice, 'gadget "accept"', *expect_image(level), *expect_read_again(level)]
        play(program, steps)
    print(f"{len(NAMES)} names")


if __name__ == "__main__":
    main()
