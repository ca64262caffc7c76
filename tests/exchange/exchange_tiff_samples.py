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

from exchange import check, finish

tool, data = sys.argv[1], sys.argv[2]

# Damaged Group 3 data, of which the other decoders, all of one library, make something else: they pass over a first line
# that has no EOL in front, where it is read here, and leave a strip white that has no EOL at all.
DAMAGED = ("tiff/TwelveMonkeys__g3aoe.tif", "tiff/TwelveMonkeys__incorrect-compression-rle-as-g3.tif")

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
        check(row["path"], row["path"] in DAMAGED or matches(row, path, found), "has other samples: " + row["variant"])


with open(os.path.join(data, "INDEX.tsv"), encoding="utf-8", newline="") as index:
    for line in csv.DictReader(index, delimiter="\t", quoting=csv.QUOTE_NONE):
        if line["format"] == "tiff":
            count += 1
            try_file(line)
check("samples were found", count > 0)
finish(count)
