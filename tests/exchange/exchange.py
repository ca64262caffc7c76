"""What the exchange tests share: pictures, running tools, reading what they print, counting failures.

Pictures are (width, height, samples, bytes), samples interleaved. Public tools are read through raw PGM and PPM,
which is parsed here and nowhere else.
"""
import json
import subprocess
import sys

failures = []


def check(name, good, detail=""):
    if not good:
        failures.append(name)
        print("FAIL %s %s" % (name, detail))


def finish(count):
    print("%d exchanges, %d failed" % (count, len(failures)))
    sys.exit(1 if failures else 0)


def run(command, data=None):
    """Standard output of a command; None when it failed."""
    done = subprocess.run(command, input=data, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120)
    return done.stdout if done.returncode == 0 else None


def need(command, data=None):
    """The same for a command that must not fail."""
    out = run(command, data)
    if out is None:
        sys.exit("cannot run: " + " ".join(command))
    return out


def raw_header(text):
    words, at = [], 0
    while len(words) < (3 if text[:2] == b"P4" else 4):
        while text[at:at + 1].isspace():
            at += 1
        if text[at:at + 1] == b"#":
            at = text.index(b"\n", at)
            continue
        end = at
        while not text[end:end + 1].isspace():
            end += 1
        words.append(text[at:end])
        at = end
    return words, at + 1


def picture_of(text):
    """The picture of a raw PBM, PGM or PPM with a maximum value of 255; None when it is none."""
    if not text or text[:2] not in (b"P4", b"P5", b"P6"):
        return None
    words, at = raw_header(text)
    width, height = int(words[1]), int(words[2])
    if text[:2] == b"P4":
        row = (width + 7) // 8
        bits = [0 if text[at + y * row + x // 8] >> (7 - x % 8) & 1 else 255 for y in range(height) for x in range(width)]
        return width, height, 1, bytes(bits)
    samples = 3 if text[:2] == b"P6" else 1
    return width, height, samples, text[at:at + width * height * samples]


def in_colour(picture):
    """Gray pictures as three equal samples, so that tools may answer either."""
    if picture is None or picture[2] == 3:
        return picture
    return picture[0], picture[1], 3, b"".join(bytes((v, v, v)) for v in picture[3])


def same(one, other):
    return one is not None and other is not None and in_colour(one) == in_colour(other)


PILLOW = """
import json, sys
from PIL import Image

def picture_in(path, image, shift):
    with Image.open(path) as file:
        file.seek(image)
        file.load()
        if file.mode.startswith("I"):       # wide gray: its high byte
            shown, raw = "P5", bytes(v >> (8 if ";16" in file.mode else shift) & 255 for v in file.getdata())
        else:
            picture = file if file.mode in ("L", "RGB") else file.convert("L" if file.mode == "1" else "RGB")
            shown, raw = "P5" if picture.mode == "L" else "P6", picture.tobytes()
        return b"%s\\n%d %d\\n255\\n" % (shown.encode(), file.width, file.height) + raw

for line in sys.stdin:
    try:
        text = picture_in(*json.loads(line))
    except Exception as why:
        sys.stderr.write("%s%s\\n" % (line, why))
        text = b""
    sys.stdout.buffer.write(len(text).to_bytes(8, "big") + text)
    sys.stdout.buffer.flush()
"""
reader = None


def pillow(path, image=0, shift=8):
    """The picture as the Debian package of Pillow reads it; None when it does not. One process serves all."""
    global reader
    if reader is None:
        reader = subprocess.Popen(["/usr/bin/python3", "-c", PILLOW], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    reader.stdin.write(json.dumps([path, image, shift]).encode() + b"\n")
    reader.stdin.flush()
    size = int.from_bytes(reader.stdout.read(8), "big")
    return picture_of(reader.stdout.read(size)) if size else None


def raw_text(picture):
    return b"P%d\n%d %d\n255\n" % (6 if picture[2] == 3 else 5, picture[0], picture[1]) + picture[3]


# ---- pictures ------------------------------------------------------------------------------------------------------

def noise(count, seed):
    """Repeatable bytes: a plain congruential generator."""
    out = bytearray()
    for _ in range(count):
        seed = (seed * 1103515245 + 12345) & 0x7FFFFFFF
        out.append(seed >> 16 & 255)
    return bytes(out)


def bilevel_picture(width, height):
    """Black and white: broad bars on the left, noise on the right, so that runs of all lengths are met."""
    bits = noise(width * height, width + 7)
    return width, height, 1, bytes(
        255 if (x // 9 + y // 3) % 2 == 0 and x < width // 2 or x >= width // 2 and bits[y * width + x] & 1 else 0
        for y in range(height) for x in range(width))


def gray_picture(width, height):
    """A ramp, flat areas, and a noisy part with many bytes 128."""
    rough = noise(width * height, width)
    return width, height, 1, bytes(
        x * 5 & 255 if y < height // 3 else 128 if (x + y) % 5 == 0 or y > 2 * height // 3 else rough[y * width + x]
        for y in range(height) for x in range(width))


def colour_picture(width, height):
    return width, height, 3, bytes(
        v for y in range(height) for x in range(width) for v in (x * 3 & 255, y * 7 & 255, 128 if x % 4 else (x ^ y) & 255))


def palette_picture(width, height):
    """No more than 24 colours, so that encoders write a colour table."""
    return width, height, 3, bytes(
        v for y in range(height) for x in range(width)
        for v in ((x // 4 % 6) * 51, (y // 3 % 4) * 85, 200 if (x // 4 % 6) > 2 else 10))


SIZES = ((37, 23), (64, 20), (1, 1), (17, 9), (301, 40), (8, 3), (15, 2), (33, 1))
