// Builds the package: dist/index.js with the module and its Worker inside, and the types. Run in web/:
// build MODULE_FOLDER PACKAGE

import { cpSync, mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { join, resolve } from "node:path";
import { gzipSync } from "node:zlib";
import { build, type Plugin } from "esbuild";

const [moduleFolder, output] = process.argv.slice(2).map((path) => resolve(path)) as [string, string];
const source = resolve("../npm");

const packed = (bytes: Uint8Array | string): string => gzipSync(bytes, { level: 9 }).toString("base64");

// Imports of one name get a text, or the module's own script.
function inlined(name: string, contents: string): Plugin {
    return {
        name,
        setup(setup) {
            setup.onResolve({ filter: new RegExp(`^${name}$`) }, () => ({ path: name, namespace: name }));
            setup.onLoad({ filter: /.*/, namespace: name }, () => ({ contents, loader: "text" }));
        },
    };
}
const compiledModule: Plugin = {
    name: "module",
    setup(setup) {
        setup.onResolve({ filter: /^vkm_web$/ }, () => ({ path: join(moduleFolder, "vkm_web.mjs") }));
    },
};

async function bundle(entry: string, format: "esm" | "iife", plugins: Plugin[]): Promise<string> {
    const result = await build({
        entryPoints: [join(source, "src", entry)],
        bundle: true,
        write: false,
        minify: true,
        keepNames: format === "esm",
        format,
        target: ["chrome110", "firefox110", "node18"],
        external: ["node:*"],
        legalComments: "none",
        define: { "import.meta.url": '"about:blank"' },
        plugins: [compiledModule, ...plugins],
    });
    return result.outputFiles[0]!.text;
}

const worker = packed(await bundle("worker.ts", "iife", []));
const wasm = packed(readFileSync(join(moduleFolder, "vkm_web.wasm")));
const script = await bundle("index.ts", "esm", [inlined("vkm_worker", worker), inlined("vkm_wasm", wasm)]);
mkdirSync(join(output, "dist"), { recursive: true });
writeFileSync(join(output, "dist/index.js"), script);

// The public types are those of the engine's answers and of the package's own interface.
const declarations = readFileSync(join(source, "index.d.ts"), "utf8");
writeFileSync(
    join(output, "dist/index.d.ts"),
    declarations.replaceAll("../web/engine/types.js", "./types.js"),
);
writeFileSync(join(output, "dist/types.d.ts"), readFileSync("engine/types.ts"));
for (const name of ["package.json", "README.md", "notices.txt", "samples"])
    cpSync(join(source, name), join(output, name), { recursive: true });
