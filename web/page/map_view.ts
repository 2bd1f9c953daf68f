// The map on the screen: where it looks, its tiles, and what lies over them. Positions on the screen are CSS pixels.

import type { Picture } from "./worker.ts";
import type { Box, View } from "../engine/types.ts";

export interface Point {
    x: number;
    y: number;
}

const tileSide = 256; // CSS pixels
const mostInFlight = 3;
const mostTiles = 400;
const settleTime = 140; // ms without a change of scale until its tiles are asked for
const largestScale = 400; // CSS pixels to a metre
const smallestScale = 1e-5;

interface Tile {
    column: number;
    row: number;
    bitmap: ImageBitmap;
}

// The tiles of one scale.
interface TileSet {
    scale: number; // device pixels to a metre
    side: number; // device pixels
    tiles: Map<string, Tile>;
}

export type DrawTile = (view: View) => Promise<ImageBitmap>;
export type DrawOverlay = (context: CanvasRenderingContext2D) => void;

export class MapView {
    center: Point = { x: 0, y: 0 };
    scale = 1; // CSS pixels to a metre
    onChange: () => void = () => undefined;
    onIdle: () => void = () => undefined;
    drawOverlay: DrawOverlay = () => undefined;

    private readonly context: CanvasRenderingContext2D;
    private readonly overlay: CanvasRenderingContext2D;
    private current: TileSet | null = null;
    private former: TileSet | null = null;
    private background: Picture | null = null;
    private version = 0;
    private inFlight = 0;
    private readonly asked = new Set<string>();
    private scaleChanged = 0;
    private frameWanted = false;
    private animation = 0;
    private ready = false;

    constructor(
        private readonly canvas: HTMLCanvasElement,
        overlayCanvas: HTMLCanvasElement,
        private readonly drawTile: DrawTile,
    ) {
        this.context = canvas.getContext("2d", { alpha: false })!;
        this.overlay = overlayCanvas.getContext("2d")!;
        new ResizeObserver(() => this.resize()).observe(canvas);
        this.resize();
    }

    get width(): number {
        return this.canvas.clientWidth;
    }
    get height(): number {
        return this.canvas.clientHeight;
    }
    get ratio(): number {
        return window.devicePixelRatio || 1;
    }

    // --- Where the map looks ---

    toScreen(ground: Point): Point {
        return {
            x: (ground.x - this.center.x) * this.scale + this.width / 2,
            y: (this.center.y - ground.y) * this.scale + this.height / 2,
        };
    }
    toGround(screen: Point): Point {
        return {
            x: this.center.x + (screen.x - this.width / 2) / this.scale,
            y: this.center.y - (screen.y - this.height / 2) / this.scale,
        };
    }
    box(): Box {
        const upperLeft = this.toGround({ x: 0, y: 0 });
        const lowerRight = this.toGround({ x: this.width, y: this.height });
        return [upperLeft.x, lowerRight.y, lowerRight.x, upperLeft.y];
    }

    look(center: Point, scale: number): void {
        this.stopAnimation();
        this.moveTo(center, scale);
    }
    pan(dx: number, dy: number): void {
        this.look({ x: this.center.x - dx / this.scale, y: this.center.y + dy / this.scale }, this.scale);
    }
    // Zooms so that the place under a point of the screen stays there.
    zoomAt(screen: Point, factor: number): void {
        const before = this.toGround(screen);
        const scale = clampScale(this.scale * factor);
        this.look(
            {
                x: before.x - (screen.x - this.width / 2) / scale,
                y: before.y + (screen.y - this.height / 2) / scale,
            },
            scale,
        );
    }
    // Moves there in a fifth of a second, at once where people asked for less motion.
    glide(center: Point, scale: number): void {
        this.stopAnimation();
        const from = { ...this.center, scale: this.scale };
        const to = clampScale(scale);
        if (matchMedia("(prefers-reduced-motion: reduce)").matches) return this.moveTo(center, to);
        const began = performance.now();
        const step = (now: number): void => {
            const share = Math.min(1, Math.max(0, (now - began) / 200));
            const eased = 1 - (1 - share) ** 3;
            const s = from.scale * (to / from.scale) ** eased;
            // Straight on the screen: the centre moves as the scale does.
            const part = to === from.scale ? eased : (1 / from.scale - 1 / s) / (1 / from.scale - 1 / to);
            this.moveTo(
                { x: from.x + (center.x - from.x) * part, y: from.y + (center.y - from.y) * part },
                share === 1 ? to : s,
            );
            this.animation = share < 1 ? requestAnimationFrame(step) : 0;
        };
        this.animation = requestAnimationFrame(step);
    }
    show(box: Box, margin = 0.04): void {
        this.glide({ x: (box[0] + box[2]) / 2, y: (box[1] + box[3]) / 2 }, this.scaleFor(box, margin));
    }
    scaleFor(box: Box, margin = 0.04): number {
        const scale = Math.min(
            this.width / Math.max(box[2] - box[0], 1),
            this.height / Math.max(box[3] - box[1], 1),
        );
        return clampScale(scale * (1 - 2 * margin));
    }

