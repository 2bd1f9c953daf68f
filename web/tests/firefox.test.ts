// The page in the other browser, where Debian's firefox-esr is installed.

import assert from "node:assert/strict";
import { existsSync } from "node:fs";
import { test } from "node:test";
import { PNG } from "pngjs";
import puppeteer from "puppeteer-core";
import { mapPicture, openFiles, openPanel, press } from "./page.ts";
import { dumpOf, pageFile, town } from "./places.ts";

const firefox = process.env["FIREFOX"] ?? "/usr/bin/firefox-esr";
const skip = existsSync(firefox) ? false : `there is no ${firefox}`;

test("the sample town in Firefox", { skip }, async () => {
    const browser = await puppeteer.launch({ browser: "firefox", executablePath: firefox });
    const page = await browser.newPage();
    const errors: string[] = [];
    page.on("pageerror", (error) => errors.push(String(error)));
    await page.setViewport({ width: 1000, height: 700 });
    await page.goto(`file://${pageFile}`);
    await page.waitForSelector("#map[data-ready]", { timeout: 60000 });
    const { state, lines } = await openFiles(page, town);
    assert.equal(state, "shown");
    assert.equal(lines, (dumpOf(town) as { kind: string }[]).filter(({ kind }) => kind === "line").length);
    const ink = PNG.sync.read(await mapPicture(page)).data.filter((value, i) => i % 4 === 1 && value < 200);
    assert.ok(ink.length > 3000, `${ink.length} pixels of lines`);
    assert.match(await openPanel(page, "parcels"), /1,003 parcels/);
    await page.click("#panel-close");
    await openPanel(page, "layers");
    await press(page, "None");
    assert.deepEqual(errors, []);
    await browser.close();
});
