#!/usr/bin/env python3
"""Runs riocopy as an operator does: options, refusals, whole file or none, and files that public programs read.

Usage: riocopy_test.py RIOCOPY RIOINFO WORK_DIRECTORY
"""
import os
import pty
import signal
import struct
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "exchange"))
from exchange import (bilevel_picture, check, colour_picture, failures, gray_picture, need, picture_of, raw_text, run,
                      same)  # noqa: E402

TOOL, INFO, WORK = sys.argv[1], sys.argv[2], sys.argv[3]
count = 0


def path(name):
    return os.path.join(WORK, name)


def put(name, data):
    with open(path(name), "wb") as out:
        out.write(data)
    return path(name)


def content(name):
    with open(path(name), "rb") as stream:
        return stream.read()


def copy(arguments, data=None, environment=None):
    return subprocess.run([TOOL] + arguments, input=data, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120,
                          env=dict(os.environ, **(environment or {})))


def expect(label, arguments, status, err="", data=None):
    """Runs the tool; its standard output."""
    global count
    count += 1
    done = copy(arguments, data)
    check(label, done.returncode == status and (err is None or done.stderr.decode() == err),
          "status %d, errors %r" % (done.returncode, done.stderr))
    return done.stdout


def pixels(name):
    """A file as this library reads it, through text that public programs know."""
    return picture_of(copy(["-f", "pnm", path(name), "-"]).stdout)


def equal(label, have, want):
    global count
    count += 1
    check(label, have == want, "have %r, want %r" % (str(have)[:200], str(want)[:200]))


for name in os.listdir(WORK):
    os.remove(path(name))

# ---- every class through every format that holds it, read by public programs and back here ------------------------------

gray, colour, bits = gray_picture(37, 23), colour_picture(37, 23), bilevel_picture(37, 23)
put("gray.pgm", raw_text(gray))
put("colour.ppm", raw_text(colour))
put("bits.pbm", need(["convert", "pgm:-", "-monochrome", "pbm:-"], raw_text(bits)))
READERS = {".pnm": ["pamtopnm"], ".sun": ["rasttopnm"], ".xbm": ["xbmtopbm"], ".tif": ["tifftopnm"]}
for source, picture, forms in (
        ("gray.pgm", gray, [(".cot", "none"), (".cot", "rle"), (".cot", "byterun"), (".pnm", "none"), (".pnm", "ascii"),
                            (".sun", "none"), (".tif", "none"), (".tif", "lzw"), (".tif", "packbits")]),
        ("colour.ppm", colour, [(".rgb", "none"), (".rgb", "byterun"), (".pnm", "none"), (".pnm", "ascii"), (".sun", "none"),
                                (".tif", "none"), (".tif", "lzw"), (".tif", "packbits")]),
        ("bits.pbm", bits, [(".bin", "none"), (".bin", "rle"), (".bin", "g3"), (".bin", "g4"), (".pnm", "none"),
                            (".sun", "none"), (".sun", "packed"), (".xbm", "none"), (".tif", "none"), (".tif", "g4")])):
    for suffix, compression in forms:
        name = "%s_%s%s" % (source[:4], compression, suffix)
        expect(name, ["-c", compression, path(source), path(name)], 0)
        count += 2
        check(name + " read back", same(pixels(name), picture))
        if suffix in READERS:
            check(name + " read by " + READERS[suffix][0], same(picture_of(run(READERS[suffix] + [path(name)])), picture))

# ---- classes into each other ------------------------------------------------------------------------------------------------

put("two.ppm", b"P6 2 1 255\n" + bytes((255, 0, 0, 10, 200, 30)))
expect("colour to gray", ["-f", "pnm", "-t", "2", path("two.ppm"), path("two.pgm")], 0)
# (77 * 255 + 128) / 256 = 77; (770 + 30000 + 870 + 128) / 256 = 124
equal("its levels", content("two.pgm"), b"P5 2 1 255\n" + bytes((77, 124)))
put("levels.pgm", b"P5 4 1 255\n" + bytes((0, 127, 128, 255)))
expect("gray to bits", ["-f", "pnm", "-t", "1", path("levels.pgm"), path("levels.pbm")], 0)
equal("below 128 is black", content("levels.pbm"), b"P4 4 1\n\xC0")
expect("bits to gray", ["-f", "pnm", "-t", "2", path("levels.pbm"), path("back.pgm")], 0)
equal("black is 0", content("back.pgm"), b"P5 4 1 255\n" + bytes((0, 0, 255, 255)))
expect("gray to colour", ["-f", "pnm", "-t", "27", path("levels.pgm"), path("levels.ppm")], 0)
equal("three equal bands", content("levels.ppm"), b"P6 4 1 255\n" + bytes((0, 0, 0, 127, 127, 127, 128, 128, 128, 255, 255, 255)))
expect("a format of bits alone", [path("levels.pgm"), path("levels.xbm")], 0)
expect("a compression for bits alone keeps gray out", ["-c", "g4", path("levels.pgm"), path("no.tif")], 1,
       "riocopy: %s: the format cannot hold such an image\n" % path("no.tif"))

