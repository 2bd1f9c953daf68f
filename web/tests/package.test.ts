// The package as npm packs it, in a user's project in Node.

import assert from "node:assert/strict";
import { readFileSync, readdirSync } from "node:fs";
import { join } from "node:path";
import { after, test } from "node:test";
import { dumpOf, root, town } from "./places.ts";
import { makeProject, tools } from "./project.ts";

const project = makeProject("apache-arrow", "arrow-js-ffi", "proj4");
after(() => project.remove());

// What a script of the project's writes.
function run(script: string, ...options: string[]): unknown {
    const imports = `
        import { readFileSync } from "node:fs";
        import { createServer } from "node:http";
        import { pathToFileURL } from "node:url";
        import { gzipSync } from "node:zlib";
        import { openMap, VkmError } from "vemrado";
        async function serve() {
            const server = createServer((request, answer) => answer.writeHead(404).end());
            await new Promise((listening) => server.listen(0, "127.0.0.1", listening));
            return { port: server.address().port, close: () => server.close() };
        }`;
    project.write("script.js", imports + script);
    return JSON.parse(project.run("node", ...options, "script.js"));
}

test("no dependency and nothing but what it needs", () => {
    const installed = readdirSync(join(project.folder, "node_modules")).filter(
        (name) => !name.startsWith("."),
    );
    assert.deepEqual(installed, ["apache-arrow", "arrow-js-ffi", "proj4", "vemrado"]);
    assert.deepEqual(readdirSync(join(project.folder, "node_modules/vemrado")).sort(), [
        "README.md",
        "dist",
        "notices.txt",
        "package.json",
        "samples",
    ]);
});

test("a map in its Worker gives what it gives in this thread, and what the native module reads", () => {
    const elements = dumpOf(town) as { kind: string; elements?: { type: string }[] }[];
    // A line of single points has symbols only.
    const isDrawn = ({ elements: points }: (typeof elements)[number]): boolean =>
        !points || points.some(({ type }, i) => i > 0 && type !== "P");
    const [inWorker, inThread, inside] = run(`
        async function answers(input, options) {
            const map = await openMap(input, options);
            const kinds = [];
            const elements = async () => { for await (const element of map) kinds.push(element.kind); };
            const [{ features }] = await Promise.all([map.geojson(), elements()]);
            return {
                kinds,
                head: [map.name, map.complete, map.scale, map.extent, map.layers],
                features: features.length,
                parcels: await map.parcels(),
                found: await map.find("12"),
                findings: await map.check(),
                picture: (await map.svg(map.extent)).length,
            };
        }
        const bytes = readFileSync("town.vkm");
        console.log(JSON.stringify(await Promise.all([
            answers("town.vkm"),
            answers(new Blob([gzipSync(bytes)]), { name: "town.vkm", worker: false }),
            answers(pathToFileURL("town.vkm")),
        ])));
        // Nothing is closed: the program ends all the same.`) as Record<string, unknown>[];
    assert.deepEqual(inThread, inWorker);
    assert.deepEqual(inside, inWorker);
    assert.deepEqual(
        inWorker!["kinds"],
        elements.map(({ kind }) => kind),
    );
    assert.equal(inWorker!["features"], elements.filter(isDrawn).length);
    const parcels = inWorker!["parcels"] as { size: number }[];
    assert.ok(parcels.length > 100 && parcels.every(({ size }) => size > 0));
});

