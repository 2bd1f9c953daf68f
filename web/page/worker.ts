// The Worker of the page: it holds the module and the map, reads files and draws tiles, so that the page itself
// never waits.

import createModule from "vkm_web";
import { Engine, type Encoding, type Language, type Source } from "../engine/engine.ts";
import { replay } from "../engine/replay.ts";
import { reportParcels, type ParcelReport } from "./parcel_report.ts";
import type { Box, Comparison, Picked, Summary, View } from "../engine/types.ts";

export interface Font {
    family: string;
    weight: string;
    style: string;
    bytes: ArrayBuffer;
}

export interface Picture {
    bitmap: ImageBitmap;
    view: View;
}

// What the Worker says without being asked, while it opens a file.
export type WorkerEvent =
    | { event: "progress"; name: string; done: number; total: number }
    | { event: "preview"; picture: Picture; summary: Summary };

const window4 = 4 << 20; // bytes that are asked of a file at once
const slice = 40; // ms of reading between looks at the messages
const firstPreview = 120; // ms after the beginning

// Bytes of a Blob as the module reads them: from beginning to end, a little at a time.
class BlobSource implements Source {
    private readonly reader = new FileReaderSync();
    private begin = 0;
    private kept = new Uint8Array(0);
    consumed = 0;

    constructor(
        readonly name: string,
        private readonly blob: Blob,
        private readonly onPiece: () => void = () => undefined,
    ) {}
    // Of the bytes that were asked for.
    get end(): number {
        return this.begin + this.kept.length;
    }
    get size(): number {
        return this.blob.size;
    }
    read(offset: number, length: number): Uint8Array {
        if (offset < this.begin || offset >= this.begin + this.kept.length) {
            const end = Math.min(offset + window4, this.blob.size);
            this.kept = new Uint8Array(this.reader.readAsArrayBuffer(this.blob.slice(offset, end)));
            this.begin = offset;
            this.onPiece();
        }
        const from = offset - this.begin;
        const bytes = this.kept.subarray(from, from + length);
        this.consumed = offset + bytes.length;
        return bytes;
    }
}

function emit(event: WorkerEvent): void {
    postMessage(event, { transfer: event.event === "preview" ? [event.picture.bitmap] : [] });
}

function toldSource(name: string, blob: Blob): BlobSource {
    const source: BlobSource = new BlobSource(name, blob, () =>
        emit({ event: "progress", name, done: source.end, total: blob.size }),
    );
    return source;
}

// Lets messages that have come meanwhile be answered. A timer would wait 4 ms.
function breathe(): Promise<void> {
    return new Promise((resolve) => {
        const { port1, port2 } = new MessageChannel();
        port1.onmessage = () => {
            port1.close();
            resolve();
        };
        port2.postMessage(null);
    });
}

// The view of a box in the middle of a picture of the size.
export function fit(box: Box, width: number, height: number, margin = 0.04): View {
    const boxWidth = Math.max(box[2] - box[0], 1);
    const boxHeight = Math.max(box[3] - box[1], 1);
    const scale = Math.min(width / boxWidth, height / boxHeight) * (1 - 2 * margin);
    return {
        x: (box[0] + box[2]) / 2 - width / 2 / scale,
        y: (box[1] + box[3]) / 2 + height / 2 / scale,
        scale,
        width,
        height,
    };
}

let engine: Engine;
let stopWanted = false;

function bitmapOf(view: View, draw: (context: OffscreenCanvasRenderingContext2D) => void): ImageBitmap {
    const canvas = new OffscreenCanvas(view.width, view.height);
    const context = canvas.getContext("2d", { willReadFrequently: true })!;
    draw(context);
    return canvas.transferToImageBitmap();
}

function drawView(context: OffscreenCanvasRenderingContext2D, view: View): void {
    if (engine.isThin(view.scale)) {
        context.putImageData(new ImageData(engine.paintThin(view, true), view.width, view.height), 0, 0);
    } else {
        context.fillStyle = "white";
        context.fillRect(0, 0, view.width, view.height);
    }
    replay(context, engine.draw(view));
}

function preview(width: number, height: number): void {
    const summary = engine.summary();
    if (summary.extent.length === 0) return;
    const view = fit(summary.extent, width, height);
    const pixels = new ImageData(engine.paintThin(view, false), width, height);
    const bitmap = bitmapOf(view, (context) => context.putImageData(pixels, 0, 0));
    emit({ event: "preview", picture: { bitmap, view }, summary });
}

