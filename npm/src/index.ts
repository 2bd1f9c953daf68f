// Reads, draws and checks cadastral maps in VKM format, in browsers and in Node.

import createModule from "vkm_web";
import wasm from "vkm_wasm";
import {
  Engine,
  VkmError,
  largestFile,
  type Encoding,
  type Source,
} from "../../web/engine/engine.ts";
import { replay } from "../../web/engine/replay.ts";
import type * as types from "../../web/engine/types.ts";
import {
  columnsOf,
  geojsonOf,
  type Columns,
  type FeatureCollection,
  type FeatureOptions,
} from "./tables.ts";

export { VkmError } from "../../web/engine/engine.ts";

export interface OpenOptions {
  name?: string; // for messages; the file's by default
  encoding?: Encoding; // of texts; "windows-1250" by default
  language?: "en" | "cs" | "de"; // of messages
  signal?: AbortSignal; // stops reading
}

type Input = Blob | ArrayBuffer | Uint8Array | URL | string;

async function unpack(bytes: Blob): Promise<ArrayBuffer> {
  return new Response(
    bytes.stream().pipeThrough(new DecompressionStream("gzip")),
  ).arrayBuffer();
}

let compiled: Promise<ArrayBuffer> | undefined;
function program(): Promise<ArrayBuffer> {
  compiled ??= unpack(
    new Blob([Uint8Array.from(atob(wasm), (letter) => letter.charCodeAt(0))]),
  );
  return compiled;
}

function isAddress(text: string): boolean {
  return /^(https?|blob|data):/.test(text) || typeof process === "undefined";
}

async function load(input: Input): Promise<{ name: string; blob: Blob }> {
  if (input instanceof Blob)
    return { name: (input as Partial<File>).name ?? "map.vkm", blob: input };
  if (input instanceof ArrayBuffer || ArrayBuffer.isView(input)) {
    return { name: "map.vkm", blob: new Blob([input as BlobPart]) };
  }
  const text = String(input);
  const name = text.split(/[?#]/)[0]!.split(/[\\/]/).pop() || text;
  if (isAddress(text)) {
    const answer = await fetch(text);
    if (!answer.ok)
      throw new VkmError(
        `${name}: ${answer.status} ${answer.statusText}`,
        name,
        0,
      );
    return { name, blob: await answer.blob() };
  }
  const fileSystem = "node:fs/promises";
  const { readFile } = (await import(
    /* @vite-ignore */ fileSystem
  )) as typeof import("node:fs/promises");
  try {
    return {
      name,
      blob: new Blob([
        await readFile(text.startsWith("file:") ? new URL(text) : text),
      ]),
    };
  } catch (error) {
    throw new VkmError(`${name}: ${(error as Error).message}`, name, 0);
  }
}

async function sourceOf(
  input: Input,
  name: string | undefined,
): Promise<Source> {
  const loaded = await load(input);
  const begin = new Uint8Array(await loaded.blob.slice(0, 2).arrayBuffer());
  const packed = begin[0] === 0x1f && begin[1] === 0x8b;
  if (loaded.blob.size > largestFile)
    throw new VkmError(`${loaded.name}: larger than 2 GB`, loaded.name, 0);
  const bytes = new Uint8Array(
    packed ? await unpack(loaded.blob) : await loaded.blob.arrayBuffer(),
  );
  const shown = name ?? loaded.name.replace(/\.gz$/i, "");
  return {
    name: shown,
    size: bytes.length,
    read: (offset, length) => bytes.subarray(offset, offset + length),
  };
}

// Opens a map and reads it. Each map has memory of its own, which close gives back, or else the collector. Throws
// VkmError when the file cannot be read or is no map; what an incomplete one has is there, and complete is false.
export async function openMap(
  input: Input,
  options: OpenOptions = {},
): Promise<VkmMap> {
  const source = await sourceOf(input, options.name);
  const engine = await Engine.load(
    createModule,
    (await program()).slice(0),
    options.language ?? "en",
  );
  const encoding = options.encoding ?? "windows-1250";
  const sheet = engine.open(source, encoding);
  const pause = 50; // ms of reading between looks at the rest of the world
  while (engine.read(sheet, pause)) {
    await new Promise((resolve) => setTimeout(resolve));
    options.signal?.throwIfAborted();
  }
  engine.index(sheet);
  const state = engine.summary().sheets[0]!;
  if (state.state === "failed" && state.lines + state.texts === 0)
    throw new VkmError(state.failure, source.name, 0);
  return new VkmMap(engine, source, encoding);
}

export class VkmMap {
  private engine: Engine | null;

  /** Made by openMap. */
  constructor(
    engine: Engine,
    private source: Source,
    private readonly encoding: Encoding,
  ) {
    this.engine = engine;
  }

  get name(): string {
    return this.source.name;
  }
  // Whether the closing record was read.
  get complete(): boolean {
    return this.summary().sheets[0]!.state === "complete";
  }
  get scale(): number {
    return this.summary().sheets[0]!.scale;
  }
  get layers(): types.LayerSummary[] {
    return this.summary().layers;
  }
  get extent(): types.Box | [] {
    return this.summary().extent;
  }
  summary(): types.Summary {
    return this.open().summary();
  }

  // The elements as they stand in the file. Points are x to the east, y to the north (EPSG:5514).
  elements(): Generator<types.Element, boolean> {
    return this.open().elements(this.source, this.encoding);
  }
  async *[Symbol.asyncIterator](): AsyncGenerator<types.Element> {
    yield* this.elements();
  }
  columns(): Columns {
    return columnsOf(this.elements());
  }
  geojson(options: FeatureOptions = {}): FeatureCollection {
    return geojsonOf(this.elements(), options);
  }

  // Draws a part of the map on a canvas of as many pixels, as the printed map has it.
  draw(
    context: CanvasRenderingContext2D | OffscreenCanvasRenderingContext2D,
    view: types.View,
  ): void {
    const engine = this.open();
    if (engine.isThin(view.scale)) {
      context.putImageData(
        new ImageData(engine.paintThin(view, true), view.width, view.height),
        0,
        0,
      );
    }
    replay(context, engine.draw(view));
  }
  showLayer(layer: number, shown: boolean): void {
    this.open().showLayer(layer, shown);
  }
  svg(box: types.Box, legend = false): string {
    return this.open().svg(0, box, legend, this.name);
  }

  find(text: string, most = 50): { count: number; hits: types.Hit[] } {
    return this.open().find(text, most);
  }
  pick(x: number, y: number, distance: number): types.Picked[] {
    return this.open().pick(x, y, distance);
  }
  check(most = 1000): types.CheckReport {
    return this.open().check(0, most);
  }
  parcels(): (types.ParcelRings & { box: types.Box })[] {
    const engine = this.open();
    return engine
      .parcels()
      .parcels.map(({ box }, i) => ({ ...engine.parcelRings(i), box }));
  }

  close(): void {
    this.engine?.clear();
    this.engine = null;
    this.source = {
      name: this.source.name,
      size: 0,
      read: () => new Uint8Array(0),
    };
  }
  private open(): Engine {
    if (!this.engine)
      throw new VkmError(`${this.name}: the map is closed`, this.name, 0);
    return this.engine;
  }
}
