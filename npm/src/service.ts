// A map on the module's side, in a Worker or beside the page: what a map's methods ask for, by name.

import type { ElementBatch } from "../../web/engine/elements.ts";
import {
    Engine,
    VkmError,
    type Commands,
    type Encoding,
    type Language,
    type ModuleFactory,
    type Passage,
} from "../../web/engine/engine.ts";
import type {
    Box,
    CheckReport,
    ColumnBatch,
    ColumnOptions,
    Hit,
    ParcelRings,
    Picked,
    Summary,
    Table,
    View,
} from "../../web/engine/types.ts";
import { openSource, type FileSource, type Origin } from "./sources.ts";

export interface Picture extends Commands {
    pixels: Uint8ClampedArray<ArrayBuffer> | null; // of lines seen from afar
}

export type Parcel = ParcelRings & { box: Box };

interface OpenMap {
    engine: Engine;
    source: FileSource;
    encoding: Encoding;
    indexed: boolean;
}

export class Service {
    private map: OpenMap | null = null;
    private isClosed = false;
    private lastPassage = 0;
    private readonly passages = new Map<number, Passage<ElementBatch | ColumnBatch>>();

    // pause: milliseconds of reading between looks at the rest of the world.
    constructor(
        private readonly factory: ModuleFactory,
        private readonly pause: number,
    ) {}

    async open(
        program: WebAssembly.Module,
        origin: Origin,
        encoding: Encoding,
        language: Language,
    ): Promise<Summary> {
        const source = await openSource(origin);
        try {
            const engine = await Engine.load(this.factory, program, language);
            const sheet = engine.open(source, encoding);
            while (engine.read(sheet, this.pause) && !this.isClosed)
                await new Promise((resolve) => setTimeout(resolve));
            const summary = engine.summary();
            const { state, failure, failureLine } = summary.sheets[0]!;
            if (state === "failed")
                throw new VkmError(failure, source.name, failureLine, failureLine > 0 ? "read" : "open");
            if (this.isClosed)
                throw new VkmError(`${source.name}: the map is closed`, source.name, 0, "closed");
            this.map = { engine, source, encoding, indexed: false };
            return summary;
        } catch (error) {
            source.close();
            throw error;
        }
    }

    draw(view: View): Picture {
        const engine = this.indexed();
        const pixels = engine.isThin(view.scale) ? engine.paintThin(view, true) : null;
        return { pixels, ...engine.draw(view) };
    }
    showLayer(layer: number, shown: boolean): void {
        this.opened().engine.showLayer(layer, shown);
    }
    svg(box: Box, legend: boolean, title: string): string {
        return this.opened().engine.svg(0, box, legend, title);
    }
    find(text: string, most: number): { count: number; hits: Hit[] } {
        return this.opened().engine.find(text, most);
    }
    pick(x: number, y: number, distance: number): Picked[] {
        return this.indexed().pick(x, y, distance);
    }
    check(most: number): CheckReport {
        return this.opened().engine.check(0, most);
    }
    parcels(): Parcel[] {
        const { engine } = this.opened();
        return engine.parcels().parcels.map(({ box }, i) => ({ ...engine.parcelRings(i), box }));
    }

    // Passages over the file, by number.
    startElements(): number {
        const { engine, source, encoding } = this.opened();
        return this.start(engine.openElements(source, encoding));
    }
    startColumns(table: Table, options: ColumnOptions): number {
        const { engine, source, encoding } = this.opened();
        return this.start(engine.openColumns(source, encoding, table, options));
    }
    next(passage: number): ElementBatch | ColumnBatch | null {
        this.opened();
        return this.passages.get(passage)!.next();
    }
    stop(passage: number): void {
        this.passages.get(passage)?.close();
        this.passages.delete(passage);
    }

    close(): void {
        this.isClosed = true;
        this.map?.engine.clear();
        this.map?.source.close();
        this.map = null;
        this.passages.clear();
    }

    private start(passage: Passage<ElementBatch | ColumnBatch>): number {
        this.passages.set(++this.lastPassage, passage);
        return this.lastPassage;
    }
    private opened(): OpenMap {
        if (!this.map) throw new VkmError("the map is closed", "", 0, "closed");
        return this.map;
    }
    // With the trees of boxes that finding parts of the map needs.
    private indexed(): Engine {
        const map = this.opened();
        if (!map.indexed) map.engine.index(0);
        map.indexed = true;
        return map.engine;
    }
}

// What the other side may ask for.
export type Calls = Pick<
    Service,
    | "open"
    | "draw"
    | "showLayer"
    | "svg"
    | "find"
    | "pick"
    | "check"
    | "parcels"
    | "startElements"
    | "startColumns"
    | "next"
    | "stop"
>;
