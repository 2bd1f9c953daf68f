// How the page treats its readers: screen readers, the dark, languages, phones, keyboards.

import assert from "node:assert/strict";
import { readFileSync, rmSync } from "node:fs";
import { createRequire } from "node:module";
import { after, test } from "node:test";
import type { Page } from "puppeteer-core";
import { closeBrowser, fileWith, folder, lookAt, openFiles, openPage, openPanel, until } from "./page.ts";
import { root, town } from "./places.ts";

after(async () => {
    await closeBrowser();
    rmSync(folder, { recursive: true });
});

const panels = ["layers", "legend", "parcels", "check", "tools"];
const axe = readFileSync(createRequire(`${root}/web/package.json`).resolve("axe-core/axe.min.js"), "utf8");

async function faults(page: Page): Promise<string[]> {
    return page.evaluate(async (source) => {
        const scope = window as unknown as {
            axe?: { run(): Promise<{ violations: { id: string; nodes: { html: string }[] }[] }> };
        };
        if (!scope.axe) new Function(source).call(window);
        const { violations } = await scope.axe!.run();
        return violations.map(({ id, nodes }) => `${id}: ${nodes[0]!.html}`);
    }, axe);
}

for (const dark of [false, true]) {
    test(`axe finds nothing in the ${dark ? "dark" : "light"} scheme`, async () => {
        const { page } = await openPage({ dark });
        const session = await page.createCDPSession();
        await session.send("Page.setBypassCSP", { enabled: true });
        await page.reload();
        await page.waitForSelector("#map[data-ready]");
        assert.deepEqual(await faults(page), []);
        const cut = readFileSync(town).subarray(0, 60000);
        await openFiles(page, fileWith("cut.vkm", cut));
        assert.deepEqual(await faults(page), [], "with a warning");
        await openFiles(page, town);
        assert.deepEqual(await faults(page), [], "with a map");
        for (const name of panels) {
            await openPanel(page, name);
            assert.deepEqual(await faults(page), [], name);
        }
        await page.type("#find-text", "12");
        await page.waitForSelector("#find-hits li");
        assert.deepEqual(await faults(page), [], "while finding");
        await page.close();
    });
}

test("the browser's language, and another one by choice", async () => {
    for (const [languages, open, layers] of [
        [["cs-CZ", "en"], "Otevřít…", "Vrstvy"],
        [["fr", "de-AT"], "Öffnen…", "Ebenen"],
        [["fr-FR"], "Open…", "Layers"],
    ] as const) {
        const { page } = await openPage({ languages: [...languages] });
        assert.equal(await page.$eval("#open-button", (button) => button.textContent), open);
        await openFiles(page, town);
        assert.equal(await page.$eval("[data-panel=layers]", (button) => button.textContent), layers);
        await page.close();
    }
    const { page } = await openPage();
    await openFiles(page, town);
    await openPanel(page, "tools");
    await page.select('select[aria-label="Language"]', "cs");
    await until(page, 'document.getElementById("panel-title").textContent === "Nástroje"');
    const left = await page.$$eval("[data-say], [data-say-label]", (elements) =>
        elements
            .map((element) => element.textContent || element.ariaLabel)
            .filter((text) => /Layers|Zoom in/.test(text!)),
    );
    assert.deepEqual(left, []);
    assert.equal(await page.evaluate(() => document.documentElement.lang), "cs");
    await page.close();
});

test("a phone: nothing sticks out, two fingers zoom, one moves", async () => {
    const { page, errors } = await openPage({ width: 390, height: 780, ratio: 3, phone: true });
    await openFiles(page, town);
    await lookAt(page, { x: -744400, y: -1040500 }, 1000);
    for (const name of panels) {
        await openPanel(page, name);
        const outside = await page.$$eval("button, input, select, .card", (elements) =>
            elements
                .filter((element) => element.checkVisibility() && !element.classList.contains("unseen"))
                .filter((element) => !element.closest(".panel-body"))
                .map((element) => ({
                    name: element.id || element.className,
                    box: element.getBoundingClientRect(),
                }))
                .filter(({ box }) => box.left < 0 || box.right > innerWidth || box.bottom > innerHeight)
                .map(({ name: outer }) => outer),
        );
        assert.deepEqual(outside, [], name);
        await page.click("#panel-close");
    }
    const placeNow = async (): Promise<{ y: number; scale: number }> => {
        await new Promise((kept) => setTimeout(kept, 600));
        const place = new URLSearchParams((await page.evaluate(() => location.hash)).slice(1));
        return { y: Number(place.get("y")), scale: Number(place.get("scale")) };
    };
    const finger = await page.touchscreen.touchStart(200, 400);
    for (let step = 1; step <= 10; step++) await finger.move(200 - 10 * step, 400);
    await finger.end();
    const moved = await placeNow();
    // 100 pixels at 1 : 1000 are 26.46 m.
    assert.ok(Math.abs(744400 - moved.y - 26.46) < 1.5, `moved to ${moved.y}`);
    const first = await page.touchscreen.touchStart(150, 400);
    const second = await page.touchscreen.touchStart(250, 400);
    for (let step = 1; step <= 10; step++) {
        await first.move(150 - 5 * step, 400);
        await second.move(250 + 5 * step, 400);
    }
    await first.end();
    await second.end();
    const zoomed = await placeNow();
    assert.ok(Math.abs(zoomed.scale - 500) < 40, `zoomed to ${zoomed.scale}`);
    assert.deepEqual(errors, []);
    await page.close();
});

test("all of it by keyboard alone", async () => {
    const { page } = await openPage();
    await openFiles(page, town);
    await lookAt(page, { x: -744400, y: -1040500 }, 1000);
    const focused = (): Promise<string> =>
        page.evaluate(() => {
            const { id, dataset } = document.activeElement as HTMLElement;
            return id || (dataset["panel"] ?? "");
        });
    await page.focus("#map");
    const visited = [];
    for (let i = 0; i < 14; i++) {
        await page.keyboard.press("Tab");
        visited.push(await focused());
    }
    for (const name of [
        "open-button",
        "find-text",
        ...panels,
        "zoom-in",
        "zoom-out",
        "zoom-all",
        "scale-input",
    ])
        assert.ok(visited.includes(name), `${name} among ${visited}`);
    await page.focus('[data-panel="legend"]');
    await page.keyboard.press("Enter");
    await until(page, '!document.getElementById("panel").hidden');
    await page.focus("#panel-close");
    await page.keyboard.press("Escape");
    assert.equal(await focused(), "legend");
    await page.focus("#map");
    await page.keyboard.press("ArrowRight");
    await page.keyboard.press("+");
    await until(page, 'location.hash.includes("scale=625")');
    await page.keyboard.press("0");
    await until(page, 'Number(document.getElementById("scale-input").value) > 3000');
    await page.keyboard.press("/");
    assert.equal(await focused(), "find-text");
    await page.keyboard.type("595");
    await page.keyboard.press("Enter");
    await until(page, 'document.getElementById("scale-input").value === "500"');
    await page.focus("#map");
    await page.keyboard.press("Enter");
    await until(page, 'document.getElementById("panel-body").innerText.startsWith("595")');
    await page.close();
});
