// The guide: the grid with its toolbar, and what a search finds.
import { readProgramme } from "../api/guide.ts";
import { el, fill } from "../dom.ts";
import { openProgramme } from "../programme/panel.ts";
import { channelById, channels, guideCount, refresh, schedules, status, trouble } from "../state.ts";
import { now, setZone } from "../time/setClock.ts";
import { Grid } from "./grid.ts";
import { GridKeys } from "./gridKeys.ts";
import { Search } from "./search.ts";
import { Toolbar } from "./toolbar.ts";

/// How often the line at the current time moves, in milliseconds.
const tickPeriod = 15_000;

export function guideView(): HTMLElement {
    let antenna = "";
    let begun = false;
    const notice = el("p", { class: "notice", role: "status", hidden: true });
    const empty = el("div", { class: "empty" });
    const grid = new Grid({
        chosen: openProgramme,
        moved: (time) => toolbar.showTime(time),
        failed(reason) {
            notice.hidden = !reason;
            notice.textContent = reason ? `${reason} Trying again…` : "";
        },
    });
    const keys = new GridKeys(grid);
    const search = new Search({
        channelChosen(channel) {
            leaveSearch();
            if (antenna && antenna !== channel.antenna) showAll();
            grid.scrollToChannel(channel.id);
            grid.scrollToTime(now(), false);
            void keys.focusChannel(channel.id);
        },
        programmeChosen(programme, channel) {
            openProgramme(programme, channel);
        },
    });
    const toolbar = new Toolbar({
        goTo: (time) => grid.scrollToTime(time),
        goToNow: () => {
            leaveSearch();
            grid.scrollToTime(now());
        },
        antennaChosen(chosen) {
            antenna = chosen;
            leaveSearch();
            showChannels();
        },
        searched(text) {
            void search.show(text);
            grid.element.hidden = text !== "" || !channels.value?.length;
            if (text === "") grid.tick();
        },
    });

    function leaveSearch(): void {
        if (!search.element.hidden) toolbar.clearSearch();
    }

    function showAll(): void {
        antenna = "";
        toolbar.showAntennas(antennas());
        showChannels();
    }

    function antennas(): string[] {
        return [...new Set(channels.value?.map((channel) => channel.antenna))];
    }

    function showChannels(): void {
        const list = channels.value;
        if (!list) return;
        grid.showChannels(antenna ? list.filter((channel) => channel.antenna === antenna) : list);
        grid.element.hidden = list.length === 0 || !search.element.hidden;
        empty.hidden = list.length > 0;
        toolbar.element.hidden = list.length === 0;
        if (list.length === 0) fill(empty, ...noChannels());
        if (begun || list.length === 0) return;
        begun = true;
        grid.tick();
        grid.scrollToTime(now(), false);
    }

    channels.onChange(() => {
        const present = antennas();
        if (antenna && !present.includes(antenna)) antenna = "";
        toolbar.showAntennas(present);
        showChannels();
    });
    guideCount.onChange(() => grid.readAgain());
    schedules.onChange((entries) => grid.showEntries(entries ?? []));
    status.onChange(() => grid.tick());
    setInterval(() => grid.tick(), tickPeriod);
    trouble.onChange((reason) => {
        if (reason && !channels.value) fill(empty, ...unreachable(reason));
    });
    document.addEventListener("keydown", (event) => {
        const typing = (event.target as Element).closest("input, textarea, select, dialog");
        if (event.key !== "/" || typing || view.hidden) return;
        event.preventDefault();
        toolbar.focusSearch();
    });
    toolbar.element.addEventListener("keydown", (event) => {
        if (event.key === "Escape") leaveSearch();
    });

    fill(empty, el("p", { class: "spinner-text" }, "Reading the guide…"));
    grid.element.hidden = true;
    toolbar.element.hidden = true;
    const view = el(
        "section",
        { class: "view guide-view", "aria-labelledby": "guide-title" },
        el("h1", { class: "visually-hidden", id: "guide-title" }, "Guide"),
        toolbar.element,
        notice,
        search.element,
        grid.element,
        empty,
    );
    return view;
}

/// Opens the panel of a programme that is known by its id alone; says whether the guide still has it.
export async function openProgrammeById(id: string): Promise<boolean> {
    const programme = await readProgramme(id);
    const channel = programme && channelById(programme.channelId);
    if (!programme || !channel) return false;
    openProgramme(programme, channel);
    return true;
}

function noChannels(): HTMLElement[] {
    return [
        el("h2", {}, "There are no channels"),
        el(
            "p",
            {},
            "The set has read no guide with channels yet. The page ",
            el("a", { href: "#/set" }, "Set"),
            " tells which guides it reads.",
        ),
        el("p", { class: "dim" }, `On the set it is ${setZone().clock(now())}.`),
    ];
}

function unreachable(reason: string): HTMLElement[] {
    return [
        el("h2", {}, "The guide cannot be read"),
        el("p", {}, reason),
        el("button", { type: "button", class: "button primary", onclick: () => void refresh() }, "Try again"),
    ];
}
