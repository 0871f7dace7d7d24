#!/usr/bin/env python3
"""Makes the shader path's images under assets/: the two gum textures and the gap editor's 17
icons. Deterministic (fixed seeds, no time, no platform fonts): running it again gives the same
bytes, so the committed output can be checked against it. Standard library only.

    python3 scripts/make-assets.py [output-dir]     (default: assets/ beside this script)
"""
import math
import os
import random
import struct
import sys
import zlib


def write_png(path, width, height, rgb):
    """rgb: flat list of ints 0..255, 3 per pixel, rows top-down."""
    raw = bytearray()
    for y in range(height):
        raw.append(0)  # no filter: simple and deterministic
        row = rgb[y * width * 3:(y + 1) * width * 3]
        raw.extend(bytes(row))

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    png = b"\x89PNG\r\n\x1a\n"
    png += chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
    png += chunk(b"IDAT", zlib.compress(bytes(raw), 9))
    png += chunk(b"IEND", b"")
    with open(path, "wb") as f:
        f.write(png)


def clamp8(v):
    return max(0, min(255, int(round(v))))


# ---------------------------------------------------------------------------------------------
# Gum textures

def periodic_noise(rng, width, height, cells_u, cells_v):
    """Smooth value noise on a grid that wraps in u and v, sampled at width x height."""
    grid = [[rng.random() for _ in range(cells_u)] for _ in range(cells_v)]

    def smooth(t):
        return t * t * (3 - 2 * t)

    out = [0.0] * (width * height)
    for y in range(height):
        fv = y * cells_v / height
        j0 = int(fv) % cells_v
        j1 = (j0 + 1) % cells_v
        tv = smooth(fv - int(fv))
        for x in range(width):
            fu = x * cells_u / width
            i0 = int(fu) % cells_u
            i1 = (i0 + 1) % cells_u
            tu = smooth(fu - int(fu))
            a = grid[j0][i0] + (grid[j0][i1] - grid[j0][i0]) * tu
            b = grid[j1][i0] + (grid[j1][i1] - grid[j1][i0]) * tu
            out[y * width + x] = a + (b - a) * tv
    return out


def gum_colour(width=128, height=128):
    """Attached gum: pale pink with soft mottling. The program raises texels to 1.7 and 2.2, so
    values stay high (about 200..255) to keep the gum from going dark. The pattern is symmetric
    in u about the middle, so tiles placed mirror-wise along u (as alternate gum bands are) meet
    without a seam, and it wraps in v."""
    rng = random.Random(20261123)
    octaves = [(4, 4, 0.55), (8, 8, 0.3), (16, 16, 0.15)]
    layers = [periodic_noise(rng, width, height, cu, cv) for cu, cv, _ in octaves]
    rgb = []
    for y in range(height):
        for x in range(width):
            # Mirror about the middle column: column x and width - 1 - x take the same sample.
            xm = min(x, width - 1 - x)
            m = sum(w * layer[y * width + xm] for (_, _, w), layer in zip(octaves, layers))
            m = max(0.0, min(1.0, (m - 0.25) / 0.5))
            rgb += [clamp8(252 - 14 * m), clamp8(234 - 30 * m), clamp8(230 - 28 * m)]
    return width, height, rgb


def gum_bump(width=128, height=128):
    """Tangent-space normal map (flat = 128, 128, 255) of fine, low stippling: many small soft
    dimples of random depth on a height field that wraps in both directions."""
    rng = random.Random(7)
    hgt = [0.0] * (width * height)
    for _ in range(900):
        cx, cy = rng.random() * width, rng.random() * height
        r = 0.8 + rng.random() * 1.4
        depth = 0.25 + rng.random() * 0.35
        reach = int(math.ceil(2 * r))
        for dy in range(-reach, reach + 1):
            for dx in range(-reach, reach + 1):
                px = int(cx) + dx
                py = int(cy) + dy
                d2 = ((px + 0.5 - cx) ** 2 + (py + 0.5 - cy) ** 2) / (r * r)
                if d2 < 4.0:
                    hgt[(py % height) * width + (px % width)] -= depth * math.exp(-d2)
    strength = 0.35
    rgb = []
    for y in range(height):
        for x in range(width):
            dx = hgt[y * width + (x + 1) % width] - hgt[y * width + (x - 1) % width]
            dy = hgt[((y + 1) % height) * width + x] - hgt[((y - 1) % height) * width + x]
            nx, ny, nz = -dx * strength, dy * strength, 1.0
            n = math.sqrt(nx * nx + ny * ny + nz * nz)
            nx, ny, nz = nx / n, ny / n, nz / n
            # 127.5 + 127.5 n would put flat at 128 only by rounding luck; use 128 + 127 n.
            rgb += [clamp8(128 + 127 * nx), clamp8(128 + 127 * ny), clamp8(128 + 127 * nz)]
    return width, height, rgb


