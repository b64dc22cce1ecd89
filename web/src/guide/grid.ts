// The guide grid: channels down, time across. Rows and blocks are made when they come into view.
import type { Channel, Programme } from "../api/guide.ts";
import type { Entry } from "../api/schedules.ts";
import { el } from "../dom.ts";
import { now, setZone } from "../time/setClock.ts";
import { hour, minute } from "../time/zone.ts";
import { Axis } from "./axis.ts";
import { type Geometry, geometryFor, timeAt, xOf } from "./geometry.ts";
import { Lanes } from "./lanes.ts";
import { Row } from "./row.ts";

/// Rows beyond the view that are made as well, so that a scroll finds them.
const spareRows = 4;
/// Time beyond the view that is shown as well.
const spareTime = hour;
/// Blocks are looked over when the view has moved by this much.
const timeStep = 30 * minute;
/// How long a scroll has to rest before programmes are read, in milliseconds.
const restBeforeReading = 60;

export interface GridListener {
    chosen(programme: Programme, channel: Channel): void;
    /// The time that a jump to it would bring where the view is.
    moved(time: number): void;
    failed(reason: string | null): void;
}

export class Grid {
    readonly element: HTMLElement;
    readonly #listener: GridListener;
    readonly #canvas = el("div", { class: "canvas" });
    readonly #rowGroup = el("div", { role: "rowgroup" });
    readonly #lanes: Lanes;
    readonly #rows = new Map<number, Row>();
    #geometry: Geometry;
    #axis: Axis;
    #channels: readonly Channel[] = [];
    #entries = new Map<string, Entry>();
    #byHand: readonly Entry[] = [];
    #frame = 0;
    #shown = { from: 0, to: 0 };
    #stale = true; // what the rows show, for another reason than a scroll
    #withAntennas = false;
    #readTimer = 0;

