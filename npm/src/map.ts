// A map that is open: asks its host and gives what comes back the forms that programs expect.

import type * as api from "../index.js";
import { tables } from "../../web/engine/columns.ts";
import { elementsOf, type ElementBatch } from "../../web/engine/elements.ts";
import { VkmError } from "../../web/engine/engine.ts";
import { replay } from "../../web/engine/replay.ts";
import type {
    Box,
    ColumnBatch,
    ColumnOptions,
    Element,
    LayerSummary,
    Summary,
    Table,
    View,
} from "../../web/engine/types.ts";
import { featureOf } from "./features.ts";
import type { Host } from "./hosts.ts";
import type { Calls } from "./service.ts";

// A map that nobody holds any more gives back its Worker and its memory.
const abandoned = new FinalizationRegistry<Host>((host) => host.close());

const widestPicture = 16384; // pixels, as canvases have them

function requireView({ x, y, scale, width, height }: View): void {
    const isSize = (size: number): boolean => Number.isInteger(size) && size > 0 && size <= widestPicture;
    if (![x, y, scale].every(Number.isFinite) || scale <= 0 || !isSize(width) || !isSize(height))
        throw new RangeError(
            `a view has a place, a scale above 0, and a width and height from 1 to ${widestPicture} pixels`,
        );
}

const isWhole = (value: number): boolean => Number.isInteger(value) && Math.abs(value) < 2 ** 31;

function requireColumnOptions({
    layers = [],
    batchRows = 1,
    parcelLayer = 1,
    numberLayer = 1,
}: ColumnOptions): void {
    if (![...layers, parcelLayer, numberLayer].every(isWhole))
        throw new RangeError("a layer is a whole number");
    if (!isWhole(batchRows) || batchRows < 1) throw new RangeError("batchRows is a whole number from 1");
}

export class OpenedMap implements api.VkmMap {
    readonly complete: boolean;
    readonly scale: number;
    readonly layers: LayerSummary[];
    readonly extent: Box | [];
    readonly name: string;

    constructor(
        private readonly host: Host,
        summary: Summary,
    ) {
        const sheet = summary.sheets[0]!;
        this.name = sheet.name;
        this.complete = sheet.state === "complete";
        this.scale = sheet.scale;
        this.layers = summary.layers;
        this.extent = summary.extent;
        abandoned.register(this, host, this);
    }

    async *batches(): AsyncGenerator<Element[]> {
        const passage = await this.ask("startElements");
        for await (const batch of this.read(passage)) yield [...elementsOf(batch as ElementBatch)];
    }
    async *[Symbol.asyncIterator](): AsyncGenerator<Element> {
        for await (const batch of this.batches()) yield* batch;
    }
    async *columns(table: Table, options: ColumnOptions = {}): AsyncGenerator<ColumnBatch> {
        if (!tables.includes(table)) throw new RangeError(`there is no table '${String(table)}'`);
        requireColumnOptions(options);
        if (options.layers?.length === 0) return;
        const passage = await this.ask("startColumns", table, options);
        yield* this.read(passage) as AsyncGenerator<ColumnBatch>;
    }
    async *features(options: api.FeatureOptions = {}): AsyncGenerator<api.Feature> {
        for await (const batch of this.batches()) {
            for (const element of batch) {
                const feature = featureOf(element, options);
                if (feature) yield feature;
            }
        }
    }
    async geojson(options: api.FeatureOptions = {}): Promise<api.FeatureCollection> {
        const features: api.Feature[] = [];
        for await (const feature of this.features(options)) features.push(feature);
        return { type: "FeatureCollection", features };
    }

    async draw(context: api.Context2D, view: View): Promise<void> {
        requireView(view);
        const { pixels, ...commands } = await this.ask("draw", view);
        if (pixels) {
            const image = context.createImageData(view.width, view.height);
            image.data.set(pixels);
            context.putImageData(image, 0, 0);
        }
        replay(context as CanvasRenderingContext2D, commands);
    }
    showLayer(layer: number, shown: boolean): Promise<void> {
        for (const found of this.layers) if (found.number === layer) found.shown = shown;
        return this.ask("showLayer", layer, shown);
    }
    svg(box: Box, legend = false): Promise<string> {
        return this.ask("svg", box, legend, this.name);
    }
    find(text: string, most = 50): ReturnType<api.VkmMap["find"]> {
        return this.ask("find", text, most);
    }
    pick(x: number, y: number, distance: number): ReturnType<api.VkmMap["pick"]> {
        return this.ask("pick", x, y, distance);
    }
    check(most = 1000): ReturnType<api.VkmMap["check"]> {
        return this.ask("check", most);
    }
    parcels(): Promise<api.Parcel[]> {
        return this.ask("parcels");
    }

    close(): void {
        abandoned.unregister(this);
        this.host.close();
    }

    // Asks for the next batch before the last one is used up.
    private async *read(passage: number): AsyncGenerator<ElementBatch | ColumnBatch> {
        let coming = this.ask("next", passage);
        try {
            for (;;) {
                const batch = await coming;
                if (!batch) return;
                coming = this.ask("next", passage);
                coming.catch(() => undefined); // it is told when it is awaited
                yield batch;
            }
        } finally {
            this.host.call(null, "stop", passage).catch(() => undefined);
        }
    }
    private async ask<Method extends keyof Calls>(
        method: Method,
        ...values: Parameters<Calls[Method]>
    ): Promise<Awaited<ReturnType<Calls[Method]>>> {
        try {
            return await this.host.call(this, method, ...values);
        } catch (error) {
            if (!(error instanceof VkmError) || error.file !== "") throw error;
            throw new VkmError(`${this.name}: ${error.message}`, this.name, error.line, error.status);
        }
    }
}
