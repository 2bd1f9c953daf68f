// The panels at the side: layers, legend, what was clicked. Each builds its content anew when it is shown.

import { cssColour } from "../engine/replay.ts";
import type { Inspection, LayerSummary, Legend, LegendLine, LegendSymbol, Picked } from "../engine/types.ts";
import { button, facts, make } from "./dom.ts";
import { sayJtsk } from "./projection.ts";
import { say, sayLength, sayNumber } from "./words.ts";

export function layerTitle(layer: { number: number; name: string }): string {
    return layer.name && layer.name !== String(layer.number)
        ? `${layer.number}  ${layer.name}`
        : say("layerWithoutName", { number: String(layer.number) });
}

export function layersPanel(layers: LayerSummary[], show: (layer: number, shown: boolean) => void): Node[] {
    const boxes: HTMLInputElement[] = [];
    const rows = layers.map((layer) => {
        const box = make("input", { type: "checkbox" });
        box.checked = layer.shown;
        box.addEventListener("change", () => show(layer.number, box.checked));
        boxes.push(box);
        const swatch = make("span", { class: "swatch" });
        swatch.style.background = cssColour(layer.colour);
        const count = layer.lines + layer.symbols + layer.texts;
        const title = `${say("lines")}: ${sayNumber(layer.lines)}, ${say("symbols")}: ${sayNumber(layer.symbols)}, ${say("texts")}: ${sayNumber(layer.texts)}`;
        return make(
            "li",
            {},
            make(
                "label",
                { class: "layer", title },
                box,
                swatch,
                make("span", {}, layerTitle(layer)),
                make("span", { class: "number" }, sayNumber(count)),
            ),
        );
    });
    const all = (shown: boolean): void => {
        layers.forEach((layer, i) => {
            if (boxes[i]!.checked !== shown) show(layer.number, shown);
            boxes[i]!.checked = shown;
        });
    };
    const buttons = make(
        "div",
        { class: "row" },
        button(say("all"), () => all(true)),
        button(say("none"), () => all(false)),
    );
    return [buttons, make("ul", { class: "rows" }, ...rows)];
}

// --- Legend ---

const sampleWidth = 64;
const sampleHeight = 26;
const pixelsPerMillimetre = 5;

function sample(draw: (context: CanvasRenderingContext2D) => void): HTMLCanvasElement {
    const ratio = window.devicePixelRatio || 1;
    const canvas = make("canvas", { "aria-hidden": "true" });
    canvas.width = sampleWidth * ratio;
    canvas.height = sampleHeight * ratio;
    const context = canvas.getContext("2d")!;
    context.scale(ratio, ratio);
    draw(context);
    return canvas;
}

function lineSample(line: LegendLine): HTMLCanvasElement {
    return sample((context) => {
        if (line.invisible) return;
        context.strokeStyle = cssColour(line.colour);
        context.lineWidth = Math.max(1, line.width * pixelsPerMillimetre);
        context.setLineDash(line.dashes.map((dash) => dash * pixelsPerMillimetre));
        context.beginPath();
        context.moveTo(5, sampleHeight / 2);
        context.lineTo(sampleWidth - 5, sampleHeight / 2);
        context.stroke();
    });
}

function symbolSample(symbol: LegendSymbol): HTMLCanvasElement {
    const [minX, minY, maxX, maxY] = symbol.bounds;
    const scale = Math.min(
        pixelsPerMillimetre,
        (sampleWidth - 8) / (maxX - minX),
        (sampleHeight - 6) / (maxY - minY),
    );
    return sample((context) => {
        context.translate(
            sampleWidth / 2 - ((minX + maxX) / 2) * scale,
            sampleHeight / 2 + ((minY + maxY) / 2) * scale,
        );
        context.lineWidth = 1;
        context.lineCap = "round";
        context.beginPath();
        for (const stroke of symbol.strokes) {
            for (let i = 0; i < stroke.length; i += 2) {
                const [x, y] = [stroke[i]! * scale, -stroke[i + 1]! * scale];
                if (i === 0) context.moveTo(x, y);
                else context.lineTo(x, y);
            }
        }
        context.stroke();
    });
}

