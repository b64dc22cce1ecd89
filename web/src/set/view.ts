// The set: its clock, what it records on, its antennas, its guides and what it says it is.
import {
    type GuideReading,
    type RecordingSpec,
    type SetStatus,
    readAntennas,
    readDevice,
    readRecordingSpec,
} from "../api/set.ts";
import { antennaName } from "../antennas.ts";
import { type Child, el, fill } from "../dom.ts";
import { icon } from "../icons.ts";
import { byteText } from "../schedules/byteText.ts";
import { channels, status } from "../state.ts";
import { now, setZone } from "../time/setClock.ts";

const count = new Intl.NumberFormat("en-GB");

export interface SetView {
    element: HTMLElement;
    /// Reads again what does not change by itself.
    shown(): void;
}

export function setView(): SetView {
    const clock = el("div", {});
    const recording = el("div", {});
    const antennas = el("div", {});
    const guides = el("div", {});
    const device = el("div", {});

    let shownGuides = "";
    status.onChange((read) => {
        if (!read) return;
        fill(clock, ...clockFacts(read));
        // The table may have the focus, and be scrolled: it stays while it says the same.
        const told = JSON.stringify([read.channels, read.programs, read.programs_dropped, read.guides]);
        if (told !== shownGuides) fill(guides, ...guideFacts(read));
        shownGuides = told;
    });
    const readAll = () => {
        void into(recording, async () => recordingFacts(await readRecordingSpec(), status.value));
        void into(antennas, async () => antennaFacts(await readAntennas()));
        void into(device, async () => [facts(Object.entries(await readDevice()).map(deviceFact))]);
    };
    const element = el(
        "section",
        { class: "view page set-view", "aria-label": "The set" },
        el("div", { class: "page-head" }, el("h1", { tabindex: -1 }, "The set")),
        el(
            "div",
            { class: "cards" },
            el("div", { class: "stack" }, card("Now", clock), card("Recording", recording)),
            card("Device", device),
            card("Antennas", antennas, "wide"),
            card("Guides", guides, "wide"),
        ),
    );
    status.onChange(() => {
        if (!element.hidden) readAll();
    });
    return { element, shown: readAll };
}

function card(title: string, content: HTMLElement, looks = ""): HTMLElement {
    return el("section", { class: `card ${looks}` }, el("h2", {}, title), content);
}

async function into(place: HTMLElement, read: () => Promise<Child[]>): Promise<void> {
    try {
        fill(place, ...(await read()));
    } catch (error) {
        fill(place, el("p", { class: "outcome bad" }, icon("warning"), error instanceof Error ? error.message : String(error)));
    }
}

function facts(list: [string, Child][]): HTMLElement {
    return el(
        "dl",
        { class: "facts" },
        ...list.map(([name, value]) => el("div", {}, el("dt", {}, name), el("dd", {}, value))),
    );
}

function clockFacts(read: SetStatus): Child[] {
    const zone = setZone().name === read.zone ? read.zone : `${read.zone}, shown as ${setZone().name}`;
    return [
        facts([
            ["Clock", `${setZone().longDay(now())}, ${setZone().clock(now())}`],
            ["Time zone", zone],
            ["Tuned to", read.channel ? `${read.channel.num} ${read.channel.name}` : "No channel"],
        ]),
    ];
}

function recordingFacts(spec: RecordingSpec, read: SetStatus | null): Child[] {
    const ready = spec.function && spec.medium && spec.formatted && spec.user_allow;
    const running = read?.recordings ?? [];
    const bytes = running.reduce((sum, one) => sum + one.bytes, 0);
    return [
        el(
            "p",
            { class: ready ? "verdict good" : "verdict bad" },
            icon(ready ? "check" : "warning"),
            ready ? "The set can record" : "The set cannot record",
        ),
        el(
            "ul",
            { class: "checks" },
            check(spec.function, "It is able to record", "It does not record at all"),
            check(spec.medium, "A storage device is there", "There is no storage device"),
            check(spec.formatted, "The storage is formatted", "The storage is not formatted"),
            check(spec.user_allow, "Recordings may be booked", "Recordings may not be booked"),
        ),
        el(
            "p",
            { class: "dim" },
            running.length === 0
                ? "No recording runs."
                : `${running.length === 1 ? "One recording runs" : `${running.length} recordings run`}, ${byteText(bytes)} so far.`,
        ),
        ...running.map((one) => el("p", { class: "dim path" }, one.file)),
        ...storageFacts(read),
    ];
}

