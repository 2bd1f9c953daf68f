// The page: joins the map on the screen with its panels, and keys and clicks with what they do.

import type { Client } from "./client.ts";
import { byId } from "./dom.ts";
import { sortFiles, type MapFile } from "./files.ts";
import { FindField } from "./find.ts";
import { keepPlaceInAddress, sayPlace, showScale, watchFoot } from "./foot.ts";
import { watchGestures } from "./gestures.ts";
import { MapView, type Point } from "./map_view.ts";
import { Measuring } from "./measure.ts";
import { Opening } from "./opening.ts";
import { layersPanel, legendPanel } from "./panels.ts";
import { Parcels } from "./parcels.ts";
import { Pointing } from "./pointing.ts";
import { Changes, Findings } from "./review.ts";
import * as share from "./share.ts";
import { SidePanel, type PanelName } from "./side_panel.ts";
import { isShown, setState, warn } from "./status.ts";
import { toolsPanel, type ToolActions } from "./tools_panel.ts";
import { sayEverywhere } from "./labels.ts";
import { say, setLanguage, type Language } from "./words.ts";

export class App {
    readonly opening: Opening;
    private readonly view: MapView;
    private readonly panel: SidePanel;
    private readonly pointing: Pointing;
    private readonly parcels: Parcels;
    private readonly measuring: Measuring;
    private readonly findings: Findings;
    private readonly changes: Changes;
    private readonly find: FindField;
    private legendTimer = 0;

    constructor(
        private readonly client: Client,
        startWorker: () => Promise<Client>,
    ) {
        this.view = new MapView(
            byId<HTMLCanvasElement>("map-canvas"),
            byId<HTMLCanvasElement>("overlay-canvas"),
            (view) => client.call("tile", view),
        );
        this.opening = new Opening(client, this.view, () => this.forget());
        this.panel = new SidePanel(
            {
                layers: () =>
                    layersPanel(this.summary?.layers ?? [], (...one) => void this.showLayer(...one)),
                legend: async () => legendPanel(await client.call("legend", this.view.box())),
                parcels: () => this.parcels.panel(),
                check: () => this.findings.panel(this.opening.files.map((file) => file.name)),
                changes: () => this.changes.panel(),
                tools: () => toolsPanel(this.toolActions(), this.summary?.sheets[0]?.scale ?? 1000),
                element: () => this.pointing.panel(() => this.panel.refresh("element")),
            },
            (before) => this.panelChanged(before),
        );
        this.pointing = new Pointing(client, this.view);
        // Workers of their own, which have the sheets of the map before them.
        const start = (): Promise<Client> => this.opening.offerTo(startWorker(), false);
        const startForParcels = (): Promise<Client> => this.opening.offerTo(startWorker(), true);
        this.parcels = new Parcels(this.view, startForParcels, () => this.panel.refresh("parcels"));
        this.findings = new Findings(this.view, start, () => this.panel.refresh("check"));
        this.changes = new Changes(this.view, start, () => this.panel.refresh("changes"));
        this.measuring = new Measuring(this.view, () => this.panel.refresh("tools"));
        this.find = new FindField(
            byId<HTMLInputElement>("find-text"),
            byId("find-hits"),
            (text, most) => client.call("find", text, most),
            (hit) => void this.pointing.goTo(hit),
        );
        this.watch();
    }

    private get summary(): Opening["summary"] {
        return this.opening.summary;
    }
    private get title(): string {
        return this.opening.files.map((file) => file.name).join(", ");
    }

    private watch(): void {
        this.view.onChange = () => this.viewChanged();
        this.view.onIdle = () => byId("map").setAttribute("data-drawn", "true");
        this.view.drawOverlay = (context) => this.drawOverlay(context);
        watchGestures(byId("map"), this.view, {
            click: (at) => void this.click(at),
            doubleClick: () => {
                if (this.measuring.kind) this.measuring.end();
                return this.measuring.kind !== null;
            },
            hover: (at) => this.hover(at),
            key: (event) => this.key(event),
        });
        watchFoot(this.view);
        for (const change of ["focus", "blur"])
            byId("map").addEventListener(change, () => this.view.redraw());
        byId("zoom-all").addEventListener("click", () => this.showAll());
        const oldFile = byId<HTMLInputElement>("old-file");
        oldFile.addEventListener("change", () => {
            void this.compare([...(oldFile.files ?? [])].map((file) => ({ name: file.name, blob: file })));
            oldFile.value = "";
        });
    }

    // Another map comes in the place of the one that was.
    private forget(): void {
        this.pointing.clear();
        this.parcels.clear();
        this.findings.clear();
        this.changes.clear();
        this.measure(null);
        this.find.clear();
        this.panel.show(null);
    }

    // --- The map ---

    private showAll(): void {
        if (this.summary?.extent.length === 4) this.view.show(this.summary.extent);
    }

