// What people do with a map that is open: the page must say what the command line says of the same map.

import assert from "node:assert/strict";
import { execFileSync, spawnSync } from "node:child_process";
import { copyFileSync, mkdirSync, readFileSync, readdirSync, rmSync } from "node:fs";
import { join } from "node:path";
import { after, test } from "node:test";
import { PNG } from "pngjs";
import type { Page } from "puppeteer-core";
import {
    closeBrowser,
    fileWith,
    folder,
    lookAt,
    mapPicture,
    openFiles,
    openPage,
    openPanel,
    panelText,
    press,
    saved,
    screenPoint,
    until,
} from "./page.ts";
import { dumpOf, linesOf, pageFile, programs, root, town } from "./places.ts";

after(async () => {
    await closeBrowser();
    rmSync(folder, { recursive: true });
});

interface Text {
    kind: string;
    text: string;
    layer: number;
    point: [number, number];
}
const elements = dumpOf(town) as Text[];
const texts = elements.filter(({ kind }) => kind === "text");
// The picture has north up: what the file calls x and y are its southing and westing.
const onGround = ([x, y]: [number, number]): [number, number] => [-y, -x];
const center = { x: -744400, y: -1040500 };

const inkOf = (picture: Buffer): number =>
    PNG.sync.read(picture).data.filter((value, i) => i % 4 === 1 && value < 128).length;

async function townPage(scale = 1000): Promise<Page> {
    const { page } = await openPage();
    await openFiles(page, town);
    await lookAt(page, center, scale);
    return page;
}
async function clickGround(page: Page, point: [number, number]): Promise<void> {
    await page.mouse.click(...(await screenPoint(page, point)));
}

test("layers are those of the file, and go off and on", async () => {
    const page = await townPage();
    const listed = await openPanel(page, "layers");
    const numbers = [...new Set(elements.map(({ layer }) => layer))].sort((a, b) => a - b);
    assert.deepEqual(
        [...listed.matchAll(/Layer (\d+)/g)].map((match) => Number(match[1])),
        numbers,
    );
    const all = inkOf(await mapPicture(page));
    for (const [words, low, high] of [
        ["None", 0, 0],
        ["All", all, all],
    ] as const) {
        await press(page, words);
        await page.waitForSelector("#map[data-drawn]");
        await new Promise((drawn) => setTimeout(drawn, 500));
        const ink = inkOf(await mapPicture(page));
        assert.ok(ink >= low && ink <= high, `${words}: ${ink}`);
    }
    await page.close();
});

test("typing finds a text whatever its accents, and goes there", async () => {
    const page = await townPage();
    const wanted = texts.find(({ text }) => /^[A-Z].*[ěščřžýáíéůúťďň].*[ěščřžýáíéůúťďň]/.test(text))!;
    const plain = wanted.text.normalize("NFD").replace(/\p{M}/gu, "").toUpperCase();
    await page.type("#find-text", plain);
    await page.waitForSelector("#find-hits li");
    assert.equal(await page.$eval("#find-hits li span", (hit) => hit.textContent), wanted.text);
    await page.keyboard.press("Enter");
    const places = texts.filter(({ text }) => text === wanted.text).map(({ point }) => point);
    await until(page, `!location.hash.includes("${-center.x}")`);
    const at = await page.evaluate(() => location.hash);
    const found = places.some(([x, y]) => at.includes(`y=${y.toFixed(2)}&x=${x.toFixed(2)}`));
    assert.ok(found, `${at} is no place of ${wanted.text}`);
    await page.close();
});

test("a click says what is there, with its line in the file", async () => {
    const page = await townPage(500);
    const near = texts.find(({ point: [x, y] }) => Math.hypot(x - 1040500, y - 744400) < 30)!;
    await clickGround(page, onGround(near.point));
    const said = await panelText(page);
    const line = Number(/Line of the file\s+([\d,]+)/.exec(said)![1]!.replace(",", ""));
    assert.match(said, new RegExp(`^${near.text}\\s+Layer\\s+Layer ${near.layer}`));
    assert.match(linesOf(town)[line - 1]!, new RegExp(`^&T.*${near.text}`));
    await page.close();
});

