// Places in S-JTSK, as people say them, and in WGS 84.

import proj4 from "proj4";
import type { Point } from "./map_view.ts";

const krovak =
    "+proj=krovak +lat_0=49.5 +lon_0=24.8333333333333 +alpha=30.2881397527778 +k=0.9999 +x_0=0 +y_0=0 " +
    "+ellps=bessel +towgs84=570.8,85.7,462.8,4.998,1.587,5.261,3.56 +units=m +no_defs";
const converter = proj4(krovak, "WGS84");

// Of a place in S-JTSK / Krovak East North (EPSG:5514), within a metre or two; null outside of the map's country.
export function toWgs84(place: Point): { longitude: number; latitude: number } | null {
    const inside = place.x > -910000 && place.x < -150000 && place.y > -1350000 && place.y < -920000;
    if (!inside) return null;
    const [longitude, latitude] = converter.forward([place.x, place.y]);
    return longitude !== undefined && latitude !== undefined ? { longitude, latitude } : null;
}

export function sayJtsk(place: Point, digits = 2): string {
    return `Y ${(-place.x).toFixed(digits)}  X ${(-place.y).toFixed(digits)}`;
}

export function sayWgs84(place: Point): string {
    const found = toWgs84(place);
    return found ? `${found.latitude.toFixed(6)}° N  ${found.longitude.toFixed(6)}° E` : "";
}
