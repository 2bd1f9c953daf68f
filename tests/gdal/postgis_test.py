"""Checks `vkm convert` into PostGIS: python3 postgis_test.py. VKM names the program."""

import os
import signal
import subprocess
import tempfile
import time
import unittest
import xml.etree.ElementTree as xml

from made_map import MadeMap
from postgis_server import Server

VKM = os.environ["VKM"]


class PostGis(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.server = Server()
        cls.addClassCleanup(cls.server.stop)

    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def write(self, name: str, made: MadeMap) -> MadeMap:
        with open(os.path.join(self.folder, name), "wb") as file:
            file.write(made.bytes())
        return made

    def command(self, *arguments: str) -> list[str]:
        return [VKM, "convert", ".", "-o", "PG:" + self.server.connection, *arguments]

    def convert(self, *arguments: str, code: int = 0) -> str:
        run = subprocess.run(self.command(*arguments), cwd=self.folder, capture_output=True, text=True, check=False)
        self.assertEqual(code, run.returncode, run.stderr)
        return run.stderr

    def counts(self, schema: str, layer: str) -> dict[str, int]:
        rows = self.server.sql(f"SELECT source, count(*) FROM {schema}.{layer} GROUP BY source")
        return {name: int(count) for name, count in rows}

    def check(self, schema: str, made: dict[str, MadeMap]) -> None:
        for layer in ("lines", "points", "texts"):
            wanted = {"./" + name: len(getattr(one, layer)) for name, one in made.items() if getattr(one, layer)}
            self.assertEqual(wanted, self.counts(schema, layer))
        loose = f"SELECT 1 FROM {schema}.points p LEFT JOIN {schema}.lines l ON l.id = p.line AND l.source = p.source WHERE p.line IS NOT NULL AND l.id IS NULL"
        self.assertEqual([], self.server.sql(loose))

    def test_load_update_and_prune(self) -> None:
        made = {name: self.write(name, MadeMap(number)) for number, name in enumerate(("1.vkm", "2.vkm", "3.vkm"))}
        self.convert("--schema", "gis")
        self.check("gis", made)
        self.assertIn("--append", self.convert("--schema", "gis", code=2))
        made["2.vkm"] = self.write("2.vkm", MadeMap(9))
        os.remove(os.path.join(self.folder, "3.vkm"))
        made["4.vkm"] = self.write("4.vkm", MadeMap(10))
        kept = "SELECT min(id) FROM gis.lines WHERE source = './1.vkm'"
        before = self.server.sql(kept)
        self.convert("--schema", "gis", "--update")
        self.check("gis", made)
        del made["3.vkm"]
        self.convert("--schema", "gis", "--update", "--prune")
        self.check("gis", made)
        self.assertEqual(before, self.server.sql(kept))
        self.assertEqual([["3"]], self.server.sql("SELECT count(*) FROM gis.sheets"))

    def test_tables_are_furnished(self) -> None:
        self.write("1.vkm", MadeMap(1))
        self.convert("--schema", "furnished")
        columns = dict(self.server.sql("SELECT column_name, udt_name FROM information_schema.columns WHERE table_schema = 'furnished' AND table_name = 'lines'"))
        self.assertEqual(("geometry", "_varchar", "float8"), tuple(columns[name] for name in ("geom", "codes", "map_scale")))
        indexes = [row[0] for row in self.server.sql("SELECT indexdef FROM pg_indexes WHERE schemaname = 'furnished' AND tablename = 'texts'")]
        self.assertTrue(any("gist" in index for index in indexes) and any("UNIQUE" in index for index in indexes), indexes)
        self.assertEqual([["Code (K)"]], self.server.sql("SELECT col_description('furnished.lines'::regclass, attnum) FROM pg_attribute WHERE attrelid = 'furnished.lines'::regclass AND attname = 'code'"))
        self.assertEqual([["5514"]], self.server.sql("SELECT DISTINCT ST_SRID(geom) FROM furnished.texts"))
        styles = self.server.sql("SELECT f_table_name, f_geometry_column, useasdefault, f_table_catalog, replace(styleqml::text, chr(10), ' ') FROM layer_styles WHERE f_table_schema = 'furnished'")
        self.assertEqual({("lines", "geom", "t", "postgres"), ("points", "geom", "t", "postgres"), ("texts", "geom", "t", "postgres")}, {tuple(row[:4]) for row in styles})
        for row in styles:
            self.assertIsNotNone(xml.fromstring(row[4]).find("renderer-v2"))

    def test_killed_load_leaves_nothing_half(self) -> None:
        made = MadeMap(13, 1000)
        made.rows[3:-1] *= 100
        for number in range(3):
            self.write(f"{number}.vkm", made)
        busy = "SELECT 1 FROM pg_stat_activity WHERE query LIKE 'COPY%' AND pid <> pg_backend_pid()"
        for arguments in ([], ["--update"]):
            with self.subTest(arguments):
                run = subprocess.Popen(self.command("--schema", "killed", *arguments), cwd=self.folder, stderr=subprocess.DEVNULL, start_new_session=True)
                while not self.server.sql(busy) and run.poll() is None:
                    time.sleep(0.02)
                os.killpg(run.pid, signal.SIGKILL)
                run.wait()
                while self.server.sql(busy):
                    time.sleep(0.02)
                self.assertEqual([], self.server.sql("SELECT tablename FROM pg_tables WHERE schemaname = 'killed'"))
        self.assertIn("cannot be opened", subprocess.run([VKM, "convert", ".", "-o", "PG:host=/nowhere dbname=x"], cwd=self.folder, capture_output=True, text=True, check=False).stderr)


if __name__ == "__main__":
    unittest.main()
