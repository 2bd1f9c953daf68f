// The module and its map behind one class: what C exports say, in JavaScript's own types. Runs in a Worker, in a page
// or in Node; everything in it is synchronous.

import { packBatch, tables } from "./columns.ts";
import { elementsOf, type ElementBatch } from "./elements.ts";
import type {
    Box,
    CheckReport,
    ColumnBatch,
    ColumnOptions,
    Comparison,
    Element,
    Finding,
    Hit,
    Inspection,
    Legend,
    ParcelList,
    ParcelRings,
    Picked,
    Status,
    Summary,
    Table,
    View,
} from "./types.ts";

// Bytes that the module reads as it needs them.
export interface Source {
    readonly name: string;
    readonly size: number;
    // At most so many bytes from the offset; fewer only at the end. Throws when they cannot be read.
    read(offset: number, length: number): Uint8Array;
}

// The numbers and texts that a picture is drawn from, see replay.ts.
export interface Commands {
    numbers: Float32Array;
    texts: string[];
}

interface Module {
    HEAPU8: Uint8Array;
    HEAPF32: Float32Array;
    HEAPF64: Float64Array;
    FS: { mkdirTree(path: string): void; writeFile(path: string, bytes: Uint8Array): void };
    readFile: (file: number, offset: number, destination: number, count: number) => number;
    _malloc(size: number): number;
    _free(pointer: number): void;
    [name: `_web_${string}`]: (...values: number[]) => number;
}

export type ModuleFactory = (settings: object) => Promise<Module>;

export const encodings = ["windows-1250", "cp852", "iso-8859-2", "utf-8"] as const;
export type Encoding = (typeof encodings)[number];

export type Language = "en" | "cs" | "de";

export interface FindingsInLanguages extends Omit<CheckReport, "findings"> {
    findings: (Omit<Finding, "message"> & { messages: Record<Language, string> })[];
}

// The module refuses nothing by itself; a map takes about one and a half times its bytes of the 4 GB there are.
export const largestFile = 2 * 1024 ** 3;

const numbersAtOnce = 1 << 16; // of elements

// What is read of a file from its beginning to its end, apart from everything else.
export interface Passage<Batch> {
    readonly complete: boolean; // whether the closing record has been read
    next(): Batch | null; // null at the end
    close(): void;
}

const sampleSymbology = "/symbology";

export class VkmError extends Error {
    constructor(
        message: string,
        readonly file: string,
        readonly line: number, // of the file, from 1; 0: none
        readonly status: Status = "open",
    ) {
        super(message);
        this.name = "VkmError";
    }
}

// The line in a sentence of the C interface: "map.vkm, line 812: Input/output error".
function lineIn(reason: string, file: string): number {
    const start = `${file}, line `;
    return reason.startsWith(start) ? parseInt(reason.slice(start.length)) : 0;
}

export class Engine {
    private readonly sources = new Map<number, Source>();
    private readonly decoder = new TextDecoder();
    private lastFile = 0;

    private constructor(
        private readonly module: Module,
        private language: Language,
    ) {
        module.readFile = (file, offset, destination, count) =>
            this.readFile(file, offset, destination, count);
    }

    static async load(
        factory: ModuleFactory,
        wasm: BufferSource | WebAssembly.Module,
        language: Language = "en",
    ): Promise<Engine> {
        const environment = (module: { ENV?: Record<string, string> }): void => {
            if (module.ENV) module.ENV["VEMRADO_COUNTRY"] = language;
        };
        const instantiate = (
            imports: WebAssembly.Imports,
            done: (made: WebAssembly.Instance) => void,
        ): object => {
            void WebAssembly.instantiate(wasm as WebAssembly.Module, imports).then(done);
            return {};
        };
        const compiled = wasm instanceof WebAssembly.Module;
        const module = await factory({
            ...(compiled ? { instantiateWasm: instantiate } : { wasmBinary: wasm }),
            locateFile: (name: string) => name,
            preRun: [environment],
            print: () => undefined,
            printErr: () => undefined,
        });
        const engine = new Engine(module, language);
        engine.withText(sampleSymbology, (directory) => module._web_symbology!(directory));
        return engine;
    }

    // Of findings, messages and legends from now on. What the module says of a symbology stays in its first language.
    speak(language: Language): void {
        this.language = language;
        this.withText(language, (name) => this.module._web_language!(name));
    }

