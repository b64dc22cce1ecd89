// Booking a channel for a time.
import { type Booked, type Kind, bookByHand } from "../api/schedules.ts";
import type { Channel } from "../api/guide.ts";
import { announce } from "../announce.ts";
import { antennaName } from "../antennas.ts";
import { el, fill } from "../dom.ts";
import { icon } from "../icons.ts";
import { type Wish, book, bookInPlaceOf } from "../programme/booking.ts";
import { conflictBox } from "../programme/conflict.ts";
import { channelById, channels, status } from "../state.ts";
import { now, setZone } from "../time/setClock.ts";
import { hour } from "../time/zone.ts";

export function byHandForm(): HTMLElement {
    const channel = el("select", { id: "by-hand-channel", name: "channel", required: true });
    const date = el("input", { id: "by-hand-date", type: "date", name: "date", required: true });
    const start = el("input", { id: "by-hand-start", type: "time", name: "start", required: true });
    const end = el("input", { id: "by-hand-end", type: "time", name: "end", required: true });
    const record = el("input", { type: "radio", name: "kind", value: "RECORD", checked: true });
    const remind = el("input", { type: "radio", name: "kind", value: "VIEW" });
    const zoneNote = el("p", { class: "note" });
    const outcome = el("div", { class: "form-outcome" });
    const submit = el("button", { type: "submit", class: "button primary" }, icon("plus"), "Add");

    const form = el(
        "form",
        { class: "card by-hand", "aria-labelledby": "by-hand-title", novalidate: true },
        el("h2", { id: "by-hand-title" }, "Add by hand"),
        el("label", { class: "labelled", for: "by-hand-channel" }, "Channel", channel),
        el("label", { class: "labelled", for: "by-hand-date" }, "Day", date),
        el(
            "div",
            { class: "pair" },
            el("label", { class: "labelled", for: "by-hand-start" }, "Start", start),
            el("label", { class: "labelled", for: "by-hand-end" }, "End", end),
        ),
        el(
            "fieldset",
            { class: "choice" },
            el("legend", { class: "visually-hidden" }, "What to do"),
            el("label", {}, record, el("span", {}, icon("record"), "Record")),
            el("label", {}, remind, el("span", {}, icon("bell"), "Remind")),
        ),
        zoneNote,
        submit,
        outcome,
    );

    const tell = (text: string, bad: boolean) => {
        fill(outcome, el("p", { class: bad ? "outcome bad" : "outcome" }, icon(bad ? "warning" : "check"), text));
        announce(text);
    };
    const showBooked = (result: Booked, wish: Wish) => {
        if (result.outcome === "conflict") {
            const box = conflictBox(result.entries, {
                replace: () => void attempt(() => bookInPlaceOf(wish, result.entries), wish),
                keep: () => {
                    outcome.replaceChildren();
                    submit.focus();
                },
            });
            fill(outcome, box);
            box.querySelector<HTMLElement>("h3")?.focus();
        } else if (result.outcome === "refused") tell(result.reason, true);
        else tell("Added.", false);
    };
    const attempt = async (how: () => Promise<Booked>, wish: Wish) => {
        submit.disabled = true;
        try {
            showBooked(await how(), wish);
        } catch (error) {
            tell(error instanceof Error ? error.message : String(error), true);
        }
        submit.disabled = false;
    };

    form.addEventListener("submit", (event) => {
        event.preventDefault();
        const chosen = channelById(channel.value);
        if (!chosen || !date.value || !start.value || !end.value) {
            tell("Channel, day, start and end are needed.", true);
            return;
        }
        const times = timesOf(date.value, start.value, end.value);
        if (times.start <= now()) {
            tell("The start has passed. Choose one from now on.", true);
            start.focus();
            return;
        }
        const kind: Kind = record.checked ? "RECORD" : "VIEW";
        const wish = wishFor(kind, chosen, times);
        void attempt(() => book(wish), wish);
    });

    channels.onChange((list) => fillChannels(channel, list ?? []));
    status.onChange((read) => {
        zoneNote.textContent = `Times on the set's clock, ${setZone().name.replaceAll("_", " ")}. An end before the start is on the next day.`;
        const canRecord = read?.pvr === "on";
        record.disabled = !canRecord;
        if (!canRecord) remind.checked = true;
        if (date.value) return;
        const next = Math.ceil((now() + 1) / hour) * hour;
        date.value = setZone().isoDay(next);
        start.value = setZone().clock(next);
        end.value = setZone().clock(next + hour);
    });
    return form;
}

function wishFor(kind: Kind, channel: Channel, times: { start: number; end: number }): Wish {
    return {
        book: (replace) =>
            bookByHand({ kind, channelNumber: channel.number, antenna: channel.antenna, ...times }, replace),
    };
}

/// What the inputs mean on the set's clock.
function timesOf(date: string, start: string, end: string): { start: number; end: number } {
    const [year = 0, month = 1, day = 1] = date.split("-").map(Number);
    const [startHour = 0, startMinute = 0] = start.split(":").map(Number);
    const [endHour = 0, endMinute = 0] = end.split(":").map(Number);
    const nextDay = end <= start ? 1 : 0;
    return {
        start: setZone().at(year, month, day, startHour, startMinute),
        end: setZone().at(year, month, day + nextDay, endHour, endMinute),
    };
}

function fillChannels(select: HTMLSelectElement, list: readonly Channel[]): void {
    const chosen = select.value;
    const byAntenna = new Map<string, Channel[]>();
    for (const channel of list) byAntenna.set(channel.antenna, [...(byAntenna.get(channel.antenna) ?? []), channel]);
    fill(
        select,
        ...[...byAntenna].map(([antenna, some]) =>
            el(
                "optgroup",
                { label: antennaName(antenna) },
                ...some.map((channel) => el("option", { value: channel.id }, `${channel.number}  ${channel.name}`)),
            ),
        ),
    );
    if (list.some((channel) => channel.id === chosen)) select.value = chosen;
}