    private moveTo(center: Point, scale: number): void {
        if (!Number.isFinite(center.x) || !Number.isFinite(center.y)) return;
        const clamped = clampScale(scale);
        if (clamped !== this.scale) this.scaleChanged = performance.now();
        this.center = center;
        this.scale = clamped;
        this.redraw();
        this.onChange();
    }
    private stopAnimation(): void {
        cancelAnimationFrame(this.animation);
        this.animation = 0;
    }

    // --- What is shown ---

    // A picture that is shown until there are tiles. final: there is no need for tiles while the view stays as it is.
    showPicture(picture: Picture | null): void {
        this.background?.bitmap.close();
        this.background = picture;
        this.redraw();
    }
    // From now on tiles are wanted, or no longer.
    setReady(ready: boolean): void {
        this.ready = ready;
        this.forgetTiles();
    }
    // The map has changed: what is shown stays until its tiles are drawn anew.
    forgetTiles(): void {
        this.version++;
        this.asked.clear();
        dropTiles(this.former);
        this.former = this.current;
        this.current = null;
        this.redraw();
    }
    redraw(): void {
        if (this.frameWanted) return;
        this.frameWanted = true;
        requestAnimationFrame(() => {
            this.frameWanted = false;
            this.frame();
        });
    }

    private resize(): void {
        for (const canvas of [this.canvas, this.overlay.canvas]) {
            canvas.width = Math.max(1, Math.round(this.canvas.clientWidth * this.ratio));
            canvas.height = Math.max(1, Math.round(this.canvas.clientHeight * this.ratio));
        }
        this.redraw();
        this.onChange();
    }

    private frame(): void {
        const { context, ratio } = this;
        context.setTransform(1, 0, 0, 1, 0, 0);
        context.fillStyle = "white";
        context.fillRect(0, 0, context.canvas.width, context.canvas.height);
        context.imageSmoothingQuality = "low";
        if (this.background) this.drawPicture(this.background);
        const complete = this.askForTiles();
        if (this.former && !complete) this.drawSet(this.former);
        if (this.current) this.drawSet(this.current);
        if (complete && this.former) {
            dropTiles(this.former);
            this.former = null;
        }
        this.overlay.setTransform(1, 0, 0, 1, 0, 0);
        this.overlay.clearRect(0, 0, this.overlay.canvas.width, this.overlay.canvas.height);
        this.overlay.setTransform(ratio, 0, 0, ratio, 0, 0);
        this.drawOverlay(this.overlay);
        if (complete && this.ready) this.onIdle();
    }

    private drawPicture({ bitmap, view }: Picture): void {
        const at = this.toScreen({ x: view.x, y: view.y });
        const zoom = (this.scale * this.ratio) / view.scale;
        const [x, y] = [Math.round(at.x * this.ratio), Math.round(at.y * this.ratio)];
        this.context.drawImage(bitmap, x, y, view.width * zoom, view.height * zoom);
    }

