#!/usr/bin/env python3
"""Scanned sheets and TIFF files with overviews, as an operator meets them: opened, panned, zoomed and saved.

usage: sheets.py KESTREL_SCRIPT RIOCOPY
"""
import os
import re
import subprocess
import sys
import tempfile

PROGRAM, RIOCOPY = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
SHEET = 10000, 14000
GRAY = 2048, 1536


def play(steps):
    with open("sheet.script", "w", encoding="utf-8") as stream:
        stream.write("\n".join(steps) + "\n")
    done = subprocess.run([PROGRAM, "sheet.script"], capture_output=True, text=True, timeout=120)
    if done.returncode != 0:
        sys.exit(f"{done.stderr.strip()}\nin the script:\n" + "\n".join(steps))
    return done.stdout.splitlines()


def copy(*words):
    subprocess.run([RIOCOPY, "-q", *words], check=True)


def want(what, found, wanted):
    if found != wanted:
        sys.exit(f"{what}: {found}, wanted {wanted}")


# ---- bilevel sheets ------------------------------------------------------------------------------------------------------

def ink(x, y):
    """A grid of lines eight pixels wide, 128 pixels apart across the sheet and 200 down."""
    return int(x % 128 < 8 or y % 200 < 8)


def make_sheet(name):
    width, height = SHEET
    grid = (b"\xff" + bytes(15)) * (width // 128 + 1)
    rows = [b"\xff" * (width // 8) if y % 200 < 8 else grid[:width // 8] for y in range(height)]
    with open(name, "wb") as stream:
        stream.write(b"P4\n%d %d\n" % SHEET + b"".join(rows))


PLACES = [(0, 0), (8, 8), (127, 199), (128, 199), (5000, 7000), (9984, 9), (9999, 13999), (9991, 13807), (9992, 13808)]


def opened(name):
    return [f'expect title active "ACTIVE {name}"'] + [f"expect band 0 {x} {y} {ink(x, y)}" for x, y in PLACES]


def place_of(line):
    """Window size, the image pixel at its middle, and the zoom."""
    words = line.split()
    return int(words[4]), int(words[5]), int(words[6]), int(words[7]), float(words[8])


def look_closer(name):
    """At a zoom above 1 the window shows the pixels that its place tells of, white where a bit is 1."""
    zoom = ['menu "View/Zoom In"'] + ["point active 640 480"] * 5 + ["reset"]
    pan = ['menu "View/Center"', "point active 100 100", "reset"]
    print_all = ["print windows"]
    first, = play([f"args {name}", 'expect prompt "Ready"'] + zoom + print_all)
    second = play([f"args {name}", 'expect prompt "Ready"'] + zoom + pan + print_all)[-1]
    width, height, x, y, scale = place_of(second)
    if scale < 1 or place_of(first)[2:4] == (x, y):
        sys.exit(f"{name}: neither zoomed nor panned: {first}; {second}")
    checks = []
    for across in range(20, width, 41):
        for down in range(20, height, 43):
            # The middle of a line or a gap, well off its edges: half pixels do not matter there.
            at_x, at_y = x + (across - width / 2) / scale, y + (down - height / 2) / scale
            near = {ink(int(at_x + dx), int(at_y + dy)) for dx in (-2, 0, 2) for dy in (-2, 0, 2)}
            if len(near) == 1:
                checks.append(f"expect pixel active {across} {down} #{'FFFFFF' if near.pop() else '000000'}")
    if sum("FFFFFF" in check for check in checks) < 3 or len(checks) < 20:
        sys.exit(f"{name}: too little to see: {len(checks)}")
    play([f"args {name}", 'expect prompt "Ready"'] + zoom + pan + checks)


def bilevel_sheets():
    make_sheet("sheet.pbm")
    copy("-c", "g4", "sheet.pbm", "sheet.tif")
    copy("sheet.pbm", "sheet.cal")
    copy("-s", "512", "sheet.pbm", "tiles.cal")
    for name in ("sheet.tif", "sheet.cal", "tiles.cal"):
        want(name, play([f"args {name}", 'expect prompt "Ready"', *opened(name), "print bands"]),
             [f"0 {SHEET[0]} {SHEET[1]} 1 5 {name}"])
        look_closer(name)
        # By the form, so that the program knows how to save it: one-bit images go back as native ones.
        play([f'field "filename" "{name}"', 'gadget "accept"', 'expect prompt "Ready"', *opened(name), 'menu "File/Save"',
              'expect prompt "Ready"'])
        with open(name, "rb") as stream:
            want(name + " saved", stream.read(2), b"\x08\x09")
        play([f"args {name}", 'expect prompt "Ready"', *opened(name)])
        copy(name, "back.pbm")
        with open("back.pbm", "rb") as back, open("sheet.pbm", "rb") as sheet:
            want(name + " saved pixels", back.read()[-17500000:] == sheet.read()[-17500000:], True)


# ---- gray files with overviews -------------------------------------------------------------------------------------------

def level(x, y, plus):
    return (x // 16 + y // 16 + plus) % 256


def make_gray(name, plus):
    width, height = GRAY
    rows = (bytes(level(x, y, plus) for x in range(width)) for y in range(0, height, 16))
    with open(name + ".pgm", "wb") as stream:
        stream.write(b"P5\n%d %d\n255\n" % GRAY + b"".join(row * 16 for row in rows))
    copy("-c", "lzw", "-o", "2", name + ".pgm", name + ".tif")


def expect_levels(band, plus, step):
    return [f"expect band {band} {x} {y} {level(x * step, y * step, plus)}"
            for x in (0, 100, GRAY[0] // step - 1) for y in (0, 77, GRAY[1] // step - 1)]


def overviews():
    for name, plus in (("red", 0), ("green", 50), ("blue", 100)):
        make_gray(name, plus)
    whole = play(["args red.tif", 'expect prompt "Ready"', "run read_cot_gray", 'keyin "red.tif"', *expect_levels(1, 0, 1),
                  "print bands"])
    want("at full size", whole[-1], "1 2048 1536 1 3 red.tif")
    # Half the size is the overview that the screen asks for.
    one = play(['field "filename" "red.tif"', 'gadget "subsampled"', 'gadget "accept"', *expect_levels(0, 0, 2), "print bands"])
    want("one file", one, ["0 1024 768 2 3 red.tif"])
    three = ['gadget "3 input files"', 'field "file1(r)" "red.tif"', 'field "file2(g)" "green.tif"', 'field "file3(b)" "blue.tif"']
    found = play(three + ['gadget "subsampled"', 'gadget "accept"', *expect_levels(0, 0, 2), *expect_levels(1, 50, 2),
                          *expect_levels(2, 100, 2), "print bands"])
    want("three files", [re.sub(r" \w+\.tif$", "", line) for line in found], [f"{band} 1024 768 2 3" for band in range(3)])
    play(three + ['gadget "full resolution"', 'gadget "accept"', *expect_levels(0, 0, 1), *expect_levels(2, 100, 1),
                  'expect title active "ACTIVE red.tif-green.tif-blue.tif"'])


with tempfile.TemporaryDirectory(prefix="kestrel-sheets-") as folder:
    os.chdir(folder)
    bilevel_sheets()
    overviews()
