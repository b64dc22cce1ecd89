// Bookings and running recordings.
import { type Entry, removeEntry, stopRecording } from "../api/schedules.ts";
import type { RunningRecording } from "../api/set.ts";
import { announce } from "../announce.ts";
import { antennaName } from "../antennas.ts";
import { el, fill } from "../dom.ts";
import { keepingFocus } from "../focus.ts";
import { entryIcon } from "../guide/row.ts";
import { openProgrammeById } from "../guide/view.ts";
import { icon } from "../icons.ts";
import { dayText, entryTitle, lengthText, repeatText, stateText } from "../programme/entryTexts.ts";
import { channelById, refresh, schedules, status } from "../state.ts";
import { now, setZone } from "../time/setClock.ts";
import { byteText } from "./byteText.ts";
import { byHandForm } from "./byHandForm.ts";

export function schedulesView(): HTMLElement {
    const running = el("section", { class: "card", "aria-labelledby": "running-title" });
    const list = el("div", { class: "entries" });
    const message = el("p", { class: "outcome", hidden: true });
    const form = byHandForm();

    const say = (text: string, bad = false) => {
        message.hidden = false;
        message.className = bad ? "outcome bad" : "outcome";
        fill(message, icon(bad ? "warning" : "check"), text);
        announce(text);
    };
    const attempt = async (what: () => Promise<void>, done: string) => {
        try {
            await what();
            await refresh();
            say(done);
            heading.focus();
        } catch (error) {
            say(error instanceof Error ? error.message : String(error), true);
        }
    };
    const show = () => {
        keepingFocus(running, () => showRunning(running, attempt));
        keepingFocus(list, () => showEntries(list, attempt, say));
    };
    schedules.onChange(show);
    status.onChange(show);

    const heading = el("h1", { tabindex: -1 }, "Schedules");
    fill(list, el("p", { class: "empty" }, "Reading the schedules…"));
    running.hidden = true;
    return el(
        "section",
        { class: "view page schedules-view", "aria-label": "Schedules" },
        el("div", { class: "page-head" }, heading, message),
        el("div", { class: "columns" }, el("div", { class: "main-column" }, running, list), form),
    );
}

type Attempt = (what: () => Promise<void>, done: string) => Promise<void>;

function showRunning(card: HTMLElement, attempt: Attempt): void {
    const recordings = status.value?.recordings ?? [];
    card.hidden = recordings.length === 0;
    fill(
        card,
        el("h2", { id: "running-title" }, "Recording now"),
        el("ul", { class: "entry-list" }, ...recordings.map((recording) => runningItem(recording, attempt))),
    );
}

function runningItem(recording: RunningRecording, attempt: Attempt): HTMLElement {
    const entry = schedules.value?.find((one) => one.id === recording.schedule_id);
    const channel = channelById(recording.channel);
    const title = entry ? entryTitle(entry) : "Recording";
    const since = now() - Date.parse(recording.start);
    return el(
        "li",
        { class: "entry" },
        el("span", { class: "entry-icon recording" }, icon("record")),
        el(
            "div",
            { class: "entry-text" },
            el("strong", {}, title),
            el(
                "span",
                { class: "dim" },
                [channel?.name ?? recording.channel, entry && `until ${setZone().clock(entry.end)}`].filter(Boolean).join(" · "),
            ),
            el("span", { class: "dim" }, `${lengthText(Math.max(0, since))} so far, ${byteText(recording.bytes)}`),
        ),
        el(
            "button",
            {
                type: "button",
                class: "button danger",
                "aria-label": `Stop recording ${title}`,
                onclick: () => void attempt(() => stopRecording(recording.schedule_id), `“${title}” was stopped.`),
            },
            icon("stop"),
            el("span", {}, "Stop"),
        ),
    );
}

function showEntries(list: HTMLElement, attempt: Attempt, say: (text: string, bad?: boolean) => void): void {
    const entries = schedules.value;
    if (!entries) return;
    if (entries.length === 0) {
        fill(
            list,
            el(
                "div",
                { class: "card empty" },
                el("h2", {}, "Nothing is booked"),
                el("p", {}, "Choose a programme in the ", el("a", { href: "#/guide" }, "guide"), " to set a reminder or a recording."),
            ),
        );
        return;
    }
    const byDay = new Map<string, Entry[]>();
    for (const entry of entries) {
        const day = dayText(entry.start);
        byDay.set(day, [...(byDay.get(day) ?? []), entry]);
    }
    fill(
        list,
        ...[...byDay].map(([day, some]) =>
            el(
                "section",
                { class: "card" },
                el("h2", {}, day),
                el("ul", { class: "entry-list" }, ...some.map((entry) => entryItem(entry, attempt, say))),
            ),
        ),
    );
}

function entryItem(entry: Entry, attempt: Attempt, say: (text: string, bad?: boolean) => void): HTMLElement {
    const title = entryTitle(entry);
    const running = entry.state === "RECORDING";
    const when = `${dayText(entry.start)} ${setZone().clock(entry.start)}`;
    const open = () =>
        void openProgrammeById(entry.programmeId).then(
            (found) => !found && say("The guide has this programme no more.", true),
            () => say("The programme cannot be read now.", true),
        );
    const remove = () =>
        void attempt(
            () => (running ? stopRecording(entry.id) : removeEntry(entry.id)),
            running ? `“${title}” was stopped.` : `“${title}” was cancelled.`,
        );
    return el(
        "li",
        { class: "entry" },
        el("span", { class: `entry-icon ${entry.state.toLowerCase()}` }, entryIcon(entry)),
        el(
            "div",
            { class: "entry-text" },
            entry.programmeId
                ? el("button", { type: "button", class: "link", onclick: open }, title)
                : el("strong", {}, title),
            el(
                "span",
                { class: "dim" },
                `${setZone().clock(entry.start)} to ${setZone().clock(entry.end)} · ${entry.channelNumber} ${entry.channelName} · ${antennaName(entry.antenna)}`,
            ),
            el(
                "span",
                { class: "badges" },
                el("span", { class: `badge ${entry.state.toLowerCase()}` }, stateText(entry)),
                !entry.series && repeatText(entry) !== "" && el("span", { class: "badge" }, repeatText(entry)),
            ),
        ),
        el(
            "button",
            { type: "button", class: "button", "aria-label": `${running ? "Stop" : "Cancel"} ${title}, ${when}`, onclick: remove },
            icon(running ? "stop" : "trash"),
            el("span", {}, running ? "Stop" : "Cancel"),
        ),
    );
}
