#!/usr/bin/env python3
"""The command line in folders and with names of Czech letters: places_test.py PROGRAM_FOLDER DATA -- RUNNER...

The programs lie in a folder of their own as in the archive, so that the symbology is found from there. Run once for each
language of the system (LC_ALL).
"""

import gzip
import os
import pathlib
import pty
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAMS, DATA = (pathlib.Path(argument) for argument in sys.argv[1:3])
RUNNER = sys.argv[4:]
MAP = "&R 0 0 0 0 1000\n&U 7\n&T 31.00 22.50 \"Dobřštice\" K=1014\n&K\n".encode("cp1250")
FOLDERS = ["Novák", "Dvořák", "příliš žluťoučký"]


class Places(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.root = pathlib.Path(temporary.name)

    def unpack(self, folder):
        """The archive, unpacked in a folder of that name; the folder is where programs run."""
        place = self.root / folder
        (place / "bin").mkdir(parents=True)
        for name in ["vkm.exe", "names_host.exe", *(path.name for path in PROGRAMS.glob("*.dll"))]:
            shutil.copy(PROGRAMS / name, place / "bin")
        shutil.copytree(DATA / "symbology", place / "share/vemrado/symbology")
        (place / "příliš žluťoučký.vkm").write_bytes(MAP)
        (place / "b.vkm").write_bytes(MAP)
        return place

    def vkm(self, place, *arguments, errors=subprocess.PIPE):
        command = [*RUNNER, place / "bin/vkm.exe", *arguments]
        return subprocess.run(command, cwd=place, stdout=subprocess.PIPE, stderr=errors, check=False)

    def test_finds_symbology_and_files_whatever_the_folder(self):
        for folder in FOLDERS:
            with self.subTest(folder=folder):
                place = self.unpack(folder)
                listed = self.vkm(place, "symbology")
                self.assertEqual((listed.returncode, listed.stderr), (0, b""))
                self.assertIn(b": 21\n", listed.stdout.replace(b"\r", b""))
                named = self.vkm(place, "symbology", "--data", f"Z:{place}/share/vemrado/symbology")
                self.assertEqual((named.returncode, named.stderr), (0, b""))
                self.assertEqual(named.stdout.count(b"\n"), listed.stdout.count(b"\n"))
                read = self.vkm(place, "dump", "příliš žluťoučký.vkm")
                self.assertEqual((read.returncode, read.stderr), (0, b""))
                self.assertIn("Dobřštice", read.stdout.decode())
                drawn = self.vkm(place, "render", "příliš žluťoučký.vkm", "-o", "město.svg")
                self.assertEqual((drawn.returncode, drawn.stderr), (0, b""))
                self.assertIn("Dobřštice", (place / "město.svg").read_text())

    def test_takes_utf_8_names_in_hosts_of_any_code_page(self):
        place = self.unpack("Dvořák")
        host = subprocess.run([*RUNNER, place / "bin/names_host.exe"], cwd=place, stdout=subprocess.PIPE, check=True)
        self.assertEqual(host.stdout.decode().strip(), "50 symbols.")
        self.assertIn("Dobřštice", (place / "město.svg").read_text())

    def test_expands_patterns_outside_quotes_only(self):
        place = self.unpack("Dvořák")
        both = self.vkm(place, "info", "--json", "*.vkm").stdout.decode()
        self.assertLess(both.index("b.vkm"), both.index("příliš žluťoučký.vkm"))
        self.assertIn("žluťoučký.vkm", self.vkm(place, "info", "př?liš*").stdout.decode())
        titled = self.vkm(place, "render", "b.vkm", "-o", "b.svg", "--legend", "--title", "wh* t?")
        self.assertEqual(titled.returncode, 0)  # blanks make the runner quote it
        self.assertIn("wh* t?", (place / "b.svg").read_text())

    def test_reads_folders_and_compressed_files(self):
        place = self.unpack("Dvořák")
        folder = place / "složka ř"
        folder.mkdir()
        (folder / "ž.vkm.gz").write_bytes(gzip.compress(MAP))
        read = self.vkm(place, "info", "--json", "složka ř")
        self.assertEqual((read.returncode, read.stderr), (0, b""))
        self.assertIn("ž.vkm.gz", read.stdout.decode())

    def test_writes_one_encoding_into_one_file(self):
        place = self.unpack("Dvořák")
        log = self.vkm(place, "info", "příliš žluťoučký.vkm", "žádný.vkm", errors=subprocess.STDOUT)
        self.assertEqual(log.returncode, 1)
        for name in ["příliš žluťoučký.vkm", "žádný.vkm"]:
            self.assertIn(name, log.stdout.decode("utf-8"))

    def test_writes_characters_on_a_console(self):
        place = self.unpack("Dvořák")
        master, terminal = pty.openpty()
        process = subprocess.Popen([*RUNNER, place / "bin/vkm.exe", "dump", "b.vkm"], cwd=place, stdin=terminal,
                                   stdout=terminal, stderr=terminal)
        os.close(terminal)
        shown = b""
        try:
            while block := os.read(master, 4096):
                shown += block
        except OSError:
            pass  # the terminal's other end is closed
        os.close(master)
        self.assertEqual(process.wait(), 0)
        self.assertIn("Dobřštice", shown.decode())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
