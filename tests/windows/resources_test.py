#!/usr/bin/env python3
"""What the system reads of the built files without running them: resources_test.py PROGRAM_FOLDER VERSION"""

import pathlib
import struct
import sys
import unittest

PROGRAMS, VERSION = pathlib.Path(sys.argv[1]), sys.argv[2]
ICON_GROUP, VERSION_INFO, MANIFEST = 14, 16, 24


def resources(image):
    """The resources of a 64-bit image by their kind, the first of each."""
    (header,) = struct.unpack_from("<I", image, 0x3C)
    (sections,) = struct.unpack_from("<H", image, header + 6)
    (optional_size,) = struct.unpack_from("<H", image, header + 20)
    table = header + 24 + optional_size
    for place in range(table, table + 40 * sections, 40):
        if image[place : place + 8].rstrip(b"\0") == b".rsrc":
            address, size, start = struct.unpack_from("<III", image, place + 12)
            section = image[start : start + size]
            return {kind: first_below(section, below, address) for kind, below in entries(section, 0)}
    return {}


def entries(section, directory):
    named, numbered = struct.unpack_from("<HH", section, directory + 12)
    for i in range(named + numbered):
        yield struct.unpack_from("<II", section, directory + 16 + 8 * i)


def first_below(section, place, address):
    while place & 0x80000000:  # a directory, not data
        _, place = next(entries(section, place & 0x7FFFFFFF))
    at, size = struct.unpack_from("<II", section, place)
    return section[at - address : at - address + size]


def said(version, name):
    """A string of the version information: its name and value, each zero-terminated and on a multiple of four."""
    text = version.decode("utf-16-le")
    begin = text.index(name + "\0") + len(name)
    return text[begin:].lstrip("\0").split("\0")[0]


class Resources(unittest.TestCase):
    def test_name_and_number_every_file(self):
        for name in ["vkm.exe", "vkm.dll", "Vemrado.dll", "VemradoFramework.dll", "zrv320.dll", "zrvDX320.dll"]:
            with self.subTest(name=name):
                found = resources((PROGRAMS / name).read_bytes())
                version = found[VERSION_INFO]
                self.assertEqual((said(version, "FileVersion"), said(version, "OriginalFilename")), (VERSION, name))
                fixed = version.index(struct.pack("<I", 0xFEEF04BD))
                high, low = struct.unpack_from("<II", version, fixed + 8)
                self.assertEqual(".".join(str(part) for part in (high >> 16, high & 0xFFFF, low >> 16)), VERSION)
                self.assertIn(ICON_GROUP, found)

    def test_make_the_program_one_of_utf_8_and_long_paths(self):
        manifest = resources((PROGRAMS / "vkm.exe").read_bytes())[MANIFEST].decode()
        self.assertRegex(manifest, r"<activeCodePage[^>]*>UTF-8</activeCodePage>")
        self.assertRegex(manifest, r"<(\w+:)?longPathAware[^>]*>true</(\w+:)?longPathAware>")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
