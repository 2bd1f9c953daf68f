// What is wrong with the file, and what changed since another state of it: lists that lead to their places.

import type { Encoding, FindingsInLanguages } from "../engine/engine.ts";
import type { Change, ChangeSide, Comparison } from "../engine/types.ts";
import type { Client } from "./client.ts";
import { button, make } from "./dom.ts";
import { Errand } from "./errand.ts";
import type { MapFile } from "./files.ts";
import type { MapView, Point } from "./map_view.ts";
import { language, say, type Words } from "./words.ts";

const mostListed = 300;
const colours = {
    added: "rgb(20 130 60)",
    removed: "rgb(200 40 40)",
    changed: "rgb(210 120 0)",
    moved: "rgb(60 80 200)",
};

// One list at a time, with what is marked on the map.
abstract class Review {
    protected marked: ChangeSide[] = [];
    private colour = "rgb(200 40 40)";

    constructor(protected readonly view: MapView) {}

    clear(): void {
        this.marked = [];
    }

    draw(context: CanvasRenderingContext2D): void {
        for (const side of this.marked) this.drawSide(context, side, this.colour, 4);
    }

    protected drawSide(
        context: CanvasRenderingContext2D,
        { outline }: ChangeSide,
        colour: string,
        width: number,
    ): void {
        const places = points(outline).map((point) => this.view.toScreen(point));
        context.strokeStyle = colour;
        context.lineWidth = width;
        context.beginPath();
        for (const place of places) context.lineTo(place.x, place.y);
        if (places.length === 1) context.arc(places[0]!.x, places[0]!.y, 13, 0, 7);
        context.stroke();
    }

    protected mark(sides: ChangeSide[], colour: string): void {
        this.marked = sides;
        this.colour = colour;
        const all = sides.flatMap((side) => points(side.outline));
        if (all.length === 0) return;
        const xs = all.map((point) => point.x);
        const ys = all.map((point) => point.y);
        const box = [Math.min(...xs), Math.min(...ys), Math.max(...xs), Math.max(...ys)] as const;
        const center = { x: (box[0] + box[2]) / 2, y: (box[1] + box[3]) / 2 };
        this.view.glide(center, Math.min(this.view.scaleFor([...box], 0.3), Math.max(this.view.scale, 8)));
        this.view.redraw();
    }
}

function points(outline: number[]): Point[] {
    return Array.from({ length: outline.length / 2 }, (_, i) => ({
        x: outline[2 * i]!,
        y: outline[2 * i + 1]!,
    }));
}

export class Findings extends Review {
    private readonly errand: Errand<FindingsInLanguages[]>;

    constructor(view: MapView, start: () => Promise<Client>, changed: () => void) {
        super(view);
        this.errand = new Errand("checking", start, changed);
    }
    override clear(): void {
        super.clear();
        this.errand.clear();
    }

    async panel(sheets: string[]): Promise<Node[]> {
        const waiting = await this.errand.waiting(async (client) => {
            const reports: FindingsInLanguages[] = [];
            for (const sheet of sheets.keys()) reports.push(await client.call("findings", sheet, mostListed));
            return reports;
        });
        if (waiting) return waiting;
        const reports = this.errand.answer!;
        const total = (name: "error" | "warning" | "note"): number =>
            reports.reduce((sum, report) => sum + report[name], 0);
        const count = total("error") + total("warning") + total("note");
        const counts = {
            errors: say("errorCount", { count: total("error") }),
            warnings: say("warningCount", { count: total("warning") }),
            notes: say("noteCount", { count: total("note") }),
        };
        const summary = make("p", {}, count === 0 ? say("nothingWrong") : say("findingCounts", counts));
        const rows = reports.flatMap((report, i) =>
            report.findings.map((finding) => this.row(finding, sheets.length > 1 ? `${sheets[i]} ` : "")),
        );
        if (count > rows.length)
            rows.push(make("li", { class: "quiet" }, say("moreFound", { count: count - rows.length })));
        return [
            make("p", { class: "quiet" }, say("checkHint")),
            summary,
            make("ul", { class: "rows list" }, ...rows),
        ];
    }

    private row(finding: FindingsInLanguages["findings"][number], sheet: string): HTMLElement {
        const { x, y, line, column, messages, severity } = finding;
        const place = `${sheet}${line}:${column}`;
        const content = [
            make("span", {
                class: `severity ${severity}`,
                title: say(severity),
                "aria-label": say(severity),
            }),
            make("span", { class: "grow" }, messages[language()]),
            make("span", { class: "number" }, place),
        ];
        if (x === undefined || y === undefined) return make("li", { class: "finding" }, ...content);
        const side = { fileLine: line, code: "", words: "", outline: [x, y] };
        const row = button("", () => this.mark([side], "rgb(200 40 40)"), { class: "finding" });
        row.append(...content);
        return make("li", {}, row);
    }
}

export class Changes extends Review {
    private readonly errand: Errand<Comparison>;
    private old: { file: MapFile; encoding: Encoding } | null = null;

    constructor(view: MapView, start: () => Promise<Client>, changed: () => void) {
        super(view);
        this.errand = new Errand("comparing", start, changed);
    }
    override clear(): void {
        super.clear();
        this.errand.clear();
        this.old = null;
    }

    // All that the list has in its colours, what was chosen of it more boldly.
    override draw(context: CanvasRenderingContext2D): void {
        for (const { kind, old, now } of this.errand.answer?.changes ?? []) {
            for (const side of [old, now]) if (side) this.drawSide(context, side, colours[kind], 2);
        }
        super.draw(context);
    }

    compareWith(file: MapFile, encoding: Encoding): void {
        this.clear();
        this.old = { file, encoding };
    }

    async panel(): Promise<Node[]> {
        if (!this.old) return [];
        const { file, encoding } = this.old;
        const waiting = await this.errand.waiting((client) =>
            client.call("compare", file.name, file.blob, encoding, mostListed),
        );
        if (waiting) return waiting;
        const { added, removed, changed, moved, changes } = this.errand.answer!;
        const count = added + removed + changed + moved;
        const rows = changes.map((change) => {
            const sides = [change.old, change.now].filter((side): side is ChangeSide => side !== undefined);
            const row = button("", () => this.mark(sides, colours[change.kind]));
            row.append(
                make("span", {}, describe(change)),
                make("span", { class: "number" }, say("layer") + ` ${change.layer}`),
            );
            row.style.borderLeft = `4px solid ${colours[change.kind]}`;
            return make("li", {}, row);
        });
        if (count > rows.length)
            rows.push(make("li", { class: "quiet" }, say("moreFound", { count: count - rows.length })));
        return [
            make("p", { class: "quiet" }, say("comparedWith", { name: file.name })),
            make(
                "p",
                {},
                count === 0 ? say("noChanges") : say("changeCounts", { added, removed, changed, moved }),
            ),
            make("ul", { class: "rows list" }, ...rows),
        ];
    }
}

function describe({ kind, thing, old, now }: Change): string {
    const words = [old?.words, now?.words].filter((word) => word);
    const codes = [old?.code, now?.code].filter((code) => code);
    const values = words.length > 0 ? words : codes;
    const what =
        values.length === 2 && values[0] !== values[1] ? `${values[0]} → ${values[1]}` : (values[0] ?? "");
    return `${say(kind as keyof Words)}: ${say(thing)} ${what}`;
}