test("parcels are those of vkm parcels; a click chooses one", async () => {
    const page = await townPage();
    const parcels = JSON.parse(
        execFileSync(join(programs, "vkm"), ["parcels", "--json", "--quiet", town], { encoding: "utf8" }),
    ) as { number: string; area: number }[];
    assert.match(
        await openPanel(page, "parcels"),
        new RegExp(`${parcels.length.toLocaleString("en")} parcels`),
    );
    const [number, area] = [parcels[40]!.number, parcels[40]!.area];
    const { point } = texts.find(({ text, layer }) => layer === 2 && text === number)!;
    const [x, y] = onGround(point);
    await lookAt(page, { x, y }, 1000);
    await page.mouse.click(640, 400);
    await until(page, `document.getElementById("panel-body").innerText.includes("Parcel ${number}")`);
    assert.match(await panelText(page), new RegExp(`Parcel ${number}\\s+${Math.round(area)} m²`));
    await page.close();
});

test("findings are those of vkm check, and lead to their places", async () => {
    const { page } = await openPage();
    const broken = readFileSync(town, "latin1").replace(/K=\d+/g, (code, at: number) =>
        at % 7 ? code : "K=77777",
    );
    const path = fileWith("findings.vkm", Buffer.from(`${broken}rest`, "latin1"));
    await openFiles(page, path);
    let listing = "";
    try {
        execFileSync(join(programs, "vkm"), ["check", "--json", path], { encoding: "utf8" });
    } catch (error) {
        listing = (error as { stdout: string }).stdout;
    }
    const severities = listing
        .trim()
        .split("\n")
        .map((line) => (JSON.parse(line) as { severity: string }).severity);
    const count = (severity: string): number => severities.filter((one) => one === severity).length;
    assert.ok(severities.length > 100);
    const said = (await openPanel(page, "check")).replaceAll(",", "");
    assert.match(
        said,
        new RegExp(`${count("error")} errors? ${count("warning")} warnings? ${count("note")} notes?`),
    );
    const before = await page.evaluate(() => location.hash);
    await page.click("#panel-body button.finding");
    await until(page, `location.hash !== "${before}"`);
    for (const language of ["cs", "de"]) {
        const { stdout } = spawnSync(join(programs, "vkm"), ["check", path], {
            encoding: "utf8",
            env: { VEMRADO_COUNTRY: language },
        });
        const message = /^.*?\.vkm:\d+:\d+: .*?: (.*) \[[a-z-]+\]$/m.exec(stdout)![1]!;
        await openPanel(page, "tools");
        await page.select("#panel-body select:has(option[value=cs])", language);
        await page.click('button[data-panel="check"]');
        await until(page, `document.querySelector("#panel-body .finding .grow")?.innerText === "${message}"`);
    }
    await page.close();
});

test("two states of a map are compared as vkm diff does", async () => {
    const { page } = await openPage();
    const lines = linesOf(town).filter((line, i) => !(line.startsWith("&T") && i % 5 === 0));
    const changed = lines.map((line, i) => (i % 11 ? line : line.replace(/"(\d+)"/, '"$1/9"')));
    const now = fileWith("now.vkm", Buffer.from(changed.join("\n"), "latin1"));
    await openFiles(page, now);
    let listing = "";
    try {
        listing = execFileSync(join(programs, "vkm"), ["diff", "--json", town, now], { encoding: "utf8" });
    } catch (error) {
        listing = (error as { stdout: string }).stdout;
    }
    const kinds = listing
        .trim()
        .split("\n")
        .map((line) => (JSON.parse(line) as { change: string }).change);
    const count = (kind: string): number => kinds.filter((one) => one === kind).length;
    assert.ok(count("removed") > 20 && count("changed") > 20);
    const input = (await page.$("#old-file"))!;
    await (input as unknown as { uploadFile(path: string): Promise<void> }).uploadFile(town);
    await until(page, `document.getElementById("panel-body").innerText.includes("Compared")`);
    const [a, r, c, m] = ["added", "removed", "changed", "moved"].map(count);
    assert.match(await panelText(page), new RegExp(`${a} added, ${r} removed, ${c} changed, ${m} moved`));
    await page.close();
});