# ---------------------------------------------------------------------------------------------
# Editor icons: shapes as signed distances, drawn with 4 x 4 supersampling on white. White is
# keyed out where the editor draws an icon over the scene (red above 221), so the lock icons,
# which are drawn that way, keep every colour's red at or below 221.

WHITE = (255, 255, 255)
GREEN = (2, 187, 112)
GREEN_DARK = (0, 120, 72)
RED = (214, 64, 56)
RED_DARK = (150, 30, 26)
BLUE = (64, 120, 187)
BLUE_DARK = (30, 64, 120)
GREY = (160, 166, 172)
GREY_DARK = (96, 102, 110)


def circle(cx, cy, r):
    return lambda x, y: math.hypot(x - cx, y - cy) - r


def ring(cx, cy, r, w):
    return lambda x, y: abs(math.hypot(x - cx, y - cy) - r) - w / 2


def box(x0, y0, x1, y1, radius=0.0):
    cx, cy = (x0 + x1) / 2, (y0 + y1) / 2
    hx, hy = (x1 - x0) / 2 - radius, (y1 - y0) / 2 - radius

    def d(x, y):
        qx, qy = abs(x - cx) - hx, abs(y - cy) - hy
        outside = math.hypot(max(qx, 0), max(qy, 0))
        return outside + min(max(qx, qy), 0) - radius
    return d


def segment(ax, ay, bx, by, w):
    def d(x, y):
        px, py = x - ax, y - ay
        vx, vy = bx - ax, by - ay
        t = max(0.0, min(1.0, (px * vx + py * vy) / (vx * vx + vy * vy)))
        return math.hypot(px - vx * t, py - vy * t) - w / 2
    return d


def triangle(p0, p1, p2):
    pts = [p0, p1, p2]

    def d(x, y):
        signs = set()
        best = 1e9
        for i in range(3):
            ax, ay = pts[i]
            bx, by = pts[(i + 1) % 3]
            cross = (bx - ax) * (y - ay) - (by - ay) * (x - ax)
            signs.add(cross > 0)
            best = min(best, segment(ax, ay, bx, by, 0)(x, y))
        inside = len(signs) == 1  # same side of all three edges, whichever the winding
        return -best if inside else best
    return d


def arc_top(cx, cy, r, w, open_right=False):
    """The upper half of a ring (a padlock's shackle), optionally lifted off on the right."""
    def d(x, y):
        if y <= cy:
            return abs(math.hypot(x - cx, y - cy) - r) - w / 2
        # straight legs below the arc's centre line
        legs = [cx - r]
        if not open_right:
            legs.append(cx + r)
        return min(max(abs(x - lx) - w / 2, y - (cy + r * 0.7)) for lx in legs)
    return d


def render(width, height, layers, ss=4):
    """layers: list of (distance function, colour), painted in order over white."""
    rgb = []
    for y in range(height):
        for x in range(width):
            acc = [0.0, 0.0, 0.0]
            for sy in range(ss):
                for sx in range(ss):
                    px = x + (sx + 0.5) / ss
                    py = y + (sy + 0.5) / ss
                    c = WHITE
                    for fn, colour in layers:
                        if fn(px, py) <= 0:
                            c = colour
                    acc[0] += c[0]
                    acc[1] += c[1]
                    acc[2] += c[2]
            n = ss * ss
            rgb += [clamp8(acc[0] / n), clamp8(acc[1] / n), clamp8(acc[2] / n)]
    return width, height, rgb


