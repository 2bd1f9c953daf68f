// Files of ill will: whatever they hold, the page says how it went, and none of it becomes a part of the page.

import assert from "node:assert/strict";
import { mkdirSync, readFileSync, readdirSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, test } from "node:test";
import { gzipSync } from "node:zlib";
import { closeBrowser, fileWith, folder, openFiles, openPage, openPanel } from "./page.ts";
import { root, town } from "./places.ts";

after(async () => {
    await closeBrowser();
    rmSync(folder, { recursive: true });
});

test("the fuzz corpus and maps cut anywhere", async () => {
    const { page, errors } = await openPage();
    const paths = ["reader", "vkm_file"].flatMap((name) => {
        const corpus = join(root, "fuzz/corpus", name);
        return readdirSync(corpus).map((file) => join(corpus, file));
    });
    const start = readFileSync(town).subarray(0, 3000);
    const packed = gzipSync(start);
    for (let cut = 1; cut < start.length; cut += 149)
        paths.push(fileWith(`cut${cut}.vkm`, start.subarray(0, cut)));
    for (let cut = 1; cut < packed.length; cut += 97)
        paths.push(fileWith(`cut${cut}.gz`, packed.subarray(0, cut)));
    for (let seed = 1; seed < 20; seed++) {
        const broken = Buffer.from(start);
        for (let at = seed; at < broken.length; at += 31 * seed) broken[at] = (at * seed) & 255;
        paths.push(fileWith(`broken${seed}.vkm`, broken));
    }
    for (const path of paths) {
        const { state, problems, lines, texts, complete } = await openFiles(page, path);
        if (state === "shown") assert.ok(lines + texts > 0 && (complete === "true" || problems !== ""), path);
        else assert.ok(state === "failed" && problems.length > 10, path);
    }
    // And it goes on working.
    assert.equal((await openFiles(page, town)).problems, "");
    assert.deepEqual(errors, []);
    await page.close();
});

test("markup in names and texts stays text", async () => {
    const { page, errors } = await openPage();
    const evil = "<img src=x id=evil onerror=document.title=1><b id=evil>";
    const map =
        `&V S-JTSK 0 0\n&G ${evil} 1\n&U 1\n&L P 744400 1040500 K=21900\n L 744480 1040500 K=${evil}\n` +
        ` L 744480 1040530\n L 744400 1040530\n L 744400 1040500\n&U <b>\n&T 744440 1040515 '${evil}'\n&K\n&L ${evil}\n`;
    const inFolder = join(folder, "<img src=x id=evil onerror=alert(1)>.vkm");
    writeFileSync(inFolder, map);
    mkdirSync(join(folder, "old"));
    await openFiles(page, inFolder);
    for (const name of ["layers", "legend", "parcels", "check", "tools"]) await openPanel(page, name);
    await page.type("#find-text", "<img");
    await page.waitForSelector("#find-hits li");
    await page.keyboard.press("Enter");
    await page.focus("#map");
    await page.keyboard.press("Enter");
    await page.waitForFunction(() => document.getElementById("panel-body")!.innerText.includes("<img"));
    for (const name of ["<b id=evil>.zip", "<b id=evil>.vkm.gz"]) {
        const status = await openFiles(page, fileWith(name, "PK\u0003\u0004"));
        assert.match(status.problems, /<b id=evil>/);
    }
    const found = await page.evaluate(() => [
        document.querySelectorAll("#evil").length,
        document.querySelectorAll("img").length,
        document.title,
    ]);
    assert.deepEqual(found.slice(0, 2), [0, 0]);
    assert.deepEqual(errors, []);
    await page.close();
});
