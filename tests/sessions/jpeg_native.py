#!/usr/bin/env python3
"""Native JPEG files, grey and colour, plain and in tiles: opened on the workstation, they show the picture that riocopy put
into them, and what is saved of them comes back the same.

usage: jpeg_native.py KESTREL_SCRIPT RIOCOPY RIOINFO
"""
import math
import os
import subprocess
import sys
import tempfile

W, H = 100, 72


def level(x, y, s):
    return int(128 + 70 * math.sin(x / 13 + s) + 50 * math.cos(y / 9 - s))


def picture(samples):
    return bytes(level(x, y, s) for y in range(H) for x in range(W) for s in range(samples))


def run(*command):
    done = subprocess.run(command, capture_output=True, text=True, timeout=120)
    if done.returncode != 0:
        sys.exit(f"{' '.join(command)}: {done.stderr.strip()}")
    return done.stdout


def pixels_of(name, samples):
    with open(name, "rb") as stream:
        content = stream.read()
    return content[len(content) - W * H * samples:]


def psnr(have, want):
    square = sum((a - b) ** 2 for a, b in zip(have, want)) / len(want)
    return 10 * math.log10(255 * 255 / square) if square else 99


def near(label, name, samples, least):
    got = psnr(pixels_of(name, samples), picture(samples))
    if got < least:
        sys.exit(f"{label}: {got:.1f} dB, wanted {least}")


def play(program, lines):
    with open("session.script", "w", encoding="utf-8") as stream:
        stream.write("\n".join(lines) + "\n")
    run(program, "session.script")


def main():
    program, copy, info = (os.path.abspath(name) for name in sys.argv[1:4])
    with tempfile.TemporaryDirectory(prefix="kestrel-jpeg-") as folder:
        os.chdir(folder)
        with open("linear.def", "w", encoding="utf-8") as stream:
            stream.write("misc : gamma = 1.0\n")
        for samples, magic, kind in ((1, b"P5", 30), (3, b"P6", 31)):
            with open("source.pnm", "wb") as stream:
                stream.write(b"%s\n%d %d\n255\n" % (magic, W, H) + picture(samples))
            for tile in (0, 32):
                label = f"type {kind}, tiles {tile}"
                run(copy, "-q", "-f", "native", "-t", str(kind), "-s", str(tile), "--quality", "8", "source.pnm", "in.nat")
                if f"{kind} (JPEG" not in run(info, "-e", "in.nat") or "quality:       8\n" not in run(info, "in.nat"):
                    sys.exit(f"{label}: not told by rioinfo")
                if samples == 1:
                    steps = ["run read_cot_gray", 'keyin "in.nat"', "dump 1 seen.pnm", "run write_cot", 'keyin "out.cot"',
                             "run read_cot_gray", 'keyin "out.cot"', "dump 2 again.pnm"]
                else:
                    steps = ["run read_rgb", 'keyin "in.nat"', "dumprgb 3 4 5 seen.pnm", "run write_rgb", 'keyin "out.rgb"', "reset",
                             "run read_rgb", 'keyin "out.rgb"', "dumprgb 6 7 8 again.pnm"]
                play(program, ["args -d linear.def source.pnm", *steps, "expect windows 3", 'same "seen.pnm" "again.pnm"'])
                near(label, "seen.pnm", samples, 36)
                # A part of it: its lines begin in the middle of the picture.
                seen = pixels_of("seen.pnm", samples)
                row = "read_cot_gray_rect" if samples == 1 else "read_rgb_rect"
                play(program, ["args source.pnm", f"run {row}", 'keyin "20 30"', 'keyin "61 59"', 'keyin "in.nat"', "expect windows 2",
                               *(f"expect band {samples + s} {x} {y} {seen[((30 + y) * W + 20 + x) * samples + s]}"
                                 for s in range(samples) for x, y in ((0, 0), (41, 0), (7, 15), (41, 29)))])
        # A piece that is cut off: the session opens without the picture's lines, and says so.
        with open("in.nat", "rb") as stream:
            content = stream.read()
        with open("cut.nat", "wb") as stream:
            stream.write(content[:len(content) * 2 // 3])
        play(program, ["args source.pnm", "run read_rgb", 'keyin "cut.nat"', 'expect message 2 "Premature EOF encountered"'])
    print("4 files")


if __name__ == "__main__":
    main()
