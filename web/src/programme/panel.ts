// A programme's panel: what it is, and what can be booked.
import { type Channel, type Programme, readSynopsis } from "../api/guide.ts";
import {
    type Booked,
    type Entry,
    type Kind,
    bookByHand,
    bookProgramme,
    removeEntry,
    stopRecording,
} from "../api/schedules.ts";
import { antennaName } from "../antennas.ts";
import { announce } from "../announce.ts";
import { el, fill } from "../dom.ts";
import { keepingFocus } from "../focus.ts";
import { type IconName, icon } from "../icons.ts";
import { entryOf, refresh, schedules, status } from "../state.ts";
import { now } from "../time/setClock.ts";
import { type Wish, book, bookInPlaceOf } from "./booking.ts";
import { conflictBox } from "./conflict.ts";
import { lengthText, spanText, stateText } from "./entryTexts.ts";

/// A recording of what is on begins this much later, so that the set still takes it, in milliseconds.
const recordingLead = 4000;

const dialog = el("dialog", { class: "sheet", "aria-labelledby": "panel-title" });
const state = el("div", { class: "panel-state" });
const actions = el("div", { class: "panel-actions" });
const outcome = el("div", { class: "panel-outcome" });
const synopsis = el("div", { class: "synopsis" });

let shown: { programme: Programme; channel: Channel } | null = null;
let busy = false;

dialog.addEventListener("click", (event) => {
    if (event.target === dialog) dialog.close(); // beside the sheet
});
dialog.addEventListener("close", () => (shown = null));
schedules.onChange(() => keepingFocus(actions, showActions));

/// The panel's element, to stand anywhere in the page.
export function programmePanel(): HTMLElement {
    return dialog;
}

/// Shows a programme; what had the focus gets it again when the panel is closed.
export function openProgramme(programme: Programme, channel: Channel): void {
    shown = { programme, channel };
    busy = false;
    outcome.replaceChildren();
    fill(
        dialog,
        el(
            "div",
            { class: "sheet-body" },
            el(
                "header",
                {},
                el(
                    "p",
                    { class: "channel-line" },
                    el("span", { class: "number" }, channel.number),
                    channel.name,
                    el("span", { class: "dim" }, antennaName(channel.antenna)),
                ),
                el("h2", { id: "panel-title" }, programme.title || "Untitled"),
                el(
                    "p",
                    { class: "dim" },
                    spanText(programme.start, programme.end),
                    " · ",
                    lengthText(programme.end - programme.start),
                ),
                el(
                    "button",
                    { type: "button", class: "icon-button close", "aria-label": "Close", onclick: () => dialog.close() },
                    icon("close"),
                ),
            ),
            state,
            actions,
            outcome,
            synopsis,
        ),
    );
    showActions();
    void showSynopsis(programme);
    if (!dialog.open) dialog.showModal();
}

async function showSynopsis(programme: Programme): Promise<void> {
    fill(synopsis, el("p", { class: "reading-text", "aria-label": "Reading the description" }));
    let text: string;
    try {
        text = (await readSynopsis(programme.id)) || "There is no description.";
    } catch {
        text = "The description cannot be read now.";
    }
    if (shown?.programme.id === programme.id) fill(synopsis, el("p", {}, text));
}

function showActions(): void {
    if (!shown || busy) return;
    const { programme, channel } = shown;
    const entry = entryOf(programme.id);
    const time = now();
    const canRecord = status.value?.pvr === "on";
    fill(state, ...badges(programme, entry, time));
    const buttons: HTMLElement[] = [];
    if (programme.end > time && programme.start <= time) {
        buttons.push(action("play", "Watch now", "primary", () => wish(programme, "VIEW", false)));
        if (canRecord && entry?.state !== "RECORDING") {
            buttons.push(action("record", "Record the rest", "", () => restWish(programme, channel)));
        }
    } else if (programme.start > time) {
        if (entry?.state !== "VIEW") {
            buttons.push(action("bell", "Remind me", entry ? "" : "primary", () => wish(programme, "VIEW", false)));
        }
        if (canRecord && (entry?.state !== "RECORD" || entry.series)) {
            buttons.push(action("record", "Record", "", () => wish(programme, "RECORD", false)));
        }
        if (canRecord && !(entry?.state === "RECORD" && entry.series)) {
            buttons.push(action("series", "Record series", "", () => wish(programme, "RECORD", true)));
        }
    }
    if (entry) buttons.push(endButton(entry));
    fill(
        actions,
        el("div", { class: "actions" }, ...buttons),
        programme.end > time && !canRecord && el("p", { class: "note" }, cannotRecord(status.value?.pvr)),
    );
}

