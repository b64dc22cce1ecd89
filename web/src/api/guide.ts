// Channels and programmes. They are read with the SQL command: the service's lists leave out programmes that
// cross an end of the window asked for, channels whose programmes are all booked, and texts with a quote.
import { programmeTime, tableSeconds } from "../time/setClock.ts";
import { request } from "./request.ts";
import { quoted, select } from "./sql.ts";

export interface Channel {
    id: string;
    name: string;
    number: string;
    antenna: string;
    service: string;
    scrambled: boolean;
}

export interface Programme {
    id: string;
    channelId: string;
    title: string;
    start: number; ///< UNIX milliseconds
    end: number;
}

interface ChannelRow {
    id: string;
    name: string;
    channel_num: string;
    antenna: string;
    service_type: string;
    scrambled: boolean;
}

interface ProgrammeRow {
    id: string;
    program_id: string;
    program_name: string;
    start: string;
    end: string;
}

/// Rows that are programmes: not a channel without any, not an entry booked by hand.
const isProgramme = "EventId<>'' AND ProgramStartTime<>'' AND ProgramName<>'scheduled_event'";
const programmeColumns = "ChannelId, EventId, ProgramName, ProgramStartTime, ProgramEndTime";

/// All channels, by antenna and number.
export async function readChannels(): Promise<Channel[]> {
    const rows = await select<ChannelRow>(
        "SELECT ChannelId, ChannelName, ChannelNumber, AntennaType, ServiceType, ScrambledFlag FROM myView " +
            "WHERE ChannelId<>'' GROUP BY ChannelId",
    );
    return rows.map(channelOf).sort(byAntennaAndNumber);
}

/// The programmes of these channels that run at some time from `from` to before `to`.
export async function readProgrammes(
    channels: readonly string[],
    from: number,
    to: number,
    signal?: AbortSignal,
): Promise<Programme[]> {
    const rows = await select<ProgrammeRow>(
        `SELECT ${programmeColumns} FROM myView WHERE ChannelId IN (${channels.map(quoted).join(",")}) ` +
            `AND ProgramStartTime<${tableSeconds(to)} AND ProgramEndTime>${tableSeconds(from)} AND ${isProgramme}`,
        signal,
    );
    return rows.map(programmeOf);
}

/// Programmes whose title holds the text and that are not over, the next first.
export async function searchProgrammes(
    text: string,
    from: number,
    limit: number,
    signal?: AbortSignal,
): Promise<Programme[]> {
    const rows = await select<ProgrammeRow>(
        `SELECT ${programmeColumns} FROM myView WHERE SEARCH_SCORE(ProgramName,${quoted(text)})>0 ` +
            `AND ProgramEndTime>${tableSeconds(from)} AND ${isProgramme} ` +
            `ORDER BY ProgramStartTime, ChannelId LIMIT ${limit}`,
        signal,
    );
    return rows.map(programmeOf);
}

/// Ids of the channels whose name holds the text.
export async function searchChannels(text: string, signal?: AbortSignal): Promise<Set<string>> {
    const rows = await select<{ id: string }>(
        `SELECT ChannelId FROM myView WHERE SEARCH_SCORE(ChannelName,${quoted(text)})>0 GROUP BY ChannelId`,
        signal,
    );
    return new Set(rows.map((row) => row.id));
}

/// One programme; null when the guide has it no more.
export async function readProgramme(id: string): Promise<Programme | null> {
    const rows = await select<ProgrammeRow>(
        `SELECT ${programmeColumns} FROM myView WHERE EventId=${quoted(id)} AND ${isProgramme} LIMIT 1`,
    );
    return rows[0] ? programmeOf(rows[0]) : null;
}

/// A programme's description; empty when there is none.
export async function readSynopsis(programmeId: string): Promise<string> {
    const answer = await request("GET", `/ws/epg2/programs/${encodeURIComponent(programmeId)}/detail`);
    return (answer.data as { synopsis?: string | null } | null)?.synopsis ?? "";
}

/// Learns from one row how the answers' times are to be read.
export async function learnTimes(): Promise<void> {
    const rows = await select<{ start: string }>(`SELECT ProgramStartTime FROM myView WHERE ${isProgramme} LIMIT 1`);
    if (rows[0]) programmeTime(rows[0].start);
}

function channelOf(row: ChannelRow): Channel {
    return {
        id: row.id,
        name: row.name,
        number: row.channel_num,
        antenna: row.antenna,
        service: row.service_type,
        scrambled: row.scrambled,
    };
}

function programmeOf(row: ProgrammeRow): Programme {
    return {
        id: row.program_id,
        channelId: row.id,
        title: row.program_name,
        start: programmeTime(row.start),
        end: programmeTime(row.end),
    };
}

function byAntennaAndNumber(a: Channel, b: Channel): number {
    if (a.antenna !== b.antenna) return a.antenna < b.antenna ? -1 : 1;
    const [majorA = 0, minorA = 0] = a.number.split("-").map(Number);
    const [majorB = 0, minorB = 0] = b.number.split("-").map(Number);
    return majorA - majorB || minorA - minorB;
}