// Reads and draws a little map while people look for theirs: the first use of a part of the module compiles it.
function warmUp(): void {
    if (engine.summary().sheets.length > 0) return;
    const text = "&V S-JTSK 0 0\n&G 1 1\n&U 1\n&L P 0 0 K=21900 S=101\n L 9 9 K=21910\n&T 5 5 'a'\n&K\n";
    const bytes = new TextEncoder().encode(text.repeat(50));
    const source = {
        name: "warm",
        size: bytes.length,
        read: (from: number, n: number) => bytes.subarray(from, from + n),
    };
    const sheet = engine.open(source);
    while (engine.read(sheet, slice));
    const view = fit([-9, -9, 0, 0], 256, 256);
    engine.paintThin(view, false);
    engine.index(sheet);
    bitmapOf(view, (context) => drawView(context, view)).close();
    engine.clear();
}

const methods = {
    async init(wasm: ArrayBuffer, fonts: Font[], language: Language): Promise<void> {
        const loaded = fonts.map((font) => {
            const { weight, style } = font;
            return new FontFace(font.family, font.bytes, { weight, style }).load();
        });
        engine = await Engine.load(createModule, wasm, language);
        const faces = (self as unknown as { fonts: FontFaceSet }).fonts;
        for (const face of await Promise.all(loaded)) faces.add(face);
    },
    warmUp,

    speak: (language: Language) => engine.speak(language),

    // Reads a file as a further sheet of the map. Pictures of what has come so far are as large as the page asks.
    async open(
        name: string,
        blob: Blob,
        encoding: Encoding,
        width: number,
        height: number,
    ): Promise<Summary> {
        stopWanted = false;
        const source = new BlobSource(name, blob);
        const sheet = engine.open(source, encoding);
        const began = performance.now();
        let nextPreview = began + firstPreview;
        while (engine.read(sheet, slice)) {
            emit({ event: "progress", name, done: source.consumed, total: source.size });
            await breathe();
            if (stopWanted) engine.stop(sheet);
            const now = performance.now();
            if (now < nextPreview) continue;
            preview(width, height);
            const cost = performance.now() - now;
            nextPreview = performance.now() + Math.max(300, 12 * cost);
        }
        preview(width, height);
        return engine.summary();
    },
    stop(): void {
        stopWanted = true;
    },
    index(sheet: number): void {
        engine.index(sheet);
    },
    clear(): void {
        engine.clear();
    },
    useSymbology(files: { name: string; bytes: Uint8Array }[]): void {
        engine.useSymbology(files);
    },

    tile(view: View): ImageBitmap {
        return bitmapOf(view, (context) => drawView(context, view));
    },
    isThin(scale: number): boolean {
        return engine.isThin(scale);
    },
    // A file that is not read now, but for what takes long: of that it tells the progress.
    offer(name: string, blob: Blob, encoding: Encoding, onlyParcels: boolean): void {
        engine.open(toldSource(name, blob), encoding, onlyParcels);
    },
    compare(name: string, blob: Blob, encoding: Encoding, most: number): Comparison {
        return engine.compare(toldSource(name, blob), encoding, most);
    },
    findings: (sheet: number, most: number) => engine.findings(sheet, most),
    // Of the sheets that were offered.
    parcels(most: number): ParcelReport {
        for (const sheet of engine.summary().sheets.keys()) while (engine.read(sheet, Infinity));
        return reportParcels(engine.parcels(), most);
    },
    parcelAt: (x: number, y: number) => engine.parcelAt(x, y),
    parcelRings: (parcel: number) => engine.parcelRings(parcel),

    async png(view: View): Promise<Blob> {
        const canvas = new OffscreenCanvas(view.width, view.height);
        drawView(canvas.getContext("2d", { willReadFrequently: true })!, view);
        return canvas.convertToBlob();
    },
    svg(sheet: number, box: Box, legend: boolean, title: string): string {
        return engine.svg(sheet, box, legend, title);
    },

    summary: () => engine.summary(),
    showLayer: (layer: number, shown: boolean) => engine.showLayer(layer, shown),
    legend: (box: Box) => engine.legend(box),
    find: (text: string, most: number) => engine.find(text, most),
    pick: (x: number, y: number, distance: number) => engine.pick(x, y, distance),
    inspect: (picked: Picked) => engine.inspect(picked),
};

export type WorkerMethods = typeof methods;

self.onmessage = async (
    message: MessageEvent<{ id: number; method: keyof WorkerMethods; values: unknown[] }>,
) => {
    const { id, method, values } = message.data;
    try {
        const result = await (methods[method] as (...values: unknown[]) => unknown)(...values);
        postMessage({ id, result }, { transfer: result instanceof ImageBitmap ? [result] : [] });
    } catch (error) {
        postMessage({ id, error: error instanceof Error ? error.message : String(error) });
    }
};
