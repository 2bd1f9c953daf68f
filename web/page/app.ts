// The page: opens maps, and joins the map on the screen with its panels.

import type { Encoding } from "../engine/engine.ts";
import { largestFile } from "../engine/engine.ts";
import type { Hit, Picked, Summary } from "../engine/types.ts";
import type { Client } from "./client.ts";
import { button, byId, make } from "./dom.ts";
import { sortFiles, type MapFile } from "./files.ts";
import { FindField } from "./find.ts";
import { watchGestures } from "./gestures.ts";
import { MapView, type Point } from "./map_view.ts";
import { Measuring } from "./measure.ts";
import { elementPanel, layersPanel, legendPanel } from "./panels.ts";
import { Parcels } from "./parcels.ts";
import { Changes, Findings } from "./review.ts";
import { sayJtsk, sayWgs84 } from "./projection.ts";
import * as share from "./share.ts";
import { toolsPanel } from "./tools_panel.ts";
import { say, sayLength, setLanguage, type Language, type Words } from "./words.ts";
import type { WorkerEvent } from "./worker.ts";

type PanelName = "layers" | "legend" | "parcels" | "check" | "tools" | "element" | "changes";
type State = "empty" | "reading" | "shown" | "failed";

const pickReach = 8; // pixels

export class App {
    private readonly view: MapView;
    private readonly parcels: Parcels;
    private readonly measuring: Measuring;
    private readonly findings: Findings;
    private readonly changes: Changes;
    private readonly find: FindField;
    private summary: Summary | null = null;
    private files: MapFile[] = [];
    encoding: Encoding = "windows-1250";
    private panel: PanelName | null = null;
    private picked: Picked[] = [];
    private pickedNumber = 0;
    private opening = 0;
    private fitted = false;
    private legendTimer = 0;
    private addressTimer = 0;

    constructor(private readonly client: Client) {
        this.view = new MapView(
            byId<HTMLCanvasElement>("map-canvas"),
            byId<HTMLCanvasElement>("overlay-canvas"),
            (view) => client.call("tile", view),
        );
        this.parcels = new Parcels(client, this.view, () => this.refresh("parcels"));
        this.findings = new Findings(client, this.view);
        this.changes = new Changes(client, this.view);
        this.measuring = new Measuring(this.view, () => this.refresh("tools"));
        this.find = new FindField(
            byId<HTMLInputElement>("find-text"),
            byId("find-hits"),
            (text, most) => client.call("find", text, most),
            (hit) => this.goTo(hit),
        );
        client.onEvent = (event) => this.receive(event);
        this.view.onChange = () => this.viewChanged();
        this.view.onIdle = () => byId("map").setAttribute("data-drawn", "true");
        this.view.drawOverlay = (context) => this.drawOverlay(context);
        this.watch();
    }

    // --- Opening ---

    // Replaces the map by those in the files; a symbology of one's own among them draws the map that is open.
    async open(given: MapFile[]): Promise<void> {
        const { maps, symbology, problems } = await sortFiles(given);
        if (symbology.length > 0) {
            await this.client.call("useSymbology", symbology);
            if (maps.length === 0 && this.files.length > 0) maps.push(...this.files);
        }
        if (maps.length === 0 && symbology.length > 0) return;
        byId("problems").replaceChildren();
        for (const problem of problems) this.warn(problem);
        if (symbology.length > 0) this.warn(say("symbologyTaken"));
        if (maps.length === 0) {
            const name = given.map((file) => file.name).join(", ");
            if (problems.length === 0) this.warn(say("noMap", { reason: name }));
            this.forget();
            document.body.classList.add("without-map");
            return this.setState("failed");
        }
        await this.read(maps);
    }

