"""Small PNG and JPEG pictures: a sun over hills, drawn without any library."""
import math
import struct
import zlib


def landscape(width, height, seed):
    """A function from a place to its (red, green, blue)."""
    sun = (width * (0.2 + 0.15 * (seed % 5)), height * 0.3)

    def colour(x, y):
        hills = height * (0.62 + 0.08 * math.sin(x / width * (4 + seed)) + 0.05 * math.sin(x / 23 + seed))
        if y > hills:
            shade = int(40 * (y - hills) / height)
            return 40 + shade, 110 + shade + seed * 9 % 60, 50
        if math.hypot(x - sun[0], y - sun[1]) < height / 9:
            return 255, 225, 120
        glow = int(90 * y / height)
        return 110 + glow, 150 + glow // 2, 230 - seed * 13 % 70
    return colour


def png(width, height, seed):
    colour = landscape(width, height, seed)
    rows = b''.join(b'\0' + b''.join(bytes(colour(x, y)) for x in range(width)) for y in range(height))
    head = struct.pack('>IIBBBBB', width, height, 8, 2, 0, 0, 0)
    return b'\x89PNG\r\n\x1a\n' + png_chunk(b'IHDR', head) + \
        png_chunk(b'IDAT', zlib.compress(rows, 9)) + png_chunk(b'IEND', b'')


def png_chunk(kind, data):
    return struct.pack('>I', len(data)) + kind + data + struct.pack('>I', zlib.crc32(kind + data))


def jpeg(width, height, seed):
    """A baseline picture in which every block of 8 by 8 has one colour."""
    frame = struct.pack('>BHHB', 8, height, width, 3) + bytes((1, 0x11, 0, 2, 0x11, 0, 3, 0x11, 0))
    dc_table = b'\x00' + bytes([0, 0, 0, 12] + [0] * 12) + bytes(range(12))
    ac_table = b'\x10' + bytes([1] + [0] * 15) + b'\0'
    scan = bytes((3, 1, 0, 2, 0, 3, 0, 0, 63, 0))
    return b'\xff\xd8' + segment(0xE0, b'JFIF\0\1\1\0\0\1\0\1\0\0') + segment(0xDB, b'\0' + b'\x08' * 64) + \
        segment(0xC0, frame) + segment(0xC4, dc_table + ac_table) + segment(0xDA, scan) + \
        entropy_coded(blocks(width, height, seed)) + b'\xff\xd9'


def segment(mark, data):
    return struct.pack('>BBH', 0xFF, mark, len(data) + 2) + data


def blocks(width, height, seed):
    colour = landscape(width, height, seed)
    for y in range(0, height, 8):
        for x in range(0, width, 8):
            r, g, b = colour(x + 4, y + 4)
            yield (round(0.299 * r + 0.587 * g + 0.114 * b) - 128,
                   round(-0.1687 * r - 0.3313 * g + 0.5 * b),
                   round(0.5 * r - 0.4187 * g - 0.0813 * b))


def entropy_coded(colours):
    """For each component: the step from the block before, and no detail."""
    bits, before = [], [0, 0, 0]
    for values in colours:
        for i, value in enumerate(values):
            step, before[i] = value - before[i], value
            size = abs(step).bit_length()
            bits.append(format(size, '04b'))
            if size:
                bits.append(format(step if step > 0 else step + (1 << size) - 1, '0%db' % size))
            bits.append('0')
    text = ''.join(bits)
    text += '1' * (-len(text) % 8)
    return int(text, 2).to_bytes(len(text) // 8, 'big').replace(b'\xff', b'\xff\0')
