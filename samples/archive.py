"""Converts an archive of sheets on a cluster: into one file a sheet, or into a PostGIS database.

    python3 archive.py --scheduler tcp://10.0.0.1:8786 /archive out/
    python3 archive.py --workers 4 /archive "PG:dbname=gis"

Every sheet that is done leaves a mark in the journal, so that a run that was stopped goes on where it was. Sheets that
cannot be read are told at the end. Sheets are converted by the command vkm, which must be on the workers' path.
"""

from __future__ import annotations

import argparse
import json
import subprocess
import sys
from pathlib import Path


def convert(sheet: str, archive: str, output: str) -> dict[str, object]:
    """Converts one sheet on a worker; what went wrong is told in its result."""
    if output.startswith("PG:"):
        command = ["vkm", "convert", sheet, "-o", output, "--update", "--quiet"]
    else:
        target = Path(output) / Path(sheet).relative_to(archive).with_suffix(".gpkg")
        target.parent.mkdir(parents=True, exist_ok=True)
        command = ["vkm", "convert", sheet, "-o", str(target), "--quiet"]
    run = subprocess.run(command, capture_output=True, text=True)
    reason = run.stderr.strip().splitlines()
    made = run.returncode in (0, 1)
    return {
        "sheet": sheet,
        "made": made,
        "complete": run.returncode == 0,
        "reason": reason[-1] if reason else "",
    }


def main() -> int:
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    parser.add_argument("archive", help="folder with the sheets, *.vkm")
    parser.add_argument("output", help="a folder, or PG:... for a database")
    parser.add_argument("--scheduler", help="address of a running scheduler")
    parser.add_argument("--workers", type=int, help="without a scheduler: worker processes on this machine")
    parser.add_argument("--journal", default="archive.journal", help="file with the sheets that are done")
    arguments = parser.parse_args()

    from distributed import Client, as_completed

    journal = Path(arguments.journal)
    results = {}
    if journal.exists():
        for entry in journal.read_text().splitlines():
            if entry.endswith("}"):  # a last entry may be cut off
                result = json.loads(entry)
                results[result["sheet"]] = result
    sheets = sorted(str(path) for path in Path(arguments.archive).rglob("*.vkm"))
    missing = [sheet for sheet in sheets if sheet not in results]
    print(f"{len(sheets)} sheets, {len(sheets) - len(missing)} of them done before")

    client = Client(arguments.scheduler) if arguments.scheduler else Client(n_workers=arguments.workers)
    with client, journal.open("a") as log:
        futures = [client.submit(convert, sheet, arguments.archive, arguments.output) for sheet in missing]
        for future in as_completed(futures):
            result = future.result()
            results[result["sheet"]] = result
            log.write(json.dumps(result) + "\n")
            log.flush()

    failed = [results[sheet] for sheet in sheets if not results[sheet]["made"]]
    incomplete = sum(1 for sheet in sheets if results[sheet]["made"] and not results[sheet]["complete"])
    print(f"{len(sheets) - len(failed)} made, {incomplete} of them incomplete, {len(failed)} not made")
    for result in failed:
        print(f"{result['sheet']}: {result['reason']}", file=sys.stderr)
    return 4 if failed else 1 if incomplete else 0


if __name__ == "__main__":
    sys.exit(main())