    private async read(maps: MapFile[]): Promise<void> {
        const turn = ++this.opening;
        await this.client.call("stop");
        await this.client.call("clear");
        this.forget();
        this.files = maps;
        this.setState("reading");
        for (const { name, blob } of maps) {
            if (blob.size > largestFile) {
                this.warn(say("tooLarge", { name }));
                continue;
            }
            const [width, height] = [this.view.width, this.view.height].map((side) =>
                Math.round(side * this.view.ratio),
            );
            try {
                this.summary = await this.client.call("open", name, blob, this.encoding, width!, height!);
            } catch (error) {
                this.warn(
                    say("failed", {
                        reason: `${name}: ${error instanceof Error ? error.message : String(error)}`,
                    }),
                );
            }
            if (turn !== this.opening) return;
        }
        await this.finish();
    }

    private forget(): void {
        this.summary = null;
        this.picked = [];
        this.fitted = false;
        this.parcels.clear();
        this.findings.clear();
        this.changes.clear();
        this.measuring.start(null);
        this.find.clear();
        this.view.setReady(false);
        this.view.showPicture(null);
        this.showPanel(null);
    }

    // Everything is read: says how it went and lets tiles take the place of the first pictures.
    private async finish(): Promise<void> {
        byId("progress").hidden = true;
        const { summary } = this;
        for (const sheet of summary?.sheets ?? []) this.warnOf(sheet);
        if (!summary || summary.extent.length === 0) {
            document.body.classList.add("without-map");
            return this.setState("failed");
        }
        this.fit();
        const thin = await this.client.call("isThin", this.view.scale * this.view.ratio);
        if (thin) this.setState("shown");
        for (const sheet of summary.sheets.keys()) await this.client.call("index", sheet);
        this.view.setReady(true);
        this.setState("shown");
        document.title = `${this.files.map((file) => file.name).join(", ")} – Vemrado`;
    }

    private warnOf(sheet: Summary["sheets"][number]): void {
        const { name } = sheet;
        const drawn = sheet.lines + sheet.texts > 0;
        if (sheet.state === "failed")
            this.warn(drawn ? say("readFailed", { name, reason: sheet.failure }) : sheet.failure);
        else if (!drawn) this.warn(say("nothingIn", { name }));
        else if (sheet.state === "incomplete") this.warn(say("incomplete", { name }));
        else if (sheet.state === "stopped") this.warn(say("stopped", { name }));
        if (sheet.skipped > 0) this.warn(say("skipped", { name, count: sheet.skipped }));
        for (const message of sheet.messages) if (sheet.state !== "failed") this.warn(message);
    }

    // Looks at the place in the address if the map has it, at all of the map otherwise.
    private fit(): void {
        const extent = this.summary?.extent;
        if (!extent || extent.length === 0) return;
        const place = share.placeInAddress();
        if (!this.fitted && place && share.contains(extent, place.center)) {
            this.view.look(place.center, share.pixelsPerMetreAt(place.scale));
        } else {
            const middle = { x: (extent[0] + extent[2]) / 2, y: (extent[1] + extent[3]) / 2 };
            this.view.look(middle, this.view.scaleFor(extent));
        }
        this.fitted = true;
    }

    private receive(event: WorkerEvent): void {
        if (event.event === "progress") {
            const percent = event.total > 0 ? Math.floor((100 * event.done) / event.total) : 0;
            byId("progress").hidden = false;
            byId("progress-text").textContent = say("reading", { name: event.name, percent });
            byId<HTMLProgressElement>("progress-bar").value = percent;
            return;
        }
        document.body.classList.remove("without-map");
        this.summary = event.summary;
        this.view.showPicture(event.picture);
        this.fit();
        byId("map").setAttribute("data-first-picture", String(Math.round(performance.now())));
    }

    private setState(state: State): void {
        const status = byId("map-status");
        status.setAttribute("data-state", state);
        for (const name of ["data-lines", "data-texts", "data-complete"]) status.removeAttribute(name);
        status.hidden = state !== "shown";
        status.textContent = "";
        if (state !== "shown" || !this.summary) return;
        const { sheets } = this.summary;
        const lines = sheets.reduce((sum, sheet) => sum + sheet.lines, 0);
        const texts = sheets.reduce((sum, sheet) => sum + sheet.texts, 0);
        status.setAttribute("data-lines", String(lines));
        status.setAttribute("data-texts", String(texts));
        status.setAttribute("data-complete", String(sheets.every((sheet) => sheet.state === "complete")));
        const names = sheets.map((sheet) => sheet.name).join(", ");
        status.replaceChildren(
            make("strong", {}, names),
            make("span", { class: "quiet" }, say("shown", { lines, texts })),
        );
    }

