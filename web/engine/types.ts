// What the module answers. Coordinates are metres, x to the east and y to the north, as in EPSG:5514.

export type Box = [minX: number, minY: number, maxX: number, maxY: number];

// A part of the ground as a picture.
export interface View {
    x: number; // the upper left corner on the ground
    y: number;
    scale: number; // pixels to a metre
    width: number; // pixels
    height: number;
}

export interface SheetSummary {
    name: string;
    state: "reading" | "complete" | "incomplete" | "stopped" | "failed";
    failure: string;
    failureLine: number; // of the file, where reading it failed; 0: nowhere
    lines: number;
    texts: number;
    scale: number;
    scaleUsable: boolean;
    skipped: number;
    length: number;
    messages: string[];
}

export interface LayerSummary {
    number: number;
    name: string;
    lines: number;
    symbols: number;
    texts: number;
    shown: boolean;
    colour: number; // red + green * 256 + blue * 65536
}

export interface Summary {
    sheets: SheetSummary[];
    layers: LayerSummary[];
    extent: Box | [];
}

export interface LegendLine {
    code: number;
    known: boolean;
    name: string;
    colour: number;
    width: number; // mm on paper
    invisible: boolean;
    dashes: number[];
}

export interface LegendSymbol {
    code: number;
    name: string;
    bounds: Box; // mm on paper, y up
    strokes: number[][]; // x, y, x, y, ...
}

export interface Legend {
    lines: LegendLine[];
    symbols: LegendSymbol[];
}

export interface Hit {
    text: string;
    layer: number;
    layerName: string;
    sheet: number;
    number: number;
    x: number;
    y: number;
}

export interface Picked {
    kind: "line" | "symbol" | "text";
    sheet: number;
    sheetName: string;
    layer: number;
    layerName: string;
    number: number;
    code?: number;
    codeName?: string;
    length?: number;
    points?: number;
    text?: string;
    height?: number;
    rotation?: number;
    size?: number;
    outline: number[]; // x, y, x, y, ...
}

export interface Vertex {
    type: string;
    x: number;
    y: number;
    code?: string;
    codeName?: string;
    symbol?: number;
    symbolName?: string;
    m: number;
    r: number;
    u: number;
}

export interface Inspection {
    kind: "line" | "text";
    fileLine: number; // on which the element begins, from 1
    vertices?: number;
    length?: number;
    elements?: Vertex[];
    code?: number;
    d?: number;
    f?: number;
    h?: number;
    u?: number;
}

export interface ParcelSummary {
    number: string;
    texts: number;
    size: number; // m2
    box: Box;
}

export interface ParcelList {
    parcels: ParcelSummary[];
    freeEnds: { x: number; y: number; gap: number | null }[];
    cutPieces: number[]; // x, y, x, y, ...
    crossings: number[];
    outside: { number: string; x: number; y: number }[];
    tooManyCrossings: boolean;
}

export interface ParcelRings {
    number: string;
    texts: number;
    size: number;
    rings: number[][]; // the outer one, then the holes: x, y, x, y, ...
}

// An element as it stands in the file, see docs/command-line.md of `vkm dump`.
export interface LineElement {
    kind: "line";
    layer: number;
    fileLine: number; // on which it begins, from 1
    elements: {
        point: [number, number];
        type: "C" | "K" | "L" | "P" | "R" | "?" | "";
        K: string; // code; empty: none
        M: number;
        R: number;
        S: number; // symbol code; 0: none
        U: number;
    }[];
}

export interface TextElement {
    kind: "text";
    layer: number;
    fileLine: number;
    text: string;
    point: [number, number];
    D: number;
    F: number;
    H: number;
    K: number;
    U: number;
}

export type Element = LineElement | TextElement;

export interface Finding {
    severity: "note" | "warning" | "error";
    rule: string;
    message: string;
    line: number; // of the file, from 1
    column: number; // byte of the line, from 1
    x?: number;
    y?: number;
}

export interface CheckReport {
    note: number;
    warning: number;
    error: number;
    findings: Finding[]; // the first ones
}

export interface ChangeSide {
    fileLine: number;
    code: string;
    words: string;
    symbol?: number;
    outline: number[]; // x, y, x, y, ...
}

export interface Change {
    kind: "added" | "removed" | "changed" | "moved";
    thing: "line" | "text" | "symbol";
    layer: number;
    old?: ChangeSide;
    now?: ChangeSide;
}

export interface Comparison {
    added: number;
    removed: number;
    changed: number;
    moved: number;
    changes: Change[]; // the first ones
}

export type Table = "lines" | "points" | "texts" | "parcels";

export interface ColumnOptions {
    layers?: number[]; // only these
    splitByCode?: boolean; // lines are split where the code changes; by default true
    batchRows?: number; // at most; 65536 by default
    parcelLayer?: number; // with the boundaries of parcels; 1 by default
    numberLayer?: number; // with their numbers; 2 by default
}

// Rows of a table: addresses of the structures of the Arrow C data interface in a block of memory of their own, which
// needs no release.
export interface ColumnBatch {
    memory: ArrayBuffer;
    array: number; // ArrowArray
    schema: number; // ArrowSchema
    rows: number;
}

// What went wrong: the file cannot be opened or is no map; reading failed in its middle; the map is closed; or the
// program itself is at fault.
export type Status = "open" | "read" | "closed" | "internal";
