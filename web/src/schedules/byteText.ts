// Sizes for people.

/// 12.3 MB, in steps of 1000
export function byteText(bytes: number): string {
    const units = ["bytes", "kB", "MB", "GB", "TB"];
    let value = bytes;
    let unit = 0;
    while (value >= 1000 && unit < units.length - 1) {
        value /= 1000;
        ++unit;
    }
    return `${unit === 0 || value >= 100 ? Math.round(value) : value.toFixed(1)} ${units[unit]}`;
}
