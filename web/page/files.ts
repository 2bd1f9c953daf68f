// What people drop, pick or paste, as maps and symbology files: packed ones are unpacked by the browser itself.

import { largestFile } from "../engine/engine.ts";
import { say } from "./words.ts";

export interface MapFile {
    name: string;
    blob: Blob;
}

export interface OpenedFiles {
    maps: MapFile[];
    symbology: { name: string; bytes: Uint8Array }[];
    problems: string[];
}

const symbologyName = /^(DKM1_3\.TB|WKOKES\.(CAR|COL|SYM)|.+\.KSH)$/i;
const otherKinds = /\.(txt|md|pdf|png|jpe?g|html?|xml|json|docx?|xlsx?)$/i;

// A file that unpacks to more than the page takes is given up there.
async function inflate(blob: Blob, format: "gzip" | "deflate-raw"): Promise<Blob> {
    let size = 0;
    const counted = new TransformStream<Uint8Array<ArrayBuffer>, Uint8Array<ArrayBuffer>>({
        transform(bytes, stream) {
            size += bytes.length;
            if (size > largestFile) stream.error();
            else stream.enqueue(bytes);
        },
    });
    const unpacked = blob.stream().pipeThrough(new DecompressionStream(format)).pipeThrough(counted);
    try {
        return await new Response(unpacked).blob();
    } catch {
        throw new Error(say(size > largestFile ? "unpacksTooLarge" : "damaged"));
    }
}

interface ZipEntry {
    name: string;
    method: number;
    packed: number;
    offset: number;
}

// The entries by the central directory at the end of a zip file.
async function zipEntries(blob: Blob): Promise<ZipEntry[]> {
    const longestComment = 65557;
    const tailBegin = Math.max(0, blob.size - longestComment);
    const tail = new DataView(await blob.slice(tailBegin).arrayBuffer());
    let end = tail.byteLength - 22;
    while (end >= 0 && tail.getUint32(end, true) !== 0x06054b50) end--;
    if (end < 0) throw new Error(say("noZip"));
    const size = tail.getUint32(end + 12, true);
    const offset = tail.getUint32(end + 16, true);
    if (offset === 0xffffffff) throw new Error(say("zipTooLarge"));
    const directory = new DataView(await blob.slice(offset, offset + size).arrayBuffer());
    const entries: ZipEntry[] = [];
    for (let at = 0; at + 46 <= directory.byteLength && directory.getUint32(at, true) === 0x02014b50;) {
        const nameLength = directory.getUint16(at + 28, true);
        const utf8 = (directory.getUint16(at + 8, true) & 0x800) !== 0;
        const name = new Uint8Array(directory.buffer, directory.byteOffset + at + 46, nameLength);
        entries.push({
            name: new TextDecoder(utf8 ? "utf-8" : "windows-1250").decode(name),
            method: directory.getUint16(at + 10, true),
            packed: directory.getUint32(at + 20, true),
            offset: directory.getUint32(at + 42, true),
        });
        at += 46 + nameLength + directory.getUint16(at + 30, true) + directory.getUint16(at + 32, true);
    }
    return entries;
}

async function unzip(blob: Blob): Promise<MapFile[]> {
    const files: MapFile[] = [];
    for (const entry of await zipEntries(blob)) {
        if (entry.name.endsWith("/") || entry.name.startsWith("__MACOSX/")) continue;
        const header = new DataView(await blob.slice(entry.offset, entry.offset + 30).arrayBuffer());
        const begin = entry.offset + 30 + header.getUint16(26, true) + header.getUint16(28, true);
        const packed = blob.slice(begin, begin + entry.packed);
        const name = entry.name.slice(entry.name.lastIndexOf("/") + 1);
        if (entry.method === 0) files.push({ name, blob: packed });
        else if (entry.method === 8) files.push({ name, blob: await inflate(packed, "deflate-raw") });
        else throw new Error(say("zipMethod", { name: entry.name }));
    }
    return files;
}

async function unpack(file: MapFile): Promise<MapFile[]> {
    const begin = new Uint8Array(await file.blob.slice(0, 4).arrayBuffer());
    if (begin[0] === 0x1f && begin[1] === 0x8b) {
        return [{ name: file.name.replace(/\.gz$/i, ""), blob: await inflate(file.blob, "gzip") }];
    }
    if (begin[0] === 0x50 && begin[1] === 0x4b && begin[2] === 3) {
        const files = await unzip(file.blob);
        // A zip of a folder brings letters and lists along with its maps.
        const likely = files.filter((inner) => !otherKinds.test(inner.name));
        return likely.length > 0 ? likely : files;
    }
    return [file];
}

export async function sortFiles(files: MapFile[]): Promise<OpenedFiles> {
    const opened: OpenedFiles = { maps: [], symbology: [], problems: [] };
    for (const file of files) {
        try {
            for (const inner of await unpack(file)) {
                if (symbologyName.test(inner.name)) {
                    const bytes = new Uint8Array(await inner.blob.arrayBuffer());
                    opened.symbology.push({ name: inner.name.toUpperCase(), bytes });
                } else {
                    opened.maps.push(inner);
                }
            }
        } catch (error) {
            opened.problems.push(`${file.name}: ${error instanceof Error ? error.message : String(error)}`);
        }
    }
    return opened;
}

// Files of a drop, those in folders too.
export async function filesOfDrop(data: DataTransfer): Promise<MapFile[]> {
    const entries = [...data.items]
        .map((item) => item.webkitGetAsEntry?.())
        .filter((entry) => entry?.isDirectory);
    const files: MapFile[] = [...data.files].map((f) => ({ name: f.name, blob: f }));
    const visit = async (entry: FileSystemEntry): Promise<void> => {
        if (entry.isFile) {
            const file = await new Promise<File>((ok, no) => (entry as FileSystemFileEntry).file(ok, no));
            files.push({ name: file.name, blob: file });
            return;
        }
        const reader = (entry as FileSystemDirectoryEntry).createReader();
        for (;;) {
            const inner = await new Promise<FileSystemEntry[]>((ok, no) => reader.readEntries(ok, no));
            if (inner.length === 0) return;
            for (const one of inner) await visit(one);
        }
    };
    for (const entry of entries) {
        const known = files.findIndex((file) => file.name === entry!.name);
        if (known >= 0) files.splice(known, 1);
        await visit(entry!);
    }
    return files;
}
