// What people point at: the elements under a click, the points that measuring snaps to, and texts that were found.

import type { Hit, Picked } from "../engine/types.ts";
import type { Client } from "./client.ts";
import type { MapView, Point } from "./map_view.ts";
import { elementPanel } from "./panels.ts";
import { make } from "./dom.ts";
import * as share from "./share.ts";
import { say } from "./words.ts";

const pickReach = 8; // pixels
const foundScale = 500; // 1 : so many, at least, for a text that was found

export class Pointing {
    private picked: Picked[] = []; // nearest first
    private chosen = 0;

    constructor(
        private readonly client: Client,
        private readonly view: MapView,
    ) {}

    clear(): void {
        this.picked = [];
        this.view.redraw();
    }

    // True when there is something at the place.
    async pick(ground: Point): Promise<boolean> {
        this.picked = await this.client.call("pick", ground.x, ground.y, pickReach / this.view.scale);
        this.chosen = 0;
        this.view.redraw();
        return this.picked.length > 0;
    }

    // The nearest point of a line, or the place itself.
    async snap(place: Point): Promise<Point> {
        const reach = (1.5 * pickReach) / this.view.scale;
        const near = await this.client.call("pick", place.x, place.y, reach);
        let best = { point: place, distance: reach };
        for (const { kind, outline } of near) {
            if (kind === "text") continue;
            for (let i = 0; i < outline.length; i += 2) {
                const point = { x: outline[i]!, y: outline[i + 1]! };
                const distance = Math.hypot(point.x - place.x, point.y - place.y);
                if (distance < best.distance) best = { point, distance };
            }
        }
        return best.point;
    }

    async goTo(hit: Hit): Promise<void> {
        const scale = share.pixelsPerMetreAt(foundScale);
        this.view.glide({ x: hit.x, y: hit.y }, Math.max(this.view.scale, scale));
        const picked = await this.client.call("pick", hit.x, hit.y, 6 / scale);
        this.picked = picked.filter((one) => one.kind === "text" && one.text === hit.text).slice(0, 1);
        this.chosen = 0;
        this.view.redraw();
    }

    async panel(refresh: () => void): Promise<Node[]> {
        const picked = this.picked[this.chosen];
        if (!picked) return [make("p", {}, say("nothingHere"))];
        const inspection = await this.client.call("inspect", picked);
        return elementPanel(picked, inspection, this.picked.length - 1, () => {
            this.chosen = (this.chosen + 1) % this.picked.length;
            this.view.redraw();
            refresh();
        });
    }

    draw(context: CanvasRenderingContext2D): void {
        const picked = this.picked[this.chosen];
        if (!picked) return;
        context.beginPath();
        for (let i = 0; i < picked.outline.length; i += 2) {
            const at = this.view.toScreen({ x: picked.outline[i]!, y: picked.outline[i + 1]! });
            if (picked.kind === "symbol") context.arc(at.x, at.y, 12, 0, 7);
            else context.lineTo(at.x, at.y);
        }
        context.lineJoin = "round";
        context.strokeStyle = "rgb(255 196 0 / 0.75)";
        context.lineWidth = 6;
        context.stroke();
        context.strokeStyle = "rgb(11 100 83)";
        context.lineWidth = 2;
        context.stroke();
    }
}
