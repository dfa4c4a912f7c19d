"""Drawing with the standard library alone: pixel art, vector shapes, BMP and PNG files.

A picture is a list of rows of (red, green, blue) colours, None where it is transparent.
"""

import math
import struct
import zlib

WHITE = (255, 255, 255)


def rgb(text):
    """The colour of an RRGGBB number in hexadecimal."""
    return tuple(int(text[i : i + 2], 16) for i in (0, 2, 4))


# ---------------------------------------------------------------------------------------
# Pixel art: text with one letter per pixel. A dot is transparent.


def pixels(size, *layers):
    """A square picture of layers (art, colour of each letter), each centred."""
    rows = [[None] * size for _ in range(size)]
    for art, colours in layers:
        lines = art.split()
        top = (size - len(lines)) // 2
        left = (size - len(lines[0])) // 2
        for y, line in enumerate(lines):
            for x, key in enumerate(line):
                if key != ".":
                    rows[top + y][left + x] = colours[key]
    return rows


def mirrored(art):
    return "\n".join(line[::-1] for line in art.split())


# ---------------------------------------------------------------------------------------
# Vector drawings. A shape is a function of (x, y) that gives the signed distance to its
# edge, negative inside, in drawing units.


def rect(x0, y0, x1, y1, radius=0.0):
    cx, cy = (x0 + x1) / 2, (y0 + y1) / 2
    hx, hy = (x1 - x0) / 2 - radius, (y1 - y0) / 2 - radius

    def distance(x, y):
        dx, dy = abs(x - cx) - hx, abs(y - cy) - hy
        return math.hypot(max(dx, 0), max(dy, 0)) + min(max(dx, dy), 0) - radius

    return distance


def circle(cx, cy, radius):
    return lambda x, y: math.hypot(x - cx, y - cy) - radius


def ellipse(cx, cy, rx, ry):
    """Close to the true distance near the edge, which is where it matters."""

    def distance(x, y):
        u, v = (x - cx) / rx, (y - cy) / ry
        k = math.hypot(u, v)
        slope = math.hypot(u / rx, v / ry)
        return k * (k - 1) / slope if slope else -min(rx, ry)

    return distance


def line(x0, y0, x1, y1, width):
    """A stroke with round ends."""
    dx, dy = x1 - x0, y1 - y0
    length2 = dx * dx + dy * dy

    def distance(x, y):
        t = ((x - x0) * dx + (y - y0) * dy) / length2 if length2 else 0
        t = min(max(t, 0), 1)
        return math.hypot(x - x0 - t * dx, y - y0 - t * dy) - width / 2

    return distance


def stroke(points, width):
    return union(*(line(*a, *b, width) for a, b in zip(points, points[1:])))


def polygon(points):
    edges = list(zip(points, points[1:] + points[:1]))

    def distance(x, y):
        inside = False
        nearest = math.inf
        for (ax, ay), (bx, by) in edges:
            dx, dy = bx - ax, by - ay
            px, py = x - ax, y - ay
            t = min(max((px * dx + py * dy) / (dx * dx + dy * dy), 0), 1)
            nearest = min(nearest, (px - t * dx) ** 2 + (py - t * dy) ** 2)
            if (ay > y) != (by > y) and px < dx * py / dy:
                inside = not inside
        return -math.sqrt(nearest) if inside else math.sqrt(nearest)

    return distance


def union(*shapes):
    return lambda x, y: min(shape(x, y) for shape in shapes)


def common(*shapes):
    return lambda x, y: max(shape(x, y) for shape in shapes)


def without(shape, *holes):
    return common(shape, *(lambda x, y, hole=hole: -hole(x, y) for hole in holes))


def inset(shape, width):
    return lambda x, y: shape(x, y) + width


def ring(shape, width):
    """The band of a width along the inner side of a shape's edge."""
    return without(shape, inset(shape, width))


def bezier(p0, p1, p2, p3, steps=24):
    """The points of a cubic curve, without its last."""
    points = []
    for i in range(steps):
        t = i / steps
        a, b, c, d = (1 - t) ** 3, 3 * t * (1 - t) ** 2, 3 * t * t * (1 - t), t**3
        points.append((a * p0[0] + b * p1[0] + c * p2[0] + d * p3[0],
                       a * p0[1] + b * p1[1] + c * p2[1] + d * p3[1]))
    return points


def vertical(top, bottom, y0, y1):
    """A paint that runs from one colour at y0 to another at y1."""

    def paint(_, y):
        t = min(max((y - y0) / (y1 - y0), 0), 1)
        return tuple(a + (b - a) * t for a, b in zip(top, bottom))

    return paint


