#!/usr/bin/env python3
"""Trades PNM, Sun raster, XBM, CALS, symbol and PostScript files with netpbm, ImageMagick and Ghostscript, pixel for pixel.

Usage: exchange_simple.py EXCHANGE_TOOL WORK_DIRECTORY
"""
import os
import sys

from exchange import (SIZES, bilevel_picture, check, colour_picture, finish, gray_picture, need, palette_picture,
                      picture_of, raw_text, run, same)

TOOL, WORK = sys.argv[1], sys.argv[2]
CALS, XBM, PNM, SUN, PS = "11", "13", "14", "15", "21"
BITMAP, BYTE, BITMAP_RLE, GROUP4, COLOUR = "1", "2", "9", "24", "27"
count = 0


def path(name):
    return os.path.join(WORK, name)


def keep(name, data):
    with open(path(name), "wb") as out:
        out.write(data)
    return path(name)


def read_here(name):
    return picture_of(run([TOOL, "pixels", name]))


def trade_in(label, picture, data, suffix):
    """A file made by another program is read here."""
    global count
    count += 1
    name = keep("in_%d%s" % (count, suffix), data)
    check("%s %dx%d read here" % (label, picture[0], picture[1]), same(read_here(name), picture), name)


def trade_out(label, picture, source, suffix, format_id, data_type, compression, readers):
    """A file written here is read by other programs, and here again."""
    global count
    name = path("out_%d%s" % (count, suffix))
    written = run([TOOL, "write", source, name, format_id, data_type, compression])
    check("%s %dx%d written" % (label, picture[0], picture[1]), written is not None, name)
    for reader in readers:
        count += 1
        got = picture_of(run([part.replace("FILE", name) for part in reader]))
        check("%s %dx%d read by %s" % (label, picture[0], picture[1], reader[0]), same(got, picture), name)
    count += 1
    check("%s %dx%d read back" % (label, picture[0], picture[1]), same(read_here(name), picture), name)


def magick(suffix):
    return ["convert", suffix + ":FILE", "-depth", "8", "ppm:-"]


def readers_of_runs(picture, source):
    """This ImageMagick reads run lengths of some line lengths only. Where it reads netpbm's, it must read ours."""
    ras = need(["pnmtorast", "-rle"], source)
    magick_can = same(picture_of(run(["convert", "sun:-", "-depth", "8", "ppm:-"], ras)), picture)
    return [["rasttopnm", "FILE"]] + ([magick("sun")] if magick_can else [])


def trade_bilevel(width, height):
    picture = bilevel_picture(width, height)
    pbm = need(["convert", "pgm:-", "-monochrome", "pbm:-"], raw_text(picture))
    check("bilevel source %dx%d" % (width, height), same(picture_of(pbm), picture))
    source = keep("source.pbm", pbm)
    trade_in("raw PBM", picture, pbm, ".pbm")
    trade_in("text PBM", picture, need(["pnmtoplainpnm"], pbm), ".pbm")
    trade_in("magick text PBM", picture, need(["convert", "pbm:-", "-compress", "none", "pbm:-"], pbm), ".pbm")
    # Some versions of pnmtorast lose the last bits of odd bilevel lines: what counts is that both readers agree.
    for form in ("-standard", "-rle"):
        ras = need(["pnmtorast", form], pbm)
        trade_in("pnmtorast bilevel " + form, picture_of(need(["rasttopnm"], ras)), ras, ".ras")
    trade_in("magick Sun bilevel", picture, need(["convert", "pbm:-", "sun:-"], pbm), ".ras")
    trade_in("magick CALS", picture, need(["convert", "pbm:-", "cals:-"], pbm), ".cal")
    trade_in("pbmtoxbm", picture, need(["pbmtoxbm"], pbm), ".xbm")
    trade_in("pbmtox10bm", picture, need(["pbmtoxbm", "-x10"], pbm), ".xbm")
    trade_in("magick XBM", picture, need(["convert", "pbm:-", "xbm:-"], pbm), ".xbm")
    trade_out("PBM", picture, source, ".pbm", PNM, BITMAP, "0", [["pamtopnm", "FILE"], magick("pbm")])
    trade_out("text PBM", picture, source, ".pbm", PNM, BITMAP, "7", [["pamtopnm", "FILE"], magick("pbm")])
    trade_out("Sun bilevel", picture, source, ".ras", SUN, BITMAP, "0", [["rasttopnm", "FILE"], magick("sun")])
    trade_out("Sun bilevel runs", picture, source, ".ras", SUN, BITMAP_RLE, "0", readers_of_runs(picture, pbm))
    trade_out("CALS", picture, source, ".cal", CALS, GROUP4, "0", [magick("cals")])
    trade_out("XBM", picture, source, ".xbm", XBM, BITMAP, "0", [["xbmtopbm", "FILE"], magick("xbm")])