    constructor(listener: GridListener) {
        this.#listener = listener;
        this.#lanes = new Lanes({
            read: () => this.#renderAnew(),
            failed: (reason) => listener.failed(reason),
        });
        this.#geometry = geometryFor(window.innerWidth, setZone(), now());
        this.#axis = new Axis(this.#geometry);
        this.element = el("div", { class: "grid", role: "grid", "aria-label": "Programme guide", "aria-readonly": true });
        this.element.append(this.#canvas);
        this.element.addEventListener("scroll", () => this.#renderSoon(), { passive: true });
        this.element.addEventListener("click", (event) => this.#clicked(event));
        new ResizeObserver(() => this.#resized()).observe(this.element);
        this.#layOut();
    }

    get geometry(): Geometry {
        return this.#geometry;
    }

    get channels(): readonly Channel[] {
        return this.#channels;
    }

    get lanes(): Lanes {
        return this.#lanes;
    }

    /// Rows that fit into the view.
    get pageRows(): number {
        const height = this.element.clientHeight - this.#geometry.axisHeight;
        return Math.max(1, Math.floor(height / this.#geometry.rowHeight));
    }

    showChannels(channels: readonly Channel[]): void {
        this.#channels = channels;
        this.#withAntennas = new Set(channels.map((channel) => channel.antenna)).size > 1;
        this.#dropRows();
        this.#layOut();
        this.#renderAnew();
    }

    showEntries(entries: readonly Entry[]): void {
        this.#entries = new Map(entries.filter((entry) => entry.programmeId).map((entry) => [entry.programmeId, entry]));
        this.#byHand = entries.filter((entry) => !entry.programmeId);
        this.#renderAnew();
    }

    /// Another guide is in use.
    readAgain(): void {
        this.#lanes.forget();
        this.#renderAnew();
    }

    /// The clock has moved on; at midnight the grid begins a day later.
    tick(): void {
        if (setZone().midnight(now()) !== this.#geometry.start) this.#relayOut();
        this.#axis.showNow(now());
        this.#renderAnew();
    }

    /// Brings a time to the left part of the view.
    scrollToTime(time: number, smoothly = true): void {
        const left = Math.max(0, xOf(this.#geometry, time) - this.#lead());
        const far = Math.abs(left - this.element.scrollLeft) > 3 * this.#viewWidth();
        this.#scroll({ left }, smoothly && !far);
    }

    scrollToChannel(id: string): void {
        const index = this.#channels.findIndex((channel) => channel.id === id);
        if (index < 0) return;
        this.#scroll({ top: index * this.#geometry.rowHeight - 2 * this.#geometry.rowHeight }, false);
    }

    /// Scrolls as little as shows a channel's row and the beginning of what runs from `start` to `end` there.
    reveal(index: number, start: number, end: number): void {
        const { rowHeight, axisHeight } = this.#geometry;
        const { scrollTop, scrollLeft, clientHeight } = this.element;
        const top = index * rowHeight;
        const bottom = top + rowHeight - (clientHeight - axisHeight);
        const left = Math.max(0, xOf(this.#geometry, start));
        const view = this.#viewWidth();
        const width = Math.min(xOf(this.#geometry, end) - left, view * 0.8);
        const target: ScrollToOptions = {};
        if (top < scrollTop) target.top = top;
        else if (bottom > scrollTop) target.top = bottom;
        if (left < scrollLeft) target.left = Math.max(0, left - 24);
        else if (left + width > scrollLeft + view) target.left = left + width - view + 24;
        this.#scroll(target, false);
        this.render();
    }

    row(index: number): Row | undefined {
        return this.#rows.get(index);
    }

    /// The stretch of time in view.
    viewTimes(): { from: number; to: number } {
        const left = this.element.scrollLeft;
        return { from: timeAt(this.#geometry, left), to: timeAt(this.#geometry, left + this.#viewWidth()) };
    }

    viewRows(): { first: number; last: number } {
        const first = Math.floor(this.element.scrollTop / this.#geometry.rowHeight);
        return { first, last: Math.min(this.#channels.length - 1, first + this.pageRows) };
    }

    /// Makes what is in view, and has what is missing read.
    render(): void {
        if (this.element.clientHeight === 0) return;
        const { from, to } = this.#stretchToShow();
        const anew = this.#stale || from !== this.#shown.from || to !== this.#shown.to;
        this.#stale = false;
        this.#shown = { from, to };
        const rows = this.viewRows();
        const first = Math.max(0, rows.first - spareRows);
        const last = Math.min(this.#channels.length - 1, rows.last + spareRows);
        for (const [index, row] of this.#rows) {
            if ((index >= first && index <= last) || row.element.contains(document.activeElement)) continue;
            row.element.remove();
            this.#rows.delete(index);
        }
        for (let index = first; index <= last; ++index) this.#showRow(index, anew);
        this.#listener.moved(timeAt(this.#geometry, this.element.scrollLeft + this.#lead()));
        clearTimeout(this.#readTimer);
        this.#readTimer = window.setTimeout(() => this.#readView(first, last, from, to), restBeforeReading);
    }

    #showRow(index: number, anew: boolean): void {
        const channel = this.#channels[index];
        if (!channel) return;
        const view = this.viewTimes().from;
        const known = this.#rows.get(index);
        if (known && !anew) return known.moveTexts(view);
        const row = known ?? new Row(channel, index, this.#geometry, this.#withAntennas);
        if (!known) {
            this.#rows.set(index, row);
            this.#insert(row);
        }
        const { from, to } = this.#shown;
        row.show({
            view,
            programmes: this.#lanes.programmes(channel.id, from, to),
            complete: this.#lanes.isRead(channel.id, from, to),
            from,
            to,
            now: now(),
            entries: this.#entries,
            byHand: this.#byHand.filter(
                (entry) => entry.channelNumber === channel.number && entry.antenna === channel.antenna,
            ),
        });
    }

    /// Keeps the rows in their order, in which a screen reader reads them.
    #insert(row: Row): void {
        let next: Row | undefined;
        for (const other of this.#rows.values()) {
            if (other.index > row.index && (!next || other.index < next.index)) next = other;
        }
        this.#rowGroup.insertBefore(row.element, next?.element ?? null);
    }

    #readView(first: number, last: number, from: number, to: number): void {
        const ids = this.#channels.slice(first, last + 1).map((channel) => channel.id);
        if (ids.length > 0) this.#lanes.want(ids, from, to);
    }

    #stretchToShow(): { from: number; to: number } {
        const view = this.viewTimes();
        return {
            from: Math.max(this.#geometry.start, Math.floor((view.from - spareTime) / timeStep) * timeStep),
            to: Math.min(this.#geometry.end, Math.ceil((view.to + spareTime) / timeStep) * timeStep),
        };
    }

    #renderAnew(): void {
        this.#stale = true;
        this.#renderSoon();
    }

    #renderSoon(): void {
        if (this.#frame) return;
        this.#frame = requestAnimationFrame(() => {
            this.#frame = 0;
            this.render();
        });
    }

    #scroll(target: ScrollToOptions, smoothly: boolean): void {
        const calm = matchMedia("(prefers-reduced-motion: reduce)").matches;
        this.element.scrollTo({ ...target, behavior: smoothly && !calm ? "smooth" : "instant" });
    }

    /// What a jump to a time leaves before it.
    #lead(): number {
        return Math.min(this.#viewWidth() * 0.15, this.#geometry.hourWidth / 2);
    }

    #viewWidth(): number {
        return Math.max(0, this.element.clientWidth - this.#geometry.channelWidth);
    }

    #clicked(event: MouseEvent): void {
        const cell = (event.target as Element).closest<HTMLElement>("[data-programme]");
        const row = cell && [...this.#rows.values()].find((one) => one.element.contains(cell));
        if (!cell || !row) return;
        const programme = this.#lanes.known(row.channel.id).find((one) => one.id === cell.dataset["programme"]);
        if (programme) this.#listener.chosen(programme, row.channel);
    }

    #resized(): void {
        const geometry = geometryFor(window.innerWidth, setZone(), now());
        if (geometry.hourWidth !== this.#geometry.hourWidth) this.#relayOut();
        this.#renderAnew();
    }

    /// Other measures, or another first day: the same time stays in view.
    #relayOut(): void {
        const { from } = this.viewTimes();
        this.#geometry = geometryFor(window.innerWidth, setZone(), now());
        this.#dropRows();
        this.#axis = new Axis(this.#geometry);
        this.#layOut();
        this.element.scrollLeft = xOf(this.#geometry, from);
    }

    #dropRows(): void {
        this.#rowGroup.replaceChildren();
        this.#rows.clear();
        this.#stale = true;
    }

    #layOut(): void {
        const { channelWidth, axisHeight, rowHeight, hourWidth } = this.#geometry;
        const width = channelWidth + xOf(this.#geometry, this.#geometry.end);
        this.#canvas.style.width = `${width}px`;
        this.#canvas.style.height = `${axisHeight + rowHeight * this.#channels.length}px`;
        this.element.style.setProperty("--channel-width", `${channelWidth}px`);
        this.element.style.setProperty("--axis-height", `${axisHeight}px`);
        this.element.style.setProperty("--hour-width", `${hourWidth}px`);
        this.element.setAttribute("aria-rowcount", String(this.#channels.length));
        this.#canvas.replaceChildren(this.#axis.element, this.#axis.nowLine, this.#rowGroup);
        this.#axis.showNow(now());
    }
}
