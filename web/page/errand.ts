// Work on a whole map that may take long, such as its check. It has a Worker of its own, so that the map on the screen
// goes on meanwhile, and a stop ends it at once, whatever it is doing.

import type { Client } from "./client.ts";
import { button, make } from "./dom.ts";
import { reasonOf } from "./status.ts";
import { say, type Words } from "./words.ts";

const patience = 300; // ms until the panel says that there is something to wait for

export class Errand<Answer> {
    answer: Answer | null = null; // once it is there
    private state: "idle" | "working" | "done" | "stopped" | "failed" = "idle";
    private failure = "";
    private client: Client | null = null;
    private work = Promise.resolve();
    private bar = make("progress");
    private turn = 0; // what was begun later ends it

    // start gives a Worker, changed shows the panel anew. Where it keeps its Worker, more can be asked of that once the
    // answer is there.
    constructor(
        private readonly words: keyof Words,
        private readonly start: () => Promise<Client>,
        private readonly changed: () => void,
        private readonly keepsWorker = false,
    ) {}

    get worker(): Client | null {
        return this.state === "done" ? this.client : null;
    }

    begin(ask: (client: Client) => Promise<Answer>): void {
        this.clear();
        this.state = "working";
        this.bar = make("progress", { max: "1" });
        this.work = this.run(this.turn, ask);
    }
    // Ends it and forgets the answer.
    clear(): void {
        this.turn++;
        this.state = "idle";
        this.answer = null;
        this.endWorker();
    }

    // What stands in the place of the answer while there is none; null once it is there. Begins where nothing has.
    async waiting(ask: (client: Client) => Promise<Answer>): Promise<Node[] | null> {
        if (this.state === "idle") this.begin(ask);
        await Promise.race([this.work, new Promise((resolve) => setTimeout(resolve, patience))]);
        if (this.state === "done") return null;
        if (this.state === "failed") return [make("p", {}, this.failure)];
        if (this.state === "stopped")
            return [
                make("p", {}, say("workStopped")),
                button(say("again"), () => {
                    this.begin(ask);
                    this.changed();
                }),
            ];
        this.bar.setAttribute("aria-label", say(this.words));
        return [
            make("p", { role: "status" }, say(this.words)),
            make(
                "div",
                { class: "row working" },
                this.bar,
                button(say("stop"), () => this.stop()),
            ),
        ];
    }

    private stop(): void {
        this.clear();
        this.state = "stopped";
        this.changed();
    }

    private async run(turn: number, ask: (client: Client) => Promise<Answer>): Promise<void> {
        try {
            const client = await this.start();
            if (turn !== this.turn) return client.end();
            this.client = client;
            client.onEvent = (event) => event.event === "progress" && this.show(event.done / event.total);
            const answer = await ask(client);
            if (turn !== this.turn) return;
            this.answer = answer;
            this.state = "done";
        } catch (error) {
            if (turn !== this.turn) return;
            this.failure = reasonOf(error);
            this.state = "failed";
        }
        if (!this.keepsWorker || this.state === "failed") this.endWorker();
        this.changed();
    }
    // What comes after reading has no end that could be told.
    private show(part: number): void {
        if (part < 1) this.bar.value = part;
        else this.bar.removeAttribute("value");
    }
    private endWorker(): void {
        this.client?.end();
        this.client = null;
    }
}
