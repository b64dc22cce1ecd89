// Wall-clock times in one time zone. Times are UNIX milliseconds.

export const minute = 60_000;
export const hour = 60 * minute;

/// Year, month (1 to 12), day, hour, minute and second on the zone's clock.
interface WallTime {
    year: number;
    month: number;
    day: number;
    hour: number;
    minute: number;
    second: number;
}

export class Zone {
    readonly name: string;
    readonly #parts: Intl.DateTimeFormat;
    readonly #formats = new Map<string, Intl.DateTimeFormat>();

    /// A zone that the browser does not know is counted as UTC.
    constructor(name: string) {
        this.name = isKnown(name) ? name : "UTC";
        this.#parts = new Intl.DateTimeFormat("en-GB", {
            timeZone: this.name,
            hourCycle: "h23",
            year: "numeric",
            month: "numeric",
            day: "numeric",
            hour: "numeric",
            minute: "numeric",
            second: "numeric",
        });
    }

    /// What the zone's clock shows beyond UTC at that time, in milliseconds.
    offset(time: number): number {
        const { year, month, day, hour: h, minute: m, second } = this.wall(time);
        return Date.UTC(year, month - 1, day, h, m, second) - Math.floor(time / 1000) * 1000;
    }

    wall(time: number): WallTime {
        const wall: WallTime = { year: 0, month: 0, day: 0, hour: 0, minute: 0, second: 0 };
        for (const { type, value } of this.#parts.formatToParts(time)) {
            if (type in wall) wall[type as keyof WallTime] = Number(value);
        }
        return wall;
    }

    /// The time at which the zone's clock shows this. What it shows twice is the earlier time; what it never
    /// shows is as much later as the clock was put forward.
    at(year: number, month: number, day: number, hours = 0, minutes = 0): number {
        const shown = Date.UTC(year, month - 1, day, hours, minutes);
        const before = shown - this.offset(shown - 24 * hour);
        const after = shown - this.offset(shown + 24 * hour);
        if (before + this.offset(before) === shown) return before;
        return after + this.offset(after) === shown ? after : before;
    }

    /// The midnight that begins the day, `days` later.
    midnight(time: number, days = 0): number {
        const { year, month, day } = this.wall(time);
        return this.at(year, month, day + days);
    }

    /// 19:30
    clock(time: number): string {
        return this.#format(time, { hour: "2-digit", minute: "2-digit", hourCycle: "h23" });
    }

    /// Sun 23
    shortDay(time: number): string {
        return this.#format(time, { weekday: "short", day: "numeric" });
    }

    /// August
    month(time: number): string {
        return this.#format(time, { month: "long" });
    }

    /// Sunday 23 August
    longDay(time: number): string {
        return this.#format(time, { weekday: "long", day: "numeric", month: "long" });
    }

    /// 2026-08-23, as a date input has it
    isoDay(time: number): string {
        const { year, month, day } = this.wall(time);
        return `${String(year).padStart(4, "0")}-${String(month).padStart(2, "0")}-${String(day).padStart(2, "0")}`;
    }

    #format(time: number, options: Intl.DateTimeFormatOptions): string {
        const key = JSON.stringify(options);
        let format = this.#formats.get(key);
        if (!format) {
            format = new Intl.DateTimeFormat("en-GB", { ...options, timeZone: this.name });
            this.#formats.set(key, format);
        }
        return format.format(time);
    }
}

function isKnown(name: string): boolean {
    try {
        new Intl.DateTimeFormat("en-GB", { timeZone: name });
        return true;
    } catch {
        return false;
    }
}