    // Opens a source as the next sheet of the map, where wanted with no more than its parcels need. Its number.
    open(source: Source, encoding: Encoding = "windows-1250", onlyParcels = false): number {
        if (source.size > largestFile) throw new RangeError(`${source.name}: larger than 2 GB`);
        const file = this.offer(source);
        return this.withText(source.name, (name) =>
            this.module._web_open!(name, file, source.size, encodings.indexOf(encoding), onlyParcels ? 1 : 0),
        );
    }
    // Reads on for so long; false when all is read.
    read(sheet: number, milliseconds: number): boolean {
        return this.module._web_read!(sheet, milliseconds) !== 0;
    }
    stop(sheet: number): void {
        this.module._web_stop!(sheet);
    }
    index(sheet: number): void {
        this.module._web_index!(sheet);
    }
    clear(): void {
        this.module._web_clear!();
        this.sources.clear();
    }

    // The elements of a source, as they stand in it. Returns whether it is complete. Throws VkmError where it cannot
    // be read.
    *elements(
        source: Source,
        encoding: Encoding = "windows-1250",
        axisOrientation = 128,
    ): Generator<Element, boolean> {
        const passage = this.openElements(source, encoding, axisOrientation);
        try {
            for (;;) {
                const batch = passage.next();
                if (!batch) return passage.complete;
                yield* elementsOf(batch);
            }
        } finally {
            passage.close();
        }
    }
    // The same batch by batch. Throws VkmError.
    openElements(source: Source, encoding: Encoding, axisOrientation = 128): Passage<ElementBatch> {
        const { module } = this;
        const file = this.offer(source);
        const open = (name: number): number =>
            module._web_elements_open!(name, file, source.size, encodings.indexOf(encoding), axisOrientation);
        this.require(
            file,
            this.withText(source.name, (name) => this.text(open(name))),
        );
        let complete = false;
        return {
            get complete() {
                return complete;
            },
            next: () => {
                const count = module._web_elements_next!(file, numbersAtOnce);
                if (count < 0) {
                    const reason = this.text(module._web_failure!());
                    throw new VkmError(reason, source.name, module._web_elements_line!(file), "read");
                }
                complete = module._web_elements_complete!(file) !== 0;
                if (count === 0) return null;
                const at = module._web_elements_numbers!(file) / 8;
                const begin = module._web_elements_texts!(file);
                const end = begin + module._web_elements_texts_length!(file);
                return {
                    numbers: module.HEAPF64.slice(at, at + count),
                    texts: this.decoder.decode(module.HEAPU8.subarray(begin, end)),
                };
            },
            close: () => {
                module._web_elements_close!(file);
                this.sources.delete(file);
            },
        };
    }
    // A table of a source as Arrow columns, batch by batch. Throws VkmError.
    openColumns(
        source: Source,
        encoding: Encoding,
        table: Table,
        options: ColumnOptions,
    ): Passage<ColumnBatch> {
        const { module } = this;
        const file = this.offer(source);
        const layers = options.layers ?? [];
        const layerList = options.layers ? module._malloc(4 * layers.length + 1) : 0;
        new Int32Array(module.HEAPU8.buffer).set(layers, layerList / 4);
        const open = (name: number): number =>
            module._web_columns_open!(
                name,
                file,
                source.size,
                tables.indexOf(table),
                encodings.indexOf(encoding),
                layerList,
                layers.length,
                (options.splitByCode ?? true) ? 1 : 0,
                options.batchRows ?? 65536,
                options.parcelLayer ?? 1,
                options.numberLayer ?? 2,
            );
        const failure = this.withText(source.name, (name) => this.text(open(name)));
        module._free(layerList);
        this.require(file, failure);
        return {
            complete: false,
            next: () => {
                const reason = this.text(module._web_columns_next!(file));
                if (reason !== "")
                    throw new VkmError(reason, source.name, lineIn(reason, source.name), "read");
                const batch = module._web_columns_batch!(file);
                if (batch === 0) return null;
                return packBatch(module.HEAPU8, batch, module._web_columns_schema!(file));
            },
            close: () => {
                module._web_columns_close!(file);
                this.sources.delete(file);
            },
        };
    }

    // The files of a symbology of one's own, for sheets opened from now on.
    useSymbology(files: { name: string; bytes: Uint8Array }[]): void {
        const directory = `/own-${++this.lastFile}`;
        this.module.FS.mkdirTree(`${directory}/VKMSym`);
        for (const file of files) this.module.FS.writeFile(`${directory}/VKMSym/${file.name}`, file.bytes);
        this.withText(directory, (name) => this.module._web_symbology!(name));
    }

