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

function run(script: string): unknown {
    const path = join(project, "script.js");
    writeFileSync(path, `import { openMap, VkmError } from "vemrado";\n${script}`);
    return JSON.parse(execFileSync("node", ["script.js"], { cwd: project, encoding: "utf8" }));
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

test("elements, features, parcels and findings in Node", () => {
    const elements = dumpOf(town) as { kind: string; elements?: { type: string }[] }[];
    // A line of single points has symbols only.
    const isDrawn = ({ elements: points }: (typeof elements)[number]): boolean =>
        !points || points.some(({ type }, i) => i > 0 && type !== "P");
    const result = run(`
        const map = await openMap("town.vkm");
        let lines = 0, texts = 0;
        for await (const element of map) element.kind === "line" ? lines++ : texts++;
        const { features } = map.geojson();
        const columns = map.columns();
        const parcels = map.parcels();
        const other = await openMap(new Blob(["&V S-JTSK 0 0\\n&G 1 1\\n&L P 1 2\\n L 3 4\\n"]), { name: "small" });
        map.close();
        let closed = "";
        try { map.layers; } catch (error) { closed = error instanceof VkmError ? error.file : "" }
        console.log(JSON.stringify({
            lines, texts, closed,
            features: features.length,
            starts: columns.lines.start.at(-1) * 2 === columns.lines.points.length,
            parcels: parcels.length > 100 && parcels.every((parcel) => parcel.size > 0),
            small: [other.complete, other.extent],
        }));`);
    assert.deepEqual(result, {
        lines: elements.filter(({ kind }) => kind === "line").length,
        texts: elements.filter(({ kind }) => kind === "text").length,
        closed: "town.vkm",
        features: elements.filter(isDrawn).length,
        starts: true,
        parcels: true,
        small: [false, []],
    });
});

test("failures are VkmErrors that name the file", () => {
    const failures = run(`
        const failures = [];
        for (const input of ["missing.vkm", new Blob(["%PDF-1.4 no map"])]) {
            try { await openMap(input, { name: "given" }); }
            catch (error) { failures.push([error instanceof VkmError, error.message.length > 10]); }
        }
        console.log(JSON.stringify(failures));`);
    assert.deepEqual(failures, [
        [true, true],
        [true, true],
    ]);
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
