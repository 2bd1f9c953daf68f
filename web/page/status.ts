// What the page says of the map: the status line, the progress of reading, and warnings.

import type { Summary } from "../engine/types.ts";
import { button, byId, make } from "./dom.ts";
import { say } from "./words.ts";

export type State = "empty" | "reading" | "shown" | "failed";

export function setState(state: State, summary: Summary | null): void {
    const status = byId("map-status");
    status.setAttribute("data-state", state);
    for (const name of ["data-lines", "data-texts", "data-complete"]) status.removeAttribute(name);
    status.hidden = state !== "shown";
    status.textContent = "";
    if (state !== "shown" || !summary) return;
    const { sheets } = summary;
    const lines = sheets.reduce((sum, sheet) => sum + sheet.lines, 0);
    const texts = sheets.reduce((sum, sheet) => sum + sheet.texts, 0);
    status.setAttribute("data-lines", String(lines));
    status.setAttribute("data-texts", String(texts));
    status.setAttribute("data-complete", String(sheets.every((sheet) => sheet.state === "complete")));
    status.replaceChildren(
        make("strong", {}, sheets.map((sheet) => sheet.name).join(", ")),
        make(
            "span",
            { class: "quiet" },
            say("shown", {
                lines: say("lineCount", { count: lines }),
                texts: say("textCount", { count: texts }),
            }),
        ),
    );
}

export function isShown(): boolean {
    return byId("map-status").getAttribute("data-state") === "shown";
}

export function showProgress(name: string, done: number, total: number): void {
    const percent = total > 0 ? Math.floor((100 * done) / total) : 0;
    byId("progress").hidden = false;
    byId("progress-text").textContent = say("reading", { name, percent });
    byId<HTMLProgressElement>("progress-bar").value = percent;
}
export function hideProgress(): void {
    byId("progress").hidden = true;
}

export function warn(text: string): void {
    const note = make("div", { class: "note card warning" }, make("span", {}, text));
    note.append(button("×", () => note.remove(), { class: "icon", "aria-label": say("dismiss") }));
    byId("problems").append(note);
}
export function clearWarnings(): void {
    byId("problems").replaceChildren();
}

// How the reading of a sheet went, in a sentence where it did not go well.
export function warnOfSheet(sheet: Summary["sheets"][number]): void {
    const { name } = sheet;
    const drawn = sheet.lines + sheet.texts > 0;
    if (sheet.state === "failed")
        warn(drawn ? say("readFailed", { name, reason: sheet.failure }) : sheet.failure);
    else if (!drawn) warn(say("nothingIn", { name }));
    else if (sheet.state === "incomplete") warn(say("incomplete", { name }));
    else if (sheet.state === "stopped") warn(say("stopped", { name }));
    if (sheet.skipped > 0) warn(say("skipped", { name, count: sheet.skipped }));
    if (sheet.state !== "failed") sheet.messages.forEach(warn);
}

export function reasonOf(error: unknown): string {
    return error instanceof Error ? error.message : String(error);
}
