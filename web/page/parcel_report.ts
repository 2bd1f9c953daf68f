// What the page shows of the parcels of a map: made in the Worker, since a country has more of them than a page lists.

import type { Box, ParcelList, ParcelSummary } from "../engine/types.ts";

export interface ParcelRow extends ParcelSummary {
    index: number; // by which its rings are asked for
}
export interface MarkedPlace {
    x: number;
    y: number;
    name: string;
    gap: number | null; // m, of a free end to the next line
}
export interface Marked {
    count: number;
    places: MarkedPlace[]; // the first of them
}

export interface ParcelReport {
    count: number;
    area: number; // m2
    tooManyCrossings: boolean;
    rows: ParcelRow[]; // the first ones in the order of their numbers
    freeEnds: Marked;
    crossings: Marked;
    outside: Marked; // numbers in no parcel
    several: Marked; // parcels with more than one number
    marks: Float64Array<ArrayBuffer>; // of all free ends and crossings: x, y, x, y, ...
}

function marked(places: Partial<MarkedPlace>[], most: number): Marked {
    return {
        count: places.length,
        places: places.slice(0, most).map(({ x = 0, y = 0, name = "", gap = null }) => ({ x, y, name, gap })),
    };
}

const middle = (box: Box): { x: number; y: number } => ({
    x: (box[0] + box[2]) / 2,
    y: (box[1] + box[3]) / 2,
});

export function reportParcels(list: ParcelList, most: number): ParcelReport {
    const { parcels, freeEnds } = list;
    const collator = new Intl.Collator("en", { numeric: true });
    const order = [...parcels.keys()].sort((a, b) =>
        collator.compare(parcels[a]!.number, parcels[b]!.number),
    );
    const crossings: { x: number; y: number }[] = [];
    for (let i = 0; i < list.crossings.length; i += 2)
        crossings.push({ x: list.crossings[i]!, y: list.crossings[i + 1]! });
    const several = parcels.filter((parcel) => parcel.texts > 1);
    return {
        count: parcels.length,
        area: parcels.reduce((sum, parcel) => sum + parcel.size, 0),
        tooManyCrossings: list.tooManyCrossings,
        rows: order.slice(0, most).map((index) => ({ ...parcels[index]!, index })),
        freeEnds: marked(freeEnds, most),
        crossings: marked(crossings, most),
        outside: marked(
            list.outside.map(({ number, x, y }) => ({ name: number, x, y })),
            most,
        ),
        several: marked(
            several.map(({ number, box }) => ({ name: number, ...middle(box) })),
            most,
        ),
        marks: Float64Array.from([...freeEnds, ...crossings].flatMap(({ x, y }) => [x, y])),
    };
}
