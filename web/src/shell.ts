// The frame around the views: navigation, the set's clock, and whether the set can be reached.
import { announcer } from "./announce.ts";
import { el, fill } from "./dom.ts";
import { guideView } from "./guide/view.ts";
import { type IconName, icon } from "./icons.ts";
import { programmePanel } from "./programme/panel.ts";
import { schedulesView } from "./schedules/view.ts";
import { setView } from "./set/view.ts";
import { sqlView } from "./sql/view.ts";
import { refresh, schedules, status, trouble } from "./state.ts";
import { themeButton } from "./theme.ts";
import { now, setZone } from "./time/setClock.ts";

interface Place {
    hash: string;
    title: string;
    symbol: IconName;
    view: HTMLElement;
    link: HTMLElement;
    shown?: () => void;
}

/// Builds the page into the document's body.
export function buildShell(): void {
    const set = setView();
    const places = [
        place("#/guide", "Guide", "guide", guideView()),
        place("#/schedules", "Schedules", "list", schedulesView()),
        place("#/set", "Set", "set", set.element, set.shown),
        place("#/sql", "SQL", "table", sqlView()),
    ];
    const main = el("main", { id: "main", tabindex: -1 }, ...places.map((one) => one.view));
    const clock = el("time", { class: "clock" });
    document.body.append(
        el("a", { class: "skip", href: "#main", onclick: (event: Event) => skipTo(event, main) }, "To the content"),
        el(
            "header",
            { class: "top" },
            el("a", { class: "brand", href: "#/guide" }, icon("set"), "Programme guide"),
            el("nav", { "aria-label": "Pages" }, ...places.map((one) => one.link)),
            el("div", { class: "top-end" }, clock, themeButton()),
        ),
        troubleBar(),
        main,
        programmePanel(),
        announcer(),
    );
    const show = () => showPlace(places);
    addEventListener("hashchange", () => {
        const shown = show();
        shown.view.querySelector<HTMLElement>("h1")?.focus();
    });
    show();

    const tick = () => showClock(clock);
    status.onChange(tick);
    setInterval(tick, 1000);
    schedules.onChange((entries) => showBusy(places[1]!.link, entries?.length ?? 0));
}

function place(hash: string, title: string, symbol: IconName, view: HTMLElement, shown?: () => void): Place {
    const link = el("a", { href: hash }, icon(symbol), el("span", {}, title));
    return { hash, title, symbol, view, link, ...(shown && { shown }) };
}

function showPlace(places: readonly Place[]): Place {
    const found = places.find((one) => one.hash === location.hash) ?? places[0]!;
    for (const one of places) {
        one.view.hidden = one !== found;
        if (one === found) one.link.setAttribute("aria-current", "page");
        else one.link.removeAttribute("aria-current");
    }
    document.title = `${found.title} – Programme guide`;
    found.shown?.();
    return found;
}

function showClock(clock: HTMLTimeElement): void {
    if (!status.value) return;
    const text = setZone().clock(now());
    if (clock.textContent === text) return;
    clock.textContent = text;
    clock.title = `${setZone().longDay(now())}, ${setZone().name}`;
}

/// The number of bookings beside the link to them.
function showBusy(link: HTMLElement, number: number): void {
    link.querySelector(".count")?.remove();
    if (number === 0) return;
    link.append(el("span", { class: "count" }, String(number), el("span", { class: "visually-hidden" }, " booked")));
}

function troubleBar(): HTMLElement {
    const bar = el("div", { class: "trouble", role: "alert", hidden: true });
    trouble.onChange((reason) => {
        bar.hidden = !reason;
        if (!reason) return bar.replaceChildren();
        fill(
            bar,
            icon("warning"),
            `${reason} What is shown may be old.`,
            el("button", { type: "button", class: "link", onclick: () => void refresh() }, "Try again"),
        );
    });
    return bar;
}

/// The address names the view, so that the link must not change it.
function skipTo(event: Event, main: HTMLElement): void {
    event.preventDefault();
    main.focus();
}
