// One channel's row of the grid: its head, and blocks for the programmes in view.
import type { Channel, Programme } from "../api/guide.ts";
import type { Entry } from "../api/schedules.ts";
import { antennaName } from "../antennas.ts";
import { el } from "../dom.ts";
import { icon } from "../icons.ts";
import { setZone } from "../time/setClock.ts";
import { type Geometry, timeAt, xOf } from "./geometry.ts";

/// Narrower blocks hold no text, and no time below the title.
const textWidth = 34;
const timeWidth = 60;

/// What a row shows.
export interface RowContent {
    programmes: readonly Programme[];
    complete: boolean; ///< whether all programmes of the stretch have been read
    from: number;
    to: number;
    view: number; ///< the time at the view's left edge
    now: number;
    entries: ReadonlyMap<string, Entry>; ///< by programme
    byHand: readonly Entry[]; ///< this channel's entries without a programme
}

/// A programme's block, and what it was painted from.
interface Block {
    element: HTMLElement;
    painted: string;
}

export class Row {
    readonly element: HTMLElement;
    readonly channel: Channel;
    readonly index: number;
    readonly #geometry: Geometry;
    readonly #blocks = new Map<string, Block>();
    #programmes: readonly Programme[] = [];
    readonly #marks: HTMLElement;
    readonly #gap: HTMLElement;

    /// `withAntenna`: numbers are taken more than once, on several antennas.
    constructor(channel: Channel, index: number, geometry: Geometry, withAntenna: boolean) {
        this.channel = channel;
        this.index = index;
        this.#geometry = geometry;
        this.#gap = el("div", { class: "gap", role: "gridcell", tabindex: -1 });
        this.#marks = el("div", { class: "marks", "aria-hidden": "true" });
        this.element = el(
            "div",
            { class: "row", role: "row", "aria-rowindex": index + 1 },
            el(
                "div",
                { class: "channel", role: "rowheader", title: `${channel.number} ${channel.name}` },
                el("span", { class: "number" }, channel.number),
                el("span", { class: "name" }, channel.name),
                withAntenna && el("span", { class: "antenna" }, antennaName(channel.antenna)),
            ),
            this.#marks,
        );
        this.element.style.top = `${geometry.axisHeight + index * geometry.rowHeight}px`;
        this.element.style.height = `${geometry.rowHeight}px`;
    }

    /// The block of a programme; for null the place that tells of none.
    cell(programmeId: string | null): HTMLElement | undefined {
        if (programmeId === null) return this.#gap.isConnected ? this.#gap : undefined;
        return this.#blocks.get(programmeId)?.element;
    }

    show(content: RowContent): void {
        const shown = new Set(content.programmes.map((programme) => programme.id));
        for (const [id, { element }] of this.#blocks) {
            if (shown.has(id) || element === document.activeElement) continue;
            element.remove();
            this.#blocks.delete(id);
        }
        let before: Element = this.#marks;
        for (const programme of content.programmes) {
            const block = this.#blocks.get(programme.id) ?? this.#make(programme);
            this.#paint(block, programme, content);
            if (before.nextElementSibling !== block.element) before.after(block.element);
            before = block.element;
        }
        this.#programmes = content.programmes;
        this.#showGap(content);
        this.#showMarks(content);
        this.moveTexts(content.view);
        this.element.setAttribute("aria-busy", String(!content.complete));
    }

