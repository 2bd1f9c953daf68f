// Reads, draws and checks cadastral maps in VKM format, in browsers and in Node.

import type * as api from "../index.js";
import { VkmError, encodings } from "../../web/engine/engine.ts";
import { startHost } from "./hosts.ts";
import { OpenedMap } from "./map.ts";
import { program } from "./program.ts";
import { originOf } from "./sources.ts";

export { VkmError } from "../../web/engine/engine.ts";

// Rejects once the signal asks to stop; when the work is done nobody listens to it any more.
function stopOf(signal: AbortSignal | undefined, done: AbortSignal): Promise<never> {
    return new Promise((_, reject) => {
        signal?.addEventListener("abort", () => reject(signal.reason), { once: true, signal: done });
    });
}

export const openMap: typeof api.openMap = async (input, options = {}) => {
    const { signal, encoding = "windows-1250", language = "en", worker = true } = options;
    signal?.throwIfAborted();
    if (!encodings.includes(encoding)) throw new RangeError(`there is no encoding '${String(encoding)}'`);
    const origin = originOf(input, options.name);
    const [host, module] = await Promise.all([startHost(worker), program()]);
    const done = new AbortController();
    try {
        signal?.throwIfAborted();
        const opened = host.call(null, "open", module, origin, encoding, language);
        const summary = await Promise.race([opened, stopOf(signal, done.signal)]);
        return new OpenedMap(host, summary);
    } catch (error) {
        host.close();
        if (error instanceof VkmError && error.file === "")
            throw new VkmError(`${origin.name}: ${error.message}`, origin.name, error.line, error.status);
        throw error;
    } finally {
        done.abort();
    }
};
