// Where the module of a map runs: in a Worker of its own, or in this thread where there is none.

import createModule from "vkm_web";
import workerScript from "vkm_worker";
import { VkmError } from "../../web/engine/engine.ts";
import { errorOf, failureOf, type Answer, type Request } from "./messages.ts";
import { threads } from "./node.ts";
import { unpackText } from "./program.ts";
import { Service, type Calls } from "./service.ts";

type Result<Method extends keyof Calls> = Awaited<ReturnType<Calls[Method]>>;

export interface Host {
    // The owner is kept from the collector until the answer is there. Rejects with VkmError.
    call<Method extends keyof Calls>(
        owner: object | null,
        method: Method,
        ...values: Parameters<Calls[Method]>
    ): Promise<Result<Method>>;
    // Frees everything. Calls without an answer are rejected.
    close(): void;
}

const closedError = (): VkmError => new VkmError("the map is closed", "", 0, "closed");

class LocalHost implements Host {
    private readonly service = new Service(createModule, 50);

    async call<Method extends keyof Calls>(
        _owner: object | null,
        method: Method,
        ...values: Parameters<Calls[Method]>
    ): Promise<Result<Method>> {
        try {
            const asked = this.service[method] as (...values: unknown[]) => Result<Method>;
            return await asked.apply(this.service, values);
        } catch (error) {
            throw errorOf(failureOf(error));
        }
    }
    close(): void {
        this.service.close();
    }
}

// A Worker as the host sees it, of a browser or of Node.
interface Thread {
    post(request: Request): void;
    end(): void;
    // Whether Node waits for it before it ends.
    hold(wanted: boolean): void;
}
interface Listener {
    message(answer: Answer): void;
    failed(error: unknown): void;
}

let scriptAddress: Promise<string> | undefined;

async function startInBrowser(listener: Listener): Promise<Thread> {
    scriptAddress ??= unpackText(workerScript).then((script) =>
        URL.createObjectURL(new Blob([script], { type: "text/javascript" })),
    );
    const worker = new Worker(await scriptAddress);
    worker.onmessage = (event: MessageEvent<Answer>) => listener.message(event.data);
    worker.onerror = (event) => listener.failed(event.message);
    return {
        post: (request) => worker.postMessage(request),
        end: () => worker.terminate(),
        hold: () => undefined,
    };
}

async function startInNode(listener: Listener): Promise<Thread> {
    const { Worker: NodeWorker } = await threads();
    const worker = new NodeWorker(await unpackText(workerScript), { eval: true });
    worker.on("message", (answer: Answer) => listener.message(answer));
    worker.on("error", (error) => listener.failed(error));
    return {
        post: (request) => worker.postMessage(request),
        end: () => void worker.terminate(),
        hold: (wanted) => (wanted ? worker.ref() : worker.unref()),
    };
}

interface Pending {
    owner: object | null;
    resolve(result: unknown): void;
    reject(error: unknown): void;
}

class WorkerHost implements Host {
    private readonly pending = new Map<number, Pending>();
    private thread: Thread | null = null;
    private lastId = 0;

    // Resolves once the Worker has said that it is there.
    static async start(): Promise<WorkerHost> {
        const host = new WorkerHost();
        const started = new Promise((resolve, reject) =>
            host.pending.set(0, { owner: null, resolve, reject }),
        );
        const start = typeof Worker === "function" ? startInBrowser : startInNode;
        host.thread = await start({
            message: (answer) => host.take(answer),
            failed: (error) => host.fail(errorOf(failureOf(error))),
        });
        await started;
        return host;
    }

    call<Method extends keyof Calls>(
        owner: object | null,
        method: Method,
        ...values: Parameters<Calls[Method]>
    ): Promise<Result<Method>> {
        return new Promise((resolve, reject) => {
            if (!this.thread) return reject(closedError());
            const id = ++this.lastId;
            this.thread.post({ id, method, values });
            this.pending.set(id, { owner, resolve: resolve as Pending["resolve"], reject });
            this.thread.hold(true);
        });
    }
    close(): void {
        this.fail(closedError());
    }

    private take({ id, result, failure }: Answer): void {
        const asked = this.pending.get(id);
        this.pending.delete(id);
        if (this.pending.size === 0) this.thread?.hold(false);
        if (failure) asked?.reject(errorOf(failure));
        else asked?.resolve(result);
    }
    private fail(error: VkmError): void {
        this.thread?.end();
        this.thread = null;
        for (const { reject } of this.pending.values()) reject(error);
        this.pending.clear();
    }
}

// A page's policy may forbid Workers made of its own script; then, as where there are none, the map is in this thread.
export async function startHost(worker: boolean): Promise<Host> {
    if (!worker) return new LocalHost();
    try {
        return await WorkerHost.start();
    } catch {
        return new LocalHost();
    }
}