function storageFacts(read: SetStatus | null): Child[] {
    const list: [string, Child][] = [];
    if (read?.tuners) list.push(["Tuners in use", `${read.tuners.in_use} of ${read.tuners.total}`]);
    if (read?.storage?.free != null) list.push(["Free for recordings", byteText(read.storage.free)]);
    if (read?.storage?.folder) list.push(["Recordings are kept in", el("span", { class: "breakable" }, read.storage.folder)]);
    return list.length === 0 ? [] : [facts(list)];
}

function check(yes: boolean, good: string, bad: string): HTMLElement {
    return el("li", { class: yes ? "good" : "bad" }, icon(yes ? "check" : "close"), yes ? good : bad);
}

function antennaFacts(antennas: readonly string[]): Child[] {
    if (antennas.length === 0) return [el("p", { class: "dim" }, "No antenna has channels.")];
    const number = (antenna: string) => channels.value?.filter((channel) => channel.antenna === antenna).length ?? 0;
    const text = (antenna: string) => `${number(antenna)} ${number(antenna) === 1 ? "channel" : "channels"}`;
    return [
        el("div", { class: "numbers" }, facts(antennas.map((antenna) => [antennaName(antenna), text(antenna)]))),
    ];
}

const deviceNames: Record<string, string> = {
    friendlyName: "Name",
    manufacturer: "Made by",
    manufacturerURL: "Maker's page",
    modelDescription: "Description",
    modelName: "Model",
    modelNumber: "Model number",
    modelURL: "Model's page",
    serialNumber: "Serial number",
    uuid: "UUID",
    qel_deviceID: "Device id",
    qel_ProductCap: "Abilities",
};

function deviceFact([key, value]: [string, string]): [string, Child] {
    return [deviceNames[key] ?? key, el("span", { class: "breakable" }, value)];
}

function guideFacts(read: SetStatus): Child[] {
    const numbers: [string, Child][] = [
        ["Channels", count.format(read.channels)],
        ["Programmes", count.format(read.programs)],
    ];
    if (read.programs_dropped > 0) numbers.push(["Left out for want of room", count.format(read.programs_dropped)]);
    return [el("div", { class: "numbers" }, facts(numbers)), ...readings(read.guides)];
}

function readings(guides: GuideReading[] | undefined): Child[] {
    if (!guides || guides.length === 0) return [el("p", { class: "dim" }, "The set tells nothing of how its guides were read.")];
    return [
        el(
            "div",
            { class: "scroller", tabindex: 0, role: "region", "aria-label": "How the guides were read" },
            el(
                "table",
                {},
                el(
                    "thead",
                    {},
                    el(
                        "tr",
                        {},
                        ...["Guide", "Read", "Channels", "Programmes", "Skipped", "Outcome"].map((head) =>
                            el("th", { scope: "col" }, head),
                        ),
                    ),
                ),
                el("tbody", {}, ...guides.map(reading)),
            ),
        ),
    ];
}

function reading(guide: GuideReading): HTMLElement {
    const time = guide.time === null ? NaN : Date.parse(guide.time);
    return el(
        "tr",
        {},
        el("th", { scope: "row", class: "breakable" }, guide.guide),
        el("td", {}, Number.isNaN(time) ? "Not yet" : `${setZone().shortDay(time)}, ${setZone().clock(time)}`),
        el("td", { class: "figure" }, count.format(guide.channels)),
        el("td", { class: "figure" }, count.format(guide.programs)),
        el("td", { class: "figure" }, count.format(guide.skipped)),
        el(
            "td",
            {},
            guide.error
                ? el("span", { class: "outcome bad" }, icon("warning"), guide.error)
                : el("span", { class: "outcome" }, icon("check"), "Read"),
        ),
    );
}
