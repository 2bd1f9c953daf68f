// Parcels as areas: the list, the choice of one, and what is wrong with the boundaries.

import type { Box, ParcelRings } from "../engine/types.ts";
import type { Client } from "./client.ts";
import { button, make } from "./dom.ts";
import { Errand } from "./errand.ts";
import type { MapView, Point } from "./map_view.ts";
import type { Marked, MarkedPlace, ParcelReport } from "./parcel_report.ts";
import { say, sayArea, sayNumber } from "./words.ts";

const mostListed = 300;

export class Parcels {
    private readonly errand: Errand<ParcelReport>;
    private chosen: ParcelRings | null = null;
    private chosenNumber = -1;

    constructor(
        private readonly view: MapView,
        start: () => Promise<Client>,
        private readonly changed: () => void,
    ) {
        this.errand = new Errand("searchingParcels", start, changed, true);
    }

    clear(): void {
        this.errand.clear();
        this.chosen = null;
        this.chosenNumber = -1;
    }

    // True when there was a parcel at the place.
    async chooseAt(place: Point): Promise<boolean> {
        const parcel = await this.errand.worker?.call("parcelAt", place.x, place.y);
        if (parcel === undefined) return false;
        await this.choose(parcel);
        return parcel >= 0;
    }

    private async choose(parcel: number, box?: Box): Promise<void> {
        this.chosenNumber = parcel;
        const { worker } = this.errand;
        this.chosen = parcel < 0 || !worker ? null : await worker.call("parcelRings", parcel);
        if (box) this.view.show(box, 0.3);
        this.view.redraw();
        this.changed();
    }

    draw(context: CanvasRenderingContext2D): void {
        if (this.chosen) {
            context.beginPath();
            for (const ring of this.chosen.rings) {
                for (let i = 0; i < ring.length; i += 2) {
                    const at = this.view.toScreen({ x: ring[i]!, y: ring[i + 1]! });
                    if (i === 0) context.moveTo(at.x, at.y);
                    else context.lineTo(at.x, at.y);
                }
                context.closePath();
            }
            context.fillStyle = "rgb(11 100 83 / 0.22)";
            context.fill("evenodd");
            context.strokeStyle = "rgb(11 100 83)";
            context.lineWidth = 2.5;
            context.stroke();
        }
        if (!this.errand.answer) return;
        context.strokeStyle = "rgb(196 60 20)";
        context.lineWidth = 2;
        const { marks } = this.errand.answer;
        for (let i = 0; i < marks.length; i += 2) this.drawMark(context, { x: marks[i]!, y: marks[i + 1]! });
    }
    private drawMark(context: CanvasRenderingContext2D, place: Point): void {
        const at = this.view.toScreen(place);
        if (at.x < -9 || at.y < -9 || at.x > this.view.width + 9 || at.y > this.view.height + 9) return;
        context.beginPath();
        context.arc(at.x, at.y, 7, 0, 7);
        context.stroke();
    }

    async panel(): Promise<Node[]> {
        const waiting = await this.errand.waiting((client) => client.call("parcels", mostListed));
        if (waiting) return waiting;
        this.view.redraw();
        const list = this.errand.answer!;
        if (list.tooManyCrossings) return [make("p", {}, say("tooManyCrossings"))];
        if (list.count === 0) return [make("p", {}, say("noParcels")), ...this.problems(list)];
        const nodes: Node[] = [make("p", { class: "quiet" }, say("parcelsHint"))];
        if (this.chosen) {
            const name = this.chosen.number || say("withoutNumber");
            nodes.push(
                make(
                    "div",
                    { class: "row apart" },
                    make("strong", { class: "chosen-title" }, say("parcelNumber", { number: name })),
                    make("strong", {}, sayArea(this.chosen.size)),
                ),
            );
        }
        nodes.push(make("p", {}, say("parcelCount", { count: list.count, area: sayArea(list.area) })));
        nodes.push(...this.problems(list), this.listOfParcels(list));
        return nodes;
    }

    private listOfParcels(list: ParcelReport): Node {
        const rows = list.rows.map((parcel) => {
            const row = button("", () => void this.choose(parcel.index, parcel.box));
            if (parcel.index === this.chosenNumber) row.setAttribute("aria-current", "true");
            row.append(
                make("span", {}, parcel.number || say("withoutNumber")),
                make("span", { class: "number" }, sayArea(parcel.size)),
            );
            return make("li", {}, row);
        });
        const left = list.count - rows.length;
        if (left > 0) rows.push(make("li", { class: "quiet" }, say("moreFound", { count: left })));
        return make("ul", { class: "rows list" }, ...rows);
    }

    private problems(list: ParcelReport): Node[] {
        const gap = ({ gap: metres }: MarkedPlace): string =>
            metres === null ? "" : `${sayNumber(metres, 2)} m`;
        return [
            this.places(
                say("freeEnds", { count: list.freeEnds.count }),
                list.freeEnds,
                (end) => `${say("freeEnd")} ${gap(end)}`,
            ),
            this.places(say("crossings", { count: list.crossings.count }), list.crossings, () =>
                say("crossing"),
            ),
            this.places(
                say("numbersOutside", { count: list.outside.count }),
                list.outside,
                ({ name }) => name,
            ),
            this.places(
                say("severalNumbers", { count: list.several.count }),
                list.several,
                ({ name }) => name,
            ),
        ].filter((node): node is HTMLDetailsElement => node !== null);
    }
    // A list that opens, each row of which leads to a place.
    private places(
        title: string,
        marked: Marked,
        name: (place: MarkedPlace) => string,
    ): HTMLDetailsElement | null {
        if (marked.count === 0) return null;
        const rows = marked.places.map((place) =>
            make(
                "li",
                {},
                button(name(place), () => this.view.glide(place, Math.max(this.view.scale, 8))),
            ),
        );
        return make(
            "details",
            { class: "list" },
            make("summary", {}, title),
            make("ul", { class: "rows" }, ...rows),
        );
    }
}
