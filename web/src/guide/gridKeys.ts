// Moving through the grid with the keyboard. One block has the focus; up and down keep to its time.
import type { Programme } from "../api/guide.ts";
import { now } from "../time/setClock.ts";
import { hour } from "../time/zone.ts";
import type { Grid } from "./grid.ts";

/// How far to look for the next programme of a channel.
const reach = 12 * hour;
const day = 24 * hour;

interface Cursor {
    row: number;
    time: number; ///< kept while moving up and down
    programme: Programme | null; ///< null: the channel has none then
}

export class GridKeys {
    readonly #grid: Grid;
    #cursor: Cursor = { row: 0, time: 0, programme: null };
    #moves = 0; // numbers them, so that a later one overtakes one that waits

    constructor(grid: Grid) {
        this.#grid = grid;
        grid.element.addEventListener("keydown", (event) => this.#pressed(event));
        grid.element.addEventListener("focusin", (event) => this.#focused(event.target as Element));
        grid.element.addEventListener("focus", () => void this.enter());
        grid.element.tabIndex = 0;
    }

    /// Focuses the block that had the focus last, or what is on now on the first channel in view.
    async enter(): Promise<void> {
        const { first, last } = this.#grid.viewRows();
        const { from, to } = this.#grid.viewTimes();
        const { row, time } = this.#cursor;
        if (time >= from && time < to && row >= first && row <= last) return this.#goTo(row, time);
        const current = now();
        return this.#goTo(first, current >= from && current < to ? current : from + (to - from) / 4);
    }

    /// Focuses what is on now on a channel.
    async focusChannel(channelId: string): Promise<void> {
        const row = this.#grid.channels.findIndex((channel) => channel.id === channelId);
        if (row >= 0) await this.#goTo(row, now());
    }

    #focused(target: Element): void {
        const inside = target !== this.#grid.element;
        // While a block has the focus, shift and tab leave the grid instead of going back to it as a whole.
        this.#grid.element.tabIndex = inside ? -1 : 0;
        if (!inside) return;
        target.addEventListener("blur", () => (this.#grid.element.tabIndex = 0), { once: true });
    }

    #pressed(event: KeyboardEvent): void {
        if (event.altKey || event.metaKey) return;
        const move = this.#moveFor(event);
        if (!move) return;
        event.preventDefault();
        void move();
    }

    #moveFor(event: KeyboardEvent): (() => Promise<void>) | null {
        const { row, time } = this.#cursor;
        const page = this.#grid.pageRows;
        const last = this.#grid.channels.length - 1;
        switch (event.key) {
            case "ArrowUp":
                return () => this.#goTo(row - 1, time);
            case "ArrowDown":
                return () => this.#goTo(row + 1, time);
            case "PageUp":
                return () => (event.shiftKey ? this.#goTo(row, time - day) : this.#goTo(row - page, time));
            case "PageDown":
                return () => (event.shiftKey ? this.#goTo(row, time + day) : this.#goTo(row + page, time));
            case "ArrowLeft":
                return () => this.#step(-1);
            case "ArrowRight":
                return () => this.#step(1);
            case "Home":
                return () => this.#goTo(event.ctrlKey ? 0 : row, now());
            case "End":
                return () => this.#goTo(event.ctrlKey ? last : row, this.#grid.viewTimes().to);
            case "Enter":
            case " ":
                return async () => (document.activeElement as HTMLElement).click();
            default:
                return null;
        }
    }

    /// The next or previous programme of the channel.
    async #step(direction: 1 | -1): Promise<void> {
        const { row, time, programme } = this.#cursor;
        const channel = this.#grid.channels[row];
        if (!channel) return;
        const { start, end } = this.#grid.geometry;
        const edge = direction > 0 ? (programme?.end ?? time) : (programme?.start ?? time);
        const from = Math.max(start, direction > 0 ? edge : edge - reach);
        const to = Math.min(end, direction > 0 ? edge + reach : edge);
        if (from >= to) return;
        const move = ++this.#moves;
        await this.#grid.lanes.ensure(channel.id, from, to);
        if (move !== this.#moves) return;
        const there = this.#grid.lanes.programmes(channel.id, from, to).filter((one) => one.id !== programme?.id);
        const next = direction > 0 ? there[0] : there.at(-1);
        if (next) await this.#goTo(row, Math.max(next.start, start));
        else if (!programme) await this.#goTo(row, time + direction * hour);
    }

    async #goTo(row: number, time: number): Promise<void> {
        const { start, end } = this.#grid.geometry;
        const index = Math.min(Math.max(row, 0), this.#grid.channels.length - 1);
        const at = Math.min(Math.max(time, start), end - 1);
        const channel = this.#grid.channels[index];
        if (!channel) return;
        const move = ++this.#moves;
        await this.#grid.lanes.ensure(channel.id, at, at + 1);
        if (move !== this.#moves) return;
        let programme = this.#grid.lanes.programmes(channel.id, at, at + 1)[0] ?? null;
        this.#grid.reveal(index, programme?.start ?? at, programme?.end ?? at + hour);
        const place = this.#grid.row(index);
        if (!programme && !place?.cell(null)) programme = this.#nearest(channel.id, at);
        this.#cursor = { row: index, time: at, programme };
        place?.cell(programme?.id ?? null)?.focus({ preventScroll: true });
    }

    /// Of the programmes in view, for a time at which the channel has none.
    #nearest(channelId: string, time: number): Programme | null {
        const { from, to } = this.#grid.viewTimes();
        const distance = ({ start, end }: Programme) => Math.max(start - time, time - end);
        const there = this.#grid.lanes.programmes(channelId, from, to);
        return there.sort((a, b) => distance(a) - distance(b))[0] ?? null;
    }
}