    /// Keeps the texts of blocks that begin left of the view in it.
    moveTexts(view: number): void {
        const edge = xOf(this.#geometry, view);
        for (const programme of this.#programmes) {
            const left = Math.max(0, xOf(this.#geometry, programme.start));
            const text = this.#blocks.get(programme.id)?.element.firstElementChild as HTMLElement | null | undefined;
            if (!text) continue;
            const moved = Math.max(0, edge - left);
            const space = xOf(this.#geometry, programme.end) - left - moved;
            text.style.marginLeft = moved > 0 ? `${moved}px` : "";
            text.style.opacity = moved > 0 && space < textWidth ? "0" : "";
        }
    }

    #make(programme: Programme): Block {
        const element = el("div", { class: "cell", role: "gridcell", tabindex: -1, "data-programme": programme.id });
        const block = { element, painted: "" };
        this.#blocks.set(programme.id, block);
        return block;
    }

    #paint(block: Block, programme: Programme, content: RowContent): void {
        const cell = block.element;
        const entry = content.entries.get(programme.id);
        const phase = programme.end <= content.now ? "past" : programme.start <= content.now ? "now" : "next";
        const painted = [programme.title, programme.start, programme.end, phase, entry?.state, entry?.series].join("|");
        if (block.painted === painted) return;
        block.painted = painted;
        const left = Math.max(0, xOf(this.#geometry, programme.start));
        const right = Math.min(xOf(this.#geometry, this.#geometry.end), xOf(this.#geometry, programme.end));
        const width = Math.max(right - left, 3);
        cell.style.left = `${this.#geometry.channelWidth + left}px`;
        cell.style.width = `${width}px`;
        const narrow = width < timeWidth ? ["narrow"] : [];
        cell.className = ["cell", phase, ...narrow, ...(entry ? ["booked", entry.state.toLowerCase()] : [])].join(" ");
        cell.title = `${programme.title}\n${setZone().clock(programme.start)} to ${setZone().clock(programme.end)}`;
        cell.replaceChildren(label(programme, phase, entry, width < textWidth));
    }

    #showGap(content: RowContent): void {
        if (content.programmes.length > 0) {
            if (this.#gap !== document.activeElement) this.#gap.remove();
            return;
        }
        const text = content.complete ? "No programme information" : "Reading the guide";
        this.#gap.replaceChildren(el("span", { class: content.complete ? "" : "visually-hidden" }, text));
        this.#gap.classList.toggle("reading", !content.complete);
        const from = Math.max(content.from, this.#geometry.start);
        this.#gap.style.left = `${this.#geometry.channelWidth + xOf(this.#geometry, from)}px`;
        this.#gap.style.width = `${xOf(this.#geometry, Math.min(content.to, this.#geometry.end)) - xOf(this.#geometry, from)}px`;
        if (!this.#gap.isConnected) this.element.append(this.#gap);
    }

    #showMarks(content: RowContent): void {
        const marks = content.byHand
            .filter((entry) => entry.end > timeAt(this.#geometry, 0))
            .map((entry) => {
                const mark = el("div", { class: `mark ${entry.state.toLowerCase()}` });
                const left = Math.max(0, xOf(this.#geometry, entry.start));
                mark.style.left = `${this.#geometry.channelWidth + left}px`;
                mark.style.width = `${xOf(this.#geometry, entry.end) - left}px`;
                return mark;
            });
        this.#marks.replaceChildren(...marks);
    }
}

/// What a block says; the part that its width leaves no room for, to screen readers alone.
function label(programme: Programme, phase: string, entry: Entry | undefined, unseen: boolean): HTMLElement {
    const rest = [` to ${setZone().clock(programme.end)}`, ...spoken(phase, entry)].join(", ");
    return el(
        "div",
        { class: unseen ? "label visually-hidden" : "label" },
        el("span", { class: "title" }, entry && entryIcon(entry), programme.title || "Untitled"),
        el("span", { class: "visually-hidden" }, ", "),
        el("span", { class: "times" }, setZone().clock(programme.start)),
        el("span", { class: "visually-hidden" }, rest),
    );
}

export function entryIcon(entry: Entry): SVGSVGElement {
    return icon(entry.state === "VIEW" ? "bell" : entry.series ? "series" : "record");
}

function spoken(phase: string, entry: Entry | undefined): string[] {
    const words: string[] = [];
    if (phase === "now") words.push("on now");
    if (phase === "past") words.push("over");
    if (entry?.state === "VIEW") words.push("reminder set");
    if (entry?.state === "RECORD") words.push(entry.series ? "series recording set" : "recording set");
    if (entry?.state === "RECORDING") words.push("being recorded");
    return words;
}
