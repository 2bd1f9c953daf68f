// How fast the page shows maps in headless Chromium, beside vkm render in the same run and beside npm's dxf-viewer with the
// same lines. Run in the folder web: npm run bench [-- --full], which adds a map of 500 MB.

import { existsSync, mkdirSync, statSync } from "node:fs";
import { createServer } from "node:http";
import type { AddressInfo } from "node:net";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { build } from "esbuild";
import { pageFile, programs } from "../tests/places.ts";
import { launch, memoryOf, timeOpening, timePanning, timeProgram } from "./browser.ts";

const folder = join(tmpdir(), "vemrado-bench");
mkdirSync(folder, { recursive: true });
const runs = Number(process.env["RUNS"] ?? 3);
const longestWait = 60_000;

const vkm = join(programs, "vkm");
const seconds = (milliseconds: number): string => `${(milliseconds / 1000).toFixed(2)} s`;
const megabytes = (bytes: number): string => `${Math.round(bytes / 1e6)} MB`;

function mapOf(size: string): string {
    const path = join(folder, `${size}.vkm`);
    if (!existsSync(path)) timeProgram(join(programs, "vkm-generate"), "--size", size, "-o", path);
    return path;
}

async function measure(size: string): Promise<void> {
    const path = mapOf(size);
    for (let run = 0; run < runs; run++) {
        const browser = await launch();
        const page = await browser.newPage();
        await page.setViewport({ width: 1280, height: 800 });
        await page.goto(`file://${pageFile}`);
        await page.waitForSelector("#map[data-ready]");
        const times = await timeOpening(page, path);
        const memory = memoryOf(browser);
        await page.$eval("#scale-input", (scale) => {
            (scale as HTMLInputElement).value = "2000";
            scale.dispatchEvent(new Event("change"));
        });
        await new Promise((drawn) => setTimeout(drawn, 1500));
        const gaps = await timePanning(page);
        const longest = (await page.evaluate("noted.longestTask")) as number;
        await browser.close();
        const native = timeProgram(vkm, "render", path, "--width", "1280", "-o", join(folder, "native.png"));
        console.log(
            `${size}: first part ${seconds(times.firstPart)}, shown ${seconds(times.shown)}, ` +
                `vkm render ${native.toFixed(2)} s; longest task ${Math.round(longest)} ms; panning ` +
                `${gaps[50]!.toFixed(1)} and ${gaps[95]!.toFixed(1)} ms; ` +
                `memory ${megabytes(memory)}, ${(memory / statSync(path).size).toFixed(1)} times the file`,
        );
    }
}

async function compare(size: string): Promise<void> {
    const map = mapOf(size);
    const dxf = join(folder, `${size}.dxf`);
    if (!existsSync(dxf)) timeProgram(vkm, "convert", map, "-o", dxf, "--layers", "lines", "--quiet");
    const code = await build({
        entryPoints: ["bench/other_viewer.ts"],
        bundle: true,
        write: false,
        format: "iife",
    });
    const server = createServer((_, answer) => {
        answer.setHeader("Content-Type", "text/html; charset=utf-8");
        const script = code.outputFiles[0]!.text.replaceAll("</script", "<\\/script");
        answer.end(`<!doctype html><input type="file"><script>${script}</script>`);
    });
    await new Promise<void>((listening) => server.listen(0, "127.0.0.1", listening));
    const browser = await launch();
    const page = await browser.newPage();
    await page.goto(`http://127.0.0.1:${(server.address() as AddressInfo).port}/`);
    const input = (await page.$("input"))!;
    await (input as unknown as { uploadFile(path: string): Promise<void> }).uploadFile(dxf);
    const drawn = page
        .evaluate(() => window.drawDxf(document.querySelector("input")!.files![0]!))
        .then(seconds)
        .catch((error: Error) => `no picture: ${error.message.split("\n")[0]}`);
    const patience = new Promise<string>((over) =>
        setTimeout(() => over("no picture after a minute"), longestWait),
    );
    console.log(
        `${size} as DXF (${megabytes(statSync(dxf).size)}) in dxf-viewer: ${await Promise.race([drawn, patience])}`,
    );
    browser.process()?.kill("SIGKILL");
    server.close();
}

const sizes = process.argv.includes("--full") ? ["5M", "100M", "500M"] : ["5M", "100M"];
for (const size of sizes) await measure(size);
for (const size of ["5M", "100M"]) await compare(size);
process.exit(0);