    summary(): Summary {
        return this.json(this.module._web_summary!()) as Summary;
    }
    showLayer(layer: number, shown: boolean): void {
        this.module._web_show_layer!(layer, shown ? 1 : 0);
    }
    legend(box: Box): Legend {
        return this.json(this.module._web_legend!(...box)) as Legend;
    }
    find(text: string, most: number): { count: number; hits: Hit[] } {
        const found = this.withText(text, (wanted) => this.module._web_find!(wanted, most));
        return this.json(found) as { count: number; hits: Hit[] };
    }
    pick(x: number, y: number, distance: number): Picked[] {
        return this.json(this.module._web_pick!(x, y, distance)) as Picked[];
    }
    inspect(picked: Picked): Inspection | null {
        const kind = ["line", "symbol", "text"].indexOf(picked.kind);
        return this.json(
            this.module._web_inspect!(picked.sheet, picked.layer, kind, picked.number),
        ) as Inspection | null;
    }
    parcels(): ParcelList {
        return this.json(this.module._web_parcels!()) as ParcelList;
    }
    parcelAt(x: number, y: number): number {
        return this.module._web_parcel_at!(x, y);
    }
    parcelRings(parcel: number): ParcelRings {
        return this.json(this.module._web_parcel_rings!(parcel)) as ParcelRings;
    }
    check(sheet: number, most: number): CheckReport {
        const report = this.findings(sheet, most);
        const findings = report.findings.map(({ messages, ...finding }) => ({
            ...finding,
            message: messages[this.language],
        }));
        return { ...report, findings };
    }
    // The same in every language.
    findings(sheet: number, most: number): FindingsInLanguages {
        return JSON.parse(this.answered(this.module._web_check!(sheet, most))) as FindingsInLanguages;
    }
    // What changed since another state of the map.
    compare(old: Source, encoding: Encoding, most: number): Comparison {
        const file = this.offer(old);
        try {
            const changes = this.module._web_compare!(file, encodings.indexOf(encoding), most);
            return JSON.parse(this.answered(changes)) as Comparison;
        } finally {
            this.sources.delete(file);
        }
    }
    svg(sheet: number, box: Box, legend: boolean, title: string): string {
        return this.withText(title, (text) =>
            this.answered(this.module._web_svg!(sheet, ...box, legend ? 1 : 0, text)),
        );
    }

    isThin(pixelsPerMetre: number): boolean {
        return this.module._web_is_thin!(pixelsPerMetre) !== 0;
    }
    // Red, green, blue and opacity of the lines of a view that is seen from afar. indexed: only what the trees find.
    paintThin(view: View, indexed: boolean): Uint8ClampedArray<ArrayBuffer> {
        const { x, y, scale, width, height } = view;
        const at = this.module._web_paint_thin!(x, y, scale, width, height, indexed ? 1 : 0);
        const pixels = new Uint8ClampedArray(this.module.HEAPU8.slice(at, at + width * height * 4).buffer);
        this.module._web_forget_pixels!();
        return pixels;
    }
    // What else there is in a view, or everything where nothing is thin.
    draw(view: View): Commands {
        const count = this.module._web_draw!(view.x, view.y, view.scale, view.width, view.height);
        const at = this.module._web_commands!() / 4;
        const texts = this.text(this.module._web_texts!());
        return {
            numbers: this.module.HEAPF32.slice(at, at + count),
            texts: texts === "" ? [] : texts.split("\n"),
        };
    }

    private offer(source: Source): number {
        this.sources.set(++this.lastFile, source);
        return this.lastFile;
    }
    private require(file: number, failure: string): void {
        if (failure === "") return;
        const { name } = this.sources.get(file)!;
        this.sources.delete(file);
        throw new VkmError(failure, name, 0);
    }
    private readFile(file: number, offset: number, destination: number, count: number): number {
        try {
            const bytes = this.sources.get(file)?.read(offset, count);
            if (!bytes) return -1;
            this.module.HEAPU8.set(bytes, destination);
            return bytes.length;
        } catch {
            return -1;
        }
    }
    private withText<Result>(text: string, use: (pointer: number) => Result): Result {
        const bytes = new TextEncoder().encode(text.replaceAll("\0", " ") + "\0");
        const pointer = this.module._malloc(bytes.length);
        this.module.HEAPU8.set(bytes, pointer);
        try {
            return use(pointer);
        } finally {
            this.module._free(pointer);
        }
    }
    private text(pointer: number): string {
        const heap = this.module.HEAPU8;
        return this.decoder.decode(heap.subarray(pointer, heap.indexOf(0, pointer)));
    }
    private json(pointer: number): unknown {
        return JSON.parse(this.text(pointer));
    }
    // What the module may fail to give. Throws VkmError.
    private answered(pointer: number): string {
        if (pointer === 0) throw new VkmError(this.text(this.module._web_failure!()), "", 0, "read");
        return this.text(pointer);
    }
}
