#!/usr/bin/env python3
"""tiled-heic.py OUT WIDTH HEIGHT COLUMNS TILE.heic...: a HEIC that is laid out in tiles, as telephones write
them, of pictures of one size that heif-enc wrote, from the top left, row by row."""
import struct
import sys
from pathlib import Path


def boxes(data):
    """The type and the content of each box."""
    at = 0
    while at < len(data):
        length, kind = struct.unpack_from(">I4s", data, at)
        yield kind, data[at + 8 : at + (length or len(data) - at)]
        at += length or len(data)


def box(kind, content):
    return struct.pack(">I4s", len(content) + 8, kind) + content


def full_box(kind, content, version=0, flags=0):
    return box(kind, struct.pack(">I", version << 24 | flags) + content)


def numbers(width, values):
    return b"".join(value.to_bytes(width, "big") for value in values)


def coded(path):
    """The properties that tell how the only picture of a file is coded, and its bytes."""
    top = dict(boxes(Path(path).read_bytes()))
    meta = dict(boxes(top[b"meta"][4:]))
    properties = dict(boxes(dict(boxes(meta[b"iprp"]))[b"ipco"]))
    return box(b"hvcC", properties[b"hvcC"]) + box(b"ispe", properties[b"ispe"]), top[b"mdat"]


def meta_box(size, properties, lengths, start):
    count = len(lengths)
    items = range(1, count + 1)
    places, kinds, at = b"", b"", start
    for item, length in zip(items, lengths):
        places += numbers(2, (item, 0, 1)) + numbers(4, (at, length))
        kinds += full_box(b"infe", numbers(2, (item, 0)) + (b"hvc1" if item > 1 else b"grid") + b"\0", 2, item > 1)
        at += length
    owned = numbers(2, (1,)) + bytes((1, 3)) + b"".join(numbers(2, (item,)) + bytes((2, 1, 2)) for item in items[1:])
    stated = full_box(b"ispe", numbers(4, size))
    return full_box(
        b"meta",
        full_box(b"hdlr", bytes(4) + b"pict" + bytes(13))
        + full_box(b"pitm", numbers(2, (1,)))
        + full_box(b"iloc", numbers(2, (0x4400, count)) + places)
        + full_box(b"iinf", numbers(2, (count,)) + kinds)
        + full_box(b"iref", box(b"dimg", numbers(2, (1, count - 1, *items[1:]))))
        + box(b"iprp", box(b"ipco", properties + stated) + full_box(b"ipma", numbers(4, (count,)) + owned)),
    )


def tiled(size, columns, paths):
    pictures = [coded(path) for path in paths]
    properties = pictures[0][0]
    grid = bytes((0, 0, len(paths) // columns - 1, columns - 1)) + numbers(2, size)
    data = [grid] + [data for _, data in pictures]
    lengths = [len(piece) for piece in data]
    head = box(b"ftyp", b"heic" + bytes(4) + b"mif1heic")
    start = len(head) + len(meta_box(size, properties, lengths, 0)) + 8
    return head + meta_box(size, properties, lengths, start) + box(b"mdat", b"".join(data))


if __name__ == "__main__":
    out, width, height, columns, *tiles = sys.argv[1:]
    Path(out).write_bytes(tiled((int(width), int(height)), int(columns), tiles))
