// The page's side of the Worker: calls that give promises, and its events.

import { say } from "./words.ts";
import type { WorkerEvent, WorkerMethods } from "./worker.ts";

type Result<Name extends keyof WorkerMethods> = Promise<Awaited<ReturnType<WorkerMethods[Name]>>>;

export class Client {
    private readonly waiting = new Map<
        number,
        { resolve: (value: never) => void; reject: (error: Error) => void }
    >();
    private lastCall = 0;
    onEvent: (event: WorkerEvent) => void = () => undefined;

    constructor(private readonly worker: Worker) {
        worker.onmessage = (message) => this.receive(message.data);
        worker.onerror = (event) => this.fail(event.message || say("programEnded"));
    }

    call<Name extends keyof WorkerMethods>(
        method: Name,
        ...values: Parameters<WorkerMethods[Name]>
    ): Result<Name> {
        const id = ++this.lastCall;
        return new Promise((resolve, reject) => {
            this.waiting.set(id, { resolve, reject });
            this.worker.postMessage({ id, method, values });
        });
    }

    // Nothing comes back any more.
    end(): void {
        this.worker.terminate();
        this.fail("ended");
    }

    private receive(data: WorkerEvent | { id: number; result?: never; error?: string }): void {
        if ("event" in data) {
            this.onEvent(data);
            return;
        }
        const call = this.waiting.get(data.id);
        this.waiting.delete(data.id);
        if (data.error !== undefined) call?.reject(new Error(data.error));
        else call?.resolve(data.result as never);
    }

    private fail(reason: string): void {
        for (const call of this.waiting.values()) call.reject(new Error(reason));
        this.waiting.clear();
    }
}
