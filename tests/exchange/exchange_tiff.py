#!/usr/bin/env python3
"""TIFF files traded with libtiff's tools, ImageMagick and Pillow, both ways.

Usage: exchange_tiff.py EXCHANGE_TOOL WORK_DIRECTORY RIOCOPY

What is written here is read by tiffinfo without a warning, by tifftopnm, ImageMagick and Pillow, and tiffcmp finds no
difference from the same picture stored by tiffcp. What tiffcp writes, in each of its forms, is read here.
"""
import os
import subprocess
import sys

from exchange import (SIZES, bilevel_picture, check, colour_picture, finish, gray_picture, need, palette_picture, picture_of,
                      pillow, raw_text, run, same)

tool, work, riocopy = sys.argv[1], sys.argv[2], sys.argv[3]
os.makedirs(work, exist_ok=True)
count = 0
TIFF = "1"

# Data types by number: bilevel, gray, colour.
BILEVEL = ((1, "0"), (9, "0"), (23, "0"), (24, "0"), (1, "5"))
GRAY = ((2, "0"), (10, "0"), (29, "0"))
COLOUR = ((28, "0"), (27, "0"), (28, "32773"))

# Forms that tiffcp writes.
FORMS = ["-c none", "-c lzw", "-c lzw:2", "-c packbits", "-B -c none", "-B -c lzw:2", "-r 1 -c lzw", "-r 100000 -c lzw",
         "-r 7 -c packbits", "-t -w 16 -l 32 -c lzw:2", "-t -w 32 -l 16 -c none", "-B -t -w 16 -l 16 -c packbits",
         "-p separate -c lzw:2", "-p separate -c none", "-p separate -t -w 16 -l 16 -c lzw", "-f lsb2msb -c lzw"]
FAX = ["-c g3", "-c g3:2d", "-c g3:1d:fill", "-c g3:2d:fill", "-c g4", "-f lsb2msb -c g4", "-f lsb2msb -c g3", "-r 5 -c g4",
       "-r 5 -c g3:2d", "-t -w 32 -l 16 -c g4"]


def store(name, picture):
    path = os.path.join(work, name)
    with open(path, "wb") as out:
        if picture[2] == 1 and set(picture[3]) <= {0, 255}:
            out.write(need(["pgmtopbm", "-threshold", "-value", "0.5"], raw_text(picture)))
        else:
            out.write(raw_text(picture))
    return path


def path_of(name):
    return os.path.join(work, name)


def ours(path):
    return picture_of(run([tool, "pixels", path]))


def inverted(picture):
    """Bilevel files are handed over as they are stored, and a 1 is shown black: white-is-one files come out inverted."""
    return picture[:3] + (bytes(255 - v for v in picture[3]),)


