// Where times and channels lie in the grid. Lengths are CSS pixels, times UNIX milliseconds.
import { hour, minute, type Zone } from "../time/zone.ts";

/// The grid begins at the midnight before now and covers as many days: the guide table covers seven from now.
export const days = 8;

export interface Geometry {
    start: number;
    end: number;
    channelWidth: number;
    rowHeight: number;
    axisHeight: number;
    hourWidth: number;
}

export function geometryFor(width: number, zone: Zone, now: number): Geometry {
    const phone = width < 640;
    return {
        start: zone.midnight(now),
        end: zone.midnight(now, days),
        channelWidth: phone ? 96 : 208,
        rowHeight: 60,
        axisHeight: 40,
        hourWidth: phone ? 200 : width < 1600 ? 280 : 340,
    };
}

/// Distance of a time from the grid's beginning.
export function xOf(geometry: Geometry, time: number): number {
    return ((time - geometry.start) / hour) * geometry.hourWidth;
}

export function timeAt(geometry: Geometry, x: number): number {
    return geometry.start + (x / geometry.hourWidth) * hour;
}

/// The half hours of the grid.
export function ticks(geometry: Geometry): number[] {
    const list: number[] = [];
    for (let time = geometry.start; time < geometry.end; time += 30 * minute) list.push(time);
    return list;
}
