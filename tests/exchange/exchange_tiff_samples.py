#!/usr/bin/env python3
"""Reads the real TIFF files beside the checkout, and compares their samples with what independent decoders found.

Usage: exchange_tiff_samples.py TIFF_TOOL DATA_DIRECTORY

Bilevel pictures are compared as they are stored, colour tables as colours, gray of fewer than eight bits at the top of the
byte (some of the decoders leave white-is-zero as it is: then our picture is what they call stored), wider gray in one of
the forms that the decoders reduce it to, four samples as they are, or the first three (without any division by the
fourth, as one of the decoders has them).
"""
import csv
import hashlib
import os
import struct
import subprocess
import sys
import tempfile

from exchange import check, finish, need, picture_of

tool, data = sys.argv[1], sys.argv[2]

# Damaged Group 3 data, of which the other decoders, all of one library, make something else. What is read here is checked
# by itself below.
FIRST_LINE = "tiff/TwelveMonkeys__g3aoe.tif"
NO_EOL = "tiff/TwelveMonkeys__incorrect-compression-rle-as-g3.tif"
DAMAGED = (FIRST_LINE, NO_EOL)

count = 0

# Samples of 24 bits, which the other decoder takes for floating-point numbers: the file counts up from 0.
COUNTING = "tiff/image-tiff__seq-1c-24b-hpredict-072a9dc9.tiff"


def run(command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120)
    return done.returncode, done.stdout


def picture(mode, path, image=0):
    """Width, height, samples, bits, photometric, bytes; None when the file is refused. No signal may end the tool."""
    status, out = run([tool, mode, path] + ([str(image)] if image else []))
    check(path, status in (0, 1), "ended by signal %d" % -status)
    if status != 0:
        return None
    head, _, samples = out.partition(b"\n")
    return [int(word) for word in head.split()] + [samples]


def md5(samples):
    return hashlib.md5(samples).hexdigest()


def others(row):
    return dict(part.split("=", 1) for part in row["md5_other"].split(",") if "=" in part)


def wide_forms(bits, photometric, samples):
    """What tools make of wide samples: the high byte, or a scaled one; white is zero seen or as it is stored."""
    size = 2 if bits <= 16 else 4
    top = (1 << bits) - 1
    values = [v[0] for v in struct.iter_unpack(">H" if size == 2 else ">I", samples)]
    for flip in (0, top) if photometric == 0 else (0,):
        yield bytes((v ^ flip) >> (bits - 8) for v in values)
        yield bytes((v ^ flip) * 255 // top for v in values)
        yield bytes((v ^ flip) >> 8 & 255 for v in values)


def matches(row, path, found):
    width, height, samples, bits, photometric, stored = found
    other = others(row)
    if samples == 1 and bits == 1:
        if "index" in other:
            return md5(stored) == other["index"]
        return md5(stored.translate(bytes([0, 255]) + bytes(254))) == other.get("stored", row["md5_gray"])
    if samples == 1 and photometric == 3:
        colours = picture("colours", path)
        return md5(colours[5]) == row["md5_rgb"]
    if samples == 1 and bits < 8:
        return md5(stored) in (other["left"], other.get("stored"))
    if samples == 1 and bits == 8:
        return md5(stored) == row["md5_gray"]
    if row["path"] == COUNTING:
        return stored == struct.pack(">256I", *range(256))
    if samples == 1:
        return any(md5(form) in (row["md5_gray"], other.get("hi")) for form in wide_forms(bits, photometric, stored))
    if samples == 4 and photometric == 5:
        return md5(stored) == other["raw4"]
    if samples == 4:
        planes = [stored[s::4] for s in range(3)]
        three = bytearray(width * height * 3)
        for s in range(3):
            three[s::3] = planes[s]
        stored = bytes(three)
    return md5(stored) in (row["md5_rgb"], other.get("netpbm"))


def bilevel_rows(path):
    """The lines of a bilevel file as libtiff reads them, a byte a pixel, 1 for black."""
    read = picture_of(need(["tifftopnm", path]))
    width, height = read[:2]
    pixels = read[3].translate(bytes([1]) + bytes(254) + bytes([0]))
    return [pixels[y * width:(y + 1) * width] for y in range(height)]


def check_first_line(path, found):
    """The first line has no EOL in front of it: it is read here, the others pass it over, so that theirs is our second. Line 36
    is 402 pixels short. Here the picture ends there, and the rest is white; they look for the next EOL."""
    width, height, pixels = found[0], found[1], found[5]
    ours = [pixels[y * width:(y + 1) * width] for y in range(height)]
    theirs = bilevel_rows(path)
    check(path, ours[0] == bytes(width), "a line of white 1728 and white 0 comes first")
    check(path, ours[1:36] == theirs[:35], "lines 1 to 35 are others")
    check(path, all(row == bytes(width) for row in ours[36:]), "a line behind the damage is not white")
    check(path, any(ours[4]) and all(ours[35]), "lines 4 and 35 have ink")


def bits_of(strip):
    return "".join("{:08b}".format(byte) for byte in strip)


def strip_of(path):
    """The one strip of a small TIFF file."""
    with open(path, "rb") as opened:
        data = opened.read()
    order = "<" if data[:2] == b"II" else ">"
    at, = struct.unpack_from(order + "I", data, 4)
    tags = {}
    for i in range(struct.unpack_from(order + "H", data, at)[0]):
        tag, kind, _, value = struct.unpack_from(order + "HHI4s", data, at + 2 + 12 * i)
        tags[tag] = struct.unpack_from(order + ("H" if kind == 3 else "I"), value)[0]
    return data[tags[273]:tags[273] + tags[279]]


def check_no_eol(path, found):
    """No line has an EOL. The others wait for one and read nothing; here the lines are read one after the other. The proof:
    libtiff codes what was read here to the same bits, when its EOLs are left out."""
    width, height, pixels = found[0], found[1], found[5]
    rows = b"".join(int("".join("01"[v] for v in pixels[y * width:(y + 1) * width]).ljust((width + 7) // 8 * 8, "0"), 2)
                    .to_bytes((width + 7) // 8, "big") for y in range(height))
    with tempfile.TemporaryDirectory() as work:
        plain, coded = os.path.join(work, "plain.tif"), os.path.join(work, "coded.tif")
        need(["convert", "pbm:-", "-define", "quantum:polarity=min-is-white", "-compress", "none", plain], b"P4\n%d %d\n" % (width, height) + rows)
        need(["tiffcp", "-c", "g3:1d", "-r", str(height), plain, coded])
        again = bits_of(strip_of(coded)).replace("000000000001", "")
    stored = bits_of(strip_of(path))
    check(path, again.rstrip("0") == stored.rstrip("0"), "codes to other bits")


def try_file(row):
    path = os.path.join(data, row["path"])
    found = picture("samples", path)
    if row["expected"] == "refuse":
        check(row["path"], found is None, "was not refused")
    elif row["expected"] == "either":
        return
    elif found is None:
        check(row["path"], False, "was refused")
    else:
        check(row["path"], (found[0], found[1]) == (int(row["width"]), int(row["height"])), "has another size")
        if row["path"] in DAMAGED:
            (check_first_line if row["path"] == FIRST_LINE else check_no_eol)(path, found)
        else:
            check(row["path"], matches(row, path, found), "has other samples: " + row["variant"])


with open(os.path.join(data, "INDEX.tsv"), encoding="utf-8", newline="") as index:
    for line in csv.DictReader(index, delimiter="\t", quoting=csv.QUOTE_NONE):
        if line["format"] == "tiff":
            count += 1
            try_file(line)
check("samples were found", count > 0)
finish(count)
