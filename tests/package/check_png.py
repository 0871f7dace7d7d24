#!/usr/bin/env python3
"""Checks a picture that an installed vxrender wrote: its size, the plain white page the program
puts behind the model, and enough of the model on it (ivory crowns and pink gums).

Usage: check_png.py PICTURE WIDTH HEIGHT
Only the standard library: the package test must run where nothing but the build's own
dependencies is installed.
"""
import struct
import sys
import zlib


def read_png(path):
    data = open(path, "rb").read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise ValueError("not a PNG file")
    pos, idat, header = 8, b"", None
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + length]
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            idat += body
        pos += 12 + length
    width, height, depth, colour, _, _, interlace = header
    if depth != 8 or colour not in (2, 6) or interlace:
        raise ValueError("only 8-bit RGB or RGBA, not interlaced")
    bpp = 3 if colour == 2 else 4
    raw = zlib.decompress(idat)
    stride = width * bpp
    rows, prev = [], bytearray(stride)
    for y in range(height):
        f = raw[y * (stride + 1)]
        line = bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            a = line[i - bpp] if i >= bpp else 0
            b = prev[i]
            c = prev[i - bpp] if i >= bpp else 0
            if f == 1:
                line[i] = (line[i] + a) & 255
            elif f == 2:
                line[i] = (line[i] + b) & 255
            elif f == 3:
                line[i] = (line[i] + (a + b) // 2) & 255
            elif f == 4:
                p = a + b - c
                pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
                pred = a if pa <= pb and pa <= pc else (b if pb <= pc else c)
                line[i] = (line[i] + pred) & 255
        rows.append(line)
        prev = line
    return width, height, bpp, rows


def main():
    path, want_w, want_h = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
    w, h, bpp, rows = read_png(path)
    problems = []
    if (w, h) != (want_w, want_h):
        problems.append("size %dx%d, expected %dx%d" % (w, h, want_w, want_h))
    else:
        corner = rows[2][2 * bpp:2 * bpp + 3]
        if min(corner) < 250:
            problems.append("corner is %s, not the white page" % list(corner))
        ivory = pink = 0
        for y in range(0, h, 4):
            for x in range(0, w, 4):
                r, g, b = rows[y][x * bpp:x * bpp + 3]
                if max(r, g, b) > 245 and min(r, g, b) > 245:
                    continue
                if r > 150 and r - g < 25 and g - b < 40 and r - b < 60:
                    ivory += 1  # crowns: light, red and green close together
                elif r > 120 and r - g >= 35 and r - b >= 25:
                    pink += 1  # gums: red well above green and blue
        if ivory < 500:
            problems.append("only %d ivory samples: no teeth" % ivory)
        if pink < 200:
            problems.append("only %d pink samples: no gums" % pink)
    for p in problems:
        print("check_png: %s: %s" % (path, p), file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
