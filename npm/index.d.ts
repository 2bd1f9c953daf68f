// Reads, draws and checks cadastral maps in VKM format, in browsers and in Node.

import type {
  Box,
  CheckReport,
  Element,
  Hit,
  LayerSummary,
  ParcelRings,
  Picked,
  Summary,
  View,
} from "./types.js";

export type * from "./types.js";

/** A file that cannot be read or is no map. */
export class VkmError extends Error {
  readonly file: string;
  /** That had been read of the file; 0: none. */
  readonly line: number;
}

export interface OpenOptions {
  /** For messages; the file's name by default. */
  name?: string;
  /** Of texts; "windows-1250" by default. */
  encoding?: "windows-1250" | "cp852" | "iso-8859-2" | "utf-8";
  /** Of messages. */
  language?: "en" | "cs" | "de";
  /** Stops reading. */
  signal?: AbortSignal;
}

/**
 * Opens a map and reads it; a string is an address, or a path in Node. What an incomplete file has is there, and
 * complete is false. Throws VkmError when the file cannot be read or is no map.
 */
export function openMap(
  input: Blob | ArrayBuffer | Uint8Array | URL | string,
  options?: OpenOptions,
): Promise<VkmMap>;

/** One value for each line or text; the points of line i are those from start[i] to start[i + 1]. */
export interface Columns {
  lines: {
    layer: Int32Array;
    fileLine: Int32Array;
    start: Uint32Array;
    /** x, y, x, y, ... */
    points: Float64Array;
    /** Of each point; empty: none. */
    code: string[];
  };
  texts: {
    layer: Int32Array;
    fileLine: Int32Array;
    points: Float64Array;
    text: string[];
    size: Float64Array;
  };
}

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

/** A map that is open. Coordinates are x to the east and y to the north, EPSG:5514. */
export class VkmMap {
  private constructor();
  readonly name: string;
  /** Whether the closing record was read. */
  readonly complete: boolean;
  /** The number of the map scale: 1000 for 1:1000. */
  readonly scale: number;
  readonly layers: LayerSummary[];
  readonly extent: Box | [];
  summary(): Summary;
  /** The elements as they stand in the file. */
  elements(): Generator<Element, boolean>;
  [Symbol.asyncIterator](): AsyncGenerator<Element>;
  columns(): Columns;
  geojson(options?: FeatureOptions): FeatureCollection;
  /** Draws a part of the map on a canvas of as many pixels, as the printed map has it. */
  draw(
    context: CanvasRenderingContext2D | OffscreenCanvasRenderingContext2D,
    view: View,
  ): void;
  showLayer(layer: number, shown: boolean): void;
  svg(box: Box, legend?: boolean): string;
  /** Texts that hold the wanted one, whatever accents and case. */
  find(text: string, most?: number): { count: number; hits: Hit[] };
  /** What lies within a distance (m) of a place, nearest first. */
  pick(x: number, y: number, distance: number): Picked[];
  check(most?: number): CheckReport;
  parcels(): (ParcelRings & { box: Box })[];
  /** Gives the memory back; nothing else can be asked of the map afterwards. */
  close(): void;
}