    private drawSet(set: TileSet): void {
        const { x, y, zoom } = this.placeOf(set);
        const side = set.side * zoom;
        for (const tile of set.tiles.values()) {
            const left = x + tile.column * side;
            const top = y - (tile.row + 1) * side;
            if (left > this.canvas.width || top > this.canvas.height || left + side < 0 || top + side < 0)
                continue;
            this.context.drawImage(tile.bitmap, left, top, side, side);
        }
    }
    // Device pixels of the ground's origin, whole ones where the scale is that of the tiles, so that they are crisp.
    private placeOf(set: TileSet): { x: number; y: number; zoom: number } {
        const scale = this.scale * this.ratio;
        const x = this.canvas.width / 2 - this.center.x * scale;
        const y = this.canvas.height / 2 + this.center.y * scale;
        const zoom = scale / set.scale;
        return zoom === 1 ? { x: Math.round(x), y: Math.round(y), zoom } : { x, y, zoom };
    }

    // --- Tiles ---

    // True when every tile of the view is there.
    private askForTiles(): boolean {
        if (!this.ready) return false;
        const scale = this.scale * this.ratio;
        const wait = this.scaleChanged + settleTime - performance.now();
        if (this.animation !== 0 || (this.current && this.current.scale !== scale && wait > 0)) {
            setTimeout(() => this.redraw(), Math.max(wait, 20));
            return false;
        }
        if (this.current?.scale !== scale) {
            dropTiles(this.former);
            this.former = this.current;
            this.current = { scale, side: Math.round(tileSide * this.ratio), tiles: new Map() };
            this.asked.clear();
            this.version++;
        }
        const missing = this.missingTiles(this.current!);
        for (const { column, row, key } of missing) {
            if (this.inFlight >= mostInFlight) break;
            if (!this.asked.has(key)) void this.askFor(this.current!, column, row, key);
        }
        return missing.length === 0;
    }

    private missingTiles(set: TileSet): { column: number; row: number; key: string }[] {
        const { x, y } = this.placeOf(set);
        const { side } = set;
        const middle = {
            x: (this.canvas.width / 2 - x) / side - 0.5,
            y: (y - this.canvas.height / 2) / side - 0.5,
        };
        const missing: { column: number; row: number; key: string }[] = [];
        for (let column = Math.floor(-x / side); column * side + x < this.canvas.width; column++) {
            for (
                let row = Math.floor((y - this.canvas.height) / side);
                y - (row + 1) * side < this.canvas.height && row * side < y;
                row++
            ) {
                const key = `${column} ${row}`;
                if (!set.tiles.has(key)) missing.push({ column, row, key });
            }
        }
        const distance = (tile: { column: number; row: number }): number =>
            Math.hypot(tile.column - middle.x, tile.row - middle.y);
        return missing.sort((a, b) => distance(a) - distance(b));
    }

    private async askFor(set: TileSet, column: number, row: number, key: string): Promise<void> {
        const version = this.version;
        this.asked.add(key);
        this.inFlight++;
        const { scale, side } = set;
        try {
            const view = {
                x: (column * side) / scale,
                y: ((row + 1) * side) / scale,
                scale,
                width: side,
                height: side,
            };
            const bitmap = await this.drawTile(view);
            if (version !== this.version) bitmap.close();
            else set.tiles.set(key, { column, row, bitmap });
            if (set.tiles.size > mostTiles) this.dropFarTiles(set);
        } catch {
            // The Worker has ended; the page says so elsewhere.
        } finally {
            this.inFlight--;
            if (version === this.version) this.asked.delete(key);
            this.redraw();
        }
    }

    private dropFarTiles(set: TileSet): void {
        const { x, y } = this.placeOf(set);
        const near = (tile: Tile): boolean => {
            const left = x + tile.column * set.side;
            const top = y - (tile.row + 1) * set.side;
            const [w, h] = [this.canvas.width, this.canvas.height];
            return left > -w && left < 2 * w && top > -h && top < 2 * h;
        };
        for (const [key, tile] of set.tiles) {
            if (near(tile)) continue;
            tile.bitmap.close();
            set.tiles.delete(key);
        }
    }
}

function clampScale(scale: number): number {
    return Math.min(largestScale, Math.max(smallestScale, scale));
}

function dropTiles(set: TileSet | null): void {
    for (const tile of set?.tiles.values() ?? []) tile.bitmap.close();
    set?.tiles.clear();
}
