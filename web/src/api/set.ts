// What the set tells about itself.
import { get, items } from "./request.ts";

export interface RunningRecording {
    channel: string; ///< the channel's id
    schedule_id: string;
    file: string;
    start: string;
    bytes: number;
}

/// How a guide was read last; without a time it was not yet, without an error it went well.
export interface GuideReading {
    guide: string;
    time: string | null;
    channels: number;
    programs: number;
    skipped: number;
    error: string | null;
}

export interface SetStatus {
    clock: string;
    zone: string;
    channel: { id: string; num: string; name: string } | null;
    recordings: RunningRecording[];
    pvr: string;
    channels: number;
    programs: number;
    programs_dropped: number;
    guides?: GuideReading[];
    tuners?: { total: number; in_use: number };
    storage?: { folder: string | null; free: number | null };
}

export interface RecordingSpec {
    function: boolean;
    medium: boolean;
    formatted: boolean;
    user_allow: boolean;
}

export async function readStatus(): Promise<SetStatus> {
    return (await get("/set/status")) as SetStatus;
}

export async function readRecordingSpec(): Promise<RecordingSpec> {
    return (await get("/ws/epg2/recordingSpec")) as RecordingSpec;
}

export async function readAntennas(): Promise<string[]> {
    return items<string>(await get("/ws/epg2/antennas"));
}

/// The members of the device description that the set knows.
export async function readDevice(): Promise<Record<string, string>> {
    return ((await get("/ws/epg2/UPnP_Info")) ?? {}) as Record<string, string>;
}
