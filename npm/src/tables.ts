// Elements as tables: columns of numbers, and features for programs of maps.

import type { Element, LineElement } from "../../web/engine/types.ts";

// One value for each line or text; the points of a line are those from its start to the next one's.
export interface Columns {
  lines: {
    layer: Int32Array;
    fileLine: Int32Array;
    start: Uint32Array; // one more than there are lines
    points: Float64Array; // x, y, x, y, ...
    code: string[]; // of each point; empty: none
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
  layers?: number[]; // only these
  // Turns the coordinates of EPSG:5514, which are left as they are without it.
  project?: (point: [number, number]) => [number, number];
}

export interface Feature {
  type: "Feature";
  geometry:
    | {
        type: "LineString" | "MultiLineString";
        coordinates: [number, number][] | [number, number][][];
      }
    | { type: "Point"; coordinates: [number, number] };
  properties: Record<string, string | number>;
}
export interface FeatureCollection {
  type: "FeatureCollection";
  features: Feature[];
}

export function columnsOf(elements: Iterable<Element>): Columns {
  const lines = {
    layer: [] as number[],
    fileLine: [] as number[],
    start: [0],
    points: [] as number[],
    code: [] as string[],
  };
  const texts = {
    layer: [] as number[],
    fileLine: [] as number[],
    points: [] as number[],
    text: [] as string[],
    size: [] as number[],
  };
  for (const element of elements) {
    const table = element.kind === "line" ? lines : texts;
    table.layer.push(element.layer);
    table.fileLine.push(element.fileLine);
    if (element.kind === "text") {
      texts.points.push(...element.point);
      texts.text.push(element.text);
      texts.size.push(element.H);
      continue;
    }
    for (const { point, K } of element.elements) {
      lines.points.push(...point);
      lines.code.push(K);
    }
    lines.start.push(lines.code.length);
  }
  const both = (table: {
    layer: number[];
    fileLine: number[];
    points: number[];
  }) => ({
    layer: Int32Array.from(table.layer),
    fileLine: Int32Array.from(table.fileLine),
    points: Float64Array.from(table.points),
  });
  return {
    lines: {
      ...both(lines),
      start: Uint32Array.from(lines.start),
      code: lines.code,
    },
    texts: {
      ...both(texts),
      text: texts.text,
      size: Float64Array.from(texts.size),
    },
  };
}

// The strokes of a line: type P begins one, every other element ends a segment.
function strokesOf(
  line: LineElement,
  project: (point: [number, number]) => [number, number],
): [number, number][][] {
  const strokes: [number, number][][] = [];
  for (const { type, point } of line.elements) {
    if (type === "") continue;
    if (type === "P" || strokes.length === 0) strokes.push([]);
    strokes.at(-1)!.push(project(point));
  }
  return strokes.filter((stroke) => stroke.length > 1);
}

export function geojsonOf(
  elements: Iterable<Element>,
  options: FeatureOptions,
): FeatureCollection {
  const project = options.project ?? ((point: [number, number]) => point);
  const features: Feature[] = [];
  for (const element of elements) {
    if (options.layers && !options.layers.includes(element.layer)) continue;
    const { layer, fileLine } = element;
    if (element.kind === "text") {
      const { text, H, U, K } = element;
      const geometry = {
        type: "Point" as const,
        coordinates: project(element.point),
      };
      features.push({
        type: "Feature",
        geometry,
        properties: { layer, fileLine, text, size: H, rotation: U, code: K },
      });
      continue;
    }
    const strokes = strokesOf(element, project);
    if (strokes.length === 0) continue;
    const code = element.elements.find(({ K }) => K !== "")?.K ?? "";
    const geometry =
      strokes.length === 1
        ? { type: "LineString" as const, coordinates: strokes[0]! }
        : { type: "MultiLineString" as const, coordinates: strokes };
    features.push({
      type: "Feature",
      geometry,
      properties: { layer, fileLine, code },
    });
  }
  return { type: "FeatureCollection", features };
}
