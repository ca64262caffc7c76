#!/usr/bin/env python3
"""Runs rioinfo as an operator does, and compares all that it prints.

Usage: rioinfo_test.py RIOINFO WORK_DIRECTORY
"""
import os
import struct
import subprocess
import sys

tool, work = sys.argv[1], sys.argv[2]
failures = 0


def put(name, data):
    path = os.path.join(work, name)
    with open(path, "wb") as out:
        out.write(data)
    return path


def expect(label, arguments, status, out, err=""):
    global failures
    done = subprocess.run([tool] + arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60, text=True)
    for what, have, want in (("status", done.returncode, status), ("output", done.stdout, out), ("errors", done.stderr, err)):
        if want is not None and have != want:
            failures += 1
            print("FAIL %s: %s:\nhave %r\nwant %r" % (label, what, have, want))


gray = put("gray.pgm", b"P5 3 2 255\nabcdef")
gray_text = (gray + "\n"
             "  format:        PNM (14)\n"
             "  images:        1\n"
             "  size:          3 x 2\n"
             "  samples:       1\n"
             "  bits:          8\n"
             "  data type:     2 (bytes)\n"
             "  orientation:   4 (top left, rows down)\n"
             "  colour table:  none\n"
             "  tiles:         none\n"
             "  overviews:     0\n")
expect("a gray file", [gray], 0, gray_text)

palette = put("palette.ras", struct.pack(">8I", 0x59A66A95, 2, 1, 8, 2, 1, 1, 6) + bytes((1, 2, 3, 4, 5, 6, 0, 1)))
palette_text = (palette + "\n"
                "  format:        SUN (15)\n"
                "  images:        1\n"
                "  size:          2 x 1\n"
                "  samples:       1\n"
                "  bits:          8\n"
                "  data type:     2 (bytes)\n"
                "  orientation:   4 (top left, rows down)\n"
                "  colour table:  256 entries\n")
expect("two files", [gray, palette], 0, gray_text + palette_text + "  tiles:         none\n  overviews:     0\n")
colours = "".join("  %14d %3d %3d %3d\n" % ((i,) + ({0: (1, 3, 5), 1: (2, 4, 6)}.get(i, (0, 0, 0)))) for i in range(256))
expect("a colour table", ["--colors", palette], 0,
       palette_text + colours + "  tiles:         none\n  overviews:     0\n")

glyphs = put("two.sym", b"FONT" + struct.pack("<2I", 276 + 3, 276) + bytes(256)
             + struct.pack("<H6B", 0, 8, 2, 0, 0, 8, 2) + struct.pack("<H6B", 2, 3, 1, 0, 0, 4, 1) + b"\x01\x02\x05")
glyph_text = ("  size:          %s\n"
              "  samples:       1\n"
              "  bits:          1\n"
              "  data type:     1 (bitmap)\n"
              "  orientation:   4 (top left, rows down)\n"
              "  colour table:  none\n"
              "  tiles:         none\n"
              "  overviews:     0\n")
expect("several images", [glyphs], 0, glyphs + "\n  format:        SYM (10)\n  images:        2\n"
       + glyph_text % "8 x 2" + "  image 1\n" + glyph_text % "3 x 1")

missing = os.path.join(work, "missing.tif")
expect("a missing file among others", [missing, gray], 1, gray_text, "rioinfo: %s: cannot be opened\n" % missing)
text = put("letter.txt", b"Dear operator,\n")
expect("no raster file", [text], 1, "", "rioinfo: %s: cannot be read as a raster file\n" % text)
short = put("short.pgm", b"P5 3 2 255\nabcd")
expect("a short file", ["--check", short], 1, None, "rioinfo: %s: line 1 of 2 cannot be read\n" % short)
expect("a whole file", ["-e", gray], 0, gray_text)

expect("an address in memory", ["/INMEM/4096"], 1, "", "rioinfo: /INMEM/4096: cannot be opened\n")
expect("no file", [], 2, "", "rioinfo: no file given\nTry 'rioinfo --help' for more information.\n")
expect("an unknown option", ["--wrong", gray], 2, "", None)
expect("help", ["--help"], 0, None)
expect("version", ["--version"], 0, None)
for option, start in (("--help", "Usage: rioinfo "), ("--version", "rioinfo (Kestrel) ")):
    answer = subprocess.run([tool, option], stdout=subprocess.PIPE, text=True).stdout
    if not answer.startswith(start):
        failures += 1
        print("FAIL %s: %r" % (option, answer))

sys.exit(1 if failures else 0)
