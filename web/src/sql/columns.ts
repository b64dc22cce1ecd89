// The columns of the guide table, as the SQL console tells of them, and statements to begin with.
import { now, tableSeconds } from "../time/setClock.ts";

export interface Column {
    name: string;
    key: string; ///< its name in answers
    holds: string;
}

export const columns: readonly Column[] = [
    { name: "ChannelId", key: "id", holds: "Channel's id" },
    { name: "ChannelName", key: "name", holds: "Channel's name" },
    { name: "ChannelPath", key: "channel_path", holds: "Path of the channel's resource" },
    { name: "ChannelNumber", key: "channel_num", holds: "Channel number, a text: 7-2" },
    { name: "AntennaType", key: "antenna", holds: "AIR, CABLE, SATELLITE …" },
    { name: "ScrambledFlag", key: "scrambled", holds: "true or false, a text" },
    { name: "ServiceType", key: "service_type", holds: "TV, RADIO …" },
    { name: "EventId", key: "program_id", holds: "Programme's id" },
    { name: "ProgramName", key: "program_name", holds: "Programme's title" },
    { name: "ProgramStartTime", key: "start", holds: "Start, UNIX seconds" },
    { name: "ProgramEndTime", key: "end", holds: "End, UNIX seconds" },
    { name: "ScheduleId", key: "schedule_id", holds: "Its booking, if any" },
    { name: "ScheduleType", key: "status", holds: "VIEW, RECORD, RECORDING" },
    { name: "Repeat", key: "repeat", holds: "ONCE, SERIES, days" },
];

export interface Example {
    title: string;
    /// Made when it is asked for, since it may name the time.
    sql(): string;
}

export const firstStatement = `SELECT ChannelNumber, ChannelName, AntennaType
FROM myView
GROUP BY ChannelId`;

export const examples: readonly Example[] = [
    {
        title: "Long programmes",
        sql: () => `SELECT ProgramName, ChannelName, ProgramStartTime
FROM myView
WHERE ProgramEndTime - ProgramStartTime >= 5400 AND ProgramStartTime > ${tableSeconds(now())}
ORDER BY ProgramStartTime
LIMIT 50`,
    },
    {
        title: "Programmes a channel",
        sql: () => `SELECT ChannelNumber, ChannelName, count(*)
FROM myView
WHERE EventId <> ''
GROUP BY ChannelId
ORDER BY count(*) DESC`,
    },
    {
        title: "Titles with “news”",
        sql: () => `SELECT ProgramName, ChannelName, ProgramStartTime, ProgramEndTime
FROM myView
WHERE SEARCH_SCORE(ProgramName, 'news') > 0
ORDER BY ProgramStartTime
LIMIT 100`,
    },
    {
        title: "Bookings",
        sql: () => `SELECT ScheduleId, ScheduleType, Repeat, ProgramName, ChannelName, ProgramStartTime
FROM myView
WHERE NOT ScheduleId = ''
ORDER BY ProgramStartTime`,
    },
];