test("failures are VkmErrors that name the file, the line and the kind", () => {
    const failures = run(`
        const failures = [];
        async function attempt(work) {
            try { await work(); failures.push("no failure"); }
            catch (error) {
                const { name, file, line, status } = error;
                failures.push([error instanceof VkmError ? "VkmError" : name, file, line, status, error.message]);
            }
        }
        const { port, close } = await serve();
        for (const worker of [true, false]) {
            const given = { name: "given", worker };
            await attempt(() => openMap("missing.vkm", { worker }));
            await attempt(() => openMap(new Blob(["%PDF-1.4 no map"]), { ...given, language: "cs" }));
            await attempt(() => openMap(gzipSync("&V").subarray(0, 12), given));
            await attempt(() => openMap("http://127.0.0.1:" + port + "/town.vkm", { worker }));
            const map = await openMap("town.vkm", { worker });
            await attempt(() => map.columns("streets").next());
            await attempt(() => map.columns("lines", { batchRows: 0 }).next());
            await attempt(() => map.draw({}, { x: 0, y: 0, scale: 1, width: 1e9, height: 1e9 }));
            await attempt(async () => { for await (const element of map) map.close(); });
            await attempt(() => map.parcels());
            await attempt(() => openMap("town.vkm", { worker, signal: AbortSignal.abort() }));
            const control = new AbortController();
            const opening = openMap("town.vkm", { worker, signal: control.signal });
            control.abort();
            await attempt(() => opening);
        }
        close();
        console.log(JSON.stringify(failures));`) as unknown[];
    const expected = [
        ["VkmError", "missing.vkm", 0, "open", "missing.vkm: no such file or directory"],
        ["VkmError", "given", 0, "open", "given: není soubor VKM (vypadá jako PDF)"],
        ["VkmError", "given", 0, "open", "given: the packed file is damaged"],
        ["VkmError", "town.vkm", 0, "open", "town.vkm: the server answers 404 Not Found"],
        ["RangeError", null, null, null, "there is no table 'streets'"],
        ["RangeError", null, null, null, "batchRows is a whole number from 1"],
        [
            "RangeError",
            null,
            null,
            null,
            "a view has a place, a scale above 0, and a width and height from 1 to 16384 pixels",
        ],
        ["VkmError", "town.vkm", 0, "closed", "town.vkm: the map is closed"],
        ["VkmError", "town.vkm", 0, "closed", "town.vkm: the map is closed"],
        ["AbortError", null, null, null, "This operation was aborted"],
        ["AbortError", null, null, null, "This operation was aborted"],
    ];
    assert.deepEqual(failures, [...expected, ...expected]);
});

test("maps that nobody closes are freed by the collector, those in use are not", () => {
    const memory = run(
        `
        const bytes = readFileSync("town.vkm");
        async function open() {
            const map = await openMap(bytes);
            return (await map.find("1")).count;
        }
        const megabytes = () => process.memoryUsage().rss / 1e6;
        const sizes = [];
        for (let round = 0; round < 6; round++) {
            await Promise.all(Array.from({ length: 8 }, open));
            await collect();
            sizes.push(megabytes());
        }
        const asked = (await openMap(bytes)).check();
        await collect();
        console.log(JSON.stringify({ sizes, findings: typeof (await asked).note }));
        async function collect() {
            for (let i = 0; i < 5; i++) {
                gc();
                await new Promise((resolve) => setTimeout(resolve, 50));
            }
        }`,
        "--expose-gc",
    ) as { sizes: number[]; findings: string };
    const { sizes } = memory;
    assert.ok(sizes.at(-1)! < sizes[1]! + 60, `resident memory in MB: ${sizes.map(Math.round)}`);
    assert.equal(memory.findings, "number");
});

test("types hold in strict mode, with the types of browsers or of Node alone", () => {
    project.write(
        "user.ts",
        `import { openMap, VkmError, type Element, type View } from "vemrado";
        export async function use(view: View, context: Parameters<Awaited<ReturnType<typeof openMap>>["draw"]>[0]) {
            const map = await openMap(new URL("file:///town.vkm"), { encoding: "cp852" });
            const kinds: Element["kind"][] = [];
            for await (const element of map) {
                kinds.push(element.kind);
                // @ts-expect-error: only texts have one.
                element.text;
            }
            for await (const { memory, array, rows } of map.columns("parcels")) new DataView(memory, array, rows);
            // @ts-expect-error: there is no such table.
            map.columns("streets");
            await map.draw(context, view);
            const sizes: number[] = (await map.parcels()).map((parcel) => parcel.size);
            return { kinds, sizes, line: new VkmError("", "", 0).line };
        }`,
    );
    project.write(
        "page.ts",
        `import { use } from "./user.js";
        void use({ x: 0, y: 0, scale: 1, width: 1, height: 1 }, document.createElement("canvas").getContext("2d")!);`,
    );
    const strict = [
        "--strict",
        "--noEmit",
        "--target",
        "ES2022",
        "--types",
        "node",
        "--typeRoots",
        join(tools, "@types"),
    ];
    const tsc = join(tools, ".bin/tsc");
    project.run(tsc, ...strict, "--module", "nodenext", "--lib", "ES2022,ESNext.Disposable", "user.ts");
    project.run(
        tsc,
        ...strict,
        "--module",
        "esnext",
        "--moduleResolution",
        "bundler",
        "--lib",
        "ES2022,DOM,DOM.AsyncIterable",
        "page.ts",
    );
});

test("the documents' examples run", () => {
    for (const name of ["npm/README.md", "docs/javascript.md"]) {
        const examples = [...readFileSync(join(root, name), "utf8").matchAll(/^```js\n([^]*?)^```/gm)];
        assert.ok(examples.length > 1);
        for (const [, example] of examples) {
            project.write("example.js", example!);
            assert.notEqual(project.run("node", "example.js"), "", `${name}:\n${example}`);
        }
    }
});
