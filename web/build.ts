// Builds the page as one file. Run in this folder: build MODULE_FOLDER FONT_FOLDER OUTPUT

import { createHash } from "node:crypto";
import { readFileSync, readdirSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { gzipSync } from "node:zlib";
import { build, type Plugin } from "esbuild";

const [moduleFolder, fontFolder, output] = process.argv.slice(2) as [string, string, string];
const here = process.cwd();

const packed = (bytes: Uint8Array | string): string => gzipSync(bytes, { level: 9 }).toString("base64");

// The faces by the names of their files, as FontFace takes them.
function fonts(): object[] {
    return readdirSync(fontFolder)
        .filter((name) => name.endsWith(".woff2"))
        .sort()
        .map((name) => ({
            family: name.includes("Serif") ? "DejaVu Serif" : "DejaVu Sans",
            weight: name.includes("Bold") ? "bold" : "normal",
            style: /Oblique|Italic/.test(name) ? "italic" : "normal",
            base64: readFileSync(join(fontFolder, name)).toString("base64"),
        }));
}

async function bundle(entry: string, plugins: Plugin[]): Promise<string> {
    const result = await build({
        entryPoints: [join(here, entry)],
        bundle: true,
        minify: true,
        format: "iife",
        target: ["chrome120", "firefox115"],
        write: false,
        charset: "utf8",
        legalComments: "none",
        define: { "import.meta.url": '"about:blank"' },
        plugins,
    });
    return result.outputFiles[0]!.text.trim();
}

const compiledModule: Plugin = {
    name: "module",
    setup(setup) {
        setup.onResolve({ filter: /^vkm_web$/ }, () => ({ path: join(moduleFolder, "vkm_web.mjs") }));
    },
};

function inlined(name: string, value: object): Plugin {
    return {
        name,
        setup(setup) {
            setup.onResolve({ filter: new RegExp(`^${name}$`) }, () => ({ path: name, namespace: name }));
            setup.onLoad({ filter: /.*/, namespace: name }, () => ({
                contents: JSON.stringify(value),
                loader: "json",
            }));
        },
    };
}

const hash = (text: string): string => `'sha256-${createHash("sha256").update(text).digest("base64")}'`;

const worker = await bundle("page/worker.ts", [compiledModule]);
const assets = {
    worker: packed(worker),
    wasm: packed(readFileSync(join(moduleFolder, "vkm_web.wasm"))),
    fonts: fonts(),
};
const script = (await bundle("page/page.ts", [inlined("page-assets", assets)])).replaceAll(
    "</script",
    "<\\/script",
);
const css = await build({ entryPoints: [join(here, "page/page.css")], minify: true, write: false });
const style = css.outputFiles[0]!.text.trim();

// Nothing but what is in the page runs, and it can ask only the server that it came from, for a map beside it.
const policy = [
    "default-src 'none'",
    `script-src ${hash(script)} 'wasm-unsafe-eval' blob:`,
    "worker-src blob:",
    `style-src ${hash(style)}`,
    "img-src data: blob:",
    "font-src data: blob:",
    "connect-src 'self'",
    "form-action 'none'",
    "base-uri 'none'",
].join("; ");

// What the licences of the page's parts ask to be said.
const notices = readFileSync(join(here, "page/notices.txt"), "utf8");
const page = readFileSync(join(here, "page/page.html"), "utf8")
    .replace("<!doctype html>", (doctype) => `${doctype}\n<!--\n${notices}-->`)
    .replace("%POLICY%", () => policy)
    .replace(/\s*%STYLE%\s*/, () => style)
    .replace(/\s*%SCRIPT%\s*/, () => script);
writeFileSync(output, page);
