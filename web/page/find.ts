// The field that finds texts: hits come while one types, Enter goes to the chosen one.

import type { Hit } from "../engine/types.ts";
import { make } from "./dom.ts";
import { layerTitle } from "./panels.ts";
import { say } from "./words.ts";

const mostHits = 40;

export class FindField {
    private hits: Hit[] = [];
    private chosen = -1;
    private lastAsked = 0;
    private listedText = ""; // that the hits are for

    constructor(
        private readonly input: HTMLInputElement,
        private readonly list: HTMLElement,
        private readonly find: (text: string, most: number) => Promise<{ count: number; hits: Hit[] }>,
        private readonly go: (hit: Hit) => void,
    ) {
        input.addEventListener("input", () => void this.ask());
        input.addEventListener("focus", () => void this.ask());
        input.addEventListener("blur", () => setTimeout(() => this.close(), 150));
        input.addEventListener("keydown", (event) => this.key(event));
    }

    focus(): void {
        this.input.focus();
        this.input.select();
    }
    clear(): void {
        this.input.value = "";
        this.close();
    }

    private async ask(): Promise<void> {
        const text = this.input.value.trim();
        const asked = ++this.lastAsked;
        if (text === "") return this.close();
        const found = await this.find(text, mostHits);
        if (asked !== this.lastAsked) return;
        this.listedText = text;
        this.hits = found.hits;
        this.chosen = found.hits.length > 0 ? 0 : -1;
        const rows = found.hits.map((hit, i) => {
            const row = make(
                "li",
                { role: "option", id: `find-hit-${i}` },
                make("span", {}, hit.text),
                make("span", { class: "number" }, layerTitle({ number: hit.layer, name: hit.layerName })),
            );
            row.addEventListener("pointerdown", (event) => {
                event.preventDefault();
                this.take(i);
            });
            return row;
        });
        const note =
            found.count === 0
                ? say("nothingFound")
                : found.count > rows.length
                  ? say("moreFound", { count: found.count - rows.length })
                  : "";
        if (note)
            rows.push(
                make("li", { class: "quiet note-line", role: "option", "aria-disabled": "true" }, note),
            );
        this.list.replaceChildren(...rows);
        this.list.hidden = false;
        this.input.setAttribute("aria-expanded", "true");
        this.mark();
    }

    private key(event: KeyboardEvent): void {
        const moves: Record<string, number> = { ArrowDown: 1, ArrowUp: -1 };
        const move = moves[event.key];
        if (move !== undefined && this.hits.length > 0) {
            this.chosen = (this.chosen + move + this.hits.length) % this.hits.length;
            this.mark();
        } else if (event.key === "Enter") {
            void this.enter();
        } else if (event.key === "Escape") {
            this.close();
        } else {
            return;
        }
        event.preventDefault();
    }
    // Those who type faster than texts are found mean what they have typed.
    private async enter(): Promise<void> {
        if (this.input.value.trim() !== this.listedText) await this.ask();
        this.take(this.chosen);
    }
    private mark(): void {
        for (const [i, row] of [...this.list.children].entries()) {
            if (i < this.hits.length) row.setAttribute("aria-selected", String(i === this.chosen));
            if (i === this.chosen) row.scrollIntoView({ block: "nearest" });
        }
        if (this.chosen >= 0) this.input.setAttribute("aria-activedescendant", `find-hit-${this.chosen}`);
        else this.input.removeAttribute("aria-activedescendant");
    }
    private take(i: number): void {
        const hit = this.hits[i];
        if (hit) this.go(hit);
        this.close();
    }
    private close(): void {
        this.lastAsked++;
        this.listedText = "";
        this.list.hidden = true;
        this.input.setAttribute("aria-expanded", "false");
        this.input.removeAttribute("aria-activedescendant");
    }
}
