// Booking, with what is in the way of it.
import { type Booked, type Entry, removeEntry } from "../api/schedules.ts";
import { refreshSchedules } from "../state.ts";

/// Something to book.
export interface Wish {
    /// Asks the set for it; with `replace` in the place of one entry that is in the way.
    book(replace: boolean): Promise<Booked>;
    /// The entry that it stands for already, as when a reminder becomes a recording.
    instead?: Entry;
}

/// Books it. An entry that it stands for already is no conflict.
export async function book(wish: Wish): Promise<Booked> {
    const result = await wish.book(false);
    if (result.outcome === "conflict" && wish.instead) {
        const others = result.entries.filter((entry) => entry.id !== wish.instead?.id);
        if (others.length === 0) return finish(await wish.book(true));
        return { outcome: "conflict", entries: others };
    }
    return finish(result);
}

/// Removes what is in the way, then books it. The set itself replaces one entry at the most.
export async function bookInPlaceOf(wish: Wish, entries: readonly Entry[]): Promise<Booked> {
    for (const entry of entries) await removeEntry(entry.id);
    return finish(await wish.book(true));
}

async function finish(result: Booked): Promise<Booked> {
    await refreshSchedules();
    return result;
}
