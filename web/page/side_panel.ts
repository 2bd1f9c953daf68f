// The panel at the side, which shows one thing at a time.

import { byId } from "./dom.ts";
import { say } from "./words.ts";

export type PanelName = "layers" | "legend" | "parcels" | "check" | "tools" | "element" | "changes";
export type PanelContents = Record<PanelName, () => Node[] | Promise<Node[]>>;

export class SidePanel {
    shown: PanelName | null = null;
    private lastFill = 0;

    constructor(
        private readonly contents: PanelContents,
        private readonly changed: (before: PanelName | null) => void,
    ) {
        for (const opener of openers()) {
            const name = opener.dataset["panel"] as PanelName;
            opener.addEventListener("click", () => this.show(this.shown === name ? null : name));
        }
        byId("panel-close").addEventListener("click", () => this.close());
        byId("panel").addEventListener("keydown", (event) => event.key === "Escape" && this.close());
    }

    show(name: PanelName | null): void {
        const before = this.shown;
        this.shown = name;
        byId("panel").hidden = name === null;
        for (const opener of openers()) {
            opener.setAttribute("aria-expanded", String(opener.dataset["panel"] === name));
        }
        this.changed(before);
        if (name) void this.fill(name);
    }
    // Builds the content anew where it is shown.
    refresh(name: PanelName): void {
        if (this.shown === name) void this.fill(name);
    }
    // Gives the focus back to what opened the panel.
    close(): void {
        const opener = openers().find((one) => one.dataset["panel"] === this.shown);
        this.show(null);
        (opener ?? byId("map")).focus();
    }

    private async fill(name: PanelName): Promise<void> {
        const body = byId("panel-body");
        byId("panel-title").textContent = say(name);
        if (body.dataset["of"] !== name) body.replaceChildren();
        body.dataset["of"] = name;
        const turn = ++this.lastFill;
        const nodes = await this.contents[name]();
        if (this.shown !== name || turn !== this.lastFill) return;
        const focused = [...body.querySelectorAll("button, select, input")].indexOf(document.activeElement!);
        body.replaceChildren(...nodes);
        // What is built anew under the fingers of somebody at the keyboard keeps the focus at its place.
        if (focused < 0) return;
        const again = body.querySelectorAll<HTMLElement>("button, select, input");
        again[Math.min(focused, again.length - 1)]?.focus();
    }
}

function openers(): HTMLElement[] {
    return [...document.querySelectorAll<HTMLElement>("button[data-panel]")];
}
