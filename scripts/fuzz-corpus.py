#!/usr/bin/python3
"""Turns a fuzzing corpus into a text file with one input a line, and back.

    fuzz-corpus.py unpack FILE FOLDER
    fuzz-corpus.py pack FOLDER FILE

In a line, a backslash is written twice, and a byte that isn't printable ASCII as \\xNN.
"""
import hashlib
import pathlib
import re
import sys


def escaped(data):
    return ''.join('\\\\' if byte == 0x5C else chr(byte) if 0x20 <= byte < 0x7F else f'\\x{byte:02x}'
                   for byte in data)


def unescaped(line):
    return re.sub(rb'\\(?:\\|x(..))',
                  lambda match: bytes([int(match[1], 16)]) if match[1] else b'\\',
                  line.encode())


def unpack(file, folder):
    for line in pathlib.Path(file).read_text().splitlines():
        data = unescaped(line)
        (pathlib.Path(folder) / hashlib.sha1(data).hexdigest()).write_bytes(data)


def pack(folder, file):
    lines = sorted((escaped(path.read_bytes()) for path in pathlib.Path(folder).iterdir()), key=len)
    pathlib.Path(file).write_text(''.join(line + '\n' for line in lines))
    print(f'{file}: {len(lines)} inputs')


{'unpack': unpack, 'pack': pack}[sys.argv[1]](*sys.argv[2:])
