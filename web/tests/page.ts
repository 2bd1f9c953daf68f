// The page in a real Chromium, as the tests use it.

import { mkdtempSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { basename, join } from "node:path";
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

export const nameOf = (path: string): string => basename(path);
