// Builds the package: dist/index.js with the module inside, and its types. Run in web/: build MODULE_FOLDER PACKAGE

import { cpSync, mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { join, resolve } from "node:path";
import { gzipSync } from "node:zlib";
import { build } from "esbuild";

const [moduleFolder, output] = process.argv
  .slice(2)
  .map((path) => resolve(path)) as [string, string];
const source = resolve("../npm");

const wasm = gzipSync(readFileSync(join(moduleFolder, "vkm_web.wasm")), {
  level: 9,
}).toString("base64");
await build({
  entryPoints: [join(source, "src/index.ts")],
  outfile: join(output, "dist/index.js"),
  bundle: true,
  minify: true,
  keepNames: true,
  format: "esm",
  target: ["chrome110", "firefox110", "node18"],
  legalComments: "none",
  define: { "import.meta.url": '"about:blank"' },
  plugins: [
    {
      name: "module",
      setup(setup) {
        setup.onResolve({ filter: /^vkm_web$/ }, () => ({
          path: join(moduleFolder, "vkm_web.mjs"),
        }));
        setup.onResolve({ filter: /^vkm_wasm$/ }, () => ({
          path: "vkm_wasm",
          namespace: "wasm",
        }));
        setup.onLoad({ filter: /.*/, namespace: "wasm" }, () => ({
          contents: wasm,
          loader: "text",
        }));
      },
    },
  ],
});

// The public types are those of the engine's answers and of the package's own tables.
const declarations = readFileSync(join(source, "index.d.ts"), "utf8");
mkdirSync(join(output, "dist"), { recursive: true });
writeFileSync(join(output, "dist/index.d.ts"), declarations);
writeFileSync(join(output, "dist/types.d.ts"), readFileSync("engine/types.ts"));
for (const name of ["package.json", "README.md", "samples"])
  cpSync(join(source, name), join(output, name), { recursive: true });
