#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes the seed corpora of the fuzz targets (corpus/<target>/). The frames are spelled out here
field by field, apart from the module's and the simulator's encoders. Run it again after changing a
seed; the files it writes are checked in."""
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
MARKER = 0x0A0B0C0D
ANY_ID = 0xFFFFFFFF  # the scripted link turns it into the id of the module's last request


def header(kind, flags, length, argument=ANY_ID, extra=0, sub=0):
    return struct.pack('<IHHIIIHHII', MARKER, kind, flags, 1, length, argument, 0, sub, 0, extra)


def frame(kind, flags, payload, argument=ANY_ID, extra=0, length=None):
    return header(kind, flags, len(payload) if length is None else length, argument, extra) + payload


def data(payload, more=False, flags=0, argument=ANY_ID, extra=0):
    return frame(9, flags | (0x8000 if more else 0), payload, argument, extra)


def reply(status, text=b'', argument=ANY_ID):
    return frame(1, 0, struct.pack('<I', status) + text, argument)


def record(name, size=0, times=(1700000000, 1700000000, 1700000000), folder=False):
    raw = name.encode() if isinstance(name, str) else name
    return (raw[:1023].ljust(1024, b'\0') + struct.pack('<IiiiI', size, *times, 1 if folder else 0) +
            b'\0' * 60)


def request(command, first=b'', second=b'', flags=0, argument=1, extra=0):
    def field(text):
        quoted = b'"' + text + b'"' if text else b''
        return quoted[:1024].ljust(1024, b'\0')
    return frame(8, flags, struct.pack('<I', command) + field(first) + field(second), argument, extra)


HELLO = header(4, 0x0080, 10, 0) + struct.pack('<IIH', 512, 0, 0)

SEEDS = {
    'fuzz_link_transfer': {
        'plain': b'\0' + data(b'hello', extra=5),
        'two-frames-compressed': b'\2' + data(b'a' * 300, more=True, extra=700) +
        data(zlib.compress(b'b' * 400), flags=0x0400),
        'lines': b'\1' + data(b'a\r\nb\nlast', extra=9),
        'nul-line': b'\1' + data(b'ab\0cd\n', extra=6),
        'error-reply': b'\0' + reply(2, b'No such file'),
        'reply-for-another-transfer': b'\0' + reply(5, b'other', argument=7) + data(b'x', extra=1),
        'status-zero-then-data': b'\0' + reply(0) + data(b'xyz', extra=3),
        'oversize': b'\0' + header(9, 0, 70000),
        'cut-short': b'\0' + header(9, 0, 100) + b'abc',
        'bad-zlib': b'\0' + data(b'\x78\x9cnot zlib', flags=0x0400),
        'zlib-bomb': b'\0' + data(zlib.compress(b'\0' * 200000), flags=0x0400),
        'early-close': b'\2' + data(b'q' * 20, more=True, extra=100) + data(b'r' * 20, more=True) +
        data(b's' * 20),
    },
    'fuzz_link_folder': {
        'listing': b'\0\0' + data(record('..', 0, folder=True) + record('run1.vxs', 3000) +
                                  record('Sub', 0, folder=True), flags=0x0100),
        'listing-hidden-two-frames': b'\1\0' + data(record('a.vxs', 1), more=True, flags=0x0100) +
        data(record('b.mth', 2), flags=0x0100) + data(record('..'), flags=0x0100),
        'listing-hostile-names': b'\0\0' + data(b''.join(record(n) for n in (
            '../../etc/passwd', '/abs', 'a/b', 'a\\b', '..', '.', '', 'A.vxs', 'a.vxs', b'\xff\xfe'))
            + record('../up', folder=True), flags=0x0100),
        'listing-2300': b'\2\0' + data((record('x.vxs') + record('y.vxs') + b'z' * 92), flags=0x0100),
        'listing-error': b'\2\0' + reply(13, b'Permission denied'),
        'listing-compressed': b'\2\0' + data(zlib.compress(record('c.vxs') * 3), flags=0x0500),
        'describe': b'\3\x64' + data(record('run1.vxs', 3000) + struct.pack('<I', 40) + b'p' * 40),
        'describe-lying-extra': b'\3\xff' + data(record('run1.vxs', 3000) + struct.pack('<I', 60000) + b'p'),
        'command': b'\4\0' + data(b'model=2\nready=1\n'),
        'status-ok': b'\5\0' + reply(0),
        'status-refused': b'\5\0' + reply(17, b'File exists'),
    },
    'fuzz_status': {
        'full': b'model=2\ncartridge=1\ninjectionPort=0\naccessory=7\nconcentrator=1\nneg=1\n'
                b'heater.1=1234\nheater.26=-40\naccessoryHeater.29=1197\nisSupplyPres=310\n'
                b'carrierSupplyPres=290\ncarrierControlPres=139\ntotalPres=0.0025\nprocess=\n'
                b'backupProgress=40\nmethodMRU.0=/Method/Default.mth\nmethodMRU.1=/Method/Survey.mth\n'
                b'ready=1\n\0'
                b'1048881 /Backup/x_backup.tgz\r\n5 a note\n4294967295 max\n4294967296 too big\nx y\n',
        'odd-values': b'model=99999999999\ntotalPres=nan\nheater.2=inf\nneg=yes\n=novalue\nnokey\n'
                      b'methodMRU.3=\xff\xfe\n\0\n\n12\n',
        'empty': b'',
    },
    'fuzz_sim_connection': {
        'list-and-read': HELLO + request(1, b'/', flags=0x0101) + request(3, b'/Data/run1.vxs', argument=2) +
        request(9, b'/hosts', argument=3),
        'upload': HELLO + request(2, b'/Data/new.vxs', flags=0x0010, argument=4) +
        frame(9, 0x8000, b'a' * 100, 4) + frame(9, 0, b'b' * 10, 4),
        'folders': HELLO + request(7, b'/New') + request(5, b'/New', b'/Old', argument=2) +
        request(4, b'/Old', flags=0x0004, argument=3),
        'commands': HELLO + request(8, b'status', extra=10) + request(8, b'events', argument=2) +
        request(8, b'param get 5 0 4', argument=3) + request(8, b'param set 5 0 01020304', argument=4) +
        request(8, b'method run "/Method/Default.mth" -speed=2', argument=5) +
        request(8, b'tune manual 1 /Tune/Default.tun', argument=6) + request(8, b'echo hi', argument=7),
        'escapes': HELLO + request(3, b'/../outside/secret.txt') + request(3, b'/Escape/secret.txt', argument=2) +
        request(3, b'/Data/relative.vxs', argument=3) + request(2, b'/Escape/new.txt', argument=4) +
        frame(9, 0, b'x', 4) + request(5, b'/hosts', b'/../outside/hosts', argument=5) +
        request(1, b'/Data/../..', flags=0x0100, argument=6),
        'bad-frames': HELLO + frame(8, 0, b'short') + header(9, 0, 70000, 1),
    },
}

# fuzz_data_library: the demo instrument's files, behind the byte that picks their reader.
DEMO = os.path.join(HERE, '..', '..', 'tools', 'vexa-sim', 'demo')
SEEDS['fuzz_data_library'] = {}
for selector, relative in ((0, 'Tune/Default.tun'), (1, 'Tune/Reports/Default.rpt'), (2, 'Data/run1.vxs'),
                           (2, 'Data/Survey001.vxz'), (3, 'Method/Default.mth'), (3, 'Method/Survey.mth'),
                           (3, 'Method/Site.xmth'), (3, 'Data/Run007.vxs')):
    with open(os.path.join(DEMO, relative), 'rb') as demo:
        SEEDS['fuzz_data_library'][os.path.basename(relative)] = bytes([selector]) + demo.read()

for target, seeds in SEEDS.items():
    folder = os.path.join(HERE, 'corpus', target)
    os.makedirs(folder, exist_ok=True)
    for name, content in seeds.items():
        with open(os.path.join(folder, name), 'wb') as out:
            out.write(content)

# fuzz_pe_resources: its seeds are the reader's own test fixture (tests/unit/hostcore/fixtures/
# resources.rc) built as PE32+ and PE32 with the MinGW binutils, as the build does:
#   x86_64-w64-mingw32-windres --preprocessor=cpp -i resources.rc -o r.o
#   x86_64-w64-mingw32-ld -shared -e 0 -o strings-and-methods-pe32plus r.o   (i686-w64-mingw32-* for PE32)
