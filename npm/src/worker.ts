// The Worker of a map, in browsers and in Node.

import createModule from "vkm_web";
import { buffersOf, failureOf, type Answer, type Request } from "./messages.ts";
import { Service } from "./service.ts";

interface Port {
    postMessage(message: Answer, transfer: ArrayBuffer[]): void;
    onMessage(take: (request: Request) => void): void;
}

declare const require: (name: string) => typeof import("node:worker_threads");

function portOfNode(): Port {
    const port = require("node:worker_threads").parentPort!;
    return {
        postMessage: (message, transfer) => port.postMessage(message, transfer),
        onMessage: (take) => port.on("message", take),
    };
}

function portOfBrowser(): Port {
    return {
        postMessage: (message, transfer) => postMessage(message, { transfer }),
        onMessage: (take) => {
            onmessage = (event: MessageEvent<Request>) => take(event.data);
        },
    };
}

const port = typeof postMessage === "function" ? portOfBrowser() : portOfNode();
const service = new Service(createModule, Number.MAX_SAFE_INTEGER);

port.onMessage(async ({ id, method, values }) => {
    try {
        const result = await (service[method] as (...values: unknown[]) => unknown).apply(service, values);
        port.postMessage({ id, result }, buffersOf(result));
    } catch (error) {
        port.postMessage({ id, failure: failureOf(error) }, []);
    }
});
port.postMessage({ id: 0 }, []);