# A palette stays one where it can, and is looked up where it cannot.
palette = struct.pack(">8I", 0x59A66A95, 2, 1, 8, 2, 1, 1, 6) + bytes((1, 2, 3, 4, 5, 6, 0, 1))
put("palette.ras", palette)
expect("palette to native", [path("palette.ras"), path("palette.cot")], 0)
equal("is a palette", b"256 entries" in run([INFO, path("palette.cot")]), True)
expect("and to PNM", ["-f", "pnm", path("palette.cot"), path("palette.ppm")], 0)
equal("is colours", content("palette.ppm"), b"P6 2 1 255\n" + bytes((1, 3, 5, 2, 4, 6)))

# ---- area, increment, image, tiles, overviews --------------------------------------------------------------------------------

ramp = put("ramp.pgm", b"P5 10 6 255\n" + bytes(range(60)))
equal("area", expect("area", ["-f", "pnm", "-a", "3,1,5,2", ramp, "-"], 0), b"P5 3 2 255\n" + bytes((13, 14, 15, 23, 24, 25)))
equal("area beyond the edge", expect("area", ["-f", "pnm", "-a", "8,5,99,99", ramp, "-"], 0), b"P5 2 1 255\n" + bytes((58, 59)))
equal("increment", expect("increment", ["-f", "pnm", "-i", "3", ramp, "-"], 0),
      b"P5 4 2 255\n" + bytes((0, 3, 6, 9, 30, 33, 36, 39)))
equal("both", expect("both", ["-f", "pnm", "-i", "4", "-a", "1,1,9,5", ramp, "-"], 0),
      b"P5 3 2 255\n" + bytes((11, 15, 19, 51, 55, 59)))
expect("an area outside", ["-a", "10,0,12,1", ramp, path("no.cot")], 1, "riocopy: %s: the area lies outside the image\n" % ramp)

glyphs = put("two.sym", b"FONT" + struct.pack("<2I", 276 + 3, 276) + bytes(256)
             + struct.pack("<H6B", 0, 8, 2, 0, 0, 8, 2) + struct.pack("<H6B", 2, 3, 1, 0, 0, 4, 1) + b"\x01\x02\x05")
equal("image 1", expect("image 1", ["-f", "pnm", "-n", "1", glyphs, "-"], 0)[:7], b"P4 3 1\n")
expect("image 2", ["-n", "2", glyphs, path("no.bin")], 1, "riocopy: %s: holds no such image\n" % glyphs)

big = gray_picture(150, 90)
put("big.pgm", raw_text(big))
expect("tiles and overviews", ["-s", "32", "-o", "2", path("big.pgm"), path("big.cot")], 0)
about = run([INFO, "-e", path("big.cot")]).decode()
equal("tiles", "tiles:         32 x 32" in about, True)
equal("overviews", "75 x 45, reduced by 2" in about and "38 x 23, reduced by 4" in about, True)
equal("base image", same(pixels("big.cot"), big), True)

# Lines that run another way: pixel i of line j lies where the orientation says, and PNM wants rows from the top left.
def upright(lines, orientation):
    rows = [bytes(column) for column in zip(*lines)] if orientation < 4 else list(lines)
    rows = [row[::-1] for row in rows] if orientation & 1 else rows
    return b"".join(rows[::-1] if orientation & 2 else rows)


expect("ramp to native", [ramp, path("ramp.cot")], 0)
for orientation in range(8):
    way = bytearray(content("ramp.cot"))
    way[194] = orientation
    put("way.cot", bytes(way))
    size = b"6 10" if orientation < 4 else b"10 6"
    lines = [bytes(range(10 * y, 10 * y + 10)) for y in range(6)]
    equal("orientation %d" % orientation, expect("turned", ["-f", "pnm", path("way.cot"), "-"], 0),
          b"P5 " + size + b" 255\n" + upright(lines, orientation))
    part = [line[2:9:3] for line in lines[1:6:3]]
    size = b"2 3" if orientation < 4 else b"3 2"
    equal("a part of orientation %d" % orientation,
          expect("turned part", ["-f", "pnm", "-i", "3", "-a", "2,1,9,5", path("way.cot"), "-"], 0),
          b"P5 " + size + b" 255\n" + upright(part, orientation))
