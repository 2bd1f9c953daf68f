// Starts the page: the Worker with the module and the fonts, then whatever is to be opened.

import { App } from "./app.ts";
import { Client } from "./client.ts";
import { byId } from "./dom.ts";
import { filesOfDrop, type MapFile } from "./files.ts";
import type { Encoding } from "../engine/engine.ts";
import { browserLanguage, say } from "./words.ts";
import type { Font } from "./worker.ts";
import assets from "page-assets";

async function unpack(base64: string): Promise<ArrayBuffer> {
    const bytes = Uint8Array.from(atob(base64.trim()), (letter) => letter.charCodeAt(0));
    return new Response(
        new Blob([bytes]).stream().pipeThrough(new DecompressionStream("gzip")),
    ).arrayBuffer();
}

function bytesOf(base64: string): ArrayBuffer {
    return Uint8Array.from(atob(base64), (letter) => letter.charCodeAt(0)).buffer;
}

async function startWorker(language: string): Promise<Client> {
    const script = new Blob([await unpack(assets.worker)], { type: "text/javascript" });
    const client = new Client(new Worker(URL.createObjectURL(script)));
    const fonts: Font[] = assets.fonts.map(({ base64, ...face }) => ({ ...face, bytes: bytesOf(base64) }));
    await client.call("init", await unpack(assets.wasm), fonts, language);
    return client;
}

// A map and the symbology it is drawn with, which stand in the page itself.
async function filesInPage(): Promise<MapFile[]> {
    const files: MapFile[] = [];
    for (const element of document.querySelectorAll<HTMLElement>("script.embedded-file")) {
        const blob = new Blob([await unpack(element.textContent ?? "")]);
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
    const byteOf = new Map<string, number>();
    for (let byte = 0; byte < 256; byte++) byteOf.set(decoder.decode(Uint8Array.of(byte)), byte);
    return new Blob([Uint8Array.from(text, (letter) => byteOf.get(letter) ?? 0x3f)]);
}

async function start(): Promise<void> {
    const language = browserLanguage();
    document.body.classList.add("without-map");
    let app: App | null = null;
    const early: MapFile[] = [];
    watchForFiles((files) => (app ? void app.open(files) : early.push(...files)));
    const client = await startWorker(language);
    app = new App(client);
    app.speak(language);
    byId("map").setAttribute("data-ready", "true");
    const encoding = document.getElementById("embedded-map")?.dataset["encoding"];
    if (encoding) app.encoding = encoding as Encoding;
    try {
        early.push(...(await filesInPage()), ...(await filesOfAddress()));
    } catch (error) {
        app.warn(error instanceof Error ? error.message : String(error));
        byId("map-status").setAttribute("data-state", "failed");
    }
    if (early.length > 0) await app.open(early);
}

start().catch((error: unknown) => {
    byId("map-status").setAttribute("data-state", "failed");
    byId("problems").textContent = say("noWebAssembly");
    console.error(error);
});
