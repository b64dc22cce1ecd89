// The set's clock, and the times in its answers. Times are UNIX milliseconds.
import { Zone, minute } from "./zone.ts";

/// What the set's middleware counts: the zone's offset with the daylight-saving hour, and that hour alone.
let middlewareOffset = 0;
let daylightSaving = 0;

let zone = new Zone("UTC");
let ahead = 0; // of this machine's steady clock

/// Sets the clock by what "/set/status" says.
export function setClock(clock: string, zoneName: string): void {
    const time = Date.parse(clock);
    if (!Number.isNaN(time)) ahead = time - performance.now();
    middlewareOffset = offsetOf(clock);
    if (zone.name !== zoneName) zone = new Zone(zoneName);
}

/// The time on the set's clock.
export function now(): number {
    return ahead + performance.now();
}

/// The zone in which the page shows times.
export function setZone(): Zone {
    return zone;
}

/// The start or end of a programme of the guide table, as an answer of the service has it.
///
/// A set whose clock runs in its own zone tells the daylight-saving hour apart from the zone's offset: while it
/// is in force, times in the table are an hour late and what is read from it a further hour.
export function programmeTime(text: string): number {
    learnDaylightSaving(text);
    return Date.parse(text) - 2 * daylightSaving;
}

/// The start or end of an entry that has no programme, in the list of schedules.
export function manualEntryTime(text: string): number {
    learnDaylightSaving(text);
    return Date.parse(text) - daylightSaving;
}

/// The seconds that stand in the guide table for a time.
export function tableSeconds(time: number): number {
    return Math.floor((time + daylightSaving) / 1000);
}

/// Answers carry the zone's standard offset, the set's clock the whole one: what lies between is the
/// daylight-saving hour.
function learnDaylightSaving(text: string): void {
    const difference = middlewareOffset - offsetOf(text);
    daylightSaving = difference > 0 && difference <= 120 * minute ? difference : 0;
}

/// The offset that ends an ISO 8601 time.
function offsetOf(text: string): number {
    const found = /([+-])(\d\d):(\d\d)$/.exec(text);
    if (!found) return 0;
    const minutes = Number(found[2]) * 60 + Number(found[3]);
    return (found[1] === "-" ? -minutes : minutes) * minute;
}