test("measuring snaps to the points of lines", async () => {
    const { page } = await openPage();
    const rectangle =
        "&L P 744400 1040500 K=21900\n L 744480 1040500\n L 744480 1040530\n L 744400 1040530\n";
    await openFiles(page, fileWith("rectangle.vkm", `&V S-JTSK 0 0\n&U 1\n${rectangle}&K\n`));
    await lookAt(page, { x: -744440, y: -1040515 }, 500);
    await openPanel(page, "tools");
    const corners: [number, number][] = [
        [-744400, -1040500],
        [-744480, -1040500],
        [-744480, -1040530],
        [-744400, -1040530],
    ];
    for (const [tool, result] of [
        ["Measure a length", "190.00 m"],
        ["Measure an area", "2,400 m², perimeter 220.00 m"],
    ] as const) {
        await press(page, tool);
        for (const corner of corners) {
            const [x, y] = await screenPoint(page, corner);
            await page.mouse.click(x + 4, y - 3);
        }
        await until(
            page,
            `document.querySelector("#panel-body [role=status]")?.innerText.includes("${result}")`,
        );
    }
    await page.close();
});

test("coordinates under the pointer, in S-JTSK and WGS 84", async () => {
    const page = await townPage();
    await page.mouse.move(...(await screenPoint(page, [-744390, -1040510])));
    const said = await page.$eval("#coordinates", (place) => place.textContent!.replace(/\s+/g, " ").trim());
    const [, y, x, latitude, longitude] = /Y ([\d.]+) X ([\d.]+) ([\d.]+)° N ([\d.]+)° E/
        .exec(said)!
        .map(Number);
    assert.ok(Math.hypot(y! - 744390, x! - 1040510) < 0.5, said);
    // By GDAL, of the same place.
    const known = execFileSync(
        "gdaltransform",
        ["-s_srs", "EPSG:5514", "-t_srs", "EPSG:4326", "-output_xy"],
        {
            input: `-${y} -${x}\n`,
            encoding: "utf8",
        },
    );
    const [east, north] = known.trim().split(" ").map(Number);
    const metres = Math.hypot((north! - latitude!) * 111000, (east! - longitude!) * 71000);
    assert.ok(metres < 3, `${metres} m beside ${known}`);
    await page.close();
});

test("the address leads back to the same place", async () => {
    const { page } = await openPage({ address: `file://${pageFile}#y=744321&x=1040456&scale=750` });
    await openFiles(page, town);
    await until(page, `document.getElementById("scale-input").value === "750"`);
    assert.match(await page.$eval("#jtsk", (place) => place.textContent!), /Y 744321.00 {2}X 1040456.00/);
    await page.close();
});

test("saved drawings are those of vkm render, pictures as large as the screen", async () => {
    const page = await townPage(2000);
    await openPanel(page, "tools");
    const svg = await saved(page, "sample-town.svg", () => press(page, "Save drawing (SVG)"));
    const [w, h] = [640, 400].map((pixels) => (pixels * 2000 * 0.0254) / 96) as [number, number];
    const box = [center.x - w, center.y - h, center.x + w, center.y + h].join(",");
    const native = join(folder, "native.svg");
    execFileSync(join(programs, "vkm"), ["render", town, "-o", native, `--bbox=${box}`, "--legend"]);
    assert.ok(svg.equals(readFileSync(native)), "the drawings differ");
    const png = PNG.sync.read(await saved(page, "sample-town.png", () => press(page, "Save picture (PNG)")));
    assert.deepEqual([png.width, png.height], [1280, 800]);
    await page.close();
});