put("two.ppm", b"P6 2 3 255\n" + bytes(range(18)))
expect("colours to native", [path("two.ppm"), path("columns.rgb")], 0)
way = bytearray(content("columns.rgb"))
way[194] = 0
put("columns.rgb", bytes(way))
equal("columns of colours", expect("colours", ["-f", "pnm", path("columns.rgb"), "-"], 0),
      b"P6 3 2 255\n" + bytes((0, 1, 2, 6, 7, 8, 12, 13, 14, 3, 4, 5, 9, 10, 11, 15, 16, 17)))

# What the file has of its own goes along: tiles and overviews, texts, placement and packets.
expect("tiles and overviews stay", [path("big.cot"), path("big2.cot")], 0)
equal("the same file but for its name", content("big2.cot") == content("big.cot"), True)
expect("an area has none", ["-a", "0,0,9,9", path("big.cot"), path("part.cot")], 0)
equal("no overviews of an area", "overviews:     0" in run([INFO, path("part.cot")]).decode(), True)
expect("tiles go to strips", ["-s", "0", "-o", "0", path("big.cot"), path("plain.cot")], 0)
equal("no tiles", "tiles:         none" in run([INFO, path("plain.cot")]).decode(), True)
expect("overviews into TIFF", [path("big.cot"), path("big.tif")], 0)
equal("75 x 45", "75 x 45" in run([INFO, "-e", path("big.tif")]).decode(), True)

told = bytearray(2048 + 6)
struct.pack_into("<4H", told, 0, 0x0908, 1022, 2, 9)
struct.pack_into("<16d", told, 56, *[float(n + 1) for n in range(16)])
struct.pack_into("<2I", told, 184, 3, 2)
told[194], told[511] = 4, 3
for at, text in ((214, b"first label"), (346, b"third label"), (412, b"by hand"), (780, b"seen from the north")):
    told[at:at + len(text)] = text
struct.pack_into("<d", told, 520, 2.5)
struct.pack_into("<2I", told, 540, 2048 - 1024, 512)
struct.pack_into("<3I", told, 768, 10, 20, 30)
struct.pack_into("<2HI", told, 1024, 2, 13, 508)
told[1032:1032 + 1016] = bytes(n % 251 for n in range(1016))
told[2048:] = bytes((9, 8, 7, 6, 5, 4))
put("told.cot", bytes(told))
expect("a header with texts and packets", [path("told.cot"), path("told2.cot")], 0)
again = content("told2.cot")
for label, start, end in (("placement", 8, 184), ("labels and creator", 214, 492), ("aspect ratio", 520, 528),
                          ("background and comment", 768, 980), ("packets", 1024, 2048)):
    equal(label, again[start:end], bytes(told[start:end]))
expect("half of it", ["-i", "2", path("told.cot"), path("half.cot")], 0)
half = content("half.cot")
equal("texts of a half", half[214:492], bytes(told[214:492]))
equal("no placement of a half", struct.unpack_from("<16d", half, 56)[1:4], (0.0, 0.0, 0.0))
told[412:416] = b"\x1b[2J"
put("rude.cot", bytes(told))
texts = run([INFO, path("rude.cot")]).decode()
equal("texts shown", "  creator:       ?[2Jand\n  comment:       seen from the north\n  label 1:       first label\n"
      "  label 3:       third label\n  packets:       512 words\n" in texts, True)

# ---- standard input and output ------------------------------------------------------------------------------------------------

equal("pipe to pipe", expect("pipe", ["-", "-"], 0, data=content("levels.pgm")), content("levels.pgm"))
equal("pipe to file", expect("pipe", ["-", path("piped.cot")], 0, data=content("gray.pgm")), b"")
equal("from the pipe", same(pixels("piped.cot"), gray), True)
equal("a bad pipe writes nothing", expect("bad", ["-", "-"], 1, None, b"P5 3 2 255\nabcd"), b"")

# ---- whole file or none -------------------------------------------------------------------------------------------------------

kept = put("kept.cot", b"what was there")
before = sorted(os.listdir(WORK))
short = put("short.pgm", b"P5 3 2 255\nabcd")
expect("a short input", [short, kept], 1, "riocopy: %s: line 1 cannot be read\n" % short)
equal("leaves the old file", content("kept.cot"), b"what was there")
expect("a missing input", [path("missing.pgm"), kept], 1, "riocopy: %s: cannot be opened\n" % path("missing.pgm"))
text = put("letter.txt", b"Dear operator,\n")
expect("no raster file", [text, kept], 1, "riocopy: %s: cannot be read as a raster file\n" % text)
expect("no directory", [ramp, path("nowhere/x.cot")], 1, "riocopy: %s: No such file or directory\n" % path("nowhere/x.cot"))
expect("a directory", [ramp, WORK], 1, "riocopy: %s: Is a directory\n" % WORK)
expect("a full disk", ["-f", "pnm", ramp, "/dev/full"], 1, "riocopy: /dev/full: cannot be written\n")
expect("a format that is only read", ["-f", "qsc", ramp, kept], 1, None)
equal("nothing is left", sorted(n for n in os.listdir(WORK) if n not in ("short.pgm", "letter.txt")), before)
expect("onto itself", [ramp, ramp], 0)
equal("is itself", same(pixels("ramp.pgm"), (10, 6, 1, bytes(range(60)))), True)