function badges(programme: Programme, entry: Entry | undefined, time: number): HTMLElement[] {
    const list: HTMLElement[] = [];
    if (programme.end <= time) list.push(el("span", { class: "badge" }, "Over"));
    else if (programme.start <= time) list.push(el("span", { class: "badge on-now" }, "On now"));
    else list.push(el("span", { class: "badge" }, `Starts in ${lengthText(programme.start - time)}`));
    if (entry) list.push(el("span", { class: `badge ${entry.state.toLowerCase()}` }, stateText(entry)));
    return list;
}

function action(symbol: IconName, text: string, looks: string, make: () => Wish): HTMLElement {
    const click = () => void attempt((wished) => book(wished), make());
    return el("button", { type: "button", class: `button ${looks}`, onclick: click }, icon(symbol), text);
}

function endButton(entry: Entry): HTMLElement {
    const running = entry.state === "RECORDING";
    const text = running ? "Stop recording" : entry.state === "VIEW" ? "Clear reminder" : "Clear recording";
    const click = () => void end(entry, running);
    return el("button", { type: "button", class: "button danger", onclick: click }, icon(running ? "stop" : "trash"), text);
}

function wish(programme: Programme, kind: Kind, series: boolean): Wish {
    const instead = entryOf(programme.id);
    return { book: (replace) => bookProgramme(programme.id, kind, series, replace), ...(instead && { instead }) };
}

/// The set records no programme that has begun, but it records its channel from now on.
function restWish(programme: Programme, channel: Channel): Wish {
    return {
        book: (replace) =>
            bookByHand(
                {
                    kind: "RECORD",
                    channelNumber: channel.number,
                    antenna: channel.antenna,
                    start: now() + recordingLead,
                    end: programme.end,
                },
                replace,
            ),
    };
}

async function attempt(how: (wished: Wish) => Promise<Booked>, wished: Wish): Promise<void> {
    busy = true;
    outcome.replaceChildren();
    for (const button of actions.querySelectorAll("button")) button.disabled = true;
    const asked = shown;
    try {
        const result = await how(wished);
        if (shown === asked) showOutcome(result, wished);
    } catch (error) {
        if (shown !== asked) return;
        busy = false;
        tell(error instanceof Error ? error.message : String(error), true);
    }
}

function showOutcome(result: Booked, wished: Wish): void {
    busy = false;
    if (result.outcome === "conflict") {
        fill(
            actions,
            conflictBox(result.entries, {
                replace: () => void attempt((again) => bookInPlaceOf(again, result.entries), wished),
                keep: () => {
                    busy = false;
                    showActions();
                    actions.querySelector("button")?.focus();
                },
            }),
        );
        busy = true; // the choice stays until it is made
        actions.querySelector<HTMLElement>("#conflict-title")?.focus();
        return;
    }
    if (result.outcome === "refused") tell(result.reason, true);
    if (result.outcome === "tuned") tell(`The set now shows ${shown?.channel.name ?? "the channel"}.`, false);
    if (result.outcome === "booked") tell("Booked.", false);
}

async function end(entry: Entry, running: boolean): Promise<void> {
    try {
        if (running) await stopRecording(entry.id);
        else await removeEntry(entry.id);
        await refresh();
        tell(running ? "The recording was stopped." : "Cleared.", false);
    } catch (error) {
        tell(error instanceof Error ? error.message : String(error), true);
    }
}

/// Says what came of it, and leaves the focus in the panel.
function tell(text: string, bad: boolean): void {
    showActions();
    fill(outcome, el("p", { class: bad ? "outcome bad" : "outcome" }, icon(bad ? "warning" : "check"), text));
    announce(text);
    (actions.querySelector("button") ?? dialog.querySelector<HTMLElement>(".close"))?.focus();
}

function cannotRecord(pvr: string | undefined): string {
    switch (pvr) {
        case "no-device":
            return "The set has no storage device to record on.";
        case "unformatted":
            return "The set's storage device is not formatted: it cannot record.";
        default:
            return "The set does not record.";
    }
}
