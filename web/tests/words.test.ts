// What the page says of counts, in the forms that its languages have for them.

import assert from "node:assert/strict";
import { test } from "node:test";
import { languages, say, setLanguage, type Language } from "../page/words.ts";

const said: Record<Language, string[]> = {
    en: ["0 texts", "1 text", "2 texts", "5 texts", "1,021 texts"],
    cs: ["0 textů", "1 text", "2 texty", "5 textů", "1\u00a0021 textů"],
    de: ["0 Texte", "1 Text", "2 Texte", "5 Texte", "1.021 Texte"],
};

test("counts take the forms of their language", () => {
    for (const language of Object.keys(languages) as Language[]) {
        setLanguage(language);
        assert.deepEqual(
            [0, 1, 2, 5, 1021].map((count) => say("textCount", { count })),
            said[language],
        );
    }
});

test("a word has the same values in every language and form", () => {
    const valuesIn = (text: string): string => [...text.matchAll(/\{\w+\}/g)].map(String).sort().join();
    for (const words of Object.values(languages)) {
        for (const [name, word] of Object.entries(words)) {
            const english = languages.en[name as keyof typeof words];
            const expected = valuesIn(typeof english === "string" ? english : english.other);
            for (const form of typeof word === "string" ? [word] : Object.values(word))
                assert.equal(valuesIn(form), expected, form);
        }
    }
});
