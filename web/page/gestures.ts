// Mouse, touch and keyboard on the map.

import type { MapView, Point } from "./map_view.ts";

const clickReach = 5; // pixels that a click may move

export interface GestureHandlers {
    // A click or tap; double: the second of two.
    click(at: Point): void;
    doubleClick(at: Point): boolean; // whether it was used; else it zooms
    hover(at: Point | null): void;
    key(event: KeyboardEvent): boolean; // whether it was used
}

export function watchGestures(element: HTMLElement, view: MapView, handlers: GestureHandlers): void {
    const pointers = new Map<number, Point>();
    let moved = 0;
    let pinched = false;
    const placeOf = (event: MouseEvent): Point => {
        const box = element.getBoundingClientRect();
        return { x: event.clientX - box.left, y: event.clientY - box.top };
    };

    element.addEventListener("pointerdown", (event) => {
        if (event.button !== 0 && event.button !== 1) return;
        if (event.isPrimary) {
            moved = 0;
            pinched = false;
            pointers.clear();
        }
        pointers.set(event.pointerId, placeOf(event));
        element.setPointerCapture(event.pointerId);
        element.focus({ preventScroll: true });
    });

    element.addEventListener("pointermove", (event) => {
        const to = placeOf(event);
        const from = pointers.get(event.pointerId);
        handlers.hover(to);
        if (!from) return;
        if (pointers.size === 1) {
            moved += Math.hypot(to.x - from.x, to.y - from.y);
            if (moved > clickReach || pinched) view.pan(to.x - from.x, to.y - from.y);
        } else if (pointers.size === 2) {
            pinched = true;
            const other = [...pointers].find(([id]) => id !== event.pointerId)![1];
            const before = Math.hypot(from.x - other.x, from.y - other.y);
            const after = Math.hypot(to.x - other.x, to.y - other.y);
            view.pan((to.x - from.x) / 2, (to.y - from.y) / 2);
            if (before > 0 && after > 0) {
                view.zoomAt({ x: (to.x + other.x) / 2, y: (to.y + other.y) / 2 }, after / before);
            }
        }
        pointers.set(event.pointerId, to);
    });

    const release = (event: PointerEvent): void => {
        const wasDown = pointers.delete(event.pointerId);
        if (event.type === "pointerup" && wasDown && event.button === 0 && moved <= clickReach && !pinched) {
            handlers.click(placeOf(event));
        }
    };
    element.addEventListener("pointerup", release);
    element.addEventListener("pointercancel", release);
    element.addEventListener("pointerleave", () => handlers.hover(null));

    element.addEventListener("dblclick", (event) => {
        const at = placeOf(event);
        if (handlers.doubleClick(at)) return;
        const ground = view.toGround(at);
        const toward = { x: (view.center.x + ground.x) / 2, y: (view.center.y + ground.y) / 2 };
        view.glide(toward, view.scale * 2);
    });

    element.addEventListener(
        "wheel",
        (event) => {
            event.preventDefault();
            const lines = event.deltaMode === 1 ? 30 : event.deltaMode === 2 ? 300 : 1;
            const speed = event.ctrlKey ? 0.01 : 0.0018;
            view.zoomAt(
                placeOf(event),
                Math.exp(-Math.max(-400, Math.min(400, event.deltaY * lines)) * speed),
            );
        },
        { passive: false },
    );

    element.addEventListener("keydown", (event) => {
        if (event.ctrlKey || event.metaKey || event.altKey) return;
        if (handlers.key(event)) {
            event.preventDefault();
            return;
        }
        const step = Math.min(view.width, view.height) / (event.shiftKey ? 2 : 6);
        const moves: Record<string, () => void> = {
            ArrowLeft: () => view.pan(step, 0),
            ArrowRight: () => view.pan(-step, 0),
            ArrowUp: () => view.pan(0, step),
            ArrowDown: () => view.pan(0, -step),
            "+": () => view.glide(view.center, view.scale * 1.6),
            "=": () => view.glide(view.center, view.scale * 1.6),
            "-": () => view.glide(view.center, view.scale / 1.6),
        };
        const move = moves[event.key];
        if (!move) return;
        event.preventDefault();
        move();
    });
}
