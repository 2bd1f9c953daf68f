// Node's own modules. Their names are not in the import, so that bundlers for browsers do not look for them.

const load = (name: string): Promise<unknown> => import(/* @vite-ignore */ name);

export const isNode = typeof process === "object" && typeof process.versions?.node === "string";
export const fileSystem = () => load("node:fs") as Promise<typeof import("node:fs")>;
export const threads = () => load("node:worker_threads") as Promise<typeof import("node:worker_threads")>;
