// Words that stand in the page from its beginning, in the language that is chosen.

import { language, say, type Words } from "./words.ts";

// Elements name their words: data-say for the text, data-say-label for what screen readers say and, of a button
// that is only a picture, for its hint; data-say-placeholder for an empty field.
export function sayEverywhere(): void {
    document.documentElement.lang = language();
    for (const element of document.querySelectorAll<HTMLElement>(
        "[data-say], [data-say-label], [data-say-placeholder]",
    )) {
        const { say: text, sayLabel, sayPlaceholder } = element.dataset;
        if (text) element.textContent = say(text as keyof Words);
        if (sayLabel) element.setAttribute("aria-label", say(sayLabel as keyof Words));
        if (sayPlaceholder) element.setAttribute("placeholder", say(sayPlaceholder as keyof Words));
        if (sayLabel && element.classList.contains("icon")) element.title = say(sayLabel as keyof Words);
    }
}
