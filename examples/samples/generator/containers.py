"""Writers for what imaging libraries do not write as the samples need it: EXIF blocks, PNG of 16 bits or
interlaced, TIFF of 16 bits, HEIC with chosen turn properties."""

import struct
import subprocess
import tempfile
import zlib
from pathlib import Path

import numpy

# EXIF -------------------------------------------------------------------------------------------

SHORT, LONG, ASCII = 3, 4, 2


def exif_block(orientation=None, description=None, date=None, thumbnail=None, order="<"):
    """A TIFF-structured EXIF block without any prefix. `order` is "<" (II) or ">" (MM)."""
    entries = []
    if description:
        entries.append((0x010E, ASCII, description.encode() + b"\0"))
    if orientation:
        entries.append((0x0112, SHORT, struct.pack(order + "H", orientation)))
    if date:
        entries.append((0x0132, ASCII, date.encode() + b"\0"))
    head = (b"II" if order == "<" else b"MM") + struct.pack(order + "HI", 42, 8)
    if not thumbnail:
        return head + directory(entries, 8, 0, order)
    second_at = 8 + len(directory(entries, 8, 0, order))
    def second(position):
        return directory([(0x0103, SHORT, struct.pack(order + "H", 6)),
                          (0x0201, LONG, struct.pack(order + "I", position)),
                          (0x0202, LONG, struct.pack(order + "I", len(thumbnail)))], second_at, 0, order)
    data_at = second_at + len(second(0))
    return head + directory(entries, 8, second_at, order) + second(data_at) + thumbnail


def directory(entries, at, following, order):
    """One image file directory placed at byte `at`, with the values that do not fit behind it."""
    width = {SHORT: 2, LONG: 4, ASCII: 1}
    heap_at = at + 2 + 12 * len(entries) + 4
    rows, heap = b"", b""
    for tag, kind, value in entries:
        count = len(value) // width[kind]
        if len(value) <= 4:
            field = value.ljust(4, b"\0")
        else:
            field = struct.pack(order + "I", heap_at + len(heap))
            heap += value + b"\0" * (len(value) % 2)
        rows += struct.pack(order + "HHI", tag, kind, count) + field
    return struct.pack(order + "H", len(entries)) + rows + struct.pack(order + "I", following) + heap


# PNG --------------------------------------------------------------------------------------------

ADAM7 = ((0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2))


def png_chunk(kind, body):
    return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))


def png_rows(samples):
    """The filtered scan lines of an array [row, column, channel] of 8- or 16-bit samples."""
    height, width, channels = samples.shape
    pixel = channels * samples.dtype.itemsize
    lines = samples.astype(samples.dtype.newbyteorder(">")).tobytes()
    lines = numpy.frombuffer(lines, numpy.uint8).reshape(height, width * pixel)
    above, out = numpy.zeros(width * pixel, numpy.uint8), b""
    for line in lines:
        left = numpy.concatenate([numpy.zeros(pixel, numpy.uint8), line[:-pixel]])
        choices = [line, line - left, line - above]
        cost = [numpy.abs(choice.astype(numpy.int8).astype(int)).sum() for choice in choices]
        best = int(numpy.argmin(cost))
        out += bytes([best]) + choices[best].tobytes()
        above = line
    return out


def png(samples, palette=None, transparency=None, interlaced=False, exif=None):
    height, width, channels = samples.shape
    colour = 3 if palette is not None else {1: 0, 3: 2, 4: 6}[channels]
    depth = samples.dtype.itemsize * 8
    chunks = png_chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, depth, colour, 0, 0, int(interlaced)))
    if exif:
        chunks += png_chunk(b"eXIf", exif)
    if palette is not None:
        chunks += png_chunk(b"PLTE", palette.astype(numpy.uint8).tobytes())
    if transparency is not None:
        chunks += png_chunk(b"tRNS", transparency.astype(numpy.uint8).tobytes())
    passes = [samples[y::dy, x::dx] for x, y, dx, dy in ADAM7] if interlaced else [samples]
    packed = zlib.compress(b"".join(png_rows(part) for part in passes if part.size), 9)
    return b"\x89PNG\r\n\x1a\n" + chunks + png_chunk(b"IDAT", packed) + png_chunk(b"IEND", b"")


# TIFF -------------------------------------------------------------------------------------------


