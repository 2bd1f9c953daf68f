// Draws on a canvas of the browser what the module's command canvas has written: see command_canvas.h.

import type { Commands } from "./engine.ts";

type Context = CanvasRenderingContext2D | OffscreenCanvasRenderingContext2D;

const enum Command {
    pen = 1,
    path = 2,
    text = 3,
    fill = 4,
}

export function cssColour(colour: number): string {
    return `rgb(${colour & 255} ${(colour >> 8) & 255} ${(colour >> 16) & 255})`;
}

// The faces by number: serif 4, bold 2, italic 1.
function fontOf(face: number, size: number): string {
    const family = face & 4 ? "DejaVu Serif" : "DejaVu Sans";
    return `${face & 1 ? "italic " : ""}${face & 2 ? "bold " : ""}${size}px "${family}"`;
}

export function replay(context: Context, { numbers, texts }: Commands): void {
    let at = 0;
    let textNumber = 0;
    let hasPath = false;
    const next = (): number => numbers[at++]!;
    const strokePath = (): void => {
        if (hasPath) context.stroke();
        hasPath = false;
    };
    const addPoints = (count: number): void => {
        context.moveTo(next(), next());
        for (let i = 1; i < count; i++) context.lineTo(next(), next());
    };
    context.lineJoin = "round";
    context.textAlign = "left";
    context.textBaseline = "alphabetic";
    context.fontKerning = "none";
    while (at < numbers.length) {
        switch (next() as Command) {
            case Command.pen: {
                strokePath();
                context.strokeStyle = cssColour(next());
                context.lineWidth = next();
                const dashes = Array.from({ length: next() }, next);
                context.setLineDash(dashes);
                context.lineDashOffset = dashes.length > 0 ? next() : 0;
                context.lineCap = dashes.length > 0 ? "butt" : "round";
                break;
            }
            case Command.path: {
                if (!hasPath) context.beginPath();
                hasPath = true;
                addPoints(next());
                break;
            }
            case Command.text: {
                strokePath();
                const x = next();
                const y = next();
                context.font = fontOf(next(), next());
                const angle = next();
                context.fillStyle = cssColour(next());
                const text = texts[textNumber++] ?? "";
                context.save();
                context.translate(x, y);
                context.rotate(angle);
                context.fillText(text, 0, 0);
                context.restore();
                break;
            }
            case Command.fill: {
                strokePath();
                context.fillStyle = cssColour(next());
                context.beginPath();
                addPoints(next());
                context.fill();
                break;
            }
        }
    }
    strokePath();
}
