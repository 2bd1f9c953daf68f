// Batches of Arrow columns that have left the module: an ArrowArray and its ArrowSchema with everything that they
// point to, in one block of memory of their own. Addresses count from its beginning, so that the block can go to
// another thread, needs no release, and is read as the module's own memory would be.

import type { ColumnBatch, Table } from "./types.ts";

export const tables: readonly Table[] = ["lines", "points", "texts", "parcels"];

// Structures of memory with 32 bits: their sizes, and where their members stand.
const schemaSize = 48;
const schemaAt = {
    format: 0,
    name: 4,
    metadata: 8,
    childCount: 24,
    children: 32,
    release: 40,
    privateData: 44,
};
const arraySize = 64;
const arrayAt = {
    length: 0,
    offset: 16,
    bufferCount: 24,
    childCount: 32,
    buffers: 40,
    children: 44,
    release: 52,
    privateData: 56,
};

// Copies structures, twice the same way: the first time only to know how much room they take.
class Packer {
    private used = 8; // no address is 0

    constructor(
        private readonly from: DataView,
        private readonly to: DataView | null,
    ) {}

    get size(): number {
        return this.used;
    }

    schema(at: number): number {
        const made = this.bytes(at, schemaSize);
        this.point(made + schemaAt.format, this.text(this.word(at + schemaAt.format)));
        this.point(made + schemaAt.name, this.text(this.word(at + schemaAt.name)));
        this.point(made + schemaAt.metadata, this.metadata(this.word(at + schemaAt.metadata)));
        this.children(at, made, schemaAt, (child) => this.schema(child));
        return made;
    }

    array(at: number, schema: number): number {
        const made = this.bytes(at, arraySize);
        const count = this.word(at + arrayAt.bufferCount);
        const buffers = this.word(at + arrayAt.buffers);
        const pointers = this.bytes(buffers, 4 * count);
        this.point(made + arrayAt.buffers, pointers);
        this.bufferSizes(at, schema, buffers).forEach((size, i) => {
            const buffer = this.word(buffers + 4 * i);
            this.point(pointers + 4 * i, buffer === 0 ? 0 : this.bytes(buffer, size));
        });
        const schemas = this.word(schema + schemaAt.children);
        this.children(at, made, arrayAt, (child, i) => this.array(child, this.word(schemas + 4 * i)));
        return made;
    }

    private children(
        at: number,
        made: number,
        members: { childCount: number; children: number; release: number; privateData: number },
        copy: (child: number, i: number) => number,
    ): void {
        const count = this.word(at + members.childCount);
        const children = this.word(at + members.children);
        const pointers = this.bytes(children, 4 * count);
        this.point(made + members.children, pointers);
        for (let i = 0; i < count; i++) this.point(pointers + 4 * i, copy(this.word(children + 4 * i), i));
        // Functions of the module mean nothing outside it.
        this.point(made + members.release, 0);
        this.point(made + members.privateData, 0);
    }

    // Of validity, then offsets or values, then the bytes of texts.
    private bufferSizes(at: number, schema: number, buffers: number): number[] {
        const format = String.fromCharCode(this.from.getUint8(this.word(schema + schemaAt.format)));
        const entries = this.word(at + arrayAt.length) + this.word(at + arrayAt.offset);
        const validity = (entries + 7) >> 3;
        const offsets = 4 * (entries + 1);
        if (format === "i") return [validity, 4 * entries];
        if (format === "l" || format === "g") return [validity, 8 * entries];
        if (format === "u") {
            const end = this.word(this.word(buffers + 4) + 4 * entries);
            return [validity, offsets, end];
        }
        const nested = String.fromCharCode(this.from.getUint8(this.word(schema + schemaAt.format) + 1));
        return nested === "l" ? [validity, offsets] : [validity];
    }

    private text(at: number): number {
        let end = at;
        while (this.from.getUint8(end) !== 0) end++;
        return this.bytes(at, end + 1 - at);
    }
    private metadata(at: number): number {
        if (at === 0) return 0;
        let end = at + 4;
        for (let i = 2 * this.word(at); i > 0; i--) end += 4 + this.word(end);
        return this.bytes(at, end - at);
    }

    private bytes(at: number, count: number): number {
        const made = this.used;
        this.used += (count + 7) & ~7;
        if (this.to && count > 0) {
            const source = new Uint8Array(this.from.buffer, this.from.byteOffset + at, count);
            new Uint8Array(this.to.buffer, made, count).set(source);
        }
        return made;
    }
    private word(at: number): number {
        return this.from.getUint32(at, true);
    }
    private point(at: number, address: number): void {
        this.to?.setUint32(at, address, true);
    }
}

export function packBatch(memory: Uint8Array, array: number, schema: number): ColumnBatch {
    const from = new DataView(memory.buffer, memory.byteOffset, memory.byteLength);
    const measure = new Packer(from, null);
    measure.array(array, schema);
    measure.schema(schema);
    const packed = new ArrayBuffer(measure.size);
    const packer = new Packer(from, new DataView(packed));
    const rows = from.getUint32(array + arrayAt.length, true);
    return {
        memory: packed,
        array: packer.array(array, schema),
        schema: packer.schema(schema),
        rows,
    };
}
