#!/usr/bin/env python3
"""Every read_ row of the command table, replace_band and the set_ rows, run as an operator would answer their prompts.

usage: read_rows.py KESTREL_SCRIPT
"""
import os
import struct
import subprocess
import sys
import tempfile

W, H = 6, 4


def level(x, y, plus=0):
    return 10 * y + x + plus


def graymap(name, plus):
    with open(name, "wb") as stream:
        stream.write(b"P5\n%d %d\n255\n" % (W, H) + bytes(level(x, y, plus) for y in range(H) for x in range(W)))


def make_files():
    graymap("first.pgm", 0)
    graymap("red.pgm", 50)
    graymap("green.pgm", 100)
    graymap("blue.pgm", 150)
    with open("colour.ppm", "wb") as stream:
        stream.write(b"P6\n%d %d\n255\n" % (W, H))
        stream.write(bytes(level(x, y, plus) for y in range(H) for x in range(W) for plus in (50, 100, 150)))
    with open("bits.pbm", "wb") as stream:      # the left half of each row is ones
        stream.write(b"P4\n%d %d\n" % (W, H) + bytes([0b11100000] * H))
    # Indices with a table: index i is red 200 - i, green i, blue 255 - i.
    indices = bytes(level(x, y) for y in range(H) for x in range(W))
    table = bytes(200 - i if i <= 200 else 0 for i in range(256)) + bytes(range(256)) + bytes(255 - i for i in range(256))
    with open("index.ras", "wb") as stream:
        stream.write(struct.pack(">8I", 0x59A66A95, W, H, 8, len(indices), 1, 1, 768) + table + indices)
    for name, plus in (("red.raw", 50), ("green.raw", 100), ("blue.raw", 150)):
        with open(name, "wb") as stream:        # two 16-bit words ahead of the data
            stream.write(bytes(4) + bytes(level(x, y, plus) for y in range(H) for x in range(W)))


def keyed(*answers):
    return [f'keyin "{answer}"' for answer in answers]


def gray(band, plus, width=W, height=H, step=1, x0=0, y0=0):
    """What a band holds, at its corners."""
    return [f"expect band {band} {x} {y} {level(x0 + x * step, y0 + y * step, plus)}"
            for x in (0, width - 1) for y in (0, height - 1)]


def colour(first, **shape):
    return gray(first, 50, **shape) + gray(first + 1, 100, **shape) + gray(first + 2, 150, **shape)


def indexed(first, width=W, height=H, x0=0, y0=0):
    steps = []
    for x in (0, width - 1):
        for y in (0, height - 1):
            i = level(x0 + x, y0 + y)
            steps += [f"expect band {first} {x} {y} {200 - i}", f"expect band {first + 1} {x} {y} {i}",
                      f"expect band {first + 2} {x} {y} {255 - i}"]
    return steps


THREE = ("red.pgm", "green.pgm", "blue.pgm")
HALF = {"width": 3, "height": 2, "step": 2}      # the default increment is 2
PART = {"width": 3, "height": 2, "x0": 2, "y0": 1}
AREA = keyed("4 2", "2 1")                        # corners in any order
RAW_SIZE = keyed(H, W)
RAW_THREE = keyed("red.raw", 2, "green.raw", 2, "blue.raw", 2)
BESIDE, ALONE = ["expect windows 2"], ["expect windows 1"]
NO_STORE = ['expect message 2 "no tile store is present"', "expect windows 1"]

