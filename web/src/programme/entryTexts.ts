// What the page calls bookings and times.
import type { Entry } from "../api/schedules.ts";
import { now, setZone } from "../time/setClock.ts";
import { minute } from "../time/zone.ts";

export function entryTitle(entry: Entry): string {
    return entry.title || (entry.state === "VIEW" ? "Reminder set by hand" : "Recording set by hand");
}

export function stateText(entry: Entry): string {
    switch (entry.state) {
        case "VIEW":
            return "Reminder";
        case "RECORDING":
            return "Recording now";
        case "RECORD":
            return entry.series ? "Series recording" : "Recording";
        default:
            return "Off";
    }
}

/// Sunday 23 August, 19:30 to 20:15; days next to now by their names.
export function spanText(start: number, end: number): string {
    return `${dayText(start)}, ${setZone().clock(start)} to ${setZone().clock(end)}`;
}

export function dayText(time: number): string {
    const midnight = setZone().midnight(time);
    if (midnight === setZone().midnight(now())) return "Today";
    if (midnight === setZone().midnight(now(), 1)) return "Tomorrow";
    if (midnight === setZone().midnight(now(), -1)) return "Yesterday";
    return setZone().longDay(time);
}

/// 1 h 45 min; from two days on in days
export function lengthText(milliseconds: number): string {
    const minutes = Math.round(milliseconds / minute);
    const hours = Math.floor(minutes / 60);
    if (hours >= 48) return `${Math.round(hours / 24)} days`;
    const rest = minutes % 60;
    return [hours > 0 && `${hours} h`, (rest > 0 || hours === 0) && `${rest} min`].filter(Boolean).join(" ");
}

export function repeatText(entry: Entry): string {
    if (entry.series) return "Series";
    if (entry.repeat === "ONCE" || entry.repeat === "") return "";
    if (entry.repeat === "EVERYDAY") return "Every day";
    return entry.repeat
        .split("|")
        .map((day) => day.charAt(0) + day.slice(1).toLowerCase())
        .join(", ");
}
