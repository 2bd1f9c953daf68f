// Small helpers for the page's elements. Texts of files only ever become text nodes.

export type Child = Node | string | null | false;

export function make<Tag extends keyof HTMLElementTagNameMap>(
    tag: Tag,
    settings: { class?: string; [attribute: string]: string | undefined } = {},
    ...children: Child[]
): HTMLElementTagNameMap[Tag] {
    const element = document.createElement(tag);
    for (const [name, value] of Object.entries(settings)) {
        if (value !== undefined) element.setAttribute(name, value);
    }
    element.append(...children.filter((child): child is Node | string => child !== null && child !== false));
    return element;
}

export function button(
    label: string,
    onClick: () => void,
    settings: Record<string, string> = {},
): HTMLButtonElement {
    const made = make("button", { type: "button", ...settings }, label);
    made.addEventListener("click", onClick);
    return made;
}

export function byId<Kind extends HTMLElement = HTMLElement>(id: string): Kind {
    return document.getElementById(id) as Kind;
}

// Names and values, one pair a row.
export function facts(pairs: [string, string | null | undefined][]): HTMLDListElement {
    const list = make("dl", { class: "facts" });
    for (const [name, value] of pairs) {
        if (value) list.append(make("dt", {}, name), make("dd", {}, value));
    }
    return list;
}

export function download(name: string, blob: Blob): void {
    const address = URL.createObjectURL(blob);
    make("a", { href: address, download: name }).click();
    setTimeout(() => URL.revokeObjectURL(address), 60000);
}