function legendRow(picture: HTMLCanvasElement, name: string): HTMLElement {
    return make("li", { class: "legend-row" }, picture, make("span", {}, name));
}

export function legendPanel(legend: Legend): Node[] {
    const known = legend.lines.filter((line) => line.known);
    const other = legend.lines.find((line) => !line.known);
    const rows = known.map((line) => legendRow(lineSample(line), line.name || String(line.code)));
    if (other) rows.push(legendRow(lineSample(other), say("otherLines")));
    const symbols = legend.symbols.map((symbol) =>
        legendRow(symbolSample(symbol), symbol.name || String(symbol.code)),
    );
    const nodes: Node[] = [make("p", { class: "quiet" }, say("legendOfView"))];
    if (rows.length > 0) nodes.push(make("h3", {}, say("lineTypes")), make("ul", { class: "rows" }, ...rows));
    if (symbols.length > 0)
        nodes.push(make("h3", {}, say("symbols")), make("ul", { class: "rows" }, ...symbols));
    if (rows.length + symbols.length === 0) nodes.push(make("p", {}, say("emptyLegend")));
    return nodes;
}

// --- What was clicked ---

function titleOf(picked: Picked): string {
    if (picked.kind === "text") return picked.text ?? "";
    if (picked.codeName) return picked.codeName;
    const kind = say(picked.kind);
    return picked.code ? `${kind} ${picked.code}` : kind;
}

function vertexTable(inspection: Inspection): Node | false {
    const elements = inspection.elements ?? [];
    if (elements.length === 0) return false;
    const head = make(
        "tr",
        {},
        ...[say("type"), "Y", "X", say("code"), say("symbol")].map((name) =>
            make("th", { scope: "col" }, name),
        ),
    );
    const rows = elements.map((element) =>
        make(
            "tr",
            {},
            make("td", {}, element.type),
            make("td", {}, (-element.x).toFixed(2)),
            make("td", {}, (-element.y).toFixed(2)),
            make("td", { title: element.codeName }, element.code ?? ""),
            make(
                "td",
                { title: element.symbolName },
                element.symbol ? `${element.symbol} M${element.m} U${element.u}` : "",
            ),
        ),
    );
    return make("table", { class: "vertices" }, make("thead", {}, head), make("tbody", {}, ...rows));
}

export function elementPanel(
    picked: Picked,
    inspection: Inspection | null,
    others: number,
    next: () => void,
): Node[] {
    const [x, y] = [picked.outline[0] ?? 0, picked.outline[1] ?? 0];
    const values: [string, string | null | undefined][] = [
        [say("layer"), layerTitle({ number: picked.layer, name: picked.layerName })],
        [say("code"), picked.code ? String(picked.code) : inspection?.code ? String(inspection.code) : null],
        [say("meaning"), picked.kind === "text" ? null : picked.codeName],
        [say("length"), picked.length !== undefined ? sayLength(picked.length) : null],
        [say("points"), picked.points !== undefined ? sayNumber(picked.points) : null],
        [say("height"), picked.height !== undefined ? `${sayNumber(picked.height, 2)} mm` : null],
        [say("rotation"), picked.rotation ? `${sayNumber(picked.rotation, 1)}°` : null],
        [say("size"), picked.size !== undefined ? sayNumber(picked.size, 2) : null],
        [say("place"), picked.kind === "symbol" ? sayJtsk({ x, y }) : null],
        [
            say("values"),
            inspection?.kind === "text"
                ? `D ${inspection.d}  F ${inspection.f}  H ${inspection.h}  U ${inspection.u}`
                : null,
        ],
        [say("fileLine"), inspection ? sayNumber(inspection.fileLine) : null],
        [say("sheet"), picked.sheetName],
    ];
    const nodes: (Node | false)[] = [
        make("p", { class: "chosen-title" }, titleOf(picked)),
        facts(values),
        others > 0 &&
            make(
                "div",
                { class: "row apart" },
                make("span", { class: "quiet" }, say("more", { count: others })),
                button(say("next"), next),
            ),
        inspection !== null && vertexTable(inspection),
    ];
    return nodes.filter((node): node is Node => node !== false);
}