test("a print at a scale is one page of A4", async () => {
    const page = await townPage();
    await openPanel(page, "tools");
    await page.select('select[aria-label="Print at scale"]', "2000");
    await page.evaluate(() => {
        // The sheet stays after printing, so that it can be printed here.
        window.print = () => document.body.setAttribute("data-printed", "true");
        Object.defineProperty(document.getElementById("print-sheet")!, "hidden", {
            set(this: HTMLElement, hide: boolean) {
                if (!hide) this.removeAttribute("hidden");
            },
        });
    });
    await press(page, "Print…");
    await page.waitForSelector("[data-printed]", { timeout: 30000 });
    const pdf = join(folder, "print.pdf");
    await page.pdf({ path: pdf, preferCSSPageSize: true, printBackground: true });
    const facts = execFileSync("pdfinfo", [pdf], { encoding: "utf8" });
    assert.match(facts, /Pages: +1\n/);
    assert.match(facts, /Page size: +84[12][.\d]* x 59[45][.\d]* pts/);
    assert.match(
        execFileSync("pdftotext", [pdf, "-"], { encoding: "utf8" }),
        /sample-town.vkm\s+Scale 1 : 2000/,
    );
    await page.close();
});

test("a symbology of one's own draws the map that is open", async () => {
    const page = await townPage();
    const before = await mapPicture(page);
    const own = join(folder, "VKMSym");
    mkdirSync(own);
    const source = join(root, "data/symbology/VKMSym");
    for (const name of readdirSync(source)) copyFileSync(join(source, name), join(own, name));
    const colours = readFileSync(join(source, "WKOKES.COL"), "latin1").replace(/^1=.*$/m, "1=0,200,0");
    const path = fileWith("VKMSym/WKOKES.COL", Buffer.from(colours, "latin1"));
    const status = await openFiles(page, ...readdirSync(own).map((name) => join(own, name)));
    assert.equal(status.state, "shown", path);
    assert.match(status.problems, /your own symbology/);
    const green = (picture: Buffer): number => {
        const { data } = PNG.sync.read(picture);
        let count = 0;
        for (let i = 0; i < data.length; i += 4) if (data[i + 1]! > data[i]! + 100) count++;
        return count;
    };
    assert.equal(green(before), 0);
    assert.ok(green(await mapPicture(page)) > 1000);
    await page.close();
});

test("Stop ends the reading of all sheets and keeps what was read", async () => {
    const { page } = await openPage();
    const large = join(folder, "large.vkm");
    execFileSync(join(programs, "vkm-generate"), ["--size", "20M", "-o", large]);
    await page.evaluate(() => {
        const progress = document.getElementById("progress")!;
        new MutationObserver(() => {
            if (!progress.hidden) document.getElementById("stop-button")!.click();
        }).observe(progress, { attributes: true });
    });
    const status = await openFiles(page, large, town);
    assert.equal(status.state, "shown");
    assert.equal(status.complete, "false");
    assert.ok(status.lines > 0);
    assert.equal(await page.$eval("#map-status strong", (names) => names.textContent), "large.vkm");
    assert.match(status.problems, /large.vkm: reading was stopped/);
    await page.close();
});

test("a check, parcels and a comparison can be stopped, while the map stays alive", async () => {
    const { page, errors } = await openPage();
    const large = join(folder, "long.vkm");
    execFileSync(join(programs, "vkm-generate"), ["--size", "30M", "-o", large]);
    await openFiles(page, large);
    const compare = async (): Promise<void> => {
        const input = (await page.$("#old-file"))!;
        await (input as unknown as { uploadFile(path: string): Promise<void> }).uploadFile(large);
    };
    for (const [begin, done] of [
        [() => page.click('button[data-panel="check"]'), "Nothing is wrong"],
        [() => page.click('button[data-panel="parcels"]'), "parcels, "],
        [compare, "The two states are equal"],
    ] as const) {
        await begin();
        await page.waitForSelector("#panel-body progress");
        await page.type("#find-text", "1");
        await page.waitForSelector("#find-hits li"); // which the other Worker has found meanwhile
        assert.ok(await page.$("#panel-body progress"), "it was too quick to be stopped");
        await page.keyboard.press("Backspace");
        await page.click("#panel-body .working button");
        await until(page, `document.getElementById("panel-body").innerText.startsWith("Stopped.")`);
        await press(page, "Start again");
        await until(page, `document.getElementById("panel-body").innerText.includes("${done}")`);
    }
    assert.deepEqual(errors, []);
    await page.close();
});
