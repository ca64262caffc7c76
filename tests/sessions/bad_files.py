#!/usr/bin/env python3
"""Offers files that are no images, from the command line and in the form: each gets its words, and the image that is loaded stays.

usage: bad_files.py KESTREL_SCRIPT
"""
import os
import subprocess
import sys
import tempfile

BAD = {
    "empty.ppm": b"",
    "zeros.bin": bytes(512),
    "letter.txt": b"MMonday. Dear Sir, the picture that you asked for is not in this letter.\n",
    "cut.ppm": b"P6\n640 4",
    "no_size.pgm": b"P5\n0 0\n255\n",
    "past_31_bits.pgm": b"P5\n65536 65536\n255\n" + bytes(64),
    "past_63_bits.ppm": b"P6\n2147483647 2147483647\n255\n" + bytes(64),
    "sun_lies.ras": bytes.fromhex("59a66a95 7fffffff 7fffffff 00000008 00000000 00000001 00000000 00000000") + bytes(64),
    "native_lies.cot": bytes.fromhex("0809fe010200") + bytes(178) + b"\xff\xff\xff\x7f" * 2 + bytes(832),
}


def play(program, lines):
    with open("bad.script", "w", encoding="utf-8") as stream:
        stream.write("\n".join(lines) + "\n")
    done = subprocess.run([program, "bad.script"], capture_output=True, text=True, timeout=120)
    if done.returncode != 0:
        sys.exit(f"{done.stderr.strip()}\nin the script:\n" + "\n".join(lines))
    return done


def refused_by_the_form(name):
    return ['menu "File/Open..."', f'field "  filename" "{name}"', 'gadget "accept"', "expect form \"Read Image\"", "print message 2",
            'gadget "cancel"', "expect windows 1", "expect band 0 1 1 77"]


def main():
    program = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory(prefix="kestrel-bad-") as folder:
        os.chdir(folder)
        with open("good.pgm", "wb") as stream:
            stream.write(b"P5\n3 2\n255\n" + bytes([77] * 6))
        for name, content in BAD.items():
            with open(name, "wb") as stream:
                stream.write(content)
        os.mkdir("folder")
        names = list(BAD) + ["nowhere.pgm"]
        for name in names:
            done = play(program, ["args good.pgm", *refused_by_the_form(name)])
            words = done.stdout.strip()
            if name not in words:
                sys.exit(f"{name}: field 2 says '{words}'")
            done = play(program, [f"args {name}", 'gadget "cancel"', "expect windows 0"])
            if name not in done.stderr or done.stderr.count("\n") != 1:
                sys.exit(f"{name}: standard error says '{done.stderr}'")
        # A directory becomes the form's; on the command line it is named.
        play(program, ["args good.pgm", 'menu "File/Open..."', 'field "  filename" "folder"', 'gadget "accept"',
                       'expect form "Read Image"', 'gadget "cancel"', "expect windows 1"])
        done = play(program, ["args folder", 'gadget "cancel"', "expect windows 0"])
        if "folder: Is a directory" not in done.stderr:
            sys.exit(f"folder: standard error says '{done.stderr}'")
    print(f"{len(names) + 1} bad files")


if __name__ == "__main__":
    main()
