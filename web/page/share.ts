// Links to a place, pictures to keep, and printing.

import type { Box } from "../engine/types.ts";
import type { Client } from "./client.ts";
import { byId, download, make } from "./dom.ts";
import type { MapView, Point } from "./map_view.ts";
import { say } from "./words.ts";

const allSheets = -1;
const metresPerPixel = 0.0254 / 96; // of a screen, as browsers count

export function scaleNumber(pixelsPerMetre: number): number {
    return 1 / (pixelsPerMetre * metresPerPixel);
}
export function pixelsPerMetreAt(scale: number): number {
    return 1 / (scale * metresPerPixel);
}

// --- The place in the address ---

export interface Place {
    center: Point;
    scale: number; // 1 : so many
}

export function placeInAddress(): Place | null {
    const values = new URLSearchParams(location.hash.slice(1));
    const [y, x, scale] = ["y", "x", "scale"].map((name) => Number(values.get(name) ?? NaN));
    if (![x, y, scale].every(Number.isFinite) || scale! <= 0) return null;
    return { center: { x: -y!, y: -x! }, scale: scale! };
}

export function addressOf(view: MapView): string {
    const values = new URLSearchParams({
        y: (-view.center.x).toFixed(2),
        x: (-view.center.y).toFixed(2),
        scale: scaleNumber(view.scale)
            .toPrecision(5)
            .replace(/\.?0+$/, ""),
    });
    return `${location.href.split("#")[0]}#${values}`;
}

// --- Pictures ---

function baseName(name: string): string {
    return name.replace(/\.[^.]*$/, "") || "map";
}

export async function savePng(client: Client, view: MapView, name: string): Promise<void> {
    const [x, , , y] = view.box();
    const { ratio } = view;
    const [width, height] = [Math.round(view.width * ratio), Math.round(view.height * ratio)];
    download(
        `${baseName(name)}.png`,
        await client.call("png", { x, y, scale: view.scale * ratio, width, height }),
    );
}

export async function saveSvg(client: Client, view: MapView, sheets: string[]): Promise<void> {
    const name = baseName(sheets[0] ?? "");
    const drawing = await client.call("svg", allSheets, view.box(), true, name);
    download(`${name}.svg`, new Blob([drawing], { type: "image/svg+xml" }));
}

// Prints what fits on a sheet of paper around the middle of the screen, at a map scale.
export async function printAtScale(
    client: Client,
    view: MapView,
    scale: number,
    name: string,
): Promise<void> {
    const landscape = view.width > view.height;
    const [width, height] = landscape ? [277, 180] : [190, 267]; // mm; A4 less margins and a line of text
    const dotsPerMillimetre = 200 / 25.4;
    const pixelsPerMetre = (1000 / scale) * dotsPerMillimetre;
    const [pixelWidth, pixelHeight] = [
        Math.round(width * dotsPerMillimetre),
        Math.round(height * dotsPerMillimetre),
    ];
    const picture = await client.call("png", {
        x: view.center.x - pixelWidth / 2 / pixelsPerMetre,
        y: view.center.y + pixelHeight / 2 / pixelsPerMetre,
        scale: pixelsPerMetre,
        width: pixelWidth,
        height: pixelHeight,
    });
    const image = make("img", { alt: name });
    image.src = URL.createObjectURL(picture);
    image.style.width = `${width}mm`;
    image.style.height = `${height}mm`;
    await image.decode();
    const paper = new CSSStyleSheet();
    paper.replaceSync(`@page { size: A4 ${landscape ? "landscape" : "portrait"}; margin: 10mm; }`);
    document.adoptedStyleSheets = [paper];
    const sheet = byId("print-sheet");
    sheet.replaceChildren(image, make("p", {}, `${name}    ${say("scale")} 1 : ${scale}`));
    sheet.hidden = false;
    window.print();
    sheet.hidden = true;
    URL.revokeObjectURL(image.src);
}

// A round length that fits about 120 pixels, and its width in pixels.
export function scaleBar(pixelsPerMetre: number): { metres: number; width: number } {
    const longest = 120 / pixelsPerMetre;
    const power = 10 ** Math.floor(Math.log10(longest));
    const metres = [5, 2, 1].map((digit) => digit * power).find((length) => length <= longest) ?? power;
    return { metres, width: metres * pixelsPerMetre };
}

// Where the middle of a box is on the screen, it may be seen.
export function contains(box: Box | [], place: Point): boolean {
    return (
        box.length === 4 && place.x >= box[0] && place.x <= box[2] && place.y >= box[1] && place.y <= box[3]
    );
}