def read_by_others(name, path, picture):
    global count
    count += 1
    told = subprocess.run(["tiffinfo", "-D", path], stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    check(name, told.returncode == 0 and b"arning" not in told.stdout and b"rror" not in told.stdout, told.stdout[-300:].decode())
    check(name + " tifftopnm", same(picture_of(run(["tifftopnm", path])), picture), "has other pixels")
    check(name + " magick", same(picture_of(run(["convert", path, "-depth", "8", "ppm:-"])), picture), "has other pixels")
    check(name + " Pillow", same(pillow(path), picture), "has other pixels")


def write_all(kind, picture, types):
    source = store("in.pnm", picture)
    for data_type, compression in types:
        name = "%s %dx%d type %d %s" % (kind, picture[0], picture[1], data_type, compression)
        path = path_of("out.tif")
        done = run([tool, "write", source, path, TIFF, str(data_type), compression])
        check(name, done is not None, "was not written")
        if done is None:
            continue
        # A 1 of our lines is black ink, and is stored with black-is-zero: others see it white.
        read_by_others(name, path, inverted(picture) if kind == "bilevel" else picture)
        check(name + " back", same(ours(path), picture), "has other pixels")
        plain, again = path_of("plain.tif"), path_of("again.tif")
        need(["tiffcp", "-c", "none", path, plain])
        need(["tiffcp", "-c", "none", plain, again])
        check(name + " tiffcmp", run(["tiffcmp", "-t", path, plain]) is not None, "differs from its plain copy")


def read_all(kind, picture, forms):
    global count
    source = path_of("source.tif")
    need(["convert", store("in.pnm", picture), "-compress", "none", source])
    seen = picture
    if kind == "bilevel" and b"min-is-black" in need(["tiffinfo", source]):
        seen = inverted(picture)
    for form in forms:
        count += 1
        path = path_of("form.tif")
        need(["tiffcp"] + form.split() + [source, path])
        check("%s %dx%d tiffcp %s" % (kind, picture[0], picture[1], form), same(ours(path), seen), "has other pixels")


def copy_and_show(kind, picture, options, wanted=None, image=0, source=None):
    """riocopy's TIFF files, in the forms that exchange_tool does not make, through Pillow."""
    global count
    count += 1
    path = path_of("copied.tif")
    name = "%s %dx%d riocopy %s" % (kind, picture[0], picture[1], options)
    done = run([riocopy, "-q"] + options.split() + [source or store("in.pnm", picture), path])
    check(name, done is not None, "was not written")
    check(name + " Pillow", same(pillow(path, image), wanted or picture), "has other pixels")


def halved(picture, step):
    width, height, samples, pixels = picture
    rows = [pixels[y * width * samples:(y + 1) * width * samples] for y in range(0, height, step)]
    columns = range(0, width, step)
    thin = b"".join(row[x * samples:(x + 1) * samples] for row in rows for x in columns)
    return len(columns), len(rows), samples, thin


def write_wide(picture):
    """Samples of 16 and 32 bits, the levels in one of their bytes."""
    global count
    for data_type, shift in ((3, 8), (4, 16), (5, 16)):
        count += 1
        path = path_of("wide.tif")
        done = run([tool, "write", store("in.pnm", picture), path, TIFF, str(data_type)])
        check("type %d" % data_type, done is not None, "was not written")
        check("type %d Pillow" % data_type, same(pillow(path, 0, shift), picture), "has other pixels")


def copy_all(width, height):
    gray, colour, palette = gray_picture(width, height), colour_picture(width, height), palette_picture(width, height)
    bits = bilevel_picture(width, height)
    for coding in ("none", "lzw", "packbits"):
        for layout in ("", "-s 32", "-s 64"):
            copy_and_show("gray", gray, "%s -c %s" % (layout, coding))
            copy_and_show("colour", colour, "%s -c %s" % (layout, coding))
            copy_and_show("palette", palette, "%s -c %s" % (layout, coding), source=palette_source(palette))
    for coding in ("none", "g3b", "g4", "packbits"):
        copy_and_show("bilevel", bits, "-c " + coding)
    for coding in ("none", "g4"):
        copy_and_show("bilevel", bits, "-s 32 -c " + coding)
    for overview in (1, 2):
        copy_and_show("gray", gray, "-o 2", halved(gray, 2 ** overview), overview)
        copy_and_show("colour", colour, "-s 32 -o 2", halved(colour, 2 ** overview), overview)
    write_wide(gray)
    inks = path_of("inks.tif")
    need(["convert", store("in.pnm", colour), "-colorspace", "CMYK", "-depth", "8", "-compress", "none", inks])
    for coding in ("none", "lzw"):
        copy_and_show("inks", colour, "-c " + coding, pillow(inks), source=inks)


def palette_source(picture):
    path = path_of("palette.ras")
    with open(path, "wb") as out:
        out.write(need(["pnmtorast", "-standard"], raw_text(picture)))
    return path


for size in ((37, 23), (301, 40)):
    copy_all(*size)
for w, h in SIZES:
    write_all("bilevel", bilevel_picture(w, h), BILEVEL)
    write_all("gray", gray_picture(w, h), GRAY)
    write_all("colour", colour_picture(w, h), COLOUR)
for w, h in ((301, 40), (37, 23), (64, 64)):
    read_all("gray", gray_picture(w, h), [form for form in FORMS if "separate" not in form])
    read_all("colour", colour_picture(w, h), FORMS)
    read_all("palette", palette_picture(w, h), [form for form in FORMS if "separate" not in form])
    read_all("bilevel", bilevel_picture(w, h), FAX + ["-c none", "-c lzw", "-c packbits"])
finish(count)