    warn(text: string): void {
        const note = make("div", { class: "note card warning" }, make("span", {}, text));
        note.append(button("×", () => note.remove(), { class: "icon", "aria-label": say("dismiss") }));
        byId("problems").append(note);
    }

    // --- The map and its panels ---

    private watch(): void {
        watchGestures(byId("map"), this.view, {
            click: (at) => void this.click(at),
            doubleClick: () => {
                if (this.measuring.kind) this.measuring.end();
                return this.measuring.kind !== null;
            },
            hover: (at) => this.hover(at),
            key: (event) => this.key(event),
        });
        for (const panelButton of document.querySelectorAll<HTMLElement>("[data-panel]")) {
            const name = panelButton.dataset["panel"] as PanelName;
            panelButton.addEventListener("click", () => this.showPanel(this.panel === name ? null : name));
        }
        byId("panel-close").addEventListener("click", () => this.closePanel());
        byId("panel").addEventListener("keydown", (event) => event.key === "Escape" && this.closePanel());
        byId("stop-button").addEventListener("click", () => void this.client.call("stop"));
        const oldFile = byId<HTMLInputElement>("old-file");
        oldFile.addEventListener("change", () => {
            void this.compare([...(oldFile.files ?? [])].map((file) => ({ name: file.name, blob: file })));
            oldFile.value = "";
        });
        byId("zoom-in").addEventListener("click", () =>
            this.view.glide(this.view.center, this.view.scale * 2),
        );
        byId("zoom-out").addEventListener("click", () =>
            this.view.glide(this.view.center, this.view.scale / 2),
        );
        byId("zoom-all").addEventListener("click", () => this.showAll());
        const scale = byId<HTMLInputElement>("scale-input");
        scale.addEventListener("change", () => {
            const wanted = Number(scale.value.replace(/[^\d.]/g, ""));
            if (wanted > 0) this.view.glide(this.view.center, share.pixelsPerMetreAt(wanted));
        });
        window.addEventListener("hashchange", () => {
            const place = share.placeInAddress();
            if (place) this.view.glide(place.center, share.pixelsPerMetreAt(place.scale));
        });
    }

    private showAll(): void {
        if (this.summary?.extent.length === 4) this.view.show(this.summary.extent);
    }
    private closePanel(): void {
        const opener = document.querySelector<HTMLElement>(`[data-panel="${this.panel}"]`);
        this.showPanel(null);
        (opener ?? byId("map")).focus();
    }

    showPanel(name: PanelName | null): void {
        if (this.panel === "element" && name !== "element") this.picked = [];
        this.panel = name;
        byId("panel").hidden = name === null;
        for (const other of document.querySelectorAll<HTMLElement>("[data-panel]")) {
            other.setAttribute("aria-expanded", String(other.dataset["panel"] === name));
        }
        if (name) void this.fillPanel(name);
        this.view.redraw();
    }
    private refresh(name: PanelName): void {
        if (this.panel === name) void this.fillPanel(name);
    }
    private async fillPanel(name: PanelName): Promise<void> {
        byId("panel-title").textContent = say(name);
        const nodes = await this.panelContent(name);
        if (this.panel === name) byId("panel-body").replaceChildren(...nodes);
    }
    private async panelContent(name: PanelName): Promise<Node[]> {
        switch (name) {
            case "layers":
                return layersPanel(
                    this.summary?.layers ?? [],
                    (layer, shown) => void this.showLayer(layer, shown),
                );
            case "legend":
                return legendPanel(await this.client.call("legend", this.view.box()));
            case "parcels":
                await this.parcels.find();
                this.view.redraw();
                return this.parcels.panel();
            case "check":
                return this.findings.panel(this.files.map((file) => file.name));
            case "changes":
                return this.changes.panel();
            case "tools":
                return toolsPanel(this.toolActions(), this.summary?.sheets[0]?.scale ?? 1000);
            case "element": {
                const picked = this.picked[this.pickedNumber];
                if (!picked) return [make("p", {}, say("nothingHere"))];
                const inspection = await this.client.call("inspect", picked);
                const next = (): void => {
                    this.pickedNumber = (this.pickedNumber + 1) % this.picked.length;
                    this.showPanel("element");
                };
                return elementPanel(picked, inspection, this.picked.length - 1, next);
            }
        }
    }

