// The module in WebAssembly reads what the native one reads: the elements of many files, number by number.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdtempSync, readFileSync, readdirSync, rmSync, statSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, test } from "node:test";
import { pathToFileURL } from "node:url";
import { Engine, VkmError, type ModuleFactory, type Source } from "../engine/engine.ts";
import type { Element } from "../engine/types.ts";
import { dumpOf, moduleFolder, programs, root } from "./places.ts";

const folder = mkdtempSync(join(tmpdir(), "vemrado-"));
after(() => rmSync(folder, { recursive: true }));

const { default: factory } = (await import(pathToFileURL(join(moduleFolder, "vkm_web.mjs")).href)) as {
    default: ModuleFactory;
};
const engine = await Engine.load(factory, readFileSync(join(moduleFolder, "vkm_web.wasm")));

function sourceOf(path: string): Source {
    const bytes = readFileSync(path);
    return {
        name: path,
        size: bytes.length,
        read: (offset, length) => bytes.subarray(offset, offset + length),
    };
}

// Without the places in the file, which the listing of the command does not have.
function plain({ fileLine: _, ...element }: Element): object {
    return element;
}

function compare(path: string): void {
    const native = dumpOf(path);
    let read: object[] = [];
    try {
        read = [...engine.elements(sourceOf(path), "windows-1250", 1)].map(plain);
    } catch (error) {
        assert.ok(error instanceof VkmError, String(error));
        assert.deepEqual(native, [], `${path}: ${error.message}`);
    }
    assert.deepEqual(read, native, path);
}

test("every file of the fuzz corpus and the samples", () => {
    const corpus = ["reader", "vkm_file", "numbers"].map((name) => join(root, "fuzz/corpus", name));
    const paths = [...corpus, join(root, "data")].flatMap((name) =>
        readdirSync(name).map((file) => join(name, file)),
    );
    const files = paths.filter((path) => statSync(path).isFile());
    assert.ok(files.length > 15);
    for (const path of files) compare(path);
});

test("300 generated maps of all scales, in odd forms and with relative coordinates too", () => {
    const path = join(folder, "map.vkm");
    for (let seed = 1; seed <= 300; seed++) {
        const form = [[], ["--stress"], ["--relative"], ["--stress", "--relative"]][seed % 4]!;
        const scale = ["--scale", ["500", "1000", "2000"][seed % 3]!];
        const settings = ["--seed", String(seed), "--size", "20000", ...scale, ...form, "-o", path];
        execFileSync(join(programs, "vkm-generate"), settings);
        compare(path);
    }
});

test("numbers of every odd form", () => {
    const numbers = [
        "1e5",
        "-1.5E-300",
        "0x1.8p3",
        "nan",
        "-inf",
        "1e400",
        "4.9e-324",
        "123456789.123456789",
        ".5",
        "7.",
    ];
    const more = [
        "1.7976931348623157e308",
        "2.2250738585072011e-308",
        "0.1e-",
        "12345678901234567890",
        "+3.25",
    ];
    const lines = [...numbers, ...more].map(
        (number) => `&L P ${number} 1.0 K=21900 M=${number}\n L 2 ${number} U=${number}`,
    );
    const path = join(folder, "numbers.vkm");
    writeFileSync(path, `&V S-JTSK 0 0\n&G 1 1\n${lines.join("\n")}\n&K\n`);
    compare(path);
});

test("a source that fails in its middle is told with the line", () => {
    const path = join(folder, "large.vkm");
    execFileSync(join(programs, "vkm-generate"), ["--size", "1M", "-o", path]);
    const whole = sourceOf(path);
    const source: Source = {
        ...whole,
        read: (offset, length) => {
            if (offset > whole.size / 2) throw new Error("it is gone");
            return whole.read(offset, length);
        },
    };
    const sheet = engine.open(source);
    while (engine.read(sheet, 1000));
    const { state, failureLine, lines } = engine.summary().sheets[0]!;
    assert.equal(state, "failed");
    assert.ok(lines > 100 && failureLine > lines);
    const failed = { name: "VkmError", file: path, status: "read", line: failureLine };
    assert.throws(() => [...engine.elements(source)], failed);
    const columns = engine.openColumns(source, "windows-1250", "texts", {});
    assert.throws(() => {
        while (columns.next());
    }, failed);
    columns.close();
    assert.throws(() => engine.check(sheet, 10), {
        name: "VkmError",
        message: "the file cannot be read any more",
    });
    engine.speak("de");
    assert.throws(() => [...engine.elements(source)], { message: `${path}: Lesefehler` });
    engine.speak("en");
    engine.clear();
});

test("of many findings the most severe are listed, in the order of the file", () => {
    const path = join(folder, "faults.vkm");
    const cut = "&L P 1x 2 K=21900\n L 3 4\n";
    writeFileSync(path, `&V S-JTSK 0 0\n&G 1 1\n${cut.repeat(50)}&L Q 5 6\n${cut.repeat(50)}`);
    const sheet = engine.open(sourceOf(path));
    const whole = engine.check(sheet, 10_000);
    assert.ok(whole.error >= 2 && whole.warning > 100);
    const errors = whole.findings.filter(({ severity }) => severity === "error");
    assert.deepEqual(engine.check(sheet, errors.length).findings, errors);
    const short = engine.check(sheet, errors.length + 5);
    assert.deepEqual({ ...short, findings: [] }, { ...whole, findings: [] });
    const warnings = whole.findings.filter(({ severity }) => severity === "warning").slice(0, 5);
    const wanted = new Set([...errors, ...warnings]);
    assert.deepEqual(
        short.findings,
        whole.findings.filter((finding) => wanted.has(finding)),
    );
    engine.clear();
});
