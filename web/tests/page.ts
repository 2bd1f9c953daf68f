// The page in a real Chromium, as the tests use it.

import { mkdirSync, mkdtempSync, readFileSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import puppeteer, { type Browser, type Page } from "puppeteer-core";
import { pageFile } from "./places.ts";

export const folder = mkdtempSync(join(tmpdir(), "vemrado-page-"));

export function fileWith(name: string, content: string | Uint8Array): string {
    const path = join(folder, name);
    writeFileSync(path, content);
    return path;
}

let browser: Browser | undefined;
export async function closeBrowser(): Promise<void> {
    await browser?.close();
}

export interface Opened {
    page: Page;
    requests: string[]; // addresses asked for, without blobs of the page's own
    errors: string[];
}

export interface PageSettings {
    width?: number;
    height?: number;
    ratio?: number;
    phone?: boolean;
    dark?: boolean;
    languages?: string[];
    address?: string;
}

async function newPage(): Promise<Opened> {
    browser ??= await puppeteer.launch({
        executablePath: process.env["CHROMIUM"] ?? "/usr/bin/chromium",
        args: ["--no-sandbox", "--disable-dev-shm-usage"],
    });
    const page = await browser.newPage();
    const opened: Opened = { page, requests: [], errors: [] };
    page.on("request", (request) => {
        if (!/^(blob|data):/.test(request.url())) opened.requests.push(request.url());
    });
    page.on("pageerror", (error) => opened.errors.push(String(error)));
    page.on("console", (message) => message.type() === "error" && opened.errors.push(message.text()));
    return opened;
}

// A page that is not the map's.
export async function openBlank(address: string): Promise<Opened> {
    const opened = await newPage();
    await opened.page.goto(address);
    return opened;
}

export async function openPage(settings: PageSettings = {}): Promise<Opened> {
    const opened = await newPage();
    const { page } = opened;
    const { width = 1280, height = 800, ratio = 1, phone = false } = settings;
    await page.setViewport({ width, height, deviceScaleFactor: ratio, isMobile: phone, hasTouch: phone });
    await page.emulateMediaFeatures([
        { name: "prefers-color-scheme", value: settings.dark ? "dark" : "light" },
        { name: "prefers-reduced-motion", value: "reduce" },
    ]);
    const languages = settings.languages ?? ["en-GB"];
    await page.evaluateOnNewDocument((list) => {
        Object.defineProperty(navigator, "languages", { get: () => list });
    }, languages);
    await page.goto(settings.address ?? `file://${pageFile}`);
    await page.waitForSelector("#map[data-ready]", { timeout: 30000 });
    return opened;
}

export interface Status {
    state: string;
    lines: number;
    texts: number;
    complete: string;
    problems: string;
}

export async function statusOf(page: Page): Promise<Status> {
    return page.evaluate(() => {
        const { dataset } = document.getElementById("map-status")!;
        return {
            state: dataset["state"]!,
            lines: Number(dataset["lines"]),
            texts: Number(dataset["texts"]),
            complete: dataset["complete"] ?? "",
            problems: document.getElementById("problems")!.textContent ?? "",
        };
    });
}

export async function waitUntilOpen(page: Page, drawn = true): Promise<Status> {
    await page.waitForFunction(
        () => /shown|failed/.test(document.getElementById("map-status")!.dataset["state"]!),
        { timeout: 60000 },
    );
    const status = await statusOf(page);
    if (drawn && status.state === "shown") await page.waitForSelector("#map[data-drawn]", { timeout: 60000 });
    return status;
}

export async function openFiles(page: Page, ...paths: string[]): Promise<Status> {
    const input = (await page.$("#open-file"))!;
    await page.$eval("#map-status", (status) => status.setAttribute("data-state", "asked"));
    await (input as unknown as { uploadFile(...paths: string[]): Promise<void> }).uploadFile(...paths);
    return waitUntilOpen(page);
}

// A drop by the browser's own means, as from a file manager.
export async function dropFiles(page: Page, ...paths: string[]): Promise<Status> {
    const session = await page.createCDPSession();
    const data = { items: [], files: paths, dragOperationsMask: 1 };
    await page.$eval("#map-status", (status) => status.setAttribute("data-state", "asked"));
    for (const type of ["dragEnter", "dragOver", "drop"] as const) {
        await session.send("Input.dispatchDragEvent", { type, x: 640, y: 400, data });
    }
    await session.detach();
    return waitUntilOpen(page);
}

// Looks at a place at a scale and waits for its tiles.
export async function lookAt(page: Page, center: { x: number; y: number }, scale: number): Promise<void> {
    await page.evaluate(
        (y, x, number) => {
            document.getElementById("map")!.removeAttribute("data-drawn");
            location.hash = `y=${y}&x=${x}&scale=${number}`;
        },
        -center.x,
        -center.y,
        scale,
    );
    await page.waitForSelector("#map[data-drawn]", { timeout: 30000 });
}

export async function mapPicture(page: Page): Promise<Buffer> {
    const address = await page.$eval("#map-canvas", (canvas) =>
        (canvas as HTMLCanvasElement).toDataURL("image/png"),
    );
    return Buffer.from(address.slice(address.indexOf(",") + 1), "base64");
}

export async function openPanel(page: Page, name: string): Promise<string> {
    const shown = await page.$eval(`button[data-panel="${name}"]`, (opener) => opener.ariaExpanded);
    if (shown !== "true") await page.click(`button[data-panel="${name}"]`);
    return panelText(page);
}
// What stands in the panel that is open, once there is something.
export async function panelText(page: Page): Promise<string> {
    await page.waitForFunction(
        () => {
            const body = document.getElementById("panel-body")!;
            return body.childElementCount > 0 && !body.querySelector("progress");
        },
        { timeout: 30000 },
    );
    return page.$eval("#panel-body", (body) => (body as HTMLElement).innerText);
}

// A button by its words.
export async function press(page: Page, words: string): Promise<void> {
    await page.click(`::-p-xpath(//button[normalize-space()="${words}"])`);
}

// Where a place of the ground is on the screen.
export async function screenPoint(page: Page, [x, y]: [number, number]): Promise<[number, number]> {
    return page.evaluate(
        (gx, gy) => {
            const place = new URLSearchParams(location.hash.slice(1));
            const pixels = 1 / ((Number(place.get("scale")) * 0.0254) / 96);
            const at = (name: string): number => -Number(place.get(name));
            return [innerWidth / 2 + (gx - at("y")) * pixels, innerHeight / 2 - (gy - at("x")) * pixels];
        },
        x,
        y,
    ) as Promise<[number, number]>;
}

// The file that the browser saves when something is done.
export async function saved(page: Page, name: string, act: () => Promise<void>): Promise<Buffer> {
    const downloads = join(folder, "downloads");
    mkdirSync(downloads, { recursive: true });
    const session = await page.createCDPSession();
    await session.send("Browser.setDownloadBehavior", {
        behavior: "allow",
        downloadPath: downloads,
        eventsEnabled: true,
    });
    const done = new Promise<void>((resolve) => {
        session.on("Browser.downloadProgress", ({ state }) => state === "completed" && resolve());
    });
    await act();
    await done;
    await session.detach();
    return readFileSync(join(downloads, name));
}

// Waits until something of the page is so.
export async function until(page: Page, condition: string): Promise<void> {
    await page.waitForFunction(condition, { timeout: 30000 });
}
