// Where a map comes from, and its bytes as the module reads them: synchronously, a little at a time.

import { VkmError, largestFile, type Source } from "../../web/engine/engine.ts";
import { fileSystem, isNode } from "./node.ts";

export type Input = Blob | ArrayBuffer | Uint8Array | URL | string;

// An input in a form that can go to a Worker.
export interface Origin {
    name: string; // for messages
    blob?: Blob;
    bytes?: Uint8Array;
    address?: string;
    path?: string; // in Node, or an address of a file there
}

export interface FileSource extends Source {
    close(): void;
}

const window4 = 4 << 20; // bytes that are asked of a file at once

function originOfText(text: string): Origin {
    const name = text.startsWith("data:") ? "map.vkm" : text.split(/[?#]/)[0]!.split(/[\\/]/).pop() || text;
    if (isNode && !/^(https?|blob|data):/.test(text)) return { name, path: text };
    const base = typeof document === "object" ? document.baseURI : globalThis.location?.href;
    return { name, address: new URL(text, base).href };
}

export function originOf(input: Input, name?: string): Origin {
    const given = name === undefined ? {} : { name };
    if (input instanceof Blob)
        return { name: (input as Partial<File>).name ?? "map.vkm", blob: input, ...given };
    if (input instanceof ArrayBuffer) return { name: "map.vkm", bytes: new Uint8Array(input), ...given };
    if (ArrayBuffer.isView(input)) {
        // A part of a larger block alone, for the whole block would go to the Worker.
        const { buffer, byteOffset, byteLength } = input;
        const part = new Uint8Array(buffer, byteOffset, byteLength);
        return { name: "map.vkm", bytes: byteLength < buffer.byteLength ? part.slice() : part, ...given };
    }
    return { ...originOfText(String(input)), ...given };
}

// What the engine reads by pieces of a few megabytes, each of which it asks for once.
abstract class PieceSource implements FileSource {
    private begin = 0;
    private kept = new Uint8Array(0);

    constructor(
        readonly name: string,
        readonly size: number,
    ) {}
    abstract close(): void;
    protected abstract piece(begin: number, end: number): Uint8Array<ArrayBuffer>;

    read(offset: number, length: number): Uint8Array {
        if (offset < this.begin || offset >= this.begin + this.kept.length) {
            this.kept = this.piece(offset, Math.min(offset + window4, this.size));
            this.begin = offset;
        }
        return this.kept.subarray(offset - this.begin, offset - this.begin + length);
    }
}

class BlobSource extends PieceSource {
    private readonly reader = new FileReaderSync();
    constructor(
        name: string,
        private readonly blob: Blob,
    ) {
        super(name, blob.size);
    }
    protected piece(begin: number, end: number): Uint8Array<ArrayBuffer> {
        return new Uint8Array(this.reader.readAsArrayBuffer(this.blob.slice(begin, end)));
    }
    close(): void {}
}

class PathSource extends PieceSource {
    constructor(
        name: string,
        private readonly system: typeof import("node:fs"),
        private readonly file: number,
    ) {
        super(name, system.fstatSync(file).size);
    }
    protected piece(begin: number, end: number): Uint8Array<ArrayBuffer> {
        const bytes = new Uint8Array(end - begin);
        return bytes.subarray(0, this.system.readSync(this.file, bytes, 0, bytes.length, begin));
    }
    close(): void {
        this.system.closeSync(this.file);
    }
}

function bytesSource(name: string, bytes: Uint8Array): FileSource {
    const read = (offset: number, length: number): Uint8Array => bytes.subarray(offset, offset + length);
    return { name, size: bytes.length, read, close: () => undefined };
}

const isPacked = (begin: Uint8Array): boolean => begin[0] === 0x1f && begin[1] === 0x8b;
const tooLarge = (name: string): VkmError => new VkmError(`${name}: larger than 2 GB`, name, 0);

async function unpacked(name: string, packed: Blob): Promise<FileSource> {
    const reader = packed.stream().pipeThrough(new DecompressionStream("gzip")).getReader();
    const pieces: Uint8Array[] = [];
    let size = 0;
    try {
        for (;;) {
            const { done, value } = await reader.read();
            if (done) break;
            pieces.push(value);
            size += value.length;
            if (size > largestFile) throw tooLarge(name);
        }
    } catch (error) {
        if (error instanceof VkmError) throw error;
        throw new VkmError(`${name}: the packed file is damaged`, name, 0);
    }
    const bytes = new Uint8Array(size);
    let at = 0;
    for (const piece of pieces) {
        bytes.set(piece, at);
        at += piece.length;
    }
    return bytesSource(name.replace(/\.gz$/i, ""), bytes);
}

async function fetched(address: string): Promise<Blob> {
    const answer = await fetch(address);
    if (!answer.ok) throw new Error(`the server answers ${answer.status} ${answer.statusText}`.trim());
    return answer.blob();
}

async function pathSource(name: string, path: string): Promise<FileSource> {
    const system = await fileSystem();
    const place = path.startsWith("file:") ? new URL(path) : path;
    const file = system.openSync(place, "r");
    const source = new PathSource(name, system, file);
    try {
        if (!isPacked(source.read(0, 2))) return source;
        source.close();
    } catch (error) {
        source.close();
        throw error;
    }
    return unpacked(name, new Blob([system.readFileSync(place)]));
}

async function blobSource(name: string, blob: Blob): Promise<FileSource> {
    if (isPacked(new Uint8Array(await blob.slice(0, 2).arrayBuffer()))) return unpacked(name, blob);
    if (typeof FileReaderSync === "function") return new BlobSource(name, blob);
    return bytesSource(name, new Uint8Array(await blob.arrayBuffer()));
}

// "ENOENT: no such file or directory, open 'x'" says more than a sentence with a name needs.
function reasonOf(error: unknown): string {
    const text = error instanceof Error ? error.message : String(error);
    return /^E[A-Z]+: (.*?), /.exec(text)?.[1] ?? text;
}

async function sourceOf({ name, blob, bytes, address, path }: Origin): Promise<FileSource> {
    if (path !== undefined) return pathSource(name, path);
    if (!bytes) return blobSource(name, blob ?? (await fetched(address!)));
    return isPacked(bytes) ? unpacked(name, new Blob([bytes as BlobPart])) : bytesSource(name, bytes);
}

// Throws VkmError.
export async function openSource(origin: Origin): Promise<FileSource> {
    const { name } = origin;
    try {
        const source = await sourceOf(origin);
        if (source.size <= largestFile) return source;
        source.close();
    } catch (error) {
        if (error instanceof VkmError) throw error;
        throw new VkmError(`${name}: ${reasonOf(error)}`, name, 0);
    }
    throw tooLarge(name);
}
