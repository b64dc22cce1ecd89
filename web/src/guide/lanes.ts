// The programmes that have been read so far, a lane a channel, and reading those that are in view.
import { type Programme, readProgrammes } from "../api/guide.ts";
import { hour } from "../time/zone.ts";

/// Programmes are read by stretches of time of this length.
const stretch = 6 * hour;
/// As many channels are read at once.
const channelsAtOnce = 24;
/// The set answers one request at a time, so that more at once would only wait.
const requestsAtOnce = 2;
/// How long to wait after a failed request, in milliseconds.
const retryAfter = 3000;

interface Lane {
    programmes: Programme[]; ///< by start
    read: Set<number>; ///< stretches, by number since 1970
    reading: Set<number>;
}

export interface LanesListener {
    /// Programmes of these channels have been read.
    read(channelIds: readonly string[]): void;
    /// Why programmes could not be read; null once they can be again.
    failed(reason: string | null): void;
}

export class Lanes {
    readonly #listener: LanesListener;
    readonly #waiting = new Set<() => void>();
    #lanes = new Map<string, Lane>();
    #wanted: { channelIds: readonly string[]; first: number; last: number } | null = null;
    #requests = 0;
    #generation = 0;
    #failed = false;

    constructor(listener: LanesListener) {
        this.#listener = listener;
    }

    /// What is in view, in place of what was: it is read as far as it is not there, the nearest to its middle
    /// first.
    want(channelIds: readonly string[], from: number, to: number): void {
        this.#wanted = { channelIds, first: stretchOf(from), last: stretchOf(to - 1) };
        this.#readMore();
    }

    /// Those that are known and run at some time from `from` to before `to`.
    programmes(channelId: string, from: number, to: number): Programme[] {
        const lane = this.#lanes.get(channelId);
        return lane ? lane.programmes.filter((programme) => programme.start < to && programme.end > from) : [];
    }

    /// All that are known of a channel, by start.
    known(channelId: string): readonly Programme[] {
        return this.#lanes.get(channelId)?.programmes ?? [];
    }

    isRead(channelId: string, from: number, to: number): boolean {
        const lane = this.#lanes.get(channelId);
        if (!lane) return false;
        for (let number = stretchOf(from); number <= stretchOf(to - 1); ++number) {
            if (!lane.read.has(number)) return false;
        }
        return true;
    }

    /// Waits until the channel's programmes around a time are there, or cannot be had.
    async ensure(channelId: string, from: number, to: number): Promise<void> {
        while (!this.isRead(channelId, from, to) && !this.#failed) {
            this.want([channelId], from, to);
            await new Promise<void>((resolve) => this.#waiting.add(resolve));
        }
    }

    /// Another guide is in use: what has been read stays to be seen until it is read again.
    forget(): void {
        ++this.#generation;
        for (const lane of this.#lanes.values()) {
            lane.read.clear();
            lane.reading.clear();
        }
    }

    #readMore(): void {
        while (this.#requests < requestsAtOnce && !this.#failed) {
            const next = this.#missing();
            if (!next) return;
            void this.#read(next.channelIds, next.number);
        }
    }

    #missing(): { channelIds: string[]; number: number } | null {
        if (!this.#wanted) return null;
        const { channelIds, first, last } = this.#wanted;
        const middle = (first + last) / 2;
        const numbers = Array.from({ length: last - first + 1 }, (_, index) => first + index);
        numbers.sort((a, b) => Math.abs(a - middle) - Math.abs(b - middle));
        for (const number of numbers) {
            const missing = channelIds.filter((id) => {
                const lane = this.#lanes.get(id);
                return !lane?.read.has(number) && !lane?.reading.has(number);
            });
            if (missing.length > 0) return { channelIds: missing.slice(0, channelsAtOnce), number };
        }
        return null;
    }

    async #read(channelIds: string[], number: number): Promise<void> {
        const generation = this.#generation;
        for (const id of channelIds) this.#lane(id).reading.add(number);
        ++this.#requests;
        try {
            const from = number * stretch;
            const programmes = await readProgrammes(channelIds, from, from + stretch);
            if (generation === this.#generation) this.#keep(channelIds, number, programmes);
            this.#listener.failed(null);
        } catch (error) {
            this.#retryLater(error);
        } finally {
            --this.#requests;
            if (generation === this.#generation) {
                for (const id of channelIds) this.#lane(id).reading.delete(number);
            }
        }
        this.#listener.read(channelIds);
        for (const resolve of this.#waiting) resolve();
        this.#waiting.clear();
        this.#readMore();
    }

    #keep(channelIds: string[], number: number, programmes: Programme[]): void {
        const from = number * stretch;
        const to = from + stretch;
        const read = new Map<string, Programme[]>(channelIds.map((id) => [id, []]));
        for (const programme of programmes) read.get(programme.channelId)?.push(programme);
        for (const [id, added] of read) {
            const lane = this.#lane(id);
            const kept = lane.programmes.filter((programme) => programme.end <= from || programme.start >= to);
            lane.programmes = [...kept, ...added].sort((a, b) => a.start - b.start);
            lane.read.add(number);
        }
    }

    #retryLater(error: unknown): void {
        this.#failed = true;
        this.#listener.failed(error instanceof Error ? error.message : String(error));
        setTimeout(() => {
            this.#failed = false;
            this.#readMore();
        }, retryAfter);
    }

    #lane(channelId: string): Lane {
        let lane = this.#lanes.get(channelId);
        if (!lane) {
            lane = { programmes: [], read: new Set(), reading: new Set() };
            this.#lanes.set(channelId, lane);
        }
        return lane;
    }
}

function stretchOf(time: number): number {
    return Math.floor(time / stretch);
}
