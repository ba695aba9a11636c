"""Gives file records layouts that occur elsewhere but ntfs-3g never chooses.

ntfs-3g puts the attribute list outside of the record and fills the base record
with run lists.  list_in_base() brings the list and the file's name into the
base record, and moves the first part of the run list out to the extension
record where the name was.

It also takes the name of $MFT out of record 0 once that needs an attribute list,
where drivers elsewhere keep it.  name_in_table_record() brings it back, and
moves the last part of the run list in record 0 out.  mkntfs sets no times in
record 0, date_table_record() does.

ntfs-3g ends the last unit of a compressed file with the file, and closes it by
a hole.  cut_short() lets the unit give more bytes than the file has, and
drop_last_hole() takes the hole away.
"""
import struct

import ntfs_reader as ntfs

STANDARD_INFORMATION = 0x10
TABLE_RECORD, MIRROR_RECORD = 0, 1


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


def name_in_table_record(volume):
    """Brings the name of $MFT back into record 0; says whether it was elsewhere."""
    base = volume.record(TABLE_RECORD)
    if any(a.type == ntfs.FILE_NAME for a in base.own):
        return False
    name_at = next(mref for kind, _, mref, _ in ntfs_entries(volume, base) if kind == ntfs.FILE_NAME)
    extension = volume.record(name_at & ntfs.RECORD_MASK)
    ours, theirs = split(base.bytes), split(extension.bytes)
    name = bytearray(take(theirs, ntfs.FILE_NAME))
    data = take(ours, ntfs.DATA)
    head, tail = cut_runs(data, len(data) - len(name))
    next_here, next_there = ntfs.u16(base.bytes, 40), ntfs.u16(extension.bytes, 40)
    struct.pack_into('<H', name, 14, next_here)
    struct.pack_into('<H', tail, 14, next_there)
    value = table_entries(volume, base, next_here, (ntfs.u64(tail, 16), name_at, next_there))
    new_list = overwrite_list(volume, base, take(ours, ntfs.ATTR_LIST), value)
    write_record(volume, base, ours + [new_list, name, head])
    write_record(volume, extension, theirs + [tail])
    return True


def table_entries(volume, base, name_instance, tail):
    """The list with the name in the base record, and with one more piece of data behind the first."""
    value, here = list_value(volume, base), base.number | base.sequence << 48
    for kind, vcn, _, at in list(ntfs_entries(volume, base)):
        if kind == ntfs.FILE_NAME:
            struct.pack_into('<QH', value, at + 16, here, name_instance)
        if kind == ntfs.DATA and vcn == 0:
            head_at, following = at, at + ntfs.u16(value, at + 4)
    entry = value[head_at:following]
    struct.pack_into('<QQH', entry, 8, *tail)
    return value[:following] + entry + value[following:]


def overwrite_list(volume, base, attribute, value):
    """Writes a list outside of the record over the old one; the attribute with the new size."""
    if ntfs.u64(attribute, 40) < len(value):
        raise RuntimeError('the list of record %d has no room' % base.number)
    piece = next(a for a in base.own if a.type == ntfs.ATTR_LIST)
    volume.overwrite(ntfs.Stream([piece]), 0, value)
    attribute = bytearray(attribute)
    struct.pack_into('<QQ', attribute, 48, len(value), len(value))
    return attribute


def cut_runs(data, limit):
    """Two pieces of a first piece of data; the first takes no more than `limit` bytes."""
    runs = ntfs.parse_runs(data, ntfs.u16(data, 32), len(data))
    count = len(runs)
    while len(with_runs(data, 0, runs[:count])) > limit:
        count -= 1
    vcn = sum(length for length, _ in runs[:count])
    return with_runs(data, 0, runs[:count]), with_runs(data, vcn, runs[count:])


def with_runs(data, vcn, runs):
    """A piece of data with these runs, none of them a hole; only the first piece tells sizes."""
    b = bytearray(data[:ntfs.u16(data, 32)]) + packed_runs(runs)
    b += bytes(-len(b) % 8)
    struct.pack_into('<I', b, 4, len(b))
    struct.pack_into('<QQ', b, 16, vcn, vcn + sum(length for length, _ in runs) - 1)
    if vcn:
        b[40:64] = bytes(24)
    return b


def packed_runs(runs):
    out, last = bytearray(), 0
    for length, lcn in runs:
        size, step = signed_bytes(length), signed_bytes(lcn - last)
        out += bytes([len(step) << 4 | len(size)]) + size + step
        last = lcn
    return out + b'\0'


def signed_bytes(n):
    return n.to_bytes((n + (n < 0)).bit_length() // 8 + 1, 'little', signed=True)


def date_table_record(volume):
    """Gives $MFT the times that $MFTMirr has: those of the formatting."""
    mirror, record = volume.record(MIRROR_RECORD), volume.record(TABLE_RECORD)
    times = times_of(mirror)
    if times != 4 * times[:8] or not any(times):
        raise RuntimeError('$MFTMirr does not tell the time of the formatting')
    b = bytearray(record.bytes)
    at = ntfs.u16(b, 20)
    if ntfs.u32(b, at) != STANDARD_INFORMATION:
        raise RuntimeError('record 0 begins with something else')
    value_at = at + ntfs.u16(b, at + 20)
    b[value_at:value_at + 32] = times
    store(volume, record, b)


def times_of(record):
    return next(a for a in record.own if a.type == STANDARD_INFORMATION).value[:32]


def mirror_table_record(volume):
    """Copies record 0 into $MFTMirr."""
    data = [a for a in volume.record(MIRROR_RECORD).own if a.type == ntfs.DATA]
    raw = volume.pieces_of(volume.mft, 0, volume.record_size)
    volume.overwrite(ntfs.Stream(data), 0, raw)


def check_table_record(volume):
    """Record 0 bears its name, and the first run of $MFT holds its extensions."""
    record = volume.record(TABLE_RECORD)
    kinds = [a.type for a in record.own if a.type <= ntfs.FILE_NAME]
    lists = [ntfs.ATTR_LIST] if ntfs.ATTR_LIST in kinds else []
    if kinds != [STANDARD_INFORMATION, *lists, ntfs.FILE_NAME]:
        raise RuntimeError('record 0 begins with attributes %s' % kinds)
    last = max([n for _, _, n, _ in volume.list_entries(record)], default=0)
    if (last + 1) * volume.record_size > volume.mft.runs[0][0] * volume.cluster:
        raise RuntimeError('extension %d of $MFT lies behind its first run' % last)


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
    store(volume, record, b)


def store(volume, record, b):
    protect(b)
    volume.overwrite(volume.mft, record.number * volume.record_size, b)


def protect(b):
    """Puts the fixups in."""
    at = ntfs.u16(b, 4)
    for i in range(1, ntfs.u16(b, 6)):
        end = 512 * i
        b[at + 2 * i:at + 2 * i + 2] = b[end - 2:end]
        b[end - 2:end] = b[at:at + 2]