def trade_gray(width, height):
    picture = gray_picture(width, height)
    pgm = raw_text(picture)
    source = keep("source.pgm", pgm)
    trade_in("raw PGM", picture, pgm, ".pgm")
    trade_in("text PGM", picture, need(["pnmtoplainpnm"], pgm), ".pgm")
    trade_in("pnmtorast gray", picture, need(["pnmtorast", "-standard"], pgm), ".ras")
    trade_in("pnmtorast gray runs", picture, need(["pnmtorast", "-rle"], pgm), ".ras")
    trade_in("magick Sun gray", picture, need(["convert", "pgm:-", "sun:-"], pgm), ".ras")
    # Odd maximum values: no sample lies half way between two levels, where programs round in different directions.
    for most in ("15", "63", "127"):
        small = need(["pamdepth", most], pgm)
        trade_in("PGM of %s" % most, picture_of(need(["pamdepth", "255"], small)), small, ".pgm")
        text = need(["pnmtoplainpnm"], small)
        trade_in("text PGM of %s" % most, picture_of(need(["pamdepth", "255"], small)), text, ".pgm")
    # Sixteen bits keep their high byte, and these were made of it twice.
    trade_in("PGM of 65535", picture, need(["pamdepth", "65535"], pgm), ".pgm")
    trade_in("text PGM of 65535", picture, need(["pnmtoplainpnm"], need(["pamdepth", "65535"], pgm)), ".pgm")
    trade_out("PGM", picture, source, ".pgm", PNM, BYTE, "0", [["pamtopnm", "FILE"], magick("pgm")])
    trade_out("text PGM", picture, source, ".pgm", PNM, BYTE, "7", [["pamtopnm", "FILE"], magick("pgm")])
    trade_out("Sun gray", picture, source, ".ras", SUN, BYTE, "0", [["rasttopnm", "FILE"], magick("sun")])
    trade_out("Sun gray runs", picture, source, ".ras", SUN, BYTE, "2", readers_of_runs(picture, pgm))


def trade_colour(width, height):
    picture = colour_picture(width, height)
    ppm = raw_text(picture)
    source = keep("source.ppm", ppm)
    trade_in("raw PPM", picture, ppm, ".ppm")
    trade_in("text PPM", picture, need(["pnmtoplainpnm"], ppm), ".ppm")
    trade_in("PPM of 65535", picture, need(["pamdepth", "65535"], ppm), ".ppm")
    if width * height > 1:      # a single colour becomes a bilevel file that has lost it
        trade_in("pnmtorast colour", picture, need(["pnmtorast", "-standard"], ppm), ".ras")
        trade_in("pnmtorast colour runs", picture, need(["pnmtorast", "-rle"], ppm), ".ras")
    trade_in("magick Sun colour", picture, need(["convert", "ppm:-", "sun:-"], ppm), ".ras")
    trade_out("PPM", picture, source, ".ppm", PNM, COLOUR, "0", [["pamtopnm", "FILE"], magick("ppm")])
    trade_out("text PPM", picture, source, ".ppm", PNM, COLOUR, "7", [["pamtopnm", "FILE"], magick("ppm")])
    trade_out("Sun colour", picture, source, ".ras", SUN, COLOUR, "0", [["rasttopnm", "FILE"], magick("sun")])
    trade_out("Sun colour runs", picture, source, ".ras", SUN, COLOUR, "2", [["rasttopnm", "FILE"]])


def trade_palette(width, height):
    picture = palette_picture(width, height)
    ras = need(["pnmtorast", "-standard"], raw_text(picture))
    source = keep("palette.ras", ras)
    trade_in("pnmtorast palette", picture, ras, ".ras")
    trade_in("magick Sun palette", picture, need(["convert", "ppm:-", "-type", "palette", "sun:-"], raw_text(picture)),
             ".ras")
    trade_out("Sun palette", picture, source, ".ras", SUN, BYTE, "0", [["rasttopnm", "FILE"], magick("sun")])
    trade_out("Sun palette runs", picture, source, ".ras", SUN, BYTE, "2",
              readers_of_runs(picture, raw_text(picture)))


def trade_postscript(width, height):
    """Ghostscript paints the page. A grey picture of 4 x 2 squares is found again at the squares' middles: the page is
    turned, so the picture's lines run upwards on it, beginning at its left."""
    global count
    count += 1
    levels = [0, 40, 80, 120, 160, 200, 240, 255]
    pixels = bytes(levels[y * 2 // height * 4 + x * 4 // width] for y in range(height) for x in range(width))
    source = keep("source.pgm", raw_text((width, height, 1, pixels)))
    name = path("out.ps")
    check("PostScript written", run([TOOL, "write", source, name, PS, BYTE]) is not None)
    page = picture_of(run(["gs", "-q", "-dNOPAUSE", "-dBATCH", "-dSAFER", "-sDEVICE=pgmraw", "-r72", "-g612x792",
                           "-sOutputFile=-", name]))
    if page is None:
        check("PostScript painted", False)
        return
    scale = min(720.0 / width, 540.0 / height)
    page_w, page_h = int(scale * width + 0.5), int(scale * height + 0.5)
    for i, level in enumerate(levels):
        along, down = (i % 4 + 0.5) / 4 * page_w, (i // 4 + 0.5) / 2 * page_h
        x = 306 + page_h // 2 - (page_h - down)     # points from the left
        y = 396 - page_w // 2 + along               # points from below
        got = page[3][int(792 - y) * 612 + int(x)]
        # The page is printed through a screen of 60 lines, which a device of 256 greys passes by.
        check("PostScript square %d" % i, abs(got - level) <= 2, "have %d, want %d" % (got, level))


for size in SIZES:
    trade_bilevel(*size)
    trade_gray(*size)
    trade_colour(*size)
    trade_palette(*size)
trade_postscript(160, 40)
trade_postscript(40, 60)
finish(count)
