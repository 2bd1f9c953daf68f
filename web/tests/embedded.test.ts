// Pages with a map inside, as vkm render and vkm view make them, and maps that lie beside the page on a server.

import assert from "node:assert/strict";
import { execFileSync, spawnSync } from "node:child_process";
import { chmodSync, existsSync, mkdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { createServer } from "node:http";
import type { AddressInfo } from "node:net";
import { basename, dirname, join } from "node:path";
import { after, test } from "node:test";
import { gzipSync } from "node:zlib";
import { closeBrowser, fileWith, folder, openPage, waitUntilOpen, type Status } from "./page.ts";
import { dumpOf, pageFile, programs, root, town } from "./places.ts";

after(async () => {
    await closeBrowser();
    rmSync(folder, { recursive: true });
});

const vkm = join(programs, "vkm");
const kinds = (dumpOf(town) as { kind: string }[]).map(({ kind }) => kind);
const counts = {
    lines: kinds.filter((kind) => kind === "line").length,
    texts: kinds.filter((kind) => kind === "text").length,
};

async function shown(address: string): Promise<Status & { requests: string[]; title: string }> {
    const { page, requests, errors } = await openPage({ address });
    const status = await waitUntilOpen(page);
    const title = await page.title();
    if (status.state === "shown") assert.deepEqual(errors, []);
    await page.close();
    return { ...status, requests, title };
}

test("vkm render makes a page of plain, packed and archived maps, and of standard input", async () => {
    const packed = fileWith("town.vkm.gz", gzipSync(readFileSync(town)));
    const zip = join(folder, "sheets.zip");
    execFileSync("python3", ["-m", "zipfile", "-c", zip, town]);
    for (const [input, title] of [
        [town, "sample-town.vkm"],
        [packed, "town.vkm"],
        [zip, "sample-town.vkm"],
        ["-", "standard input"],
    ] as const) {
        const output = join(folder, "map.html");
        execFileSync(vkm, ["render", input, "-o", output], {
            input: input === "-" ? readFileSync(town) : "",
        });
        const {
            state,
            lines,
            texts,
            complete,
            problems,
            requests,
            title: said,
        } = await shown(`file://${output}`);
        const expected = { state: "shown", ...counts, complete: "true", problems: "" };
        assert.deepEqual({ state, lines, texts, complete, problems }, expected, input);
        assert.deepEqual(requests, [`file://${output}`]);
        assert.ok(said.startsWith(title), said);
    }
});

test("encoding and symbology go into the page", async () => {
    const words = Buffer.from("\x8A\xA0", "latin1"); // Ší in windows-1250, Őá in cp852
    const map = Buffer.concat([Buffer.from("&V S-JTSK 0 0\n&U 1\n&T 1 2 '"), words, Buffer.from("'\n&K\n")]);
    const output = join(folder, "cp852.html");
    const symbology = join(root, "data/symbology");
    execFileSync(vkm, ["render", fileWith("a.vkm", map), "-o", output, "-e", "cp852", "--data", symbology]);
    const { page } = await openPage({ address: `file://${output}` });
    assert.match((await waitUntilOpen(page)).problems, /your own symbology/);
    await page.type("#find-text", "oa");
    await page.waitForSelector("#find-hits li");
    assert.equal(await page.$eval("#find-hits li span", (hit) => hit.textContent), "Őá");
    await page.close();
});

test("vkm view opens a page that stays", async () => {
    const opener = join(folder, "bin/xdg-open");
    mkdirSync(dirname(opener));
    const run = (script: string): { status: number | null; output: string; errors: string } => {
        writeFileSync(opener, `#!/bin/sh\n${script}\n`);
        chmodSync(opener, 0o755);
        const { status, stdout, stderr } = spawnSync(vkm, ["view", town], {
            encoding: "utf8",
            env: { ...process.env, PATH: `${dirname(opener)}:${process.env["PATH"]}`, TMPDIR: folder },
        });
        return { status, output: stdout.trim(), errors: stderr };
    };
    const { status, output } = run(`echo "$1" > ${folder}/opened`);
    assert.equal(status, 0);
    assert.equal(readFileSync(join(folder, "opened"), "utf8").trim(), output);
    assert.equal(basename(output), "sample-town.html");
    assert.equal((await shown(`file://${output}`)).lines, counts.lines);

    const failed = run("exit 3");
    assert.equal(failed.status, 3);
    assert.match(failed.errors, /the browser could not be opened/);
    assert.ok(existsSync(failed.output));
});

test("?url= opens a map beside the page, and nothing from elsewhere", async () => {
    const served = createServer((request, answer) => {
        const path = new URL(request.url!, "http://here").pathname;
        const file = { "/": pageFile, "/maps/m%C4%9Bsto.vkm": town }[path];
        answer.setHeader(
            "Content-Type",
            path === "/" ? "text/html; charset=utf-8" : "application/octet-stream",
        );
        answer.statusCode = file ? 200 : 404;
        answer.end(file ? readFileSync(file) : "");
    });
    const elsewhere = createServer((_, answer) => {
        answer.setHeader("Access-Control-Allow-Origin", "*");
        answer.end(readFileSync(town));
    });
    const listen = async (server: typeof served): Promise<string> => {
        await new Promise<void>((listening) => server.listen(0, "127.0.0.1", listening));
        return `http://127.0.0.1:${(server.address() as AddressInfo).port}/`;
    };
    const [here, there] = [await listen(served), await listen(elsewhere)];
    for (const [url, state, problem] of [
        ["maps/město.vkm", "shown", /^$/],
        ["missing.vkm", "failed", /missing.vkm: 404/],
        [`${there}town.vkm`, "failed", /town.vkm does not lie beside this page/],
        ["%", "failed", /^%/],
    ] as const) {
        const status = await shown(`${here}?url=${encodeURIComponent(url)}`);
        assert.equal(status.state, state, url);
        assert.match(status.problems.replace("×", ""), problem);
        if (state === "shown") assert.equal(status.title, "město.vkm – Vemrado");
    }
    for (const server of [served, elsewhere]) {
        server.closeAllConnections();
        server.close();
    }
});
