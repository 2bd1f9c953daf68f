"""Converts an archive of sheets on a cluster: into a PostGIS database, or into a GeoPackage for each sheet.

    python3 archive.py --scheduler tcp://10.0.0.1:8786 /archive "PG:host=db dbname=gis" --schema cadastre
    python3 archive.py --workers 4 /archive out/

Every sheet that is done leaves an entry in the journal, so that a run that was stopped goes on where it was; sheets that
could not be read are tried again. A sheet is in the database as a whole or not at all, and once, whatever happens to the
workers meanwhile; the same holds for files. Bad sheets are told at the end. Workers need this package, for a database
psycopg2, for files the command vkm on their path, and the archive under the same name. Exit codes are those of `vkm
convert`: 1 when a sheet lacks its end, 4 when some were not made.
"""

from __future__ import annotations

import argparse
import io
import json
import struct
import subprocess
import sys
import warnings
from pathlib import Path
from typing import Any, Iterator

import vemrado

TABLES = ("lines", "points", "texts")
SRID = 5514
SQL_TYPES = {"int32": "integer", "int64": "bigint", "float64": "double precision", "text": "text"}
Result = dict[str, Any]


# --- Into a database ---


def create_tables(connection: str, schema: str) -> None:
    """Makes the tables where they are not there yet. Runs before the workers."""
    import psycopg2

    with vemrado.open(b"&K\n") as empty, psycopg2.connect(connection) as database:
        cursor = database.cursor()
        cursor.execute(f'CREATE SCHEMA IF NOT EXISTS "{schema}"')
        for name in TABLES:
            columns = ["source text NOT NULL", f"geom geometry(Geometry, {SRID})"]
            for column, kind in empty.table(name).types.items():
                several = kind.startswith("list of ")
                columns.append(
                    f'"{column}" {SQL_TYPES[kind.removeprefix("list of ")]}{"[]" if several else ""}'
                )
            cursor.execute(f'CREATE TABLE IF NOT EXISTS "{schema}".{name} ({", ".join(columns)})')
            cursor.execute(f'CREATE INDEX IF NOT EXISTS {name}_geom ON "{schema}".{name} USING gist (geom)')
        cursor.execute(
            f'CREATE TABLE IF NOT EXISTS "{schema}".sheets (source text PRIMARY KEY, complete boolean NOT NULL)'
        )


def copy_text(value: Any) -> str:
    """A value as the text format of COPY has it."""
    if value is None:
        return r"\N"
    if isinstance(value, list):
        value = (
            "{"
            + ",".join('"' + str(item).replace("\\", "\\\\").replace('"', '\\"') + '"' for item in value)
            + "}"
        )
    text = str(value)
    for letter, escaped in (("\\", "\\\\"), ("\t", "\\t"), ("\n", "\\n"), ("\r", "\\r")):
        text = text.replace(letter, escaped)
    return text


def copy_rows(table: vemrado.Table, source: str) -> Iterator[str]:
    """The rows of a table, its geometry as well-known binary with the reference system."""
    places = []
    for binary in table.geometry.to_wkb():
        (kind,) = struct.unpack_from("<I", binary, 1)
        places.append((struct.pack("<BII", 1, kind | 0x20000000, SRID) + bytes(binary[5:])).hex())
    columns = [table[column].tolist() for column in table.columns]  # None where a value is missing
    for place, *values in zip(places, *columns):
        yield "\t".join([copy_text(source), place, *map(copy_text, values)]) + "\n"


def into_database(sheet: str, connection: str, schema: str) -> Result:
    """One sheet in one transaction; one that is there already, from a worker that was lost afterwards, stays."""
    import psycopg2

    with psycopg2.connect(connection) as database:
        cursor = database.cursor()
        # A lost worker's transaction may still be open.
        cursor.execute("SELECT pg_advisory_xact_lock(hashtext(%s))", [f"{schema}/{sheet}"])
        cursor.execute(f'SELECT complete FROM "{schema}".sheets WHERE source = %s', [sheet])
        done = cursor.fetchone()
        if done is not None:
            return {"sheet": sheet, "made": True, "complete": done[0], "reason": ""}
        with warnings.catch_warnings(), vemrado.open(sheet, symbology="") as opened:
            warnings.simplefilter("ignore", vemrado.MapWarning)
            for name in TABLES:
                table = opened.table(name)
                columns = ", ".join(f'"{column}"' for column in ("source", "geom", *table.columns))
                rows = io.StringIO("".join(copy_rows(table, sheet)))
                cursor.copy_expert(f'COPY "{schema}".{name} ({columns}) FROM STDIN', rows)
            complete = opened.complete
        cursor.execute(f'INSERT INTO "{schema}".sheets VALUES (%s, %s)', [sheet, complete])
    return {"sheet": sheet, "made": True, "complete": complete, "reason": ""}