# A stopped copy leaves nothing: the input is a pipe that never ends.
pipe = subprocess.Popen([TOOL, "-", path("stopped.cot")], stdin=subprocess.PIPE, stderr=subprocess.PIPE)
pipe.stdin.write(b"P5 3 2 255\n")
pipe.stdin.flush()
time.sleep(0.2)
pipe.send_signal(signal.SIGTERM)
equal("stopped", pipe.wait(20), -signal.SIGTERM)
pipe.stdin.close()
equal("nothing of it", [n for n in os.listdir(WORK) if n.startswith((".writing", "stopped"))], [])

# ---- wrong usage --------------------------------------------------------------------------------------------------------------

HINT = "Try 'riocopy --help' for more information.\n"
expect("no file", [], 2, "riocopy: an input and an output are needed\n" + HINT)
expect("three files", ["a", "b", "c"], 2, "riocopy: too many files\n" + HINT)
# JPEG data: quality by option, that of the source, or 15; its sides.
put("scene.ppm", b"P6\n40 24\n255\n" + bytes((3 * x + 2 * y + 20 * s) % 256 for y in range(24) for x in range(40) for s in range(3)))
for name, options, told in (("plain.nat", [], 15), ("fine.nat", ["--quality", "1"], 1), ("tiled.nat", ["--quality", "100", "-s", "32"], 100)):
    expect("JPEG " + name, ["-f", "native", "-t", "31", *options, path("scene.ppm"), path(name)], 0)
    shown = subprocess.run([INFO, "-e", path(name)], stdout=subprocess.PIPE, timeout=60).stdout.decode()
    equal("quality of " + name, "quality:       %d\n" % told in shown, True)
expect("quality goes along", [path("fine.nat"), path("again.nat")], 0)
equal("quality of the copy", "quality:       1\n" in subprocess.run([INFO, path("again.nat")], stdout=subprocess.PIPE, timeout=60).stdout.decode(), True)
equal("a fine copy is near", max(abs(a - b) for a, b in zip(content("scene.ppm")[-2880:], copy(["-f", "pnm", path("fine.nat"), "-"]).stdout[-2880:])) < 8, True)
expect("JPEG of an odd size", ["-f", "native", "-t", "30", "-a", "0,0,36,23", path("scene.ppm"), path("odd.nat")], 1,
       "riocopy: %s: JPEG without tiles needs a width and height of whole fours\n" % path("odd.nat"))
expect("JPEG of an odd size in tiles", ["-f", "native", "-t", "30", "-s", "32", "-a", "0,0,36,22", path("scene.ppm"), path("odd.nat")], 0)
expect("JPEG of four bands", ["-f", "native", "-t", "32", path("scene.ppm"), path("four.nat")], 1, None)
for option, value, words in (("--quality", "101", "wrong quality"), ("--quality", "0", "wrong quality"), ("-f", "jazz", "unknown format"), ("-t", "11", "unknown data type"), ("-c", "zip", "unknown compression"),
                             ("-a", "5,5,1,1", "wrong area"), ("-a", "1,2,3", "wrong area"), ("-i", "0", "wrong increment"),
                             ("-n", "-1", "wrong image number"), ("-s", "many", "wrong tile size"),
                             ("-o", "99", "wrong count of overviews")):
    expect(words, [option, value, "a", "b"], 2, "riocopy: %s: %s\n%s" % (words, value, HINT))
expect("an unknown option", ["--wrong", "a", "b"], 2, None)
expect("memory input", ["/INMEM/4096", path("m.cot")], 1, "riocopy: /INMEM/4096: cannot be opened\n")
expect("memory output", [ramp, "/INMEM/4096"], 1, "riocopy: /INMEM/4096: cannot be opened\n")
equal("help", expect("help", ["--help"], 0)[:15], b"Usage: riocopy ")
equal("version", expect("version", ["--version"], 0)[:18], b"riocopy (Kestrel) ")

# ---- the progress bar stands on a terminal only ---------------------------------------------------------------------------------

master, slave = pty.openpty()
subprocess.run([TOOL, path("big.pgm"), path("bar.cot")], stderr=slave, timeout=60, check=True)
os.close(slave)
shown = b""
try:
    while True:
        part = os.read(master, 4096)
        if not part:
            break
        shown += part
except OSError:
    pass
equal("bar", b"[" + b"#" * 40 + b"] 100%" in shown and shown.endswith(b"\r"), True)

print("%d checks, %d failed" % (count, len(failures)))
sys.exit(1 if failures else 0)
