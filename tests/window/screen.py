"""What stands on the screen of an X server that keeps its pixels in a file: colours, texts, pictures.

Kestrel draws its texts with one-bit fonts and no smoothing, so a text is found exactly, pixel by pixel. Places are (x, y),
areas (x0, y0, x1, y1) with both ends inclusive, colours 0xRRGGBB.
"""
import mmap
import os
import struct
import zlib

TEXT, TEXT_GREY, TEXT_WHITE, TEXT_IDLE, BLACK = 0x1B1E22, 0x8A8F96, 0xFFFFFF, 0x41464D, 0x000000
FACE, ACCENT, SHADE, DARK = 0xD9DBDE, 0x3C6E9F, 0xA4A8AE, 0x5C6168


class Screen:
    """The pixels as they are at this moment; every question reads them anew."""

    def __init__(self, path):
        with open(path, "rb") as file:
            self.map = mmap.mmap(file.fileno(), 0, prot=mmap.PROT_READ)
        words = struct.unpack(">25I", self.map[:100])
        self.width, self.height, self.stride = words[4], words[5], words[12]
        self.start = words[0] + 12 * words[19]
        if words[11] != 32 or words[7] != 0:
            raise SystemExit("the screen is not of 32 bits a pixel, low byte first")

    def row(self, y, x0=0, x1=None):
        """Pixels of a row as unsigned numbers, unused top byte cleared by the server."""
        first = self.start + y * self.stride + 4 * x0
        count = (self.width - 1 if x1 is None else x1) - x0 + 1
        return memoryview(self.map[first:first + 4 * count]).cast("I")

    def pixel(self, x, y):
        return self.row(y, x, x)[0] & 0xFFFFFF

    def pixels(self, area=None):
        x0, y0, x1, y1 = area or (0, 0, self.width - 1, self.height - 1)
        return b"".join(bytes(self.row(y, x0, x1)) for y in range(y0, y1 + 1))

    def colours(self, area=None):
        return {p & 0xFFFFFF for p in memoryview(self.pixels(area)).cast("I")}

    def write_png(self, path, area=None):
        x0, y0, x1, y1 = area or (0, 0, self.width - 1, self.height - 1)
        rows = []
        for y in range(y0, y1 + 1):
            data = bytes(self.row(y, x0, x1))
            row = bytearray(3 * (x1 - x0 + 1))
            row[0::3], row[1::3], row[2::3] = data[2::4], data[1::4], data[0::4]
            rows.append(b"\0" + row)

        def chunk(kind, body):
            return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n"
                       + chunk(b"IHDR", struct.pack(">IIBBBBB", x1 - x0 + 1, y1 - y0 + 1, 8, 2, 0, 0, 0))
                       + chunk(b"IDAT", zlib.compress(b"".join(rows), 6)) + chunk(b"IEND", b""))

    def ink(self, colour, area):
        """A row of 0 and 1 for each row of the area: 1 where that colour stands."""
        x0, y0, x1, y1 = area
        pixels, width = self.pixels(area), x1 - x0 + 1
        same = -1
        for byte in range(3):            # blue, green, red: each plane is compared in one go
            wanted = bytearray(256)
            wanted[colour >> 8 * byte & 255] = 1
            same &= int.from_bytes(pixels[byte::4].translate(wanted), "big")
        marks = same.to_bytes(width * (y1 - y0 + 1), "big")
        return [marks[i:i + width] for i in range(0, len(marks), width)]

    def find_text(self, text, font, colour, area=None):
        """All places (x0, y0, x1, y1) of a text within the area, top row first."""
        area = area or (0, 0, self.width - 1, self.height - 1)
        shape = font.shape(text)
        rows = self.ink(colour, area)
        width = len(shape[0])
        anchor = max(range(len(shape)), key=lambda r: sum(shape[r]))
        wanted = [int.from_bytes(row, "big") for row in shape]
        found = []
        for y in range(anchor, len(rows) - len(shape) + anchor + 1):
            x = rows[y].find(shape[anchor])
            while x >= 0:
                if self._matches(rows, wanted, x, y - anchor, width):
                    left, top = area[0] + x, area[1] + y - anchor
                    found.append((left, top, left + width - 1, top + len(shape) - 1))
                x = rows[y].find(shape[anchor], x + 1)
        return found

    @staticmethod
    def _matches(rows, wanted, x, y, width):
        """All ink must be there; in one row there may be more: the line under a mnemonic."""
        spoiled = 0
        for r, text in enumerate(wanted):
            seen = int.from_bytes(rows[y + r][x:x + width], "big")
            if seen & text != text:
                return False
            spoiled += seen != text
        return spoiled <= 1


class Font:
    """A bitmap font file, as far as texts of plain characters need it."""

    def __init__(self, path):
        with open(path, "rb") as file:
            data = file.read()
        if data[:4] != b"FONT":
            raise SystemExit("%s is no font" % path)
        self.name = os.path.basename(path)
        self.map = data[12:268]
        bits = struct.unpack("<I", data[8:12])[0] + 8
        self.glyphs = []
        for at in range(268, bits, 8):
            offset, width, height, x, y, advance, _ = struct.unpack("<HBBBBBB", data[at:at + 8])
            stride = (width + 7) // 8
            rows = [[data[bits + offset + r * stride + c // 8] >> (c % 8) & 1 for c in range(width)] for r in range(height)]
            self.glyphs.append((rows, width, x, y, advance))
        self.height = max(y + len(rows) for rows, _, _, y, _ in self.glyphs)

    def glyph(self, character):
        return self.glyphs[self.map[ord(character)] - 1]

    def width(self, text):
        return sum(self.glyph(c)[4] for c in text)

    def shape(self, text):
        """Rows of 0 and 1, no blank column at either side and no blank row above or below."""
        canvas = [bytearray(self.width(text)) for _ in range(self.height)]
        pen = 0
        for character in text:
            rows, _, x, y, advance = self.glyph(character)
            for r, row in enumerate(rows):
                for c, bit in enumerate(row):
                    if bit:
                        canvas[y + r][pen + x + c] = 1
            pen += advance
        columns = [c for c in range(len(canvas[0])) if any(row[c] for row in canvas)]
        inked = [r for r in range(len(canvas)) if any(canvas[r])]
        return [bytes(row[columns[0]:columns[-1] + 1]) for row in canvas[inked[0]:inked[-1] + 1]]