class Drawing:
    """Layers of painted shapes on a square of some units, drawn in order."""

    def __init__(self, units, size):
        self.units = units
        self.size = size
        self.pixel = units / size  # one pixel, in units
        self.layers = []

    def fill(self, shape, paint, opacity=1.0):
        self.layers.append((shape, paint if callable(paint) else lambda x, y: paint, opacity))

    def outlined(self, shape, edge, paint, width=None):
        """Fills a shape and draws its edge inside it, one pixel wide unless a width is given."""
        self.fill(shape, edge)
        self.fill(inset(shape, width or self.pixel), paint)

    def _coverage(self, shape, x, y, samples=6):
        reach = self.pixel * 0.75
        centre = shape(x + self.pixel / 2, y + self.pixel / 2)
        if abs(centre) > reach:
            return float(centre < 0)
        step = self.pixel / samples
        hits = sum(shape(x + (i + 0.5) * step, y + (j + 0.5) * step) < 0
                   for i in range(samples) for j in range(samples))
        return hits / samples**2

    def render(self):
        """Rows of (red, green, blue, alpha), the alpha from 0 to 1."""
        rows = []
        for j in range(self.size):
            row = []
            for i in range(self.size):
                x, y = i * self.pixel, j * self.pixel
                colour, alpha = (0.0, 0.0, 0.0), 0.0  # colour weighted by alpha
                for shape, paint, opacity in self.layers:
                    cover = self._coverage(shape, x, y) * opacity
                    if cover:
                        source = paint(x + self.pixel / 2, y + self.pixel / 2)
                        colour = tuple(s * cover + c * (1 - cover)
                                       for s, c in zip(source, colour))
                        alpha = cover + alpha * (1 - cover)
                row.append((*(c / alpha for c in colour), alpha) if alpha else (0, 0, 0, 0))
            rows.append(row)
        return rows

    def opaque(self):
        """The drawing as a picture with hard outer edges, as a transparent colour asks for."""
        return [[tuple(round(c) for c in p[:3]) if p[3] >= 0.5 else None for p in row]
                for row in self.render()]


# ---------------------------------------------------------------------------------------
# File formats.


def reduced(picture, limit=15):
    """The picture with at most `limit` colours: the two nearest are merged until it fits."""
    counts = {}
    for row in picture:
        for p in row:
            if p is not None:
                counts[p] = counts.get(p, 0) + 1
    replaced = {p: p for p in counts}
    while len(counts) > limit:
        shades = list(counts)
        # The rarer colour gives way; a frequent one should not drift.
        _, loser, winner = min(
            (sum((a - b) ** 2 for a, b in zip(p, q)) * min(counts[p], counts[q]),
             *sorted((p, q), key=lambda c: counts[c]))
            for i, p in enumerate(shades) for q in shades[i + 1:])
        counts[winner] += counts.pop(loser)
        replaced = {p: winner if q == loser else q for p, q in replaced.items()}
    return [[p if p is None else replaced[p] for p in row] for row in picture]


def bmp(picture):
    """A 4-bit uncompressed bitmap; None becomes white, always the last palette entry."""
    picture = reduced(picture)
    shades = sorted({p for row in picture for p in row if p is not None})
    assert WHITE not in shades, "white is reserved for what is transparent"
    palette = shades + [(0, 0, 0)] * (15 - len(shades)) + [WHITE]
    index = {p: i for i, p in enumerate(shades)}
    index[None] = 15
    width, height = len(picture[0]), len(picture)
    stride = (width + 7) // 8 * 4
    body = b""
    for row in reversed(picture):
        nibbles = [index[p] for p in row] + [0] * (stride * 2 - width)
        body += bytes(a << 4 | b for a, b in zip(nibbles[::2], nibbles[1::2]))
    colours = b"".join(struct.pack("<BBBB", b, g, r, 0) for r, g, b in palette)
    offset = 14 + 40 + len(colours)
    return (struct.pack("<2sIHHI", b"BM", offset + len(body), 0, 0, offset) +
            struct.pack("<IiiHHIIiiII", 40, width, height, 1, 4, 0, len(body), 2835, 2835, 16, 0) +
            colours + body)


def png(rows):
    """A PNG with an alpha channel, of rows of (red, green, blue, alpha 0 to 1)."""

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    raw = b"".join(b"\0" + b"".join(bytes([*(round(c) for c in p[:3]), round(p[3] * 255)])
                                    for p in row) for row in rows)
    header = struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, 6, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
            chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))
