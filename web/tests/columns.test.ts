// The Arrow columns of the package, read by apache-arrow out of their memory, against the native module's.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, test } from "node:test";
import { pathToFileURL } from "node:url";
import { Table, Vector } from "apache-arrow";
import { parseRecordBatch } from "arrow-js-ffi";
import type * as vemrado from "../../npm/index.js";
import { programs, root, town } from "./places.ts";

const folder = mkdtempSync(join(tmpdir(), "vemrado-columns-"));
after(() => rmSync(folder, { recursive: true }));

const packageFile = pathToFileURL(join(root, "build/web/npm/dist/index.js")).href;
const { openMap } = (await import(packageFile)) as typeof vemrado;

async function tableOf(
    map: vemrado.VkmMap,
    name: vemrado.Table,
    options?: vemrado.ColumnOptions,
): Promise<Table> {
    const batches = [];
    for await (const { memory, array, schema } of map.columns(name, options))
        batches.push(parseRecordBatch(memory, array, schema, false));
    return new Table(batches);
}

// Lists as arrays, numbers of any width as numbers.
function plain(value: unknown): unknown {
    if (typeof value === "bigint") return Number(value);
    return value instanceof Vector ? [...value].map(plain) : value;
}

function columnsOf(table: Table): Record<string, unknown> {
    const names = table.schema.fields.map(({ name }) => name);
    const columns = Object.fromEntries(
        names.map((name) => [name, plain(table.getChild(name))] as [string, unknown[]]),
    );
    // Doubles of a pair are alike, however deep the lists are.
    columns["geometry"] = columns["geometry"]!.flat(Infinity);
    return columns;
}

const script = `
import json, sys, vemrado
lists = lambda values: values.tolist()
with vemrado.open(sys.argv[1]) as opened:
    for table in (opened.lines, opened.points, opened.texts, opened.parcels):
        columns = {name: table[name] for name in table.columns}
        print(json.dumps({**columns, "geometry": table.geometry.points.ravel()}, default=lists))
`;
function nativeTables(path: string): Record<string, unknown>[] {
    const output = execFileSync("/usr/bin/python3", ["-c", script, path], {
        encoding: "utf8",
        maxBuffer: 1 << 30,
        env: { ...process.env, PYTHONPATH: join(programs, "../python") },
    });
    return output
        .trim()
        .split("\n")
        .map((line) => JSON.parse(line) as Record<string, unknown>);
}

test("tables are those of the native module, value by value", async () => {
    const odd = join(folder, "odd.vkm");
    execFileSync(join(programs, "vkm-generate"), ["--sheets", "2", "--stress", "-o", odd]);
    for (const path of [town, odd]) {
        const native = nativeTables(path);
        const map = await openMap(path);
        for (const [i, name] of (["lines", "points", "texts", "parcels"] as const).entries()) {
            const table = await tableOf(map, name, { batchRows: 500 });
            assert.ok(table.numRows > 50 && (table.batches.length > 1 || table.numRows <= 500));
            assert.deepEqual(columnsOf(table), native[i], `${name} of ${path}`);
        }
        map.close();
    }
});

test("lines are GeoArrow with their reference system, and the features of GeoJSON", async () => {
    const map = await openMap(town);
    const table = await tableOf(map, "lines", { splitByCode: false, layers: [4] });
    const { metadata } = table.schema.fields.find(({ name }) => name === "geometry")!;
    assert.equal(metadata.get("ARROW:extension:name"), "geoarrow.multilinestring");
    assert.match(metadata.get("ARROW:extension:metadata")!, /EPSG:5514/);
    const { features } = await map.geojson({ layers: [4] });
    const strokes = features.flatMap(({ geometry }) =>
        geometry.type === "MultiLineString"
            ? [geometry.coordinates]
            : geometry.type === "LineString"
              ? [[geometry.coordinates]]
              : [],
    );
    assert.ok(strokes.length > 20);
    assert.deepEqual(plain(table.getChild("geometry")), strokes);
    map.close();
});
