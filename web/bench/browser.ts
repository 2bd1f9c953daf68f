// Chromium as the measurements use it: what a page records of itself, and the memory that it takes.

import { execFileSync } from "node:child_process";
import { readFileSync, readdirSync } from "node:fs";
import puppeteer, { type Browser, type Page } from "puppeteer-core";

export async function launch(): Promise<Browser> {
    return puppeteer.launch({
        executablePath: process.env["CHROMIUM"] ?? "/usr/bin/chromium",
        args: ["--no-sandbox", "--disable-dev-shm-usage", "--enable-unsafe-swiftshader"],
        protocolTimeout: 300_000,
    });
}

// Milliseconds since the drop, of one opening.
export interface Times {
    firstPart: number;
    shown: number;
    longestTask: number;
}

// Notes when things happen in the page, from the drop on.
async function watch(page: Page): Promise<void> {
    await page.evaluate(() => {
        const noted = { dropped: 0, firstPart: 0, shown: 0, longestTask: 0 };
        (window as unknown as { noted: typeof noted }).noted = noted;
        window.addEventListener("drop", () => (noted.dropped = performance.now()), { capture: true });
        new PerformanceObserver((list) => {
            for (const { duration } of list.getEntries())
                noted.longestTask = Math.max(noted.longestTask, duration);
        }).observe({ type: "longtask" });
        const map = document.getElementById("map")!;
        const status = document.getElementById("map-status")!;
        // A frame after the change it is on the screen.
        const onScreen = (name: "firstPart" | "shown"): void => {
            requestAnimationFrame(() => requestAnimationFrame(() => (noted[name] ||= performance.now())));
        };
        new MutationObserver(() => {
            if (map.hasAttribute("data-first-picture") && !noted.firstPart) onScreen("firstPart");
            if (status.dataset["state"] === "shown") onScreen("shown");
        }).observe(document.body, { attributes: true, subtree: true, childList: true });
    });
}

export async function timeOpening(page: Page, path: string): Promise<Times> {
    await watch(page);
    const session = await page.createCDPSession();
    const data = { items: [], files: [path], dragOperationsMask: 1 };
    for (const type of ["dragEnter", "dragOver", "drop"] as const)
        await session.send("Input.dispatchDragEvent", { type, x: 640, y: 400, data });
    await page.waitForFunction("noted.shown > 0", { timeout: 120_000 });
    await page.waitForSelector("#map[data-drawn]", { timeout: 120_000 });
    const times = (await page.evaluate("noted")) as Times & { dropped: number };
    return {
        firstPart: times.firstPart - times.dropped,
        shown: times.shown - times.dropped,
        longestTask: times.longestTask,
    };
}

// Milliseconds between the frames of a hundred small moves, sorted.
export async function timePanning(page: Page): Promise<number[]> {
    return page.evaluate(async () => {
        const map = document.getElementById("map")!;
        const send = (type: string, x: number): boolean =>
            map.dispatchEvent(
                new PointerEvent(type, { clientX: x, clientY: 400, isPrimary: true, bubbles: true }),
            );
        map.setPointerCapture = () => undefined; // the browser knows of no such pointer
        const frame = (): Promise<number> => new Promise(requestAnimationFrame);
        const gaps: number[] = [];
        send("pointerdown", 900);
        let before = await frame();
        for (let i = 1; i <= 100; i++) {
            send("pointermove", 900 - 6 * i);
            const now = await frame();
            gaps.push(now - before);
            before = now;
        }
        send("pointerup", 300);
        return gaps.sort((a, b) => a - b);
    });
}

// Bytes that the largest process of the browser's pages has held at most, with what it shares with others.
export function memoryOf(browser: Browser): number {
    const parents = new Map<number, number>();
    for (const name of readdirSync("/proc").filter((entry) => /^\d+$/.test(entry))) {
        try {
            const stat = readFileSync(`/proc/${name}/stat`, "utf8");
            parents.set(Number(name), Number(stat.slice(stat.lastIndexOf(")") + 2).split(" ")[1]));
        } catch {
            // It has ended meanwhile.
        }
    }
    const root = browser.process()!.pid!;
    const below = (id: number): boolean => id === root || (parents.has(id) && below(parents.get(id)!));
    const sizes = [...parents.keys()].filter(below).flatMap((id) => {
        const command = readFileSync(`/proc/${id}/cmdline`, "utf8");
        if (!command.includes("--type=renderer")) return [];
        return [1024 * Number(/VmHWM:\s+(\d+)/.exec(readFileSync(`/proc/${id}/status`, "utf8"))![1])];
    });
    return Math.max(0, ...sizes);
}

// Seconds that a program takes, by the clock.
export function timeProgram(program: string, ...settings: string[]): number {
    const began = performance.now();
    execFileSync(program, settings, { stdio: "ignore" });
    return (performance.now() - began) / 1000;
}
