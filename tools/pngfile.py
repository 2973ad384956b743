"""Reads and writes PNG pictures of 8 bits a channel, still and animated, with nothing but Python's own library."""
import struct
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"


class Picture:
    """Rows of RGB bytes."""

    def __init__(self, width, height, rows):
        self.width = width
        self.height = height
        self.rows = rows

    def crop(self, x, y, width, height):
        return Picture(width, height, [row[3 * x:3 * (x + width)] for row in self.rows[y:y + height]])


def _unfilter(kind, line, above, step):
    if kind == 0:
        return line
    if kind == 1:
        for at in range(step, len(line)):
            line[at] = (line[at] + line[at - step]) & 255
    elif kind == 2:
        for at, up in enumerate(above):
            line[at] = (line[at] + up) & 255
    elif kind == 3:
        for at, up in enumerate(above):
            left = line[at - step] if at >= step else 0
            line[at] = (line[at] + (left + up) // 2) & 255
    elif kind == 4:
        for at, up in enumerate(above):
            left = line[at - step] if at >= step else 0
            corner = above[at - step] if at >= step else 0
            guess = left + up - corner
            by_left, by_up, by_corner = abs(guess - left), abs(guess - up), abs(guess - corner)
            near = left if by_left <= by_up and by_left <= by_corner else up if by_up <= by_corner else corner
            line[at] = (line[at] + near) & 255
    else:
        raise ValueError(f"unknown filter {kind}")
    return line


def _chunks(data):
    at = len(SIGNATURE)
    while at < len(data):
        size, name = struct.unpack(">I4s", data[at:at + 8])
        yield name, data[at + 8:at + 8 + size]
        at += size + 12


def read(path):
    """The picture in a file; of one with transparency, its colours alone."""
    with open(path, "rb") as file:
        data = file.read()
    if not data.startswith(SIGNATURE):
        raise ValueError(f"{path} isn't a PNG file")
    packed = b""
    step = width = height = 0
    for name, body in _chunks(data):
        if name == b"IHDR":
            width, height, depth, colour, _, _, interlace = struct.unpack(">IIBBBBB", body)
            if depth != 8 or colour not in (2, 6) or interlace != 0:
                raise ValueError(f"{path} isn't a plain picture of 8 bits a channel")
            step = 3 if colour == 2 else 4
        elif name == b"IDAT":
            packed += body
    raw = zlib.decompress(packed)
    stride = width * step
    above = bytearray(stride)
    rows = []
    for y in range(height):
        start = y * (stride + 1)
        above = _unfilter(raw[start], bytearray(raw[start + 1:start + 1 + stride]), above, step)
        if step == 3:
            rows.append(bytes(above))
        else:
            row = bytearray(3 * width)
            row[0::3], row[1::3], row[2::3] = above[0::4], above[1::4], above[2::4]
            rows.append(bytes(row))
    return Picture(width, height, rows)


def _chunk(name, body):
    return struct.pack(">I", len(body)) + name + body + struct.pack(">I", zlib.crc32(name + body))


def _subtract(row, other):
    return bytes((a - b) & 255 for a, b in zip(row, other))


def _pack(rows, step):
    """The smallest of three packings: rows as they are, as differences to the left, as differences to the row above."""
    stride = len(rows[0])
    blank = bytes(stride)
    plain = b"".join(b"\x00" + row for row in rows)
    left = b"".join(b"\x01" + _subtract(row, bytes(step) + row[:-step]) for row in rows)
    up = b"".join(b"\x02" + _subtract(row, above) for row, above in zip(rows, [blank] + rows[:-1]))
    return min((zlib.compress(raw, 9) for raw in (plain, left, up)), key=len)


def write(path, picture):
    body = struct.pack(">IIBBBBB", picture.width, picture.height, 8, 2, 0, 0, 0)
    with open(path, "wb") as file:
        file.write(SIGNATURE + _chunk(b"IHDR", body) + _chunk(b"IDAT", _pack(picture.rows, 3)) + _chunk(b"IEND", b""))


def _changed_box(old, new):
    """The rectangle outside of which two pictures are the same; None if they are the same everywhere."""
    rows = [y for y in range(new.height) if old.rows[y] != new.rows[y]]
    if not rows:
        return None
    left, right = new.width, 0
    for y in rows:
        a, b = old.rows[y], new.rows[y]
        first = next(at for at in range(len(a)) if a[at] != b[at])
        last = next(at for at in range(len(a) - 1, -1, -1) if a[at] != b[at])
        left, right = min(left, first // 3), max(right, last // 3)
    return left, rows[0], right + 1 - left, rows[-1] + 1 - rows[0]


def _difference_rows(old, new, box):
    """The box of the new picture as RGBA, see-through where nothing has changed."""
    x, y, width, height = box
    rows = []
    for line in range(y, y + height):
        a, b = old.rows[line][3 * x:3 * (x + width)], new.rows[line][3 * x:3 * (x + width)]
        row = bytearray(4 * width)
        for at in range(width):
            pixel = b[3 * at:3 * at + 3]
            if pixel != a[3 * at:3 * at + 3]:
                row[4 * at:4 * at + 4] = pixel + b"\xff"
        rows.append(bytes(row))
    return rows


def write_animation(path, frames):
    """Writes (picture, milliseconds) pairs as an animated PNG that plays for ever. A frame holds what has changed."""
    merged = []  # picture, box, rows, milliseconds
    for picture, time in frames:
        if not merged:
            opaque = [bytes(byte for at in range(picture.width) for byte in (*row[3 * at:3 * at + 3], 255))
                      for row in picture.rows]
            merged.append([picture, (0, 0, picture.width, picture.height), opaque, time])
            continue
        box = _changed_box(merged[-1][0], picture)
        if box is None:
            merged[-1][3] += time
        else:
            merged.append([picture, box, _difference_rows(merged[-1][0], picture, box), time])
    first = merged[0][0]
    data = [SIGNATURE, _chunk(b"IHDR", struct.pack(">IIBBBBB", first.width, first.height, 8, 6, 0, 0, 0)),
            _chunk(b"acTL", struct.pack(">II", len(merged), 0))]
    number = 0
    for at, (_, (x, y, width, height), rows, time) in enumerate(merged):
        data.append(_chunk(b"fcTL", struct.pack(">IIIIIHHBB", number, width, height, x, y, time, 1000, 0, min(at, 1))))
        number += 1
        packed = _pack(rows, 4)
        if at == 0:
            data.append(_chunk(b"IDAT", packed))
        else:
            data.append(_chunk(b"fdAT", struct.pack(">I", number) + packed))
            number += 1
    data.append(_chunk(b"IEND", b""))
    with open(path, "wb") as file:
        file.write(b"".join(data))
    return len(merged)


def count_frames(data):
    """The pictures of an animated PNG file's bytes, each of which has to unpack to its whole size."""
    frames, packed, size = 0, b"", (0, 0)

    def end_frame():
        width, height = size
        if packed and len(zlib.decompress(packed)) != height * (4 * width + 1):
            raise ValueError(f"picture {frames} isn't whole")

    for name, body in _chunks(data):
        if name == b"fcTL":
            end_frame()
            packed, size = b"", struct.unpack(">II", body[4:12])
            frames += 1
        elif name == b"IDAT":
            packed += body
        elif name == b"fdAT":
            packed += body[4:]
    end_frame()
    return frames
