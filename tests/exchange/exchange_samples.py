#!/usr/bin/env python3
"""Reads the real files beside the checkout, and compares their pixels with what independent decoders found.

Usage: exchange_samples.py EXCHANGE_TOOL DATA_DIRECTORY FORMAT...

INDEX.tsv names each file, whether it must open, be refused, or may do either, and the MD5 of its pixels as red, green,
blue by pixel. A file that must be refused fails at the open or at its first line.
"""
import csv
import hashlib
import os
import sys

from exchange import check, finish, in_colour, picture_of, run

tool, data, formats = sys.argv[1], sys.argv[2], sys.argv[3:]
count = 0


def try_file(row):
    picture = picture_of(run([tool, "pixels", os.path.join(data, row["path"])]))
    if row["expected"] == "refuse":
        check(row["path"], picture is None, "was not refused")
        return
    if picture is None:
        check(row["path"], row["expected"] == "either", "was refused")
        return
    found = hashlib.md5(in_colour(picture)[3]).hexdigest()
    check(row["path"], found == row["md5_rgb"], "has other pixels")


with open(os.path.join(data, "INDEX.tsv"), encoding="utf-8", newline="") as index:
    for line in csv.DictReader(index, delimiter="\t", quoting=csv.QUOTE_NONE):
        if line["format"] in formats:
            count += 1
            try_file(line)
check("samples were found", count > 0)
finish(count)
