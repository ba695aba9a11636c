"""Gives file records layouts that occur elsewhere but ntfs-3g never chooses.

ntfs-3g puts the attribute list outside of the record and fills the base record
with run lists.  list_in_base() brings the list and the file's name into the
base record, and moves the first part of the run list out to the extension
record where the name was.

ntfs-3g ends the last unit of a compressed file with the file, and closes it by
a hole.  cut_short() lets the unit give more bytes than the file has, and
drop_last_hole() takes the hole away.
"""
import struct

import ntfs_reader as ntfs


def list_in_base(volume, number):
    base = volume.record(number)
    entries = list(ntfs_entries(volume, base))
    name_at = next(mref for kind, _, mref, _ in entries if kind == ntfs.FILE_NAME)
    extension = volume.record(name_at & ntfs.RECORD_MASK)
    ours, theirs = split(base.bytes), split(extension.bytes)
    head = bytearray(take(ours, ntfs.DATA))
    name = bytearray(take(theirs, ntfs.FILE_NAME))
    old_list = take(ours, ntfs.ATTR_LIST)
    next_here, next_there = ntfs.u16(base.bytes, 40), ntfs.u16(extension.bytes, 40)
    struct.pack_into('<H', name, 14, next_here)
    struct.pack_into('<H', head, 14, next_there)
    value = moved_entries(volume, base, name_at, next_here, next_there)
    ours += [name, resident_list(value, ntfs.u16(old_list, 14))]
    theirs += [head]
    write_record(volume, base, ours)
    write_record(volume, extension, theirs)
    return ntfs.parse_runs(old_list, ntfs.u16(old_list, 32), len(old_list))


def list_value(volume, base):
    piece = next(a for a in base.own if a.type == ntfs.ATTR_LIST)
    return bytearray(b''.join(volume.content(ntfs.Stream([piece]))))


def ntfs_entries(volume, base):
    """(type, lowest VCN, whole reference, place) of every list entry."""
    value, at = list_value(volume, base), 0
    while at < len(value):
        yield ntfs.u32(value, at), ntfs.u64(value, at + 8), ntfs.u64(value, at + 16), at
        at += ntfs.u16(value, at + 4)


def moved_entries(volume, base, name_at, next_here, next_there):
    value = list_value(volume, base)
    here = base.number | base.sequence << 48
    for kind, vcn, _, at in list(ntfs_entries(volume, base)):
        if kind == ntfs.FILE_NAME:
            struct.pack_into('<QH', value, at + 16, here, next_here)
        if kind == ntfs.DATA and vcn == 0:
            struct.pack_into('<QH', value, at + 16, name_at, next_there)
    return bytes(value)


def resident_list(value, instance):
    size = 24 + len(value) + -len(value) % 8
    head = struct.pack('<IIBBHHHIHBB', ntfs.ATTR_LIST, size, 0, 0, 24, 0, instance, len(value), 24, 0, 0)
    return (head + value).ljust(size, b'\0')


def cut_short(volume, number, size):
    """Makes a compressed file end earlier, in the midst of its last unit."""
    record = volume.record(number)
    attributes = split(record.bytes)
    data = bytearray(take(attributes, ntfs.DATA))
    struct.pack_into('<QQ', data, 48, size, size)
    write_record(volume, record, attributes + [data])


def drop_last_hole(volume, number):
    """Lets a run list of few runs end with the last clusters that hold data."""
    record = volume.record(number)
    attributes = split(record.bytes)
    data = bytearray(take(attributes, ntfs.DATA))
    at = last = ntfs.u16(data, 32)
    while data[at]:
        last, at = at, at + 1 + (data[at] & 15) + (data[at] >> 4)
    if data[last] >> 4:
        raise RuntimeError('the run list of record %d ends in no hole' % number)
    length = int.from_bytes(data[last + 1:last + 1 + (data[last] & 15)], 'little')
    data[last:at] = bytes(at - last)
    struct.pack_into('<Q', data, 24, ntfs.u64(data, 24) - length)
    write_record(volume, record, attributes + [data])


def split(b):
    """The attributes of a record as they are."""
    at, found = ntfs.u16(b, 20), []
    while ntfs.u32(b, at) != 0xFFFFFFFF:
        found.append(b[at:at + ntfs.u32(b, at + 4)])
        at += ntfs.u32(b, at + 4)
    return found


def take(attributes, kind):
    """Removes and returns the only attribute of this kind."""
    found, = [a for a in attributes if ntfs.u32(a, 0) == kind]
    attributes.remove(found)
    return found


def write_record(volume, record, attributes):
    b = bytearray(record.bytes)
    start = ntfs.u16(b, 20)
    order = sorted(attributes, key=lambda a: ntfs.u32(a, 0))
    body = b''.join(order) + b'\xff\xff\xff\xff\0\0\0\0'
    if start + len(body) > len(b):
        raise RuntimeError('record %d overflows' % record.number)
    b[start:] = body.ljust(len(b) - start, b'\0')
    struct.pack_into('<I', b, 24, start + len(body))
    struct.pack_into('<H', b, 40, ntfs.u16(b, 40) + 1)
    protect(b)
    volume.overwrite(volume.mft, record.number * volume.record_size, b)


def protect(b):
    """Puts the fixups in."""
    at = ntfs.u16(b, 4)
    for i in range(1, ntfs.u16(b, 6)):
        end = 512 * i
        b[at + 2 * i:at + 2 * i + 2] = b[end - 2:end]
        b[end - 2:end] = b[at:at + 2]
