// Where the build has put what the tests need.

import { execFileSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { resolve } from "node:path";
import type { Element } from "../engine/types.ts";

export const root = resolve(process.env["VEMRADO_ROOT"] ?? "..");
export const moduleFolder = resolve(root, "build/web/module");
export const pageFile = resolve(root, "build/web/vemrado.html");
export const programs = resolve(root, process.env["VEMRADO_PROGRAMS"] ?? "build/release/bin");
export const town = resolve(root, "data/sample-town.vkm");

export const linesOf = (path: string): string[] => readFileSync(path, "latin1").split(/\r?\n/);

// Numbers that JSON has no form for are written as their names.
function parseElement(line: string): Element {
    return JSON.parse(line, (key, value: unknown) =>
        typeof value === "string" && key !== "text" && key !== "K" && /^(NaN|-?Infinity)$/.test(value)
            ? Number(value)
            : value,
    ) as Element;
}

// The elements of a file as the native module reads them.
export function dumpOf(path: string): object[] {
    let listing = "";
    try {
        listing = execFileSync(`${programs}/vkm`, ["dump", path], {
            encoding: "utf8",
            maxBuffer: 1 << 30,
            stdio: ["ignore", "pipe", "ignore"],
        });
    } catch (error) {
        // An incomplete file ends with a code of its own after its listing.
        listing = (error as { stdout: string }).stdout;
    }
    return listing
        .split("\n")
        .filter((line) => line !== "")
        .map((line) => parseElement(line));
}