def tiff16(samples):
    """One deflated strip of 16-bit RGB samples."""
    height, width, channels = samples.shape
    strip = zlib.compress(samples.astype("<u2").tobytes(), 9)
    short = lambda *values: struct.pack("<%dH" % len(values), *values)
    long = lambda value: struct.pack("<I", value)
    def entries(strip_at):
        return [(256, LONG, long(width)), (257, LONG, long(height)), (258, SHORT, short(*[16] * channels)),
                (259, SHORT, short(8)), (262, SHORT, short(2)), (273, LONG, long(strip_at)),
                (277, SHORT, short(channels)), (278, LONG, long(height)), (279, LONG, long(len(strip))),
                (284, SHORT, short(1))]
    size = len(directory(entries(0), 8, 0, "<"))
    return b"II" + struct.pack("<HI", 42, 8) + directory(entries(8 + size), 8, 0, "<") + strip


# HEIC -------------------------------------------------------------------------------------------


def box(kind, body, version=None, flags=0):
    if version is not None:
        body = struct.pack(">I", version << 24 | flags) + body
    return struct.pack(">I", 8 + len(body)) + kind + body


def boxes(data):
    """(kind, body, whole) of each box that follows another in `data`."""
    at = 0
    while at < len(data):
        size = struct.unpack_from(">I", data, at)[0] or len(data) - at
        yield data[at + 4:at + 8], data[at + 8:at + size], data[at:at + size]
        at += size


def encoded_picture(png_path):
    """What heif-enc makes of a picture: its property boxes and its coded bytes."""
    with tempfile.TemporaryDirectory() as folder:
        out = Path(folder) / "out.heic"
        subprocess.run(["heif-enc", "-q", "62", "-p", "x265:pools=1", "-p", "x265:frame-threads=1", "-p",
                        "x265:wpp=0", "-o", str(out), str(png_path)], check=True, capture_output=True)
        data = out.read_bytes()
    top = {kind: body for kind, body, _ in boxes(data)}
    meta = {kind: body for kind, body, _ in boxes(top[b"meta"][4:])}
    properties = next(body for kind, body, _ in boxes(meta[b"iprp"]) if kind == b"ipco")
    wanted = [whole for kind, _, whole in boxes(properties) if kind in (b"hvcC", b"ispe", b"pixi", b"colr")]
    return wanted, top[b"mdat"]


def heic(picture, turns=(), exif=None):
    """A HEIC of one picture. `turns` lists ("irot", quarter turns anticlockwise) and ("imir", axis: 0
    exchanges top and bottom, 1 left and right), in the order in which a reader applies them."""
    wanted, coded = picture
    properties = wanted + [box(kind.encode(), bytes([value])) for kind, value in turns]
    # The turns are essential: a reader that does not know them must not show the picture.
    uses = [(0x80 if i >= len(wanted) or properties[i][4:8] == b"hvcC" else 0) | i + 1
            for i in range(len(properties))]
    items = [(1, b"hvc1", coded)]
    if exif:
        items.append((2, b"Exif", struct.pack(">I", 0) + exif))
    infe = b"".join(box(b"infe", struct.pack(">HH", number, 0) + kind + b"\0", 2, int(kind == b"Exif"))
                    for number, kind, _ in items)
    head = box(b"hdlr", bytes(4) + b"pict" + bytes(13), 0) + box(b"pitm", struct.pack(">H", 1), 0)
    info = box(b"iinf", struct.pack(">H", len(items)) + infe, 0)
    reference = box(b"iref", box(b"cdsc", struct.pack(">HHH", 2, 1, 1)), 0) if exif else b""
    association = box(b"ipma", struct.pack(">IHB", 1, 1, len(uses)) + bytes(uses), 0)
    described = reference + box(b"iprp", box(b"ipco", b"".join(properties)) + association)
    brands = box(b"ftyp", b"heic" + bytes(4) + b"mif1heic")
    def meta(data_at):
        places = b""
        for number, _, body in items:
            places += struct.pack(">HHHII", number, 0, 1, data_at, len(body))
            data_at += len(body)
        location = box(b"iloc", struct.pack(">BBH", 0x44, 0, len(items)) + places, 0)
        return box(b"meta", head + location + info + described, 0)
    data_at = len(brands) + len(meta(0)) + 8
    return brands + meta(data_at) + box(b"mdat", b"".join(body for _, _, body in items))
