// Elements as features of GeoJSON.

import type { Feature, FeatureOptions } from "../index.js";
import type { Element, LineElement } from "../../web/engine/types.ts";

type Position = [number, number];
type Project = (point: Position) => Position;

// The strokes of a line: type P begins one, every other element ends a segment.
function strokesOf(line: LineElement, project: Project): Position[][] {
    const strokes: Position[][] = [];
    for (const { type, point } of line.elements) {
        if (type === "") continue;
        if (type === "P" || strokes.length === 0) strokes.push([]);
        strokes.at(-1)!.push(project(point));
    }
    return strokes.filter((stroke) => stroke.length > 1);
}

// Null for an element without a place, as a line of single points.
export function featureOf(element: Element, options: FeatureOptions): Feature | null {
    const { layer, fileLine } = element;
    if (options.layers && !options.layers.includes(layer)) return null;
    const project = options.project ?? ((point: Position) => point);
    if (element.kind === "text") {
        const { text, H, U, K } = element;
        const geometry = { type: "Point" as const, coordinates: project(element.point) };
        const properties = { layer, fileLine, text, size: H, rotation: U, code: K };
        return { type: "Feature", geometry, properties };
    }
    const strokes = strokesOf(element, project);
    if (strokes.length === 0) return null;
    const code = element.elements.find(({ K }) => K !== "")?.K ?? "";
    const geometry =
        strokes.length === 1
            ? { type: "LineString" as const, coordinates: strokes[0]! }
            : { type: "MultiLineString" as const, coordinates: strokes };
    return { type: "Feature", geometry, properties: { layer, fileLine, code } };
}