    private async showLayer(number: number, shown: boolean): Promise<void> {
        const layer = this.summary?.layers.find((one) => one.number === number);
        if (layer) layer.shown = shown;
        await this.client.call("showLayer", number, shown);
        this.view.showPicture(null);
        this.view.forgetTiles();
    }

    private viewChanged(): void {
        showScale(this.view);
        sayPlace(this.view.center);
        byId("map").removeAttribute("data-drawn");
        clearTimeout(this.legendTimer);
        this.legendTimer = window.setTimeout(() => this.panel.refresh("legend"), 250);
        if (this.opening.settled) keepPlaceInAddress(this.view);
    }

    private drawOverlay(context: CanvasRenderingContext2D): void {
        if (this.panel.shown === "parcels") this.parcels.draw(context);
        if (this.panel.shown === "check") this.findings.draw(context);
        if (this.panel.shown === "changes") this.changes.draw(context);
        this.measuring.draw(context);
        this.pointing.draw(context);
        // Where Enter points to, for those who have no pointer.
        if (byId("map").matches(":focus-visible")) drawCross(context, this.view);
    }

    private panelChanged(before: PanelName | null): void {
        if (before === "element" && this.panel.shown !== "element") this.pointing.clear();
        this.view.redraw();
    }

    // --- Pointing ---

    private async click(at: Point): Promise<void> {
        if (!this.summary) return;
        const ground = this.view.toGround(at);
        if (this.measuring.kind) return this.measuring.add(await this.pointing.snap(ground));
        if (this.panel.shown === "parcels" && (await this.parcels.chooseAt(ground))) return;
        if (await this.pointing.pick(ground)) this.panel.show("element");
        else if (this.panel.shown === "element") this.panel.show(null);
    }

    private hover(at: Point | null): void {
        if (at) sayPlace(this.view.toGround(at));
        this.measuring.hover(at && this.view.toGround(at));
    }

    // True when the key has a meaning here.
    private key(event: KeyboardEvent): boolean {
        if (event.key === "/" || event.key === "f") this.find.focus();
        else if (event.key === "0" || event.key === "Home") this.showAll();
        else if (event.key === "Enter" && this.measuring.kind) this.measuring.end();
        else if (event.key === "Escape" && this.measuring.kind) this.measuring.start(this.measuring.kind);
        else if (event.key === "Escape") this.panel.show(null);
        else if (event.key === "Enter" || event.key === " ")
            void this.click({ x: this.view.width / 2, y: this.view.height / 2 });
        else return false;
        return true;
    }

    // --- Tools ---

    private measure(kind: Measuring["kind"]): void {
        this.measuring.start(kind);
        byId("map").classList.toggle("pointing", kind !== null);
    }

    private async copyLink(): Promise<void> {
        const address = share.addressOf(this.view);
        try {
            await navigator.clipboard.writeText(address);
            warn(say("linkCopied"));
        } catch {
            warn(address); // where the browser has no clipboard for pages, it can be copied from there
        }
    }

    private async compare(given: MapFile[]): Promise<void> {
        const { maps, problems } = await sortFiles(given);
        problems.forEach(warn);
        if (!maps[0] || !this.summary) return;
        this.changes.compareWith(maps[0], this.opening.encoding);
        this.panel.show("changes");
    }

    private toolActions(): ToolActions {
        const { client, view, opening } = this;
        const names = opening.files.map((file) => file.name);
        return {
            measure: (kind) => this.measure(kind),
            measuring: () => this.measuring.kind,
            measured: () => this.measuring.result(),
            link: () => void this.copyLink(),
            png: () => void share.savePng(client, view, this.title),
            svg: () => void share.saveSvg(client, view, names),
            compare: () => byId("old-file").click(),
            print: (scale) => void share.printAtScale(client, view, scale, this.title),
            encode: (encoding) => {
                opening.encoding = encoding;
                void opening.readAgain();
            },
            encoding: () => opening.encoding,
            speak: (language) => this.speak(language),
        };
    }

    speak(language: Language): void {
        setLanguage(language);
        void this.client.call("speak", language);
        sayEverywhere();
        if (!this.summary) document.title = say("title");
        this.view.redraw();
        this.viewChanged();
        if (this.panel.shown) this.panel.refresh(this.panel.shown);
        if (isShown()) setState("shown", this.summary);
    }
}

function drawCross(context: CanvasRenderingContext2D, view: MapView): void {
    const [x, y] = [view.width / 2, view.height / 2];
    context.beginPath();
    for (const [dx, dy] of [
        [1, 0],
        [-1, 0],
        [0, 1],
        [0, -1],
    ] as const) {
        context.moveTo(x + 4 * dx, y + 4 * dy);
        context.lineTo(x + 14 * dx, y + 14 * dy);
    }
    context.lineWidth = 1.5;
    context.strokeStyle = "rgb(11 100 83)";
    context.stroke();
}
