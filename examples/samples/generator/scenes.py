"""The little pictures that the samples show. Every scene is wider than tall, has its light in the top
left corner and a photo corner of its own colour in each corner, so that a wrong turn or mirror shows."""

import math
import random

import numpy
from PIL import Image, ImageDraw, ImageFilter

# Scenes are drawn in a space 3 units wide and 2 tall, y down, and at three times the final size.
WIDE, TALL, OVERSAMPLING = 3.0, 2.0, 3

CORNERS = {
    "topLeft": (214, 64, 69, 255),
    "topRight": (46, 160, 92, 255),
    "bottomLeft": (47, 98, 190, 255),
    "bottomRight": (245, 185, 55, 255),
}
OTHER_CORNERS = {
    "topLeft": (30, 30, 34, 255),
    "topRight": (160, 60, 170, 255),
    "bottomLeft": (240, 240, 236, 255),
    "bottomRight": (20, 150, 165, 255),
}


class Canvas:
    def __init__(self, width, seed):
        self.unit = width * OVERSAMPLING / WIDE
        self.size = (width * OVERSAMPLING, width * 2 // 3 * OVERSAMPLING)
        self.image = Image.new("RGBA", self.size, (0, 0, 0, 0))
        self.random = random.Random(seed)

    def layer(self, draw_on, blur=0.0, ground=(0, 0, 0)):
        """Draws on a transparent sheet and lays it over the picture; a blur fades towards `ground`."""
        sheet = Image.new("RGBA", self.size, (*ground, 0))
        draw_on(ImageDraw.Draw(sheet))
        if blur:
            sheet = sheet.filter(ImageFilter.GaussianBlur(blur * self.unit))
        self.image = Image.alpha_composite(self.image, sheet)

    def scaled(self, points):
        return [(x * self.unit, y * self.unit) for x, y in points]

    def polygon(self, points, colour, blur=0.0):
        self.layer(lambda draw: draw.polygon(self.scaled(points), fill=colour), blur, colour[:3])

    def box(self, left, top, right, bottom, colour):
        self.polygon([(left, top), (right, top), (right, bottom), (left, bottom)], colour)

    def disc(self, x, y, radius, colour, blur=0.0, flat=1.0):
        corners = self.scaled([(x - radius, y - radius * flat), (x + radius, y + radius * flat)])
        self.layer(lambda draw: draw.ellipse([*corners[0], *corners[1]], fill=colour), blur, colour[:3])

    def sky(self, *stops):
        """Colours from top to bottom, evenly spaced."""
        rows = numpy.linspace(0, len(stops) - 1, self.size[1])
        column = numpy.stack([numpy.interp(rows, range(len(stops)), [stop[i] for stop in stops])
                              for i in range(3)], axis=1)
        pixels = numpy.repeat(column[:, None, :], self.size[0], axis=1).round().astype(numpy.uint8)
        self.image = Image.fromarray(pixels, "RGB").convert("RGBA")

    def sun(self, x, y, radius, colour):
        self.disc(x, y, radius * 2.6, (*colour, 70), blur=radius * 0.8)
        self.disc(x, y, radius * 1.5, (*colour, 110), blur=radius * 0.3)
        self.disc(x, y, radius, (*colour, 255))

    def ridge(self, base, height, colour, sharp=1.0):
        """A range of hills or mountains down to the bottom edge; returns its outline."""
        waves = [(self.random.uniform(0.7, 1.3) * 2 ** k, self.random.uniform(0, 7), 0.62 ** k * sharp ** k)
                 for k in range(7)]
        total = sum(weight for _, _, weight in waves)
        def level(x):
            return base - height * sum(w * abs(math.sin(f * x + p)) for f, p, w in waves) / total
        outline = [(i * WIDE / 240, level(i * WIDE / 240)) for i in range(241)]
        self.polygon(outline + [(WIDE, TALL), (0, TALL)], colour)
        return level

    def pine(self, x, foot, height, colour):
        for step in range(4):
            top, half = foot - height * (1 - step * 0.2), height * (0.10 + 0.055 * step)
            self.polygon([(x, top), (x + half, top + height * 0.36), (x - half, top + height * 0.36)], colour)
        self.box(x - height * 0.025, foot - height * 0.1, x + height * 0.025, foot, colour)

    def stars(self, count, bottom):
        for _ in range(count):
            x, y = self.random.uniform(0, WIDE), self.random.uniform(0, bottom)
            self.disc(x, y, self.random.uniform(0.004, 0.011), (255, 255, 240, self.random.randint(120, 255)))

    def letter(self):
        """A big F with an arrow that points up: neither looks like itself when turned or mirrored."""
        f = [(1.25, 0.5), (1.78, 0.5), (1.78, 0.68), (1.45, 0.68), (1.45, 0.9), (1.7, 0.9), (1.7, 1.07),
             (1.45, 1.07), (1.45, 1.5), (1.25, 1.5)]
        arrow = [(2.1, 0.5), (2.3, 0.8), (2.16, 0.8), (2.16, 1.5), (2.04, 1.5), (2.04, 0.8), (1.9, 0.8)]
        for shape in (f, arrow):
            self.polygon([(x + 0.025, y + 0.03) for x, y in shape], (0, 0, 0, 110), blur=0.02)
            self.polygon(shape, (255, 255, 255, 240))

    def pixels(self, corners=CORNERS, frame=True):
        """The finished picture: floats 0 to 1, straight alpha, at the final size."""
        if frame:
            edge, white = 0.045, (250, 247, 240, 255)
            self.box(0, 0, WIDE, edge, white)
            self.box(0, TALL - edge, WIDE, TALL, white)
            self.box(0, 0, edge, TALL, white)
            self.box(WIDE - edge, 0, WIDE, TALL, white)
        leg = 0.34
        for name, colour in corners.items():
            x, inward_x = (0, 1) if name.endswith("Left") else (WIDE, -1)
            y, inward_y = (0, 1) if name.startswith("top") else (TALL, -1)
            triangle = [(x, y), (x + leg * inward_x, y), (x, y + leg * inward_y)]
            mask = Image.new("L", self.size, 0)
            ImageDraw.Draw(mask).polygon(self.scaled(triangle), fill=255)
            self.image.paste(Image.new("RGBA", self.size, colour), mask=mask)
        large = numpy.asarray(self.image).astype(numpy.float64) / 255
        large[..., :3] *= large[..., 3:]
        height, width = self.size[1] // OVERSAMPLING, self.size[0] // OVERSAMPLING
        small = large.reshape(height, OVERSAMPLING, width, OVERSAMPLING, 4).mean(axis=(1, 3))
        small[..., :3] /= numpy.maximum(small[..., 3:], 1e-9)
        return small


def mountains(canvas):
    canvas.sky((52, 84, 148), (120, 150, 200), (250, 196, 150), (255, 226, 180))
    canvas.sun(0.62, 0.62, 0.17, (255, 238, 190))
    canvas.ridge(1.15, 0.62, (132, 140, 184, 255), 1.1)
    canvas.ridge(1.3, 0.45, (92, 100, 152, 255), 1.05)
    canvas.ridge(1.5, 0.34, (58, 74, 116, 255))
    canvas.polygon([(0, 1.55), (WIDE, 1.5), (WIDE, TALL), (0, TALL)], (236, 190, 160, 255))
    for i in range(9):
        y = 1.58 + i * 0.045
        half = 0.30 - i * 0.02
        canvas.disc(0.62, y, half, (255, 240, 205, 130), flat=0.03)
    for i in range(16):
        x = 1.55 + i * 0.1
        canvas.pine(x, 1.82 + canvas.random.uniform(-0.06, 0.1), canvas.random.uniform(0.35, 0.62), (26, 44, 60, 255))


def lighthouse(canvas):
    canvas.sky((38, 44, 92), (110, 84, 140), (236, 130, 120), (255, 190, 130))
    canvas.stars(30, 0.6)
    canvas.polygon([(2.32, 0.52), (0.0, 0.30), (0.0, 0.95)], (255, 240, 190, 90), blur=0.03)
    canvas.polygon([(0, 1.3), (WIDE, 1.3), (WIDE, TALL), (0, TALL)], (62, 70, 122, 255))
    for i in range(26):
        x, y = canvas.random.uniform(0, 2.2), canvas.random.uniform(1.34, 1.95)
        canvas.disc(x, y, canvas.random.uniform(0.08, 0.2), (250, 160, 140, 90), flat=0.04)
    canvas.polygon([(1.7, TALL), (1.95, 1.5), (2.15, 1.32), (2.5, 1.28), (2.75, 1.4), (WIDE, 1.36), (WIDE, TALL)],
                   (44, 40, 62, 255))
    canvas.polygon([(2.2, 1.34), (2.25, 0.62), (2.39, 0.62), (2.44, 1.34)], (246, 240, 232, 255))
    for top in (0.76, 1.0, 1.22):
        canvas.polygon([(2.245 - (top - 0.62) * 0.07, top), (2.395 + (top - 0.62) * 0.07, top),
                        (2.403 + (top - 0.62) * 0.07, top + 0.1), (2.237 - (top - 0.62) * 0.07, top + 0.1)],
                       (204, 66, 62, 255))
    canvas.box(2.2, 0.58, 2.44, 0.62, (60, 52, 72, 255))
    canvas.box(2.26, 0.46, 2.38, 0.58, (255, 236, 160, 255))
    canvas.polygon([(2.23, 0.46), (2.32, 0.34), (2.41, 0.46)], (204, 66, 62, 255))


def city(canvas):
    canvas.sky((18, 22, 54), (44, 40, 96), (112, 70, 130), (226, 120, 120))
    canvas.stars(40, 0.8)
    canvas.disc(0.72, 0.5, 0.17, (250, 244, 220, 255))
    canvas.disc(0.79, 0.46, 0.15, (32, 31, 75, 255))
    for colour, low, high, lit in (((66, 52, 104, 255), 0.8, 1.25, 0), ((34, 30, 66, 255), 1.0, 1.5, 1)):
        x = -0.05
        while x < WIDE:
            width, top = canvas.random.uniform(0.14, 0.3), canvas.random.uniform(low, high)
            canvas.box(x, top, x + width, TALL, colour)
            if canvas.random.random() < 0.3:
                canvas.box(x + width * 0.46, top - 0.16, x + width * 0.54, top, colour)
            rows = numpy.arange(top + 0.06, 1.72, 0.09) if lit else []
            for y in rows:
                for column in numpy.arange(x + 0.035, x + width - 0.05, 0.065):
                    if canvas.random.random() < 0.55:
                        canvas.box(column, y, column + 0.032, y + 0.045, (255, 214, 130, 235))
            x += width + 0.012
    canvas.box(0, 1.76, WIDE, TALL, (20, 20, 46, 255))
    for i in range(60):
        canvas.disc(canvas.random.uniform(0, WIDE), canvas.random.uniform(1.79, 1.97), 0.05, (255, 200, 130, 90), flat=0.07)


def forest(canvas):
    canvas.sky((196, 222, 216), (222, 236, 220), (246, 240, 214))
    canvas.sun(0.6, 0.45, 0.13, (255, 250, 226))
    for depth, (colour, foot, low, high) in enumerate((((160, 194, 184, 255), 1.25, 0.3, 0.5),
                                                       ((108, 158, 146, 255), 1.5, 0.45, 0.7),
                                                       ((58, 112, 104, 255), 1.78, 0.6, 0.95),
                                                       ((22, 62, 62, 255), 2.08, 0.8, 1.35))):
        canvas.box(0, foot - 0.06, WIDE, TALL, colour)
        x = -0.1
        while x < WIDE + 0.1:
            shorter = 0.6 if depth == 3 and 0.5 < x < 1.7 else 1.0
            canvas.pine(x, foot, canvas.random.uniform(low, high) * shorter, colour)
            x += canvas.random.uniform(0.1, 0.2) * (1 + depth * 0.3)


def dunes(canvas):
    canvas.sky((64, 148, 196), (150, 204, 220), (252, 232, 190))
    canvas.sun(0.65, 0.5, 0.16, (255, 246, 210))
    for base, height, colour in ((1.35, 0.3, (240, 190, 126, 255)), (1.55, 0.3, (226, 158, 96, 255)),
                                 (1.85, 0.42, (196, 118, 72, 255))):
        canvas.ridge(base, height, colour, 0.55)
    def cactus(x, foot, h):
        green = (46, 98, 74, 255)
        canvas.box(x - 0.05 * h, foot - h, x + 0.05 * h, foot, green)
        canvas.disc(x, foot - h, 0.05 * h, green)
        for side, up in ((-1, 0.55), (1, 0.7)):
            arm = x + side * 0.2 * h
            canvas.box(min(x, arm), foot - h * (up - 0.2), max(x, arm), foot - h * (up - 0.12), green)
            canvas.box(arm - 0.04 * h, foot - h * (up + 0.12), arm + 0.04 * h, foot - h * (up - 0.2), green)
            canvas.disc(arm, foot - h * (up + 0.12), 0.04 * h, green)
    cactus(2.25, 1.75, 0.75)
    cactus(2.6, 1.82, 0.45)


def sunset(canvas):
    canvas.sky((70, 52, 120), (190, 80, 120), (250, 140, 90), (255, 210, 120))
    canvas.sun(0.8, 1.02, 0.2, (255, 240, 170))
    canvas.box(0, 1.2, WIDE, TALL, (88, 52, 112, 255))
    for i in range(17):
        y = 1.22 + i * 0.046
        canvas.disc(0.8 + canvas.random.uniform(-0.03, 0.03), y, 0.24 - i * 0.006, (255, 200, 120, 190), flat=0.05)
    hull = (40, 24, 56, 255)
    canvas.polygon([(1.9, 1.5), (2.55, 1.5), (2.45, 1.64), (2.02, 1.64)], hull)
    canvas.box(2.2, 0.62, 2.215, 1.5, hull)
    canvas.polygon([(2.19, 0.66), (2.19, 1.45), (1.82, 1.45)], (255, 236, 214, 255))
    canvas.polygon([(2.23, 0.74), (2.23, 1.45), (2.56, 1.45)], (244, 190, 170, 255))
    canvas.disc(2.2, 1.7, 0.35, (40, 24, 56, 120), flat=0.06)


def aurora(canvas):
    canvas.sky((8, 14, 40), (14, 40, 74), (30, 90, 110))
    canvas.stars(90, 1.3)
    for shift, colour in ((0.0, (110, 240, 170, 90)), (0.28, (90, 220, 200, 70)), (0.55, (170, 120, 230, 60))):
        top = [(x / 40 * WIDE, 0.34 + shift * 0.6 + 0.14 * math.sin(x / 6 + shift * 9)) for x in range(41)]
        bottom = [(x, y + 0.42 + 0.1 * math.sin(x * 3)) for x, y in reversed(top)]
        canvas.polygon(top + bottom, colour, blur=0.06)
        canvas.polygon(bottom[:41] + [(x, y + 0.05) for x, y in reversed(bottom)], colour, blur=0.02)
    canvas.ridge(1.65, 0.35, (14, 34, 56, 255), 1.1)
    canvas.box(0, 1.68, WIDE, TALL, (206, 222, 236, 255))
    for i in range(7):
        canvas.pine(0.3 + i * 0.13 + canvas.random.uniform(-0.03, 0.03), 1.75, canvas.random.uniform(0.3, 0.5), (10, 24, 40, 255))
    canvas.box(2.05, 1.48, 2.5, 1.76, (74, 44, 36, 255))
    canvas.polygon([(1.97, 1.5), (2.275, 1.27), (2.58, 1.5)], (230, 238, 246, 255))
    canvas.box(2.3, 1.57, 2.42, 1.67, (255, 210, 110, 255))
    canvas.box(2.12, 1.57, 2.22, 1.76, (40, 24, 20, 255))


def village(canvas):
    canvas.sky((96, 168, 220), (170, 212, 236), (232, 242, 240))
    canvas.sun(0.55, 0.42, 0.13, (255, 248, 210))
    canvas.ridge(1.25, 0.4, (140, 180, 150, 255))
    colours = [(222, 104, 84), (240, 190, 96), (112, 160, 178), (236, 224, 200), (190, 120, 150), (130, 170, 120)]
    x, index = 0.1, 0
    while x < 2.75:
        width, top = canvas.random.uniform(0.3, 0.42), canvas.random.uniform(0.95, 1.25)
        canvas.box(x, top, x + width, 1.62, (*colours[index % len(colours)], 255))
        canvas.polygon([(x - 0.03, top), (x + width / 2, top - 0.22), (x + width + 0.03, top)], (120, 62, 56, 255))
        for row in numpy.arange(top + 0.09, 1.35, 0.22):
            for column in (0.2, 0.6):
                left = x + width * column
                canvas.box(left, row, left + width * 0.2, row + 0.12, (250, 248, 236, 255))
                canvas.box(left + 0.012, row + 0.012, left + width * 0.2 - 0.012, row + 0.108, (74, 96, 120, 255))
        canvas.box(x + width * 0.4, 1.43, x + width * 0.6, 1.62, (86, 56, 44, 255))
        x, index = x + width, index + 1
    canvas.box(0, 1.62, WIDE, TALL, (70, 130, 160, 255))
    canvas.box(0, 1.6, WIDE, 1.66, (150, 140, 130, 255))
    for i in range(40):
        canvas.disc(canvas.random.uniform(0, WIDE), canvas.random.uniform(1.7, 1.97), 0.09, (200, 228, 236, 120), flat=0.05)


def tulips(canvas):
    canvas.sky((88, 160, 222), (186, 218, 238), (238, 240, 224))
    canvas.sun(0.55, 0.42, 0.13, (255, 246, 200))
    colours = [(216, 60, 70), (244, 180, 60), (236, 120, 150), (150, 70, 150), (240, 236, 220), (226, 96, 50)]
    for i in range(26):
        left, right = -5.5 + i * 0.62, -5.5 + (i + 1) * 0.62
        canvas.polygon([(1.2 + left * 0.12, 1.12), (1.2 + right * 0.12, 1.12), (1.2 + right, TALL), (1.2 + left, TALL)],
                       (*colours[i % 6], 255))
    canvas.box(0, 1.06, WIDE, 1.13, (96, 140, 84, 255))
    canvas.polygon([(2.14, 1.12), (2.2, 0.62), (2.4, 0.62), (2.46, 1.12)], (112, 74, 58, 255))
    canvas.polygon([(2.17, 0.64), (2.3, 0.46), (2.43, 0.64)], (78, 50, 46, 255))
    for angle in (20, 110, 200, 290):
        a, b = math.radians(angle), math.radians(angle + 90)
        x, y = 2.3, 0.62
        tip = (x + 0.5 * math.cos(a), y + 0.5 * math.sin(a))
        canvas.polygon([(x, y), tip, (tip[0] + 0.1 * math.cos(b), tip[1] + 0.1 * math.sin(b)),
                        (x + 0.06 * math.cos(b), y + 0.06 * math.sin(b))], (246, 240, 228, 255))
    canvas.disc(2.3, 0.62, 0.035, (60, 40, 40, 255))


def bridge(canvas):
    canvas.sky((120, 130, 146), (180, 186, 196), (226, 228, 230))
    canvas.sun(0.6, 0.45, 0.14, (250, 250, 250))
    canvas.ridge(1.2, 0.3, (150, 156, 166, 255))
    canvas.box(0, 1.42, WIDE, TALL, (110, 120, 134, 255))
    steel = (52, 56, 66, 255)
    canvas.box(0, 1.26, WIDE, 1.32, steel)
    for tower in (0.95, 2.3):
        for offset in (-0.07, 0.05):
            canvas.box(tower + offset, 0.55, tower + offset + 0.035, 1.6, steel)
        for y in (0.6, 0.85, 1.1):
            canvas.box(tower - 0.07, y, tower + 0.085, y + 0.035, steel)
    def cable(x):
        return 1.2 - 0.62 * (abs(x - 1.625) / 0.675) ** 2 if 0.95 <= x <= 2.3 else 0.58 + 0.68 * min(
            1, (0.95 - x if x < 0.95 else x - 2.3) / 0.95)
    line = [(i * WIDE / 120, cable(i * WIDE / 120)) for i in range(121)]
    canvas.polygon(line + [(x, y + 0.025) for x, y in reversed(line)], steel)
    for x, y in line[::3]:
        canvas.box(x, y, x + 0.008, 1.28, steel)
    for i in range(30):
        canvas.disc(canvas.random.uniform(0, WIDE), canvas.random.uniform(1.5, 1.96), 0.12, (200, 206, 214, 90), flat=0.04)


def planet(canvas):
    canvas.sky((6, 8, 24), (20, 14, 48), (44, 24, 74))
    canvas.stars(110, TALL)
    canvas.sun(0.55, 0.42, 0.09, (255, 250, 230))
    centre, radius = (1.75, 1.15), 0.55
    canvas.disc(*centre, radius, (214, 150, 110, 255))
    ball = canvas.image.copy()
    for i, colour in enumerate(((236, 190, 140, 255), (190, 118, 92, 255), (244, 214, 170, 255), (170, 100, 90, 255))):
        canvas.box(1.1, 0.78 + i * 0.2, 2.4, 0.86 + i * 0.2, colour)
    canvas.disc(2.2, 1.5, 0.62, (10, 6, 26, 190), blur=0.16)
    mask = Image.new("L", canvas.size, 0)
    edge = canvas.scaled([(centre[0] - radius, centre[1] - radius), (centre[0] + radius, centre[1] + radius)])
    ImageDraw.Draw(mask).ellipse([*edge[0], *edge[1]], fill=255)
    banded, canvas.image = canvas.image, ball
    canvas.image.paste(banded, mask=mask)
    ring = [(centre[0] + 0.95 * math.cos(t / 60 * math.pi), centre[1] - 0.1 + 0.28 * math.sin(t / 60 * math.pi)
             - 0.22 * math.cos(t / 60 * math.pi)) for t in range(61)]
    inner = [(centre[0] + (x - centre[0]) * 0.8, centre[1] + (y - centre[1]) * 0.8) for x, y in reversed(ring)]
    canvas.polygon(ring + inner, (240, 220, 190, 200))


def balloons(canvas):
    """On a transparent ground, with soft shadows, so that every strength of alpha occurs."""
    def balloon(x, y, r, colours):
        canvas.disc(x + 0.05, y + 0.08, r, (0, 0, 0, 120), blur=0.06)
        for i, share in enumerate((1.0, 0.72, 0.42, 0.14)):
            box = canvas.scaled([(x - r * share, y - r), (x + r * share, y + r)])
            canvas.layer(lambda draw, b=box, c=colours[i % 2]: draw.ellipse([*b[0], *b[1]], fill=(*c, 255)))
        canvas.polygon([(x - r * 0.5, y + r * 0.86), (x + r * 0.5, y + r * 0.86), (x + r * 0.16, y + r * 1.3),
                        (x - r * 0.16, y + r * 1.3)], (*colours[0], 255))
        canvas.box(x - r * 0.16, y + r * 1.4, x + r * 0.16, y + r * 1.66, (110, 74, 50, 255))
        for side in (-0.14, 0.12):
            canvas.box(x + r * side, y + r * 1.28, x + r * side + 0.012, y + r * 1.42, (110, 74, 50, 255))
    canvas.sun(0.5, 0.5, 0.12, (255, 214, 110))
    balloon(1.35, 0.8, 0.46, ((214, 72, 72), (250, 226, 190)))
    balloon(2.2, 1.0, 0.3, ((60, 120, 180), (240, 240, 236)))
    balloon(0.72, 1.25, 0.2, ((230, 160, 60), (120, 70, 130)))


def island(canvas):
    """Few flat colours on a transparent sky."""
    canvas.disc(0.62, 0.55, 0.2, (255, 214, 90, 255))
    canvas.box(0, 1.35, WIDE, TALL, (64, 150, 190, 255))
    canvas.box(0, 1.6, WIDE, TALL, (44, 116, 164, 255))
    canvas.disc(1.75, 1.5, 0.85, (240, 214, 150, 255), flat=0.28)
    canvas.box(0, 1.66, WIDE, TALL, (44, 116, 164, 255))
    canvas.polygon([(1.7, 1.4), (1.84, 0.75), (1.92, 0.75), (1.82, 1.4)], (140, 92, 60, 255))
    for dx, dy in ((-0.55, 0.1), (-0.42, -0.22), (0.5, -0.18), (0.58, 0.12), (0.25, 0.36), (-0.28, 0.36)):
        canvas.polygon([(1.88, 0.76), (1.88 + dx * 0.5, 0.66 + dy * 0.6), (1.88 + dx, 0.8 + dy),
                        (1.88 + dx * 0.5, 0.76 + dy * 0.6)], (50, 140, 84, 255))
    canvas.disc(1.84, 0.84, 0.05, (110, 70, 44, 255))
    canvas.disc(1.93, 0.85, 0.05, (110, 70, 44, 255))


def draw(scene, width, seed=1, letter=False, corners=CORNERS, frame=True):
    canvas = Canvas(width, seed)
    scene(canvas)
    if letter:
        canvas.letter()
    return canvas.pixels(corners, frame)
