// The package as npm packs it: in Node from an empty folder, and its samples in Chromium.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { copyFileSync, mkdirSync, readFileSync, readdirSync, writeFileSync } from "node:fs";
import { createServer } from "node:http";
import type { AddressInfo } from "node:net";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { build } from "esbuild";
import { closeBrowser, folder, openBlank } from "./page.ts";
import { dumpOf, root, town } from "./places.ts";

const project = join(folder, "project");
after(closeBrowser);

before(() => {
    const pack = ["pack", "--silent", "--pack-destination", folder, join(root, "build/web/npm")];
    const archive = execFileSync("npm", pack, { encoding: "utf8" }).trim();
    mkdirSync(project);
    writeFileSync(join(project, "package.json"), '{"private": true, "type": "module"}');
    execFileSync("npm", ["install", "--offline", "--no-audit", "--no-fund", join(folder, archive)], {
        cwd: project,
    });
    copyFileSync(town, join(project, "town.vkm"));
});

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
    writeFileSync(join(project, "script.js"), imports + script);
    const output = execFileSync("node", [...options, "script.js"], {
        cwd: project,
        encoding: "utf8",
        timeout: 60000,
        maxBuffer: 1 << 28,
    });
    return JSON.parse(output);
}

test("no dependency and nothing but what it needs", () => {
    const installed = readdirSync(join(project, "node_modules")).filter((name) => !name.startsWith("."));
    assert.deepEqual(installed, ["vemrado"]);
    assert.deepEqual(readdirSync(join(project, "node_modules/vemrado")).sort(), [
        "README.md",
        "dist",
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
            for await (const element of map) kinds.push(element.kind);
            const { features } = await map.geojson();
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
            await attempt(() => openMap(new Blob(["%PDF-1.4 no map"]), given));
            await attempt(() => openMap(gzipSync("&V").subarray(0, 12), given));
            await attempt(() => openMap("http://127.0.0.1:" + port + "/town.vkm", { worker }));
            const map = await openMap("town.vkm", { worker });
            await attempt(() => map.columns("streets").next());
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
        ["VkmError", "given", 0, "open", "given: not a VKM file (looks like PDF)"],
        ["VkmError", "given", 0, "open", "given: the packed file is damaged"],
        ["VkmError", "town.vkm", 0, "open", "town.vkm: the server answers 404 Not Found"],
        ["RangeError", null, null, null, "there is no table 'streets'"],
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

test("the canvas sample, bundled by esbuild, draws the map", async () => {
    const sample = readFileSync(join(project, "node_modules/vemrado/samples/canvas.html"), "utf8");
    const script = /<script type="module">([^]*)<\/script>/.exec(sample)![1]!;
    const bundle = await build({
        stdin: { contents: script, resolveDir: project },
        bundle: true,
        format: "esm",
        write: false,
    });
    const page = sample.replace(script, () =>
        bundle.outputFiles[0]!.text.replaceAll("</script", "<\\/script"),
    );
    const server = createServer((request, answer) => {
        const isMap = request.url === "/town.vkm";
        answer.setHeader("Content-Type", isMap ? "application/octet-stream" : "text/html; charset=utf-8");
        answer.end(isMap ? readFileSync(town) : page);
    });
    server.unref();
    await new Promise<void>((listening) => server.listen(0, "127.0.0.1", listening));
    const opened = await openBlank(`http://127.0.0.1:${(server.address() as AddressInfo).port}/`);
    await opened.page.waitForFunction(() => document.querySelector("canvas")!.title !== "", {
        timeout: 30000,
    });
    const ink = await opened.page.evaluate(() => {
        const canvas = document.querySelector("canvas")!;
        const { data } = canvas.getContext("2d")!.getImageData(0, 0, canvas.width, canvas.height);
        return data.filter((value, i) => i % 4 === 3 && value > 100).length;
    });
    assert.ok(ink > 5000, `${ink} pixels are drawn`);
    assert.deepEqual(opened.errors, []);
    await opened.page.close();
    server.close();
});
