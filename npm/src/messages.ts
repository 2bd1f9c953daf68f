// What goes between a map and its Worker.

import { VkmError } from "../../web/engine/engine.ts";
import type { Status } from "../../web/engine/types.ts";
import type { Calls } from "./service.ts";

export interface Request {
    id: number;
    method: keyof Calls;
    values: unknown[];
}

export interface Failure {
    message: string;
    file: string;
    line: number;
    status: Status;
}

// The first message of a Worker has neither result nor failure: it says that it is there.
export interface Answer {
    id: number;
    result?: unknown;
    failure?: Failure;
}

export function failureOf(error: unknown): Failure {
    if (error instanceof VkmError) {
        const { message, file, line, status } = error;
        return { message, file, line, status };
    }
    const message = error instanceof Error ? `${error.name}: ${error.message}` : "the program failed";
    return { message, file: "", line: 0, status: "internal" };
}

export const errorOf = ({ message, file, line, status }: Failure): VkmError =>
    new VkmError(message, file, line, status);

// The memory in the members of a result, which changes hands with it.
export function buffersOf(result: unknown): ArrayBuffer[] {
    if (typeof result !== "object" || result === null) return [];
    return Object.values(result)
        .map((value: unknown) => (ArrayBuffer.isView(value) ? value.buffer : value))
        .filter((value): value is ArrayBuffer => value instanceof ArrayBuffer);
}