    private async compare(given: MapFile[]): Promise<void> {
        const { maps, problems } = await sortFiles(given);
        for (const problem of problems) this.warn(problem);
        if (!maps[0]) return;
        try {
            await this.changes.compare(maps[0], this.encoding);
            this.showPanel("changes");
        } catch (error) {
            this.warn(`${maps[0].name}: ${error instanceof Error ? error.message : String(error)}`);
        }
    }

    private async showLayer(number: number, shown: boolean): Promise<void> {
        const layer = this.summary?.layers.find((one) => one.number === number);
        if (layer) layer.shown = shown;
        await this.client.call("showLayer", number, shown);
        this.view.showPicture(null);
        this.view.forgetTiles();
    }

    private toolActions(): Parameters<typeof toolsPanel>[0] {
        const name = this.files.map((file) => file.name).join(", ");
        return {
            measure: (kind) => {
                this.measuring.start(kind);
                byId("map").classList.toggle("pointing", kind !== null);
            },
            measuring: () => this.measuring.kind,
            measured: () => this.measuring.result(),
            link: () =>
                void navigator.clipboard
                    ?.writeText(share.addressOf(this.view))
                    .then(() => this.warn(say("linkCopied")))
                    .catch(() => this.warn(share.addressOf(this.view))),
            png: () => void share.savePng(this.client, this.view, name),
            svg: () =>
                void share.saveSvg(
                    this.client,
                    this.view,
                    this.files.map((file) => file.name),
                ),
            compare: () => byId("old-file").click(),
            print: (scale) => void share.printAtScale(this.client, this.view, scale, name),
            encode: (encoding) => {
                this.encoding = encoding;
                void this.read(this.files);
            },
            encoding: () => this.encoding,
            speak: (language) => this.speak(language),
        };
    }

    // --- Pointing ---

    private async click(at: Point): Promise<void> {
        if (!this.summary) return;
        const ground = this.view.toGround(at);
        if (this.measuring.kind) return this.measuring.add(await this.snap(ground));
        if (this.panel === "parcels" && (await this.parcels.chooseAt(ground))) return;
        this.picked = await this.client.call("pick", ground.x, ground.y, pickReach / this.view.scale);
        this.pickedNumber = 0;
        if (this.picked.length > 0) this.showPanel("element");
        else if (this.panel === "element") this.showPanel(null);
        this.view.redraw();
    }

    // The nearest point of a line, or the place itself.
    private async snap(place: Point): Promise<Point> {
        const reach = (1.5 * pickReach) / this.view.scale;
        const near = await this.client.call("pick", place.x, place.y, reach);
        let best = { point: place, distance: reach };
        for (const { kind, outline } of near) {
            if (kind === "text") continue;
            for (let i = 0; i < outline.length; i += 2) {
                const point = { x: outline[i]!, y: outline[i + 1]! };
                const distance = Math.hypot(point.x - place.x, point.y - place.y);
                if (distance < best.distance) best = { point, distance };
            }
        }
        return best.point;
    }

    private goTo(hit: Hit): void {
        this.view.glide({ x: hit.x, y: hit.y }, Math.max(this.view.scale, share.pixelsPerMetreAt(500)));
        const height = 6 / share.pixelsPerMetreAt(500);
        void this.client.call("pick", hit.x, hit.y, height).then((picked) => {
            const found = picked.filter((one) => one.kind === "text" && one.text === hit.text);
            this.picked = found.slice(0, 1);
            this.pickedNumber = 0;
            this.view.redraw();
        });
    }

