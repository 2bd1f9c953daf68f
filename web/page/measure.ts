// Measuring lengths and areas, point by point; points snap to the map's lines.

import type { MapView, Point } from "./map_view.ts";
import { say, sayArea, sayLength } from "./words.ts";

export type MeasureKind = "length" | "area";

export function lengthOf(points: Point[], closed: boolean): number {
    let length = 0;
    for (let i = closed ? 0 : 1; i < points.length; i++) {
        const [a, b] = [points.at(i - 1)!, points[i]!];
        length += Math.hypot(b.x - a.x, b.y - a.y);
    }
    return length;
}

export function areaOf(points: Point[]): number {
    let twice = 0;
    for (let i = 0; i < points.length; i++) {
        const [a, b] = [points.at(i - 1)!, points[i]!];
        // From the first point: products of whole coordinates would lose the centimetres.
        const [ax, ay, bx, by] = [
            a.x - points[0]!.x,
            a.y - points[0]!.y,
            b.x - points[0]!.x,
            b.y - points[0]!.y,
        ];
        twice += ax * by - bx * ay;
    }
    return Math.abs(twice) / 2;
}

export class Measuring {
    kind: MeasureKind | null = null;
    points: Point[] = [];
    private hovered: Point | null = null;
    private ended = false;

    constructor(
        private readonly view: MapView,
        private readonly changed: () => void,
    ) {}

    start(kind: MeasureKind | null): void {
        this.kind = kind;
        this.points = [];
        this.ended = false;
        this.update();
    }
    add(point: Point): void {
        if (this.ended) this.points = [];
        this.ended = false;
        this.points.push(point);
        this.update();
    }
    hover(point: Point | null): void {
        if (!this.kind || this.ended) return;
        this.hovered = point;
        this.view.redraw();
    }
    end(): void {
        this.ended = true;
        this.hovered = null;
        this.update();
    }

    result(): string {
        if (!this.kind || this.points.length < 2) return "";
        if (this.kind === "length") return sayLength(lengthOf(this.points, false));
        return `${sayArea(areaOf(this.points))}, ${say("perimeter")} ${sayLength(lengthOf(this.points, true))}`;
    }

    draw(context: CanvasRenderingContext2D): void {
        if (!this.kind) return;
        const points = this.hovered ? [...this.points, this.hovered] : this.points;
        const places = points.map((point) => this.view.toScreen(point));
        context.beginPath();
        for (const place of places) context.lineTo(place.x, place.y);
        if (this.kind === "area") {
            context.closePath();
            context.fillStyle = "rgb(160 40 110 / 0.15)";
            context.fill();
        }
        context.lineWidth = 2;
        context.strokeStyle = "rgb(160 40 110)";
        context.stroke();
        context.fillStyle = "white";
        for (const place of places.slice(0, this.points.length)) {
            context.beginPath();
            context.arc(place.x, place.y, 4, 0, 7);
            context.fill();
            context.stroke();
        }
    }
    private update(): void {
        this.view.redraw();
        this.changed();
    }
}