# --- Into files ---


def into_file(sheet: str, archive: str, folder: str) -> Result:
    target = Path(folder) / Path(sheet).relative_to(archive).with_suffix(".gpkg")
    target.parent.mkdir(parents=True, exist_ok=True)
    command = ["vkm", "convert", sheet, "-o", str(target), "--quiet"]  # whole or not at all
    run = subprocess.run(command, capture_output=True, text=True)
    told = run.stderr.strip().splitlines()
    made = run.returncode in (0, 1)
    return {"sheet": sheet, "made": made, "complete": run.returncode == 0, "reason": told[-1] if told else ""}


# --- On the cluster ---


def convert(sheet: str, archive: str, output: str, schema: str) -> Result:
    """Converts one sheet on a worker; what is wrong with the sheet is told in its result."""
    try:
        if output.startswith("PG:"):
            return into_database(sheet, output[3:], schema)
        return into_file(sheet, archive, output)
    except vemrado.MapError as error:
        return {"sheet": sheet, "made": False, "complete": False, "reason": error.reason}


def read_journal(journal: Path) -> dict[str, Result]:
    """What was made before. The last entry may be cut off; a later one counts for an earlier."""
    results = {}
    if journal.exists():
        for entry in journal.read_text().splitlines():
            if entry.endswith("}"):
                result = json.loads(entry)
                results[result["sheet"]] = result
    return {sheet: result for sheet, result in results.items() if result["made"]}


def result_of(future: Any, sheet: str) -> Result:
    """Also of a sheet that took its workers with it, or that a broken database refused to the last."""
    try:
        made: Result = future.result()
        return made
    except Exception as error:
        reason = f"{sheet}: {type(error).__name__}: {error}"
        return {"sheet": sheet, "made": False, "complete": False, "reason": reason}


def main() -> int:
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    parser.add_argument("archive", help="folder with the sheets, *.vkm")
    parser.add_argument("output", help="a folder, or PG:... for a database")
    parser.add_argument("--schema", default="cadastre", help="of the database")
    parser.add_argument("--scheduler", help="address of a running scheduler")
    parser.add_argument("--workers", type=int, help="without a scheduler: worker processes on this machine")
    parser.add_argument("--journal", default="archive.journal", help="file with the sheets that are done")
    arguments = parser.parse_args()

    from distributed import Client, as_completed

    journal = Path(arguments.journal)
    results = read_journal(journal)
    sheets = sorted(str(path) for path in Path(arguments.archive).rglob("*.vkm"))
    missing = [sheet for sheet in sheets if sheet not in results]
    print(f"{len(sheets)} sheets, {len(sheets) - len(missing)} of them done before", flush=True)
    if arguments.output.startswith("PG:"):
        create_tables(arguments.output[3:], arguments.schema)

    client = Client(arguments.scheduler) if arguments.scheduler else Client(n_workers=arguments.workers)
    with client, journal.open("a") as log:
        work = (arguments.archive, arguments.output, arguments.schema)
        futures = {client.submit(convert, sheet, *work, retries=2): sheet for sheet in missing}
        if log.tell() > 0:
            log.write("\n")  # behind an entry that was cut off
        for future in as_completed(futures):
            result = result_of(future, futures[future])
            results[result["sheet"]] = result
            log.write(json.dumps(result) + "\n")
            log.flush()

    failed = [results[sheet] for sheet in sheets if not results[sheet]["made"]]
    incomplete = sum(1 for sheet in sheets if results[sheet]["made"] and not results[sheet]["complete"])
    print(f"{len(sheets) - len(failed)} made, {incomplete} of them incomplete, {len(failed)} not made")
    for result in failed:
        print(result["reason"], file=sys.stderr)
    return 4 if failed else 1 if incomplete else 0


if __name__ == "__main__":
    sys.exit(main())
