// The module, which stands packed in the package, unpacked and compiled once for all maps.

import wasm from "vkm_wasm";

function unpack(base64: string): Response {
    const bytes = Uint8Array.from(atob(base64), (letter) => letter.charCodeAt(0));
    return new Response(new Blob([bytes]).stream().pipeThrough(new DecompressionStream("gzip")));
}

export const unpackText = (base64: string): Promise<string> => unpack(base64).text();

let compiled: Promise<WebAssembly.Module> | undefined;

export function program(): Promise<WebAssembly.Module> {
    compiled ??= unpack(wasm)
        .arrayBuffer()
        .then((bytes) => WebAssembly.compile(bytes));
    return compiled;
}
