// The panel of tools: measuring, keeping, printing, settings.

import { encodings, type Encoding } from "../engine/engine.ts";
import { button, make } from "./dom.ts";
import type { MeasureKind } from "./measure.ts";
import { language, languages, say, type Language } from "./words.ts";

export interface ToolActions {
    measure(kind: MeasureKind | null): void;
    measuring(): MeasureKind | null;
    measured(): string;
    link(): void;
    png(): void;
    svg(): void;
    print(scale: number): void;
    compare(): void;
    encode(encoding: Encoding): void;
    encoding(): Encoding;
    speak(language: Language): void;
}

const languageNames: Record<Language, string> = { en: "English", cs: "Čeština", de: "Deutsch" };
const printScales = [200, 250, 500, 1000, 2000, 2500, 2880, 5000, 10000, 25000];

export function languageChoice(speak: (language: Language) => void): HTMLElement {
    const choice = make("select", { "aria-label": say("language") });
    for (const name of Object.keys(languages) as Language[]) {
        const option = make("option", { value: name, lang: name }, languageNames[name]);
        option.selected = name === language();
        choice.append(option);
    }
    choice.addEventListener("change", () => speak(choice.value as Language));
    return choice;
}

export function toolsPanel(actions: ToolActions, mapScale: number): Node[] {
    const toggle = (kind: MeasureKind, label: string): HTMLButtonElement => {
        const on = actions.measuring() === kind;
        return button(label, () => actions.measure(on ? null : kind), { "aria-pressed": String(on) });
    };
    const result = actions.measured();
    const measuring = actions.measuring() !== null;

    const scales = make("select", { "aria-label": say("printScale") });
    const offered = [...new Set([...printScales, mapScale])].sort((a, b) => a - b);
    for (const scale of offered) {
        const option = make("option", { value: String(scale) }, `1 : ${scale}`);
        option.selected = scale === mapScale;
        scales.append(option);
    }

    const encoding = make("select", { "aria-label": say("encoding") });
    for (const name of encodings) {
        const option = make("option", { value: name }, name);
        option.selected = name === actions.encoding();
        encoding.append(option);
    }
    encoding.addEventListener("change", () => actions.encode(encoding.value as Encoding));

    return [
        make(
            "div",
            { class: "tools" },
            toggle("length", say("measureLength")),
            toggle("area", say("measureArea")),
            measuring && make("p", { class: "quiet" }, say("measureHint")),
            measuring && result !== "" && make("p", { class: "chosen-title", role: "status" }, result),
        ),
        make(
            "div",
            { class: "tools" },
            button(say("link"), actions.link),
            button(say("savePng"), actions.png),
            button(say("saveSvg"), actions.svg),
        ),
        make(
            "div",
            { class: "row" },
            scales,
            button(say("print"), () => actions.print(Number(scales.value))),
        ),
        make("div", { class: "tools" }, button(say("compare"), actions.compare)),
        make("label", { class: "row apart" }, make("span", {}, say("encoding")), encoding),
        make(
            "label",
            { class: "row apart" },
            make("span", {}, say("language")),
            languageChoice(actions.speak),
        ),
    ];
}
