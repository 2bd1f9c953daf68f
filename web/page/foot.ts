// The line at the foot of the map: scale bar, scale and coordinates; and the place in the address.

import { byId } from "./dom.ts";
import type { MapView, Point } from "./map_view.ts";
import { sayJtsk, sayWgs84 } from "./projection.ts";
import * as share from "./share.ts";
import { sayLength } from "./words.ts";

export function watchFoot(view: MapView): void {
    const scale = byId<HTMLInputElement>("scale-input");
    scale.addEventListener("change", () => {
        const wanted = Number(scale.value.replace(/[^\d.]/g, ""));
        if (wanted > 0) view.glide(view.center, share.pixelsPerMetreAt(wanted));
    });
    byId("zoom-in").addEventListener("click", () => view.glide(view.center, view.scale * 2));
    byId("zoom-out").addEventListener("click", () => view.glide(view.center, view.scale / 2));
    window.addEventListener("hashchange", () => {
        const place = share.placeInAddress();
        if (place) view.glide(place.center, share.pixelsPerMetreAt(place.scale));
    });
}

export function showScale(view: MapView): void {
    const { metres, width } = share.scaleBar(view.scale);
    byId("scale-bar").style.width = `${width}px`;
    byId("scale-bar-text").textContent =
        metres >= 1000 ? `${metres / 1000} km` : metres >= 1 ? `${metres} m` : sayLength(metres);
    const scale = byId<HTMLInputElement>("scale-input");
    if (document.activeElement !== scale)
        scale.value = String(Number(share.scaleNumber(view.scale).toPrecision(3)));
}

export function sayPlace(place: Point): void {
    byId("jtsk").textContent = sayJtsk(place);
    byId("wgs84").textContent = sayWgs84(place);
}

let addressTimer = 0;
export function keepPlaceInAddress(view: MapView): void {
    clearTimeout(addressTimer);
    const keep = (): void => history.replaceState(null, "", share.addressOf(view));
    addressTimer = window.setTimeout(keep, 400);
}
