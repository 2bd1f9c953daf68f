// Starts the page: the Worker with the module and the fonts, then whatever is to be opened.

import { App } from "./app.ts";
import { Client } from "./client.ts";
import { byId } from "./dom.ts";
import { filesOfDrop, type MapFile } from "./files.ts";
import { reasonOf, setState, warn } from "./status.ts";
import type { Encoding } from "../engine/engine.ts";
import { browserLanguage, language, say, type Language } from "./words.ts";
import type { Font } from "./worker.ts";
import assets from "page-assets";

const sliceLength = 1 << 20; // letters that are decoded in one go, so that the page never stands still

function bytesOf(base64: string): Uint8Array<ArrayBuffer> {
    const letters = atob(base64);
    const bytes = new Uint8Array(letters.length);
    for (let i = 0; i < bytes.length; i++) bytes[i] = letters.charCodeAt(i);
    return bytes;
}

// What the build or the command line has packed by gzip and base64.
async function unpack(base64: string): Promise<Blob> {
    let at = 0;
    const bytes = new ReadableStream<Uint8Array<ArrayBuffer>>({
        async pull(stream) {
            await new Promise((resolve) => setTimeout(resolve)); // a task of its own
            if (at >= base64.length) return stream.close();
            stream.enqueue(bytesOf(base64.slice(at, at + sliceLength)));
            at += sliceLength;
        },
    });
    return new Response(bytes.pipeThrough(new DecompressionStream("gzip"))).blob();
}

let scriptAddress: Promise<string> | undefined;

// Fonts are for those that draw.
async function startWorker(language: Language, fonts: Font[]): Promise<Client> {
    scriptAddress ??= unpack(assets.worker).then((script) => URL.createObjectURL(script));
    const client = new Client(new Worker(await scriptAddress));
    await client.call("init", await (await unpack(assets.wasm)).arrayBuffer(), fonts, language);
    return client;
}

async function startDrawing(language: Language): Promise<Client> {
    const fonts = assets.fonts.map(({ base64, ...face }) => ({ ...face, bytes: bytesOf(base64).buffer }));
    const client = await startWorker(language, fonts);
    void client.call("warmUp");
    return client;
}

// A map and the symbology it is drawn with, which stand in the page itself.
async function filesInPage(): Promise<MapFile[]> {
    const files: MapFile[] = [];
    for (const element of document.querySelectorAll<HTMLElement>("script.embedded-file")) {
        const blob = await unpack(element.textContent ?? "");
        files.push({ name: element.dataset["name"] ?? "map.vkm", blob });
        element.textContent = ""; // of a large map it takes as much memory as the map
    }
    return files;
}

// The map that the address names, beside the page on its server.
async function filesOfAddress(): Promise<MapFile[]> {
    const address = new URLSearchParams(location.search).get("url");
    if (!address) return [];
    const name = nameInAddress(address);
    let answer: Response;
    try {
        answer = await fetch(new URL(address, location.href));
    } catch {
        throw new Error(say("notBeside", { name }));
    }
    if (!answer.ok) throw new Error(`${name}: ${answer.status} ${answer.statusText}`);
    return [{ name, blob: await answer.blob() }];
}

function nameInAddress(address: string): string {
    const name = address.split(/[?#]/)[0]!.split("/").pop() || "map.vkm";
    try {
        return decodeURIComponent(name);
    } catch {
        return name;
    }
}

function watchForFiles(open: (files: MapFile[]) => void): void {
    const input = byId<HTMLInputElement>("open-file");
    for (const id of ["open-button", "welcome-open"]) byId(id).addEventListener("click", () => input.click());
    input.addEventListener("change", () => {
        const files = [...(input.files ?? [])].map((file) => ({ name: file.name, blob: file }));
        if (files.length > 0) open(files);
        input.value = "";
    });

    const frame = byId("drop-frame");
    let inside = 0;
    window.addEventListener("dragenter", (event) => {
        event.preventDefault();
        inside++;
        frame.hidden = false;
    });
    window.addEventListener("dragleave", () => {
        if (--inside <= 0) frame.hidden = true;
    });
    window.addEventListener("dragover", (event) => event.preventDefault());
    window.addEventListener("drop", (event) => {
        event.preventDefault();
        inside = 0;
        frame.hidden = true;
        if (event.dataTransfer)
            void filesOfDrop(event.dataTransfer).then((files) => files.length > 0 && open(files));
    });

    window.addEventListener("paste", (event) => {
        const target = event.target as HTMLElement | null;
        const data = event.clipboardData;
        if (!data || target?.tagName === "INPUT") return;
        const files: MapFile[] = [...data.files].map((file) => ({ name: file.name, blob: file }));
        const text = data.getData("text/plain");
        if (files.length === 0 && text.trim() !== "")
            files.push({ name: say("pasteName"), blob: windows1250(text) });
        if (files.length > 0) open(files);
    });
}

// Pasted text as the bytes that a map file has for it.
function windows1250(text: string): Blob {
    const decoder = new TextDecoder("windows-1250");
    const byteOf = new Uint8Array(1 << 16).fill(0x3f); // by the letter
    for (let byte = 0; byte < 256; byte++) byteOf[decoder.decode(Uint8Array.of(byte)).charCodeAt(0)] = byte;
    const bytes = new Uint8Array(text.length);
    for (let i = 0; i < text.length; i++) bytes[i] = byteOf[text.charCodeAt(i)]!;
    return new Blob([bytes]);
}

async function start(): Promise<void> {
    document.body.classList.add("without-map");
    let app: App | null = null;
    const early: MapFile[] = [];
    watchForFiles((files) => (app ? void app.opening.open(files) : early.push(...files)));
    app = new App(await startDrawing(browserLanguage()), () => startWorker(language(), []));
    app.speak(browserLanguage());
    byId("map").setAttribute("data-ready", "true");
    const encoding = document.getElementById("embedded-map")?.dataset["encoding"];
    if (encoding) app.opening.encoding = encoding as Encoding;
    try {
        early.push(...(await filesInPage()), ...(await filesOfAddress()));
    } catch (error) {
        warn(reasonOf(error));
        setState("failed", null);
    }
    if (early.length > 0) await app.opening.open(early);
}

start().catch((error: unknown) => {
    byId("map-status").setAttribute("data-state", "failed");
    byId("problems").textContent = say("noWebAssembly");
    console.error(error);
});
