// Reminders and recordings.
import { manualEntryTime, programmeTime } from "../time/setClock.ts";
import { type Answer, RequestError, items, request } from "./request.ts";

export type Kind = "VIEW" | "RECORD";

/// A booking as the set lists it.
export interface Entry {
    id: string;
    state: Kind | "RECORDING" | "NONE";
    series: boolean;
    repeat: string;
    title: string; ///< empty for an entry made by hand
    programmeId: string; ///< empty for an entry made by hand
    channelId: string; ///< empty where the answer does not name it
    channelName: string;
    channelNumber: string;
    antenna: string;
    start: number; ///< UNIX milliseconds
    end: number;
}

/// What the set made of a booking.
export type Booked =
    | { outcome: "booked" }
    | { outcome: "tuned" }
    | { outcome: "conflict"; entries: Entry[] }
    | { outcome: "refused"; reason: string };

/// A booking by channel and time; times are UNIX milliseconds.
export interface ByHand {
    kind: Kind;
    channelNumber: string;
    antenna: string;
    start: number;
    end: number;
}

interface Row {
    id: string;
    status: Entry["state"];
    repeat: string | null;
    program_id: string | null;
    channel_path?: string | null;
    channel_name: string;
    channel_num: string;
    antenna: string;
    start: string;
    end: string;
}

type ListRow = Row & { program_name: string };
type OverlapRow = Row & { name: string | null; source_path: string | null; method: string | null };

const schedules = "/ws/epg2/schedules";

/// All bookings, the next first.
export async function readSchedules(): Promise<Entry[]> {
    const answer = await request("GET", schedules);
    if (answer.status !== 200 && answer.status !== 204) throw unexpected(answer);
    return items<ListRow>(answer.data)
        .map(listedEntry)
        .sort((a, b) => a.start - b.start);
}

/// Books a programme. `replace` takes the place of one entry that is in the way.
export async function bookProgramme(id: string, kind: Kind, series: boolean, replace = false): Promise<Booked> {
    const path = `/ws/epg2/programs/${encodeURIComponent(id)}/schedule`;
    const body = { status: kind, repeat: series ? "SERIES" : "ONCE" };
    const answer = await request("POST", path, { body: { ...body, force: String(replace) } });
    switch (answer.status) {
        case 200:
            return wasStored(id).then((stored) => ({ outcome: stored ? "booked" : "tuned" }));
        case 404:
            return refused("It is on already or over.");
        case 409:
            return inTheWay(await request("POST", path, { body: { ...body, force: "check_overlap" } }));
        default:
            return booked(answer);
    }
}

/// Books a channel for a time.
export async function bookByHand(entry: ByHand, replace = false): Promise<Booked> {
    const body = {
        status: entry.kind,
        channel_num: entry.channelNumber,
        antenna: entry.antenna,
        start: isoTime(entry.start),
        end: isoTime(entry.end),
        repeat: "ONCE",
    };
    const answer = await request("POST", schedules, { body: { ...body, force: String(replace) } });
    if (answer.status === 204) return refused("The set does not take this channel and time.");
    if (answer.status === 409) {
        return inTheWay(await request("POST", schedules, { body: { ...body, force: "check_overlap" } }));
    }
    return booked(answer);
}

/// Removes a booking. One that is gone already is no error.
export async function removeEntry(id: string): Promise<void> {
    const answer = await request("DELETE", `${schedules}/${encodeURIComponent(id)}`);
    if (answer.status !== 200 && answer.status !== 404) throw unexpected(answer);
}

/// Stops the recording that runs for a booking; nothing: all that run.
export async function stopRecording(scheduleId?: string): Promise<void> {
    const query = scheduleId ? { query: { schedule_id: scheduleId } } : {};
    const answer = await request("POST", "/ws/epg2/stopRecording", query);
    if (answer.status !== 200) throw unexpected(answer);
}

/// 200 answers both the programme that is on now, to which the set tunes, and a store that refused.
async function wasStored(id: string): Promise<boolean> {
    const answer = await request("GET", `/ws/epg2/programs/${encodeURIComponent(id)}/schedule`);
    return (answer.data as { status?: string } | null)?.status !== "NONE";
}

function booked(answer: Answer): Booked {
    if (answer.status === 201 || answer.status === 200) return { outcome: "booked" };
    if (answer.status === 403) return refused("The set cannot record now.");
    if (answer.status === 400) return refused("The set does not understand the booking.");
    throw unexpected(answer);
}

function inTheWay(answer: Answer): Booked {
    return { outcome: "conflict", entries: items<OverlapRow>(answer.data).map(overlappingEntry) };
}

function refused(reason: string): Booked {
    return { outcome: "refused", reason };
}

function unexpected(answer: Answer): RequestError {
    return new RequestError(`The set answered ${answer.status}.`, answer.status);
}

function listedEntry(row: ListRow): Entry {
    const byHand = row.program_name === "scheduled_event";
    const time = byHand ? manualEntryTime : programmeTime;
    return {
        ...common(row),
        title: byHand ? "" : row.program_name,
        programmeId: byHand ? "" : (row.program_id ?? ""),
        channelId: lastSegment(row.channel_path),
        start: time(row.start),
        end: time(row.end),
    };
}

function overlappingEntry(row: OverlapRow): Entry {
    return {
        ...common(row),
        title: row.name ?? "",
        programmeId: row.program_id ?? "",
        channelId: lastSegment(row.source_path),
        start: manualEntryTime(row.start),
        end: manualEntryTime(row.end),
    };
}

function common(row: Row) {
    return {
        id: row.id,
        state: row.status,
        series: row.repeat === "SERIES",
        repeat: row.repeat ?? "ONCE",
        channelName: row.channel_name,
        channelNumber: row.channel_num,
        antenna: row.antenna,
    };
}

function lastSegment(path: string | null | undefined): string {
    return path?.split("/").pop() ?? "";
}

/// To the second, as the service wants it.
function isoTime(time: number): string {
    return new Date(Math.floor(time / 1000) * 1000).toISOString().replace(".000Z", "Z");
}
