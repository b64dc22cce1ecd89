// What the page knows of the set, kept fresh.
import { type Channel, learnTimes, readChannels } from "./api/guide.ts";
import { type EventName, listenForEvents } from "./api/events.ts";
import { type Entry, readSchedules } from "./api/schedules.ts";
import { type SetStatus, readStatus } from "./api/set.ts";
import { Signal } from "./signal.ts";
import { setClock } from "./time/setClock.ts";

export const status = new Signal<SetStatus | null>(null);
export const channels = new Signal<Channel[] | null>(null);
export const schedules = new Signal<Entry[] | null>(null);
/// Counts the guides that were in use since the page was opened.
export const guideCount = new Signal(0);
/// Why the set's data cannot be had; null while it can.
export const trouble = new Signal<string | null>(null);

/// How often the set is asked, in milliseconds: while it tells of events by itself, and while it does not.
const slowPeriod = 60_000;
const fastPeriod = 10_000;

let told = false; // by events
let guideIsOld = true;
let timer = 0;
let running: Promise<void> | null = null;
let askedAgain = false; // while it was running

/// Reads everything once and keeps it fresh from then on.
export async function start(): Promise<void> {
    await refresh();
    listenForEvents({
        happened,
        listening(yes) {
            if (told === yes) return;
            told = yes;
            // What happened while nobody listened is not told again; and a set that is gone tells nothing.
            void refresh();
        },
    });
    document.addEventListener("visibilitychange", () => {
        if (document.visibilityState === "visible") void refresh();
    });
}

/// Reads the set's state and the bookings again; the channels too when the guide has changed.
export function refresh(): Promise<void> {
    if (running) askedAgain = true;
    running ??= readAll().finally(() => {
        running = null;
        if (askedAgain) void refresh();
        else schedule();
    });
    return running;
}

async function readAll(): Promise<void> {
    askedAgain = false;
    try {
        await refreshStatus();
        if (guideIsOld) await refreshGuide();
        await refreshSchedules();
        if (trouble.value) trouble.value = null;
    } catch (error) {
        trouble.value = error instanceof Error ? error.message : String(error);
    }
}

/// Reads the bookings again.
export async function refreshSchedules(): Promise<void> {
    schedules.value = await readSchedules();
}

export function channelById(id: string): Channel | undefined {
    return channels.value?.find((channel) => channel.id === id);
}

/// The booking of a programme.
export function entryOf(programmeId: string): Entry | undefined {
    return schedules.value?.find((entry) => entry.programmeId === programmeId);
}

async function refreshStatus(): Promise<void> {
    const read = await readStatus();
    setClock(read.clock, read.zone);
    if (guideMark(read) !== guideMark(status.value)) guideIsOld = true;
    status.value = read;
}

async function refreshGuide(): Promise<void> {
    guideIsOld = false;
    try {
        await learnTimes();
        channels.value = await readChannels();
    } catch (error) {
        guideIsOld = true;
        throw error;
    }
    guideCount.value += 1;
}

function happened(name: EventName): void {
    if (name === "guide-reloaded" || name === "reset") guideIsOld = true;
    void refresh();
}

/// What differs when another guide is in use.
function guideMark(read: SetStatus | null): string {
    return JSON.stringify([read?.channels, read?.programs, read?.guides]);
}

function schedule(): void {
    clearTimeout(timer);
    timer = window.setTimeout(() => void refresh(), told && !trouble.value ? slowPeriod : fastPeriod);
}
