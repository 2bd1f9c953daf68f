// What the page says, in the language of its reader.

import type { Language } from "../engine/engine.ts";
import { czech } from "./words_cs.ts";
import { german } from "./words_de.ts";
import { english, type Words } from "./words_en.ts";

export type { Words };

export type { Language };
export const languages: Record<Language, Words> = { en: english, cs: czech, de: german };

// The language of a person who has chosen none.
export function browserLanguage(): Language {
    for (const wanted of navigator.languages) {
        const language = wanted.slice(0, 2).toLowerCase();
        if (language === "cs" || language === "sk") return "cs";
        if (language === "de") return "de";
        if (language === "en") return "en";
    }
    return "en";
}

const plurals: Record<Language, Intl.PluralRules> = {
    en: new Intl.PluralRules("en"),
    cs: new Intl.PluralRules("cs"),
    de: new Intl.PluralRules("de"),
};

let current: Language = "en";

export function setLanguage(language: Language): void {
    current = language;
}
export function language(): Language {
    return current;
}
// A word with a count takes the form that its language has for the count.
export function say(word: keyof Words, values: Record<string, string | number> = {}): string {
    const found = languages[current][word];
    const pattern =
        typeof found === "string"
            ? found
            : (found[plurals[current].select(Number(values["count"]))] ?? found.other);
    return pattern.replace(/\{(\w+)\}/g, (_, name: string) => {
        const value = values[name];
        return typeof value === "number" ? sayNumber(value) : (value ?? "");
    });
}
export function sayNumber(value: number, digits = 0): string {
    return new Intl.NumberFormat(current, {
        minimumFractionDigits: digits,
        maximumFractionDigits: digits,
    }).format(value);
}
export function sayLength(metres: number): string {
    return metres >= 10000 ? `${sayNumber(metres / 1000, 3)} km` : `${sayNumber(metres, 2)} m`;
}
export function sayArea(squareMetres: number): string {
    return squareMetres >= 1e6 ? `${sayNumber(squareMetres / 1e6, 3)} km²` : `${sayNumber(squareMetres)} m²`;
}
