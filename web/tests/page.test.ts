// The page: opening maps, what stands in its status, pictures equal to those of the command line, and that it talks
// to nobody.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { readFileSync, rmSync, truncateSync } from "node:fs";
import { join } from "node:path";
import { after, test } from "node:test";
import { gzipSync } from "node:zlib";
import pixelmatch from "pixelmatch";
import { PNG } from "pngjs";
import {
    closeBrowser,
    dropFiles,
    fileWith,
    folder,
    lookAt,
    mapPicture,
    openFiles,
    openPage,
} from "./page.ts";
import { dumpOf, pageFile, programs, town } from "./places.ts";

after(async () => {
    await closeBrowser();
    rmSync(folder, { recursive: true });
});

const elements = dumpOf(town) as { kind: string }[];
const counts = {
    lines: elements.filter((element) => element.kind === "line").length,
    texts: elements.filter((element) => element.kind === "text").length,
};

test("a dropped map is shown, offline and without a request", async () => {
    const { page, requests, errors } = await openPage();
    await page.setOfflineMode(true);
    const status = await dropFiles(page, town);
    assert.deepEqual(status, { state: "shown", ...counts, complete: "true", problems: "" });
    assert.deepEqual(requests, [`file://${pageFile}`]);
    assert.deepEqual(errors, []);
    await page.close();
});

test("the policy lets nothing in or out", async () => {
    const { page } = await openPage();
    const tried = await page.evaluate(async () => {
        // In a task of the page's own: what a test evaluates is not held by the policy.
        const outcome = (run: () => unknown): Promise<string> =>
            new Promise((done) => {
                setTimeout(() => {
                    Promise.resolve()
                        .then(run)
                        .then(
                            () => done("done"),
                            () => done("refused"),
                        );
                });
            });
        const loads = (element: HTMLImageElement | HTMLScriptElement): Promise<unknown> =>
            new Promise((done, refused) => {
                element.onload = done;
                element.onerror = refused;
                document.body.append(element);
                element.src = "http://127.0.0.1:9/x";
            });
        return Promise.all([
            outcome(() => fetch("http://127.0.0.1:9/")),
            outcome(() => (0, eval)("1")),
            outcome(() => loads(new Image())),
            outcome(() => loads(document.createElement("script"))),
            outcome(
                () =>
                    navigator.sendBeacon("http://127.0.0.1:9/", "x") || Promise.reject(new Error("refused")),
            ),
        ]);
    });
    const policy = await page.$eval("meta[http-equiv]", (meta) => meta.getAttribute("content")!);
    assert.deepEqual(tried.slice(0, 4), ["refused", "refused", "refused", "refused"]);
    assert.match(policy, /^default-src 'none'/);
    assert.doesNotMatch(policy, /unsafe-inline|unsafe-eval'[^;]*unsafe-eval|https?:|\*/);
    await page.close();
});

test("the same picture as vkm render at three zooms", async () => {
    const { page } = await openPage({ width: 900, height: 600 });
    await openFiles(page, town);
    for (const [scale, limit] of [
        [4000, 0.012],
        [1000, 0.012],
        [250, 0.012],
    ] as const) {
        const pixelsPerMetre = 1 / ((scale * 0.0254) / 96);
        // A whole number of pixels from the origin, so that both pictures have the same raster.
        const whole = (metres: number): number => Math.round(metres * pixelsPerMetre) / pixelsPerMetre;
        const center = { x: whole(-744400), y: whole(-1040500) };
        await lookAt(page, center, scale);
        const [w, h] = [450 / pixelsPerMetre, 300 / pixelsPerMetre];
        const box = [center.x - w, center.y - h, center.x + w, center.y + h].join(",");
        const native = join(folder, `${scale}.png`);
        execFileSync(join(programs, "vkm"), [
            "render",
            town,
            "-o",
            native,
            `--bbox=${box}`,
            "--width",
            "900",
        ]);
        const expected = PNG.sync.read(readFileSync(native));
        const shown = PNG.sync.read(await mapPicture(page));
        assert.deepEqual([shown.width, shown.height], [expected.width, expected.height]);
        const ink = expected.data.filter((value, i) => i % 4 === 1 && value < 128).length;
        const different = pixelmatch(expected.data, shown.data, undefined, 900, 600, { threshold: 0.2 });
        assert.ok(ink > 2000, `1:${scale}: an empty picture shows nothing`);
        assert.ok(different < 900 * 600 * limit, `1:${scale}: ${different} pixels differ`);
    }
    await page.close();
});

test("packed maps, several sheets, pasted text", async () => {
    const { page } = await openPage();
    const bytes = readFileSync(town);
    const gz = fileWith("town.vkm.gz", gzipSync(bytes));
    assert.equal((await openFiles(page, gz)).lines, counts.lines);
    const zip = join(folder, "maps.zip");
    const script =
        "import sys,zipfile\nz=zipfile.ZipFile(sys.argv[1],'w',8)\nz.write(sys.argv[2],'a/town.vkm')\nz.writestr('a/letter.txt','Hello')";
    execFileSync("python3", ["-c", script, zip, town]);
    assert.equal((await openFiles(page, zip)).lines, counts.lines);
    assert.equal((await openFiles(page, town, gz)).lines, 2 * counts.lines);
    await page.evaluate(() => {
        const data = new DataTransfer();
        data.setData("text/plain", '&V S-JTSK 0 0\n&G 1 1\n&L P 1 2\n L 100 200\n&T 5 5 "Čárka"\n&K\n');
        document.getElementById("map-status")!.setAttribute("data-state", "asked");
        document.body.dispatchEvent(new ClipboardEvent("paste", { clipboardData: data, bubbles: true }));
    });
    await page.waitForSelector('#map-status[data-state="shown"][data-lines="1"]', { timeout: 20000 });
    assert.equal(await page.$eval("#map-status .quiet", (counts) => counts.textContent), "1 line, 1 text");
    await page.close();
});

test("why a file is no map is said in the language of the page", async () => {
    const { page } = await openPage({ languages: ["cs-CZ"] });
    const { problems } = await openFiles(page, fileWith("report.pdf", "%PDF-1.4\n1 0 obj\n"));
    assert.equal(problems.replace("×", ""), "report.pdf: není soubor VKM (vypadá jako PDF)");
    await page.close();
});

test("incomplete, foreign, empty and huge files are told in one sentence", async () => {
    const { page, errors } = await openPage();
    const bytes = readFileSync(town);
    const cut = await openFiles(page, fileWith("cut.vkm", bytes.subarray(0, bytes.length / 2)));
    assert.equal(cut.state, "shown");
    assert.equal(cut.complete, "false");
    assert.ok(cut.lines > 100);
    assert.match(cut.problems, /cut\.vkm is incomplete/);
    const huge = fileWith("huge.vkm", "");
    truncateSync(huge, 2 * 1024 ** 3 + 1);
    for (const [path, sentence] of [
        [fileWith("report.pdf", "%PDF-1.4\n1 0 obj\n"), /report\.pdf/],
        [fileWith("nothing.vkm", ""), /nothing\.vkm/],
        [
            fileWith("broken.vkm.gz", gzipSync(bytes).subarray(0, 1000)),
            /broken\.vkm\.gz: the packed file is damaged/,
        ],
        [fileWith("broken.zip", "PK\u0003\u0004 and no more"), /broken\.zip: it is no zip file/],
        [huge, /huge\.vkm is larger than 2 GB/],
    ] as const) {
        const status = await openFiles(page, path);
        assert.equal(status.state, "failed", path);
        assert.match(status.problems, sentence);
    }
    assert.deepEqual(errors, []);
    await page.close();
});
