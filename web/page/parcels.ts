// Parcels as areas: the list, the choice of one, and what is wrong with the boundaries.

import type { Box, ParcelList, ParcelRings } from "../engine/types.ts";
import type { Client } from "./client.ts";
import { button, make } from "./dom.ts";
import type { MapView, Point } from "./map_view.ts";
import { say, sayArea, sayNumber } from "./words.ts";

const mostListed = 500;

export class Parcels {
    private list: ParcelList | null = null; // once it was asked for
    private chosen: ParcelRings | null = null;
    private chosenNumber = -1;

    constructor(
        private readonly client: Client,
        private readonly view: MapView,
        private readonly changed: () => void,
    ) {}

    clear(): void {
        this.list = null;
        this.chosen = null;
        this.chosenNumber = -1;
    }

    // True when there was a parcel at the place.
    async chooseAt(place: Point): Promise<boolean> {
        const parcel = await this.client.call("parcelAt", place.x, place.y);
        await this.choose(parcel, false);
        return parcel >= 0;
    }

    async choose(parcel: number, show: boolean): Promise<void> {
        this.chosenNumber = parcel;
        this.chosen = parcel < 0 ? null : await this.client.call("parcelRings", parcel);
        if (show && parcel >= 0) this.view.show(this.list!.parcels[parcel]!.box, 0.3);
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
        if (!this.list) return;
        context.strokeStyle = "rgb(196 60 20)";
        context.lineWidth = 2;
        for (const end of this.list.freeEnds) this.drawMark(context, end);
        for (let i = 0; i < this.list.crossings.length; i += 2) {
            this.drawMark(context, { x: this.list.crossings[i]!, y: this.list.crossings[i + 1]! });
        }
    }
    private drawMark(context: CanvasRenderingContext2D, place: Point): void {
        const at = this.view.toScreen(place);
        if (at.x < -9 || at.y < -9 || at.x > this.view.width + 9 || at.y > this.view.height + 9) return;
        context.beginPath();
        context.arc(at.x, at.y, 7, 0, 7);
        context.stroke();
    }

    async panel(): Promise<Node[]> {
        this.list ??= await this.client.call("parcels");
        this.view.redraw();
        const { list } = this;
        if (list.tooManyCrossings) return [make("p", {}, say("tooManyCrossings"))];
        if (list.parcels.length === 0) return [make("p", {}, say("noParcels")), ...this.problems(list)];
        const area = list.parcels.reduce((sum, parcel) => sum + parcel.size, 0);
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
        nodes.push(make("p", {}, say("parcelCount", { count: list.parcels.length, area: sayArea(area) })));
        nodes.push(...this.problems(list), this.listOfParcels(list));
        return nodes;
    }

    private listOfParcels(list: ParcelList): Node {
        const order = list.parcels.map((_, i) => i);
        const collator = new Intl.Collator(undefined, { numeric: true });
        order.sort((a, b) => collator.compare(list.parcels[a]!.number, list.parcels[b]!.number));
        const rows = order.slice(0, mostListed).map((i) => {
            const parcel = list.parcels[i]!;
            const row = button("", () => void this.choose(i, true));
            if (i === this.chosenNumber) row.setAttribute("aria-current", "true");
            row.append(
                make("span", {}, parcel.number || say("withoutNumber")),
                make("span", { class: "number" }, sayArea(parcel.size)),
            );
            return make("li", {}, row);
        });
        if (order.length > mostListed) {
            rows.push(make("li", { class: "quiet" }, say("moreFound", { count: order.length - mostListed })));
        }
        return make("ul", { class: "rows list" }, ...rows);
    }

    private problems(list: ParcelList): Node[] {
        const crossings: Point[] = [];
        for (let i = 0; i < list.crossings.length; i += 2)
            crossings.push({ x: list.crossings[i]!, y: list.crossings[i + 1]! });
        const several = list.parcels.filter((parcel) => parcel.texts > 1);
        const gap = (end: { gap: number | null }): string =>
            end.gap === null ? "" : `${sayNumber(end.gap, 2)} m`;
        return [
            this.places(
                say("freeEnds", { count: list.freeEnds.length }),
                list.freeEnds,
                (end) => `${say("freeEnd")} ${gap(end)}`,
            ),
            this.places(say("crossings", { count: crossings.length }), crossings, () => say("crossing")),
            this.places(say("numbersOutside", { count: list.outside.length }), list.outside, (n) => n.number),
            this.places(
                say("severalNumbers", { count: several.length }),
                several.map((parcel) => ({ ...middle(parcel.box), number: parcel.number })),
                (parcel) => parcel.number,
            ),
        ].filter((node): node is HTMLDetailsElement => node !== null);
    }
    // A list that opens, each row of which leads to a place.
    private places<P extends Point>(
        title: string,
        places: P[],
        name: (place: P) => string,
    ): HTMLDetailsElement | null {
        if (places.length === 0) return null;
        const rows = places.slice(0, mostListed).map((place) =>
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

function middle(box: Box): Point {
    return { x: (box[0] + box[2]) / 2, y: (box[1] + box[3]) / 2 };
}
