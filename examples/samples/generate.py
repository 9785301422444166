#!/usr/bin/env python3
"""Makes the sample pictures in this folder, and expected.json, which says what each of them is.

Needs Pillow, NumPy and heif-enc. It knows nothing of the library it is a witness for: what is expected
comes from the drawing, before any encoding. With the same versions of those three the bytes are the same.
"""

import io
import json
import struct
import tempfile
import zlib
from pathlib import Path

import numpy
from PIL import Image

from generator import containers, scenes

HERE = Path(__file__).resolve().parent
WIDTH = 360


def upright(stored, orientation):
    """What EXIF says to do with a stored picture, as array operations."""
    return {
        1: lambda a: a,
        2: lambda a: a[:, ::-1],
        3: lambda a: a[::-1, ::-1],
        4: lambda a: a[::-1],
        5: lambda a: a.swapaxes(0, 1),
        6: lambda a: numpy.rot90(a, -1),
        7: lambda a: numpy.rot90(a, 2).swapaxes(0, 1),
        8: lambda a: numpy.rot90(a, 1),
    }[orientation](stored)


def turned(picture, orientation):
    """The stored picture that `orientation` makes upright again."""
    return upright(picture, {6: 8, 8: 6}.get(orientation, orientation))


def equivalent_orientation(turns):
    """The EXIF value that does what irot and imir do one after the other."""
    probe = numpy.arange(6).reshape(2, 3)
    result = probe
    for kind, value in turns:
        result = numpy.rot90(result, value) if kind == "irot" else (result[:, ::-1] if value else result[::-1])
    return next(v for v in range(1, 9) if numpy.array_equal(upright(probe, v), result))


def bytes8(picture, channels=3):
    return (picture[..., :channels] * 255).round().astype(numpy.uint8)


def bytes16(picture, channels=3):
    return (picture[..., :channels] * 65535).round().astype(numpy.uint16)


def jpeg(image, exif=None, **options):
    out = io.BytesIO()
    image.save(out, "JPEG", quality=84, optimize=True, **options)
    data = out.getvalue()
    if not exif:
        return data
    body = b"Exif\0\0" + exif
    return data[:2] + b"\xff\xe1" + struct.pack(">H", len(body) + 2) + body + data[2:]


def rgb(picture):
    return Image.fromarray(bytes8(picture))


class Samples:
    def __init__(self):
        self.facts = []

    def write(self, name, data):
        path = HERE / name
        path.parent.mkdir(exist_ok=True)
        path.write_bytes(data)

    def add(self, name, kind, data, picture, orientation=1, tolerance=24, **more):
        """Writes a readable sample whose upright picture is `picture`."""
        self.write(name, data)
        height, width = turned(picture, orientation).shape[:2]
        self.facts.append({
            "path": name, "type": kind, "readable": True, "width": width, "height": height,
            "orientation": orientation, "uprightWidth": picture.shape[1], "uprightHeight": picture.shape[0],
            "corners": corners_of(picture), "tolerance": tolerance, **more})

    def add_unreadable(self, name, kind, data, why):
        self.write(name, data)
        self.facts.append({"path": name, "type": kind, "readable": False, "why": why})


