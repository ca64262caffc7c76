#!/usr/bin/env python3
"""What the workstation writes, with a look-up table in between, is read by public programs, pixel for pixel.

Usage: exchange_written.py KESTREL_SCRIPT WORK_DIRECTORY
"""
import os
import subprocess
import sys

from exchange import bilevel_picture, check, colour_picture, finish, gray_picture, need, picture_of, raw_text, run, same

SCRIPT, WORK = sys.argv[1], sys.argv[2]
XBM, PNM, SUN = "13", "14", "15"
count = 0


def keep(name, data):
    with open(os.path.join(WORK, name), "wb") as out:
        out.write(data)


def play(label, steps, standard=None):
    """Plays a session in the work directory; new files are of the format that RIO_STANDARD names."""
    environment = dict(os.environ)
    if standard:
        environment["RIO_STANDARD"] = standard
    done = subprocess.run([SCRIPT, "-"], input="\n".join(steps).encode(), cwd=WORK, env=environment, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, timeout=120)
    check(label + " played", done.returncode == 0, done.stderr.decode())


def read(label, name, picture, command):
    global count
    count += 1
    got = picture_of(run([part.replace("FILE", os.path.join(WORK, name)) for part in command]))
    check("%s read by %s" % (label, command[0]), same(got, picture))


def fresh(*names):
    for name in names:
        path = os.path.join(WORK, name)
        if os.path.exists(path):
            os.remove(path)


def magick(suffix):
    return ["convert", suffix + ":FILE", "-depth", "8", "ppm:-"]


# Linear stretch of 60 to 180 over 0 to 255: 2.125 for each level, halves up.
def stretched(level):
    return 0 if level < 60 else 255 if level > 180 else ((level - 60) * 17 + 4) // 8


gray, colour, bits = gray_picture(61, 40), colour_picture(61, 40), bilevel_picture(61, 40)
keep("gray.pgm", raw_text(gray))
keep("colour.ppm", raw_text(colour))
keep("linear.def", b"misc : gamma = 1.0\n")   # a linear display: no gamma is taken out of colour files
keep("bits.pbm", need(["convert", "pgm:-", "-monochrome", "pbm:-"], raw_text(bits)))
wanted = gray[:3] + (bytes(stretched(v) for v in gray[3]),)
stretch = ['args gray.pgm', 'menu "Histogram/Linear Stretch/Clip In"', 'keyin "60"', 'keyin "180"']

fresh("gray_out.pgm", "gray_out.ras", "gray_out.tif", "colour_out.ppm", "colour_out.ras", "colour_out.tif", "lzw_out.tif",
      "bits_out.pbm", "bits_out.xbm")
play("gray PNM", stretch + ['run write_cot', 'keyin "gray_out.pgm"'], PNM)
play("gray Sun", stretch + ['run write_cot', 'keyin "gray_out.ras"'], SUN)
play("gray TIFF", stretch + ['menu "File/Save As"', 'field "filename" "gray_out"', 'gadget "tiff"', 'gadget "accept"'])
play("colour PNM", ['args -d linear.def colour.ppm', 'run write_rgb', 'keyin "colour_out.ppm"', 'reset'], PNM)
play("colour Sun", ['args -d linear.def colour.ppm', 'run write_rgb', 'keyin "colour_out.ras"', 'reset'], SUN)
play("colour TIFF", ['args -d linear.def colour.ppm', 'menu "File/Save As"', 'field "filename" "colour_out"', 'gadget "tiff"', 'gadget "accept"'])
play("colour LZW", ['args -d linear.def colour.ppm', 'menu "File/Save As"', 'field "filename" "lzw_out"', 'gadget "tiff"', 'gadget "compressed"',
                    'gadget "accept"'])
play("bits PNM", ['args bits.pbm', 'run write_bin', 'keyin "bits_out.pbm"'], PNM)
play("bits XBM", ['args bits.pbm', 'run write_bin', 'keyin "bits_out.xbm"'], XBM)
read("gray PNM", "gray_out.pgm", wanted, ["pamtopnm", "FILE"])
read("gray PNM", "gray_out.pgm", wanted, magick("pgm"))
read("gray Sun", "gray_out.ras", wanted, ["rasttopnm", "FILE"])
read("gray TIFF", "gray_out.tif", wanted, ["tifftopnm", "FILE"])
read("colour PNM", "colour_out.ppm", colour, ["pamtopnm", "FILE"])
read("colour Sun", "colour_out.ras", colour, ["rasttopnm", "FILE"])
read("colour TIFF", "colour_out.tif", colour, ["tifftopnm", "FILE"])
read("colour LZW", "lzw_out.tif", colour, ["tifftopnm", "FILE"])
read("bits PNM", "bits_out.pbm", bits, ["pamtopnm", "FILE"])
read("bits XBM", "bits_out.xbm", bits, ["xbmtopbm", "FILE"])
finish(count)