def button(symbol, fill, hover):
    s = 48
    c = s / 2
    layers = [(circle(c, c, 21), fill)]
    if hover:
        layers.append((ring(c, c, 20, 3.0), darker(fill)))
    bar = 3.0 if not hover else 3.6
    layers.append((segment(c - 11, c, c + 11, c, bar * 2), WHITE))
    if symbol == "add":
        layers.append((segment(c, c - 11, c, c + 11, bar * 2), WHITE))
    return render(s, s, layers)


def darker(colour):
    return tuple(int(v * 0.62) for v in colour)


def arrow(up, hover):
    s = 32
    fill = GREEN_DARK if hover else GREEN
    if up:
        tri = triangle((16, 6), (28, 24), (4, 24))
    else:
        tri = triangle((4, 8), (28, 8), (16, 26))
    layers = [(tri, fill)]
    if hover:
        layers.insert(0, (box(1, 1, 31, 31, 5), (200, 236, 220)))
    return render(s, s, layers)


def padlock(locked, hover):
    s = 32
    body = BLUE_DARK if hover else BLUE
    shackle = GREY_DARK if hover else (120, 126, 134)
    layers = []
    if hover:
        layers.append((box(1, 1, 31, 31, 5), (180, 208, 232)))
    # An open shackle is lifted, with its right leg out of the body.
    layers.append((arc_top(16, 12 if locked else 9, 6.5, 3.2, open_right=not locked), shackle))
    layers.append((box(7, 15, 25, 29, 2.5), body))
    layers.append((circle(16, 21, 2.2), (200, 210, 221)))
    layers.append((box(15.2, 21, 16.8, 25.5), (200, 210, 221)))
    return render(s, s, layers)


def card():
    return render(96, 48, [(box(1, 1, 95, 47, 8), GREEN), (box(3, 3, 93, 45, 6), (246, 252, 249))])


def list_popup():
    return render(192, 64, [(box(1, 1, 191, 63, 6), GREY), (box(2.5, 2.5, 189.5, 61.5, 5),
                                                            (248, 249, 250)),
                            (segment(10, 32, 182, 32, 1.2), (214, 218, 222))])


def step(kind):
    s = 24
    c = s / 2
    if kind == "active":
        return render(s, s, [(circle(c, c, 10), GREEN), (circle(c, c, 4), WHITE)])
    if kind == "done":
        return render(s, s, [(circle(c, c, 10), BLUE),
                             (segment(7, 12.5, 10.5, 16, 2.6), WHITE),
                             (segment(10.5, 16, 17, 8.5, 2.6), WHITE)])
    return render(s, s, [(ring(c, c, 9, 2.4), GREY)])


def main():
    out = sys.argv[1] if len(sys.argv) > 1 else os.path.join(
        os.path.dirname(os.path.abspath(__file__)), "..", "assets")
    icons = os.path.join(out, "pngofcreatemodify")
    os.makedirs(icons, exist_ok=True)

    write_png(os.path.join(out, "GumImageredwhite.png"), *gum_colour())
    write_png(os.path.join(out, "GumImagebump.png"), *gum_bump())

    table = {
        "btn_add_nor.png": button("add", GREEN, False),
        "btn_add_sel.png": button("add", GREEN_DARK, True),
        "btn_del_nor.png": button("del", RED, False),
        "btn_del_sel.png": button("del", RED_DARK, True),
        "btn_up_nor.png": arrow(True, False),
        "btn_up_sel.png": arrow(True, True),
        "btn_down_nor.png": arrow(False, False),
        "btn_down_sel.png": arrow(False, True),
        "btn_lock_nor.png": padlock(True, False),
        "btn_lock_sel.png": padlock(True, True),
        "btn_unlock_nor.png": padlock(False, False),
        "btn_unlock_sel.png": padlock(False, True),
        "gap_card_bg.png": card(),
        "list_popup_bg.png": list_popup(),
        "ipr_active_step.png": step("active"),
        "ipr_done_step.png": step("done"),
        "ipr_normal_step.png": step("normal"),
    }
    for name, image in sorted(table.items()):
        write_png(os.path.join(icons, name), *image)


if __name__ == "__main__":
    main()