def corners_of(picture):
    """The mean RGBA of the square in each corner whose side is a thirtieth of the shorter side."""
    side = max(1, min(picture.shape[:2]) // 30)
    near, far = slice(None, side), slice(-side, None)
    places = {"topLeft": (near, near), "topRight": (near, far), "bottomLeft": (far, near), "bottomRight": (far, far)}
    return {name: [round(float(v) * 255) for v in picture[rows, columns].reshape(-1, 4).mean(axis=0)]
            for name, (rows, columns) in places.items()}


def add_orientations(samples):
    picture = scenes.draw(scenes.mountains, WIDTH, seed=1, letter=True)
    for value in range(1, 9):
        exif = containers.exif_block(orientation=value, description=f"Mountains, stored for orientation {value}",
                                     date=f"2024:06:21 05:1{value}:00", order="<>"[value % 2])
        samples.add(f"orientation-{value}.jpg", "public.jpeg", jpeg(rgb(turned(picture, value)), exif), picture, value)


def add_jpegs(samples):
    picture = scenes.draw(scenes.city, WIDTH, seed=5)
    samples.add("progressive.jpg", "public.jpeg", jpeg(rgb(picture), progressive=True), picture)

    grey = scenes.draw(scenes.bridge, WIDTH, seed=4)
    luma = rgb(grey).convert("L")
    seen = numpy.dstack([numpy.asarray(luma) / 255.0] * 3 + [grey[..., 3]])
    samples.add("grey.jpg", "public.jpeg", jpeg(luma), seen)

    picture = scenes.draw(scenes.tulips, WIDTH, seed=6)
    black = 1 - picture[..., :3].max(axis=2, keepdims=True)
    inks = (1 - picture[..., :3] - black) / numpy.maximum(1 - black, 1e-9)
    cmyk = Image.frombytes("CMYK", picture.shape[1::-1], bytes8(numpy.dstack([inks, black]), 4).tobytes())
    samples.add("cmyk.jpg", "public.jpeg", jpeg(cmyk), picture, tolerance=40)

    picture = scenes.draw(scenes.dunes, WIDTH, seed=3)
    other = scenes.draw(scenes.aurora, 120, seed=2, corners=scenes.OTHER_CORNERS, frame=False)
    exif = containers.exif_block(orientation=1, thumbnail=jpeg(rgb(other)))
    samples.add("embedded-thumbnail.jpg", "public.jpeg", jpeg(rgb(picture), exif), picture,
                thumbnail={"width": other.shape[1], "height": other.shape[0], "corners": corners_of(other)})


def add_pngs(samples):
    faint = {**scenes.CORNERS, "bottomRight": (245, 185, 55, 128)}
    picture = scenes.draw(scenes.balloons, WIDTH, seed=1, corners=faint, frame=False)
    samples.add("alpha.png", "public.png", containers.png(bytes8(picture, 4)), picture, tolerance=8)

    picture = scenes.draw(scenes.planet, 240, seed=8)
    samples.add("sixteen-bit.png", "public.png", containers.png(bytes16(picture)), picture, tolerance=8)

    picture = scenes.draw(scenes.forest, WIDTH, seed=2)
    samples.add("interlaced.png", "public.png", containers.png(bytes8(picture), interlaced=True), picture, tolerance=8)

    picture = scenes.draw(scenes.island, WIDTH, seed=1, frame=False)
    solid = Image.fromarray(bytes8(picture)).quantize(31, method=Image.Quantize.MEDIANCUT, dither=Image.Dither.NONE)
    indices = numpy.where(picture[..., 3] < 0.5, 0, numpy.asarray(solid) + 1).astype(numpy.uint8)
    colours = numpy.vstack([[0, 0, 0], numpy.asarray(solid.getpalette()[:31 * 3]).reshape(-1, 3)])
    samples.add("palette.png", "public.png",
                containers.png(indices[..., None], palette=colours, transparency=numpy.array([0])), picture, tolerance=16)

    picture = scenes.draw(scenes.village, 240, seed=7, letter=True)
    samples.add("exif.png", "public.png",
                containers.png(bytes8(turned(picture, 6)), exif=containers.exif_block(orientation=6)), picture, 6, 8)


def add_tiffs(samples):
    def tiff(images, **options):
        out = io.BytesIO()
        images[0].save(out, "TIFF", save_all=True, append_images=images[1:], **options)
        return out.getvalue()

    picture = scenes.draw(scenes.aurora, 210, seed=2)
    samples.add("sixteen-bit.tiff", "public.tiff", containers.tiff16(bytes16(picture)), picture, tolerance=8)

    picture = scenes.draw(scenes.sunset, WIDTH, seed=3)
    samples.add("lzw.tiff", "public.tiff", tiff([rgb(picture)], compression="tiff_lzw"), picture, tolerance=8)

    pages = [scenes.draw(scene, 210, seed=5) for scene in (scenes.city, scenes.bridge, scenes.tulips)]
    samples.add("pages.tiff", "public.tiff", tiff([rgb(page) for page in pages], compression="tiff_adobe_deflate"),
                pages[0], tolerance=8, pages=3)

    picture = scenes.draw(scenes.dunes, 240, seed=9, letter=True)
    samples.add("turned.tiff", "public.tiff",
                tiff([rgb(turned(picture, 8))], compression="tiff_adobe_deflate", tiffinfo={274: 8}), picture, 8, 8)


def add_heics(samples):
    """Where the container turns the picture, that is the whole truth and EXIF is not asked; EXIF holds
    where the container says nothing. Nothing is ever turned twice."""
    quarter, flip = ("irot", 3), ("imir", 1)
    kinds = [
        ("plain", scenes.lighthouse, (), None),
        ("irot", scenes.village, (quarter,), None),
        ("irot-180", scenes.sunset, (("irot", 2),), None),
        ("imir", scenes.aurora, (flip,), None),
        ("imir-upside-down", scenes.tulips, (("imir", 0),), None),
        ("irot-imir", scenes.forest, (("irot", 1), flip), None),
        ("exif", scenes.lighthouse, (), 6),
        ("exif-mirrored", scenes.city, (), 5),
        ("irot-and-exif", scenes.planet, (quarter,), 6),
        ("irot-against-exif", scenes.bridge, (quarter,), 3),
    ]
    for name, scene, turns, exif_value in kinds:
        picture = scenes.draw(scene, WIDTH, seed=4, letter=True)
        value = equivalent_orientation(turns) if turns else exif_value or 1
        with tempfile.NamedTemporaryFile(suffix=".png") as file:
            rgb(turned(picture, value)).save(file, "PNG")
            file.flush()
            stored = containers.encoded_picture(file.name)
        exif = containers.exif_block(orientation=exif_value, order=">") if exif_value else None
        samples.add(f"{name}.heic", "public.heic", containers.heic(stored, turns, exif), picture, value)


def add_unreadable(samples, whole):
    samples.add_unreadable("unreadable/truncated.jpg", "public.jpeg", whole[:len(whole) * 2 // 5],
                           "ends in the middle of the picture")
    samples.add_unreadable("unreadable/empty.jpg", "public.jpeg", b"", "has no bytes")
    samples.add_unreadable("unreadable/text.png", "public.png",
                           b"This is no picture, whatever its name says.\n", "is text")
    samples.add_unreadable("unreadable/hostile.png", "public.png", claiming(2_000_000_000),
                           "claims 16 exabytes of pixels")
    samples.add_unreadable("unreadable/huge.png", "public.png", claiming(60_000),
                           "claims 14 gigabytes of pixels and ends early")


def claiming(side):
    """The start of a PNG whose header claims a square of that side."""
    header = struct.pack(">IIBBBBB", side, side, 8, 6, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + containers.png_chunk(b"IHDR", header)
            + containers.png_chunk(b"IDAT", zlib.compress(bytes(4096))) + containers.png_chunk(b"IEND", b""))


def add_places(samples):
    """Pictures where a walk over the folder has a choice to make."""
    picture = scenes.draw(scenes.sunset, 240, seed=7)
    samples.add("travel/harbour.jpg", "public.jpeg", jpeg(rgb(picture)), picture, place="sub-folder")
    picture = scenes.draw(scenes.village, 240, seed=3)
    samples.add("travel/village.jpg", "public.jpeg", jpeg(rgb(picture)), picture, place="sub-folder")
    picture = scenes.draw(scenes.mountains, 120, seed=9)
    samples.add(".hidden.jpg", "public.jpeg", jpeg(rgb(picture)), picture, place="hidden")
    picture = scenes.draw(scenes.dunes, 120, seed=2)
    samples.add("Notes.rtfd/picture.png", "public.png", containers.png(bytes8(picture)), picture, tolerance=8, place="package")
    samples.write("Notes.rtfd/TXT.rtf", b"{\\rtf1\\ansi A note with a picture.}\n")
    picture = scenes.draw(scenes.forest, 240, seed=6)
    samples.add("mislabelled.jpg", "public.png", containers.png(bytes8(picture)), picture, tolerance=8,
                note="a PNG by its bytes, a JPEG by its name")
    link = HERE / "link.jpg"
    link.unlink(missing_ok=True)
    link.symlink_to("orientation-6.jpg")
    target = next(fact for fact in samples.facts if fact["path"] == "orientation-6.jpg")
    samples.facts.append({**target, "path": "link.jpg", "place": "link"})


def main():
    samples = Samples()
    add_orientations(samples)
    add_jpegs(samples)
    add_pngs(samples)
    add_tiffs(samples)
    add_heics(samples)
    add_places(samples)
    add_unreadable(samples, (HERE / "progressive.jpg").read_bytes())
    text = json.dumps(sorted(samples.facts, key=lambda fact: fact["path"]), indent=1)
    (HERE / "expected.json").write_text(text + "\n")


if __name__ == "__main__":
    main()
