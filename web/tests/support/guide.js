// Guides made by the tests.

/**
 * @param {number} time UNIX milliseconds
 */
function xmltvTime(time) {
    return `${new Date(time).toISOString().replace(/[-:T]/g, "").slice(0, 14)} +0000`;
}

/**
 * A guide of numbered channels; on channel 1 from the first hour on: "Programme 1.0", "Programme 1.1" and so on.
 * @param {{ channels: number, start: string, hours: number, minutes: number }} how `minutes`: length of a programme
 */
export function numberedGuide({ channels, start, hours, minutes }) {
    const lines = ["<tv>"];
    for (let number = 1; number <= channels; ++number) {
        lines.push(`<channel id="c${number}"><display-name>Channel ${number}</display-name><lcn>${number}</lcn></channel>`);
    }
    const first = Date.parse(start);
    const length = minutes * 60_000;
    for (let number = 1; number <= channels; ++number) {
        for (let index = 0; index * minutes < hours * 60; ++index) {
            const from = first + index * length;
            lines.push(
                `<programme channel="c${number}" start="${xmltvTime(from)}" stop="${xmltvTime(from + length)}">` +
                    `<title>Programme ${number}.${index}</title></programme>`,
            );
        }
    }
    return [...lines, "</tv>"].join("\n");
}

/**
 * A guide of one channel.
 * @param {{ title: string, start: string, stop: string, desc?: string }[]} programmes
 */
export function smallGuide(programmes) {
    const escaped = (/** @type {string} */ text) => text.replace(/&/g, "&amp;").replace(/</g, "&lt;");
    return [
        '<tv><channel id="one"><display-name>One</display-name><lcn>1</lcn></channel>',
        ...programmes.map(
            ({ title, start, stop, desc = "" }) =>
                `<programme channel="one" start="${xmltvTime(Date.parse(start))}" stop="${xmltvTime(Date.parse(stop))}">` +
                `<title>${escaped(title)}</title><desc>${escaped(desc)}</desc></programme>`,
        ),
        "</tv>",
    ].join("\n");
}