ROWS = {
    "read_bin": keyed("bits.pbm") + BESIDE + ["expect band 1 2 3 1", "expect band 1 3 3 0"],
    "read_raw_gray": RAW_SIZE + keyed("red.raw", 2) + BESIDE + gray(1, 50),
    "read_raw_gray_big": RAW_SIZE + keyed("red.raw", 2) + ALONE + gray(0, 50, **HALF),
    "read_raw_color": RAW_SIZE + RAW_THREE + BESIDE + colour(1),
    "read_raw_color_big": RAW_SIZE + RAW_THREE + ALONE + colour(0, **HALF),
    "read_cot_gray": keyed("red.pgm") + BESIDE + gray(1, 50),
    "read_cot_gray_big": keyed("red.pgm") + ALONE + gray(0, 50, **HALF),
    "read_cot_gray_rect": AREA + keyed("red.pgm") + BESIDE + gray(1, 50, **PART),
    "read_cot_color": keyed(*THREE) + BESIDE + colour(1),
    "read_cot_color_big": keyed(*THREE) + ALONE + colour(0, **HALF),
    "read_cot_color_rect": AREA + keyed(*THREE) + BESIDE + colour(1, width=2, height=1, step=2, x0=2, y0=1),
    "read_cot_color_index": keyed("index.ras") + BESIDE + indexed(2),
    "read_cot_color_index_big": keyed("index.ras") + ALONE + indexed(1),
    "read_cot_color_index_rect": AREA + keyed("index.ras") + BESIDE + indexed(2, **PART),
    "read_rgb": keyed("colour.ppm") + BESIDE + colour(1),
    "read_rgb_big": keyed("colour.ppm") + ALONE + colour(0),
    "read_rgb_rect": AREA + keyed("colour.ppm") + BESIDE + colour(1, **PART),
    **{row: keyed("red.pgm") + NO_STORE for row in (
        "read_tiled_bin", "read_tiled_bin_big", "read_tiled_cot_gray", "read_tiled_cot_gray_big", "read_tiled_rgb", "read_tiled_rgb_big")},
    **{row: keyed(*THREE) + NO_STORE for row in ("read_tiled_cot_color", "read_tiled_cot_color_big")},
    "set_mem_limit": keyed("123456") + ['expect message 2 "mem_limit=123456"'],
    "set_tile_size": keyed("8") + ['expect message 2 "tile_size=8 (256x256)"', "run set_tile_size", 'keyin "10"',
                                   'expect message 2 "tile_size=8 (256x256)"'],
    "set_fwrite_range": keyed("-5", "300") + ['expect message 2 "file output data range=0-255"', "run set_fwrite_range", 'keyin "10"',
                                              "reset", 'expect message 2 "file output data range=10-255"'],
    "set_fwrite_tile_size": keyed("128") + ['expect message 2 "file output tile size=128"', "run set_fwrite_tile_size", 'keyin "100"',
                                            'expect message 2 "file output tile size=128"'],
    "set_fwrite_incr": keyed("0") + ['expect message 2 "file output increment=1"'],
}

# Rows that need a colour image on the screen.
COLOUR_ROWS = {
    "read_cot_single": keyed("g", "first.pgm") + gray(0, 50) + gray(3, 0) + gray(2, 150),
    "read_raw_single": keyed("b") + RAW_SIZE + keyed("red.raw", 2) + gray(0, 50) + gray(1, 100) + gray(3, 50),
    "replace_band": ['field "green band" "first.pgm"', 'gadget "accept"', 'expect prompt "Ready"', *gray(0, 50), *gray(3, 0)],
}


def play(program, lines):
    with open("row.script", "w", encoding="utf-8") as stream:
        stream.write("\n".join(lines) + "\n")
    done = subprocess.run([program, "row.script"], capture_output=True, text=True, timeout=120)
    if done.returncode != 0:
        sys.exit(f"{done.stderr.strip()}\nin the script:\n" + "\n".join(lines))


def main():
    program = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory(prefix="kestrel-rows-") as folder:
        os.chdir(folder)
        make_files()
        for row, steps in ROWS.items():
            play(program, ["args first.pgm", f"run {row}", *steps])
            if row.startswith("read_"):     # a reset at the first prompt leaves all as it was
                play(program, ["args first.pgm", f"run {row}", "reset", 'expect prompt "Ready"', *ALONE, *gray(0, 0)])
        for row, steps in COLOUR_ROWS.items():
            play(program, ["args colour.ppm", f"run {row}", *steps, *ALONE])
        # A wrong name returns to the prompt.
        play(program, ["args first.pgm", "run read_cot_gray", *keyed("nowhere.pgm"),
                       'expect message 2 "failed to open file nowhere.pgm\\n"', *keyed("red.pgm"), *BESIDE])
        # The 33rd band: 32 grey images are open, and one more is refused.
        play(program, ["args first.pgm", *["run read_cot_gray", 'keyin "red.pgm"'] * 31, "expect windows 32",
                       "run read_cot_gray", 'keyin "red.pgm"', 'expect message 2 "failed to allocate memory for image"', "reset",
                       "expect windows 32"])
    print(f"{len(ROWS) + len(COLOUR_ROWS)} rows")


if __name__ == "__main__":
    main()
