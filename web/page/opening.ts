// Opening maps: from the files that people give to the map on the screen.

import { largestFile, type Encoding } from "../engine/engine.ts";
import type { Summary } from "../engine/types.ts";
import type { Client } from "./client.ts";
import { byId } from "./dom.ts";
import { sortFiles, type MapFile, type OpenedFiles } from "./files.ts";
import type { MapView, Point } from "./map_view.ts";
import * as share from "./share.ts";
import {
    clearWarnings,
    hideProgress,
    reasonOf,
    setState,
    showProgress,
    warn,
    warnOfSheet,
} from "./status.ts";
import { say } from "./words.ts";
import type { WorkerEvent } from "./worker.ts";

export class Opening {
    files: MapFile[] = []; // sheets of the map that is open
    summary: Summary | null = null; // of them; null while there is no map
    encoding: Encoding = "windows-1250";
    settled = false; // the map is there, and the place on the screen is worth keeping
    private symbology: OpenedFiles["symbology"] = []; // of one's own
    private place: share.Place | null = null; // that the address asks for
    private lookedAt: { center: Point; scale: number } | null = null; // where the last fit has gone
    private turn = 0; // of what is being opened; what is opened later ends it
    private stopped = false;

    constructor(
        private readonly client: Client,
        private readonly view: MapView,
        private readonly forgetOthers: () => void,
    ) {
        client.onEvent = (event) => this.receive(event);
        byId("stop-button").addEventListener("click", () => void this.stop());
    }

    // Replaces the map by those in the files; a symbology of one's own among them draws the map that is open.
    async open(given: MapFile[]): Promise<void> {
        const turn = ++this.turn;
        const { maps, symbology, problems } = await sortFiles(given);
        if (turn !== this.turn) return;
        if (symbology.length > 0) {
            this.symbology = symbology;
            await this.client.call("useSymbology", symbology);
            if (maps.length === 0 && this.files.length > 0) maps.push(...this.files);
        }
        if (maps.length === 0 && symbology.length > 0) return;
        clearWarnings();
        problems.forEach(warn);
        if (symbology.length > 0) warn(say("symbologyTaken"));
        if (maps.length > 0) return this.read(maps);
        if (problems.length === 0) warn(say("noMap", { reason: given.map((file) => file.name).join(", ") }));
        this.fail();
    }

    // Offers the sheets to another Worker.
    async offerTo(starting: Promise<Client>, onlyParcels: boolean): Promise<Client> {
        const client = await starting;
        try {
            if (this.symbology.length > 0) await client.call("useSymbology", this.symbology);
            for (const { name, blob } of this.files)
                await client.call("offer", name, blob, this.encoding, onlyParcels);
        } catch (error) {
            client.end();
            throw error;
        }
        return client;
    }

    async readAgain(): Promise<void> {
        if (this.files.length > 0) await this.read(this.files);
    }

    // Gives up reading; what was read stays.
    async stop(): Promise<void> {
        this.stopped = true;
        await this.client.call("stop");
    }

    private async read(maps: MapFile[]): Promise<void> {
        const turn = ++this.turn;
        await this.client.call("stop");
        await this.client.call("clear");
        this.forget();
        this.files = maps.filter(({ name, blob }) => {
            if (blob.size > largestFile) warn(say("tooLarge", { name }));
            return blob.size <= largestFile;
        });
        this.stopped = false;
        setState("reading", null);
        for (const { name, blob } of this.files) {
            if (this.stopped) break;
            const [width, height] = [this.view.width, this.view.height].map((side) =>
                Math.round(side * this.view.ratio),
            );
            try {
                this.summary = await this.client.call("open", name, blob, this.encoding, width!, height!);
            } catch (error) {
                warn(`${name}: ${reasonOf(error)}`);
            }
            if (turn !== this.turn) return;
        }
        await this.finish();
    }

    private forget(): void {
        this.summary = null;
        this.settled = false;
        this.place = share.placeInAddress();
        this.lookedAt = null;
        this.view.setReady(false);
        this.view.showPicture(null);
        this.forgetOthers();
    }

    // Everything is read: says how it went and lets tiles take the place of the first pictures.
    private async finish(): Promise<void> {
        const { summary } = this;
        hideProgress();
        summary?.sheets.forEach(warnOfSheet);
        if (!summary || summary.extent.length === 0) return this.fail();
        this.fit();
        this.settled = true;
        const thin = await this.client.call("isThin", this.view.scale * this.view.ratio);
        if (thin) setState("shown", summary);
        for (const sheet of summary.sheets.keys()) await this.client.call("index", sheet);
        this.view.setReady(true);
        setState("shown", summary);
        document.title = `${this.files.map((file) => file.name).join(", ")} – Vemrado`;
    }

    private fail(): void {
        this.files = [];
        hideProgress();
        this.forget();
        document.body.classList.add("without-map");
        setState("failed", null);
    }

    // Looks at the place in the address if the map has it, at all of the map otherwise; where people have moved
    // meanwhile they stay.
    private fit(): void {
        const extent = this.summary?.extent;
        if (!extent || extent.length === 0) return;
        const { center, scale } = this.view;
        const { lookedAt, place } = this;
        if (lookedAt && (lookedAt.center !== center || lookedAt.scale !== scale)) return;
        if (place && share.contains(extent, place.center)) {
            this.view.look(place.center, share.pixelsPerMetreAt(place.scale));
        } else {
            const middle = { x: (extent[0] + extent[2]) / 2, y: (extent[1] + extent[3]) / 2 };
            this.view.look(middle, this.view.scaleFor(extent));
        }
        this.lookedAt = { center: this.view.center, scale: this.view.scale };
    }

    private receive(event: WorkerEvent): void {
        if (event.event === "progress") return showProgress(event.name, event.done, event.total);
        document.body.classList.remove("without-map");
        this.summary = event.summary;
        this.view.showPicture(event.picture);
        this.fit();
        byId("map").setAttribute("data-first-picture", String(Math.round(performance.now())));
    }
}
