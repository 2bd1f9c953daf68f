// Reads, draws and checks cadastral maps in VKM format, in browsers and in Node.

import type {
    Box,
    CheckReport,
    ColumnBatch,
    ColumnOptions,
    Element,
    Hit,
    LayerSummary,
    ParcelRings,
    Picked,
    Status,
    Table,
    View,
} from "../web/engine/types.js";

export type * from "../web/engine/types.js";

/** What is wrong with a file, or with a call. */
export class VkmError extends Error {
    constructor(message: string, file: string, line: number, status?: Status);
    /** The file's name. */
    readonly file: string;
    /** Of the file, from 1; 0: none. */
    readonly line: number;
    readonly status: Status;
}

export interface OpenOptions {
    /** For messages; the file's name by default. */
    name?: string;
    /** Of texts; "windows-1250" by default. */
    encoding?: "windows-1250" | "cp852" | "iso-8859-2" | "utf-8";
    /** Of findings, messages and legends; "en" by default. */
    language?: "en" | "cs" | "de";
    /** Stops reading; openMap rejects with its reason. */
    signal?: AbortSignal;
    /** False: without a Worker, in this thread. */
    worker?: boolean;
}

/**
 * Opens a map and reads it. A string is an address, or a path in Node; what is gzipped is unpacked. What an incomplete
 * file has is there, and complete is false. Rejects with VkmError when the file cannot be read or is no map.
 */
export function openMap(
    input: Blob | ArrayBuffer | Uint8Array | URL | string,
    options?: OpenOptions,
): Promise<VkmMap>;

export interface FeatureOptions {
    /** Only these layers. */
    layers?: number[];
    /** Turns the coordinates of EPSG:5514, which are left as they are without it. */
    project?: (point: [number, number]) => [number, number];
}

export interface Feature {
    type: "Feature";
    geometry:
        | { type: "LineString"; coordinates: [number, number][] }
        | { type: "MultiLineString"; coordinates: [number, number][][] }
        | { type: "Point"; coordinates: [number, number] };
    properties: Record<string, string | number>;
}

export interface FeatureCollection {
    type: "FeatureCollection";
    features: Feature[];
}

export type Parcel = ParcelRings & { box: Box };

/** What draw needs of a canvas's context, in a page, a Worker or a canvas for Node. */
export interface Context2D {
    lineJoin: string;
    lineCap: string;
    lineWidth: number;
    lineDashOffset: number;
    strokeStyle: unknown;
    fillStyle: unknown;
    font: string;
    fontKerning: string;
    textAlign: string;
    textBaseline: string;
    setLineDash(dashes: number[]): void;
    beginPath(): void;
    moveTo(x: number, y: number): void;
    lineTo(x: number, y: number): void;
    stroke(): void;
    fill(): void;
    fillText(text: string, x: number, y: number): void;
    save(): void;
    restore(): void;
    translate(x: number, y: number): void;
    rotate(angle: number): void;
    createImageData(width: number, height: number): { readonly data: Uint8ClampedArray };
    putImageData(image: unknown, x: number, y: number): void;
}

/**
 * A map that is open. Coordinates are x to the east and y to the north in metres, EPSG:5514. After close every call
 * rejects with VkmError.
 */
export interface VkmMap extends AsyncIterable<Element> {
    readonly name: string;
    /** Whether the closing record was read. */
    readonly complete: boolean;
    /** The number of the map scale: 1000 for 1:1000. */
    readonly scale: number;
    readonly layers: LayerSummary[];
    /** Of all points and texts; empty: there are none. */
    readonly extent: Box | [];

    /** The elements as they stand in the file. */
    [Symbol.asyncIterator](): AsyncGenerator<Element>;
    /** The same, some thousands at a time. */
    batches(): AsyncGenerator<Element[]>;
    /** A table as Arrow columns, some thousands of rows at a time. */
    columns(table: Table, options?: ColumnOptions): AsyncGenerator<ColumnBatch>;
    /** Elements as features of GeoJSON. */
    features(options?: FeatureOptions): AsyncGenerator<Feature>;
    geojson(options?: FeatureOptions): Promise<FeatureCollection>;

    /** Draws a part of the map on a canvas of as many pixels, as the printed map has it. */
    draw(context: Context2D, view: View): Promise<void>;
    showLayer(layer: number, shown: boolean): Promise<void>;
    svg(box: Box, legend?: boolean): Promise<string>;

    /** Texts that hold the wanted one, whatever accents and case; at most 50 hits by default. */
    find(text: string, most?: number): Promise<{ count: number; hits: Hit[] }>;
    /** What lies within a distance (m) of a place, nearest first. */
    pick(x: number, y: number, distance: number): Promise<Picked[]>;
    /** What is wrong with the file; at most 1000 findings by default. */
    check(most?: number): Promise<CheckReport>;
    /** Areas that the boundaries enclose, with their numbers. */
    parcels(): Promise<Parcel[]>;

    /** Ends the Worker and gives the memory back. */
    close(): void;
}
