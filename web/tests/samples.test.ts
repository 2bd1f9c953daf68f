// The samples of the package, built by esbuild and vite in a user's project, in a real Chromium. Their pictures are
// left in build/web/samples.

import assert from "node:assert/strict";
import { copyFileSync, mkdirSync, readFileSync, readdirSync } from "node:fs";
import { createServer } from "node:http";
import type { AddressInfo } from "node:net";
import { extname, join } from "node:path";
import { after, before, test } from "node:test";
import { PNG } from "pngjs";
import puppeteer, { type Browser } from "puppeteer-core";
import { root, town } from "./places.ts";
import { makeProject, tools } from "./project.ts";

const project = makeProject("ol", "proj4", "maplibre-gl");
const samples = join(project.folder, "node_modules/vemrado/samples");
const site = join(project.folder, "dist");
const pictures = join(root, "build/web/samples");

const types: Record<string, string> = { ".html": "text/html; charset=utf-8", ".js": "text/javascript" };
const server = createServer((request, answer) => {
    try {
        const content = readFileSync(join(site, request.url!));
        answer.setHeader("Content-Type", types[extname(request.url!)] ?? "application/octet-stream");
        answer.end(content);
    } catch {
        answer.writeHead(request.url === "/favicon.ico" ? 204 : 404).end();
    }
});
let browser: Browser;

before(async () => {
    mkdirSync(pictures, { recursive: true });
    await new Promise<void>((listening) => server.listen(0, "127.0.0.1", listening));
    // Without a graphics card WebGL is drawn by the processor.
    const webgl = ["--use-gl=angle", "--use-angle=swiftshader", "--enable-unsafe-swiftshader"];
    browser = await puppeteer.launch({
        executablePath: process.env["CHROMIUM"] ?? "/usr/bin/chromium",
        args: ["--no-sandbox", "--disable-dev-shm-usage", ...webgl],
    });
});
after(async () => {
    await browser.close();
    server.close();
    project.remove();
});

function buildByVite(): string {
    const names = readdirSync(samples).filter((name) => name.endsWith(".html"));
    for (const name of names) copyFileSync(join(samples, name), join(project.folder, name));
    const settings = {
        build: { target: "esnext", chunkSizeWarningLimit: 2000, rollupOptions: { input: names } },
    };
    project.write("vite.config.js", `export default ${JSON.stringify(settings)};`);
    return project.run("node", join(tools, "vite/bin/vite.js"), "build", "--logLevel", "warn");
}

function buildByEsbuild(): void {
    const page = readFileSync(join(samples, "canvas.html"), "utf8");
    const script = /<script type="module">([^]*)<\/script>/.exec(page)![1]!;
    project.write("canvas.js", script);
    project.write(
        "dist/esbuild.html",
        page.replace(/<script[^]*/, '<script type="module" src="canvas.js"></script>'),
    );
    project.run(
        join(tools, ".bin/esbuild"),
        "canvas.js",
        "--bundle",
        "--format=esm",
        "--outdir=dist",
        "--log-level=warning",
    );
}

test("vite and esbuild build the samples", () => {
    assert.doesNotMatch(buildByVite(), /externalized|unresolved/);
    buildByEsbuild();
    copyFileSync(town, join(site, "town.vkm"));
});

for (const name of ["esbuild", "canvas", "openlayers", "maplibre"]) {
    test(`${name} shows the map`, async () => {
        const page = await browser.newPage();
        const errors: string[] = [];
        let workers = 0;
        page.on("workercreated", () => workers++);
        page.on("pageerror", (error) => errors.push(String(error)));
        page.on("console", (message) => message.type() === "error" && errors.push(message.text()));
        await page.setViewport({ width: 900, height: 600 });
        await page.goto(`http://127.0.0.1:${(server.address() as AddressInfo).port}/${name}.html`);
        await page.waitForSelector('body[data-state="shown"]', { timeout: 30000 }).catch(() => undefined);
        assert.deepEqual(errors, []);
        assert.ok(workers > 0);
        const shown = PNG.sync.read(
            Buffer.from(await page.screenshot({ path: join(pictures, `${name}.png`) })),
        );
        const dark = shown.data.filter((value, i) => i % 4 === 1 && value < 160).length;
        assert.ok(dark > 10000, `${dark} dark pixels`);
        await page.close();
    });
}
