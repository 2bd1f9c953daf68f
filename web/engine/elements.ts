// Elements out of the numbers and texts of a batch, whose order is described in web/viewer/elements.h.

import type { Element, LineElement } from "./types.ts";

export interface ElementBatch {
    numbers: Float64Array;
    texts: string; // each ends with a line feed
}

type Vertex = LineElement["elements"][number];

export function* elementsOf(batch: ElementBatch): Generator<Element> {
    const { numbers } = batch;
    const texts = batch.texts.split("\n");
    let at = 0;
    const next = (): number => numbers[at++]!;
    const nextVertex = (): Vertex => {
        const point: [number, number] = [next(), next()];
        const letter = next();
        const type = (letter === 0 ? "" : String.fromCharCode(letter)) as Vertex["type"];
        return { point, type, K: texts[next()]!, M: next(), R: next(), S: next(), U: next() };
    };
    while (at < numbers.length) {
        const count = next();
        const layer = next();
        const fileLine = next();
        if (count >= 0) {
            const elements = new Array<Vertex>(count);
            for (let i = 0; i < count; i++) elements[i] = nextVertex();
            yield { kind: "line", layer, fileLine, elements };
        } else {
            const text = texts[next()]!;
            const point: [number, number] = [next(), next()];
            yield {
                kind: "text",
                layer,
                fileLine,
                text,
                point,
                D: next(),
                F: next(),
                H: next(),
                K: next(),
                U: next(),
            };
        }
    }
}