    private hover(at: Point | null): void {
        if (at) this.sayPlace(this.view.toGround(at));
        this.measuring.hover(at && this.view.toGround(at));
    }
    private sayPlace(place: Point): void {
        const wgs84 = sayWgs84(place);
        byId("coordinates").textContent = sayJtsk(place) + (wgs84 ? `    ${wgs84}` : "");
    }

    private key(event: KeyboardEvent): boolean {
        if (event.key === "/" || event.key === "f") this.find.focus();
        else if (event.key === "0" || event.key === "Home") this.showAll();
        else if (event.key === "Enter" && this.measuring.kind) this.measuring.end();
        else if (event.key === "Escape" && this.measuring.kind) this.measuring.start(this.measuring.kind);
        else if (event.key === "Escape") this.showPanel(null);
        else if (event.key === "Enter") void this.click({ x: this.view.width / 2, y: this.view.height / 2 });
        else return false;
        return true;
    }

    private drawOverlay(context: CanvasRenderingContext2D): void {
        if (this.panel === "parcels") this.parcels.draw(context);
        if (this.panel === "check") this.findings.draw(context);
        if (this.panel === "changes") this.changes.draw(context);
        this.measuring.draw(context);
        const picked = this.picked[this.pickedNumber];
        if (!picked) return;
        context.beginPath();
        for (let i = 0; i < picked.outline.length; i += 2) {
            const at = this.view.toScreen({ x: picked.outline[i]!, y: picked.outline[i + 1]! });
            if (picked.kind === "symbol") context.arc(at.x, at.y, 12, 0, 7);
            else context.lineTo(at.x, at.y);
        }
        context.lineJoin = "round";
        context.strokeStyle = "rgb(255 196 0 / 0.75)";
        context.lineWidth = 6;
        context.stroke();
        context.strokeStyle = "rgb(11 100 83)";
        context.lineWidth = 2;
        context.stroke();
    }

    private viewChanged(): void {
        const { metres, width } = share.scaleBar(this.view.scale);
        byId("scale-bar").style.width = `${width}px`;
        byId("scale-bar-text").textContent =
            metres >= 1000 ? `${metres / 1000} km` : metres >= 1 ? `${metres} m` : sayLength(metres);
        const scale = byId<HTMLInputElement>("scale-input");
        if (document.activeElement !== scale)
            scale.value = String(Number(share.scaleNumber(this.view.scale).toPrecision(3)));
        byId("map").removeAttribute("data-drawn");
        this.sayPlace(this.view.center);
        clearTimeout(this.legendTimer);
        this.legendTimer = window.setTimeout(() => this.refresh("legend"), 250);
        clearTimeout(this.addressTimer);
        if (!this.fitted) return;
        this.addressTimer = window.setTimeout(
            () => history.replaceState(null, "", share.addressOf(this.view)),
            400,
        );
    }

    // --- Language ---

    speak(language: Language): void {
        setLanguage(language);
        document.documentElement.lang = language;
        if (!this.summary) document.title = say("title");
        for (const element of document.querySelectorAll<HTMLElement>(
            "[data-say], [data-say-label], [data-say-placeholder]",
        )) {
            const { say: text, sayLabel, sayPlaceholder } = element.dataset;
            if (text) element.textContent = say(text as keyof Words);
            if (sayLabel) element.setAttribute("aria-label", say(sayLabel as keyof Words));
            if (sayPlaceholder) element.setAttribute("placeholder", say(sayPlaceholder as keyof Words));
            if (sayLabel && element.classList.contains("icon")) element.title = say(sayLabel as keyof Words);
        }
        for (const panelButton of document.querySelectorAll<HTMLElement>("[data-panel]")) {
            panelButton.textContent = say(panelButton.dataset["panel"] as PanelName);
        }
        if (this.panel) this.showPanel(this.panel);
        if (byId("map-status").getAttribute("data-state") === "shown") this.setState("shown");
    }
}
