#!/usr/bin/env python3
"""Draws the four 20x20 status pictures that the LXRAdmin pages show.

    python3 web/images/make_images.py [output-directory]

Writes Disabled.gif (red no-entry sign), Blank.gif (fully transparent),
Unknown.gif (grey disc with a white question mark) and Redisable.gif (amber
warning triangle with a black exclamation mark). The pages ask for exactly
20x20, so the shapes are drawn for that grid; palette index 0 is the
transparent background. The GIF bytes are written with the standard library
alone (our own LZW encoder), so the pictures can be rebuilt on any machine and
the committed files compared with a fresh run.
"""
import os
import struct
import sys

SIZE = 20
SUPER = 4  # samples per pixel edge when deciding which shape covers a pixel


def disc(cx, cy, r):
    return lambda x, y: (x - cx) ** 2 + (y - cy) ** 2 <= r * r


def rect(x0, y0, x1, y1):
    return lambda x, y: x0 <= x < x1 and y0 <= y < y1


def triangle(ax, ay, bx, by, cx, cy):
    def side(px, py, qx, qy, x, y):
        return (qx - px) * (y - py) - (qy - py) * (x - px)

    def inside(x, y):
        s1 = side(ax, ay, bx, by, x, y)
        s2 = side(bx, by, cx, cy, x, y)
        s3 = side(cx, cy, ax, ay, x, y)
        return (s1 >= 0 and s2 >= 0 and s3 >= 0) or (s1 <= 0 and s2 <= 0 and s3 <= 0)

    return inside


def glyph(rows, left, top):
    """A hand-drawn bitmap glyph ('#' = ink), one character per pixel."""
    cells = {(left + c, top + r) for r, line in enumerate(rows) for c, ch in enumerate(line)
             if ch == '#'}
    return lambda x, y: (int(x), int(y)) in cells


def render(layers):
    """layers: list of (palette index, shape); later layers paint over earlier
    ones. A pixel takes the colour that covers most of its samples; the
    background (index 0) wins only when it covers more than half."""
    pixels = []
    for py in range(SIZE):
        for px in range(SIZE):
            votes = {}
            for sy in range(SUPER):
                for sx in range(SUPER):
                    x = px + (sx + 0.5) / SUPER
                    y = py + (sy + 0.5) / SUPER
                    colour = 0
                    for index, shape in layers:
                        if shape(x, y):
                            colour = index
                    votes[colour] = votes.get(colour, 0) + 1
            pixels.append(max(votes, key=lambda k: (votes[k], k != 0)))
    return pixels


QUESTION = [
    "..####..",
    ".######.",
    "##....##",
    "......##",
    ".....##.",
    "....##..",
    "...##...",
    "...##...",
    "........",
    "...##...",
    "...##...",
]

EXCLAIM = [
    "##",
    "##",
    "##",
    "##",
    "##",
    "..",
    "##",
]


def picture_disabled():
    palette = [(255, 255, 255), (176, 0, 0), (230, 20, 20), (255, 255, 255)]
    layers = [(1, disc(10, 10, 9.6)), (2, disc(10, 10, 8.4)), (3, rect(4, 8.5, 16, 11.5))]
    return palette, render(layers)


def picture_blank():
    return [(255, 255, 255), (0, 0, 0)], [0] * (SIZE * SIZE)


def picture_unknown():
    palette = [(255, 255, 255), (96, 96, 96), (150, 150, 150), (255, 255, 255)]
    layers = [(1, disc(10, 10, 9.6)), (2, disc(10, 10, 8.4)), (3, glyph(QUESTION, 6, 4))]
    return palette, render(layers)


def picture_redisable():
    palette = [(255, 255, 255), (120, 72, 0), (255, 176, 0), (0, 0, 0)]
    layers = [(1, triangle(10, 0.2, 19.8, 19.2, 0.2, 19.2)),
              (2, triangle(10, 2.6, 17.9, 18.0, 2.1, 18.0)),
              (3, glyph(EXCLAIM, 9, 7))]
    return palette, render(layers)


def lzw(indices, min_code_size):
    """GIF-flavoured LZW: variable code width starting at min_code_size + 1,
    clear code first, end-of-information last, codes packed LSB first."""
    clear = 1 << min_code_size
    end = clear + 1
    out = bytearray()
    acc = 0
    nbits = 0

    def put(code, width):
        nonlocal acc, nbits
        acc |= code << nbits
        nbits += width
        while nbits >= 8:
            out.append(acc & 0xFF)
            acc >>= 8
            nbits -= 8

    def fresh():
        return {bytes([i]): i for i in range(clear)}, end + 1, min_code_size + 1

    table, next_code, width = fresh()
    put(clear, width)
    word = bytes([indices[0]])
    for k in indices[1:]:
        longer = word + bytes([k])
        if longer in table:
            word = longer
            continue
        put(table[word], width)
        if next_code < 4096:
            table[longer] = next_code
            next_code += 1
            # The decoder adds its entry one code later, so widen only once
            # the code just assigned no longer fits.
            if next_code > (1 << width) and width < 12:
                width += 1
        else:
            put(clear, width)
            table, next_code, width = fresh()
        word = bytes([k])
    put(table[word], width)
    put(end, width)
    if nbits:
        out.append(acc & 0xFF)
    return bytes(out)


def gif(palette, pixels):
    bits = max(1, (len(palette) - 1).bit_length())
    entries = 1 << bits
    colours = palette + [(0, 0, 0)] * (entries - len(palette))
    min_code_size = max(2, bits)
    data = lzw(pixels, min_code_size)
    blocks = b"".join(bytes([len(data[i:i + 255])]) + data[i:i + 255]
                      for i in range(0, len(data), 255))
    return (b"GIF89a"
            + struct.pack("<HHBBB", SIZE, SIZE, 0x80 | (bits - 1), 0, 0)
            + b"".join(bytes(c) for c in colours)
            # Graphic control extension: index 0 is transparent.
            + b"\x21\xF9\x04\x01\x00\x00\x00\x00"
            + b"\x2C" + struct.pack("<HHHHB", 0, 0, SIZE, SIZE, 0)
            + bytes([min_code_size]) + blocks + b"\x00"
            + b"\x3B")


PICTURES = {
    "Disabled.gif": picture_disabled,
    "Blank.gif": picture_blank,
    "Unknown.gif": picture_unknown,
    "Redisable.gif": picture_redisable,
}


def main():
    target = sys.argv[1] if len(sys.argv) > 1 else os.path.dirname(os.path.abspath(__file__))
    os.makedirs(target, exist_ok=True)
    for name, draw in PICTURES.items():
        palette, pixels = draw()
        with open(os.path.join(target, name), "wb") as f:
            f.write(gif(palette, pixels))


if __name__ == "__main__":
    main()
