// Above the grid: day, hour, antenna and search.
import { antennaName } from "../antennas.ts";
import { el, fill } from "../dom.ts";
import { icon } from "../icons.ts";
import { now, setZone } from "../time/setClock.ts";
import { days } from "./geometry.ts";

export interface ToolbarListener {
    goTo(time: number): void;
    goToNow(): void;
    antennaChosen(antenna: string): void; ///< empty: all
    searched(text: string): void;
}

/// How long typing has to rest before it is searched for, in milliseconds.
const restBeforeSearch = 250;

export class Toolbar {
    readonly element: HTMLElement;
    readonly #listener: ToolbarListener;
    readonly #days = el("div", { class: "days", role: "group", "aria-label": "Day" });
    readonly #hours = el("select", { "aria-label": "Hour" });
    readonly #antennas = el("select", { "aria-label": "Antenna" });
    readonly #search = el("input", {
        type: "search",
        placeholder: "Search titles and channels",
        "aria-label": "Search titles and channels",
        autocomplete: "off",
        spellcheck: "false",
    });
    #first = 0; // midnight of the first day
    #time = 0;
    #searchTimer = 0;

    constructor(listener: ToolbarListener) {
        this.#listener = listener;
        for (let number = 0; number < 24; ++number) {
            this.#hours.append(el("option", { value: number }, `${String(number).padStart(2, "0")}:00`));
        }
        this.#hours.addEventListener("change", () => this.#goToHour());
        this.#antennas.addEventListener("change", () => listener.antennaChosen(this.#antennas.value));
        this.#search.addEventListener("input", () => this.#typed());
        this.element = el(
            "div",
            { class: "toolbar" },
            el(
                "button",
                { type: "button", class: "button now-button", onclick: () => listener.goToNow() },
                "Now",
            ),
            this.#days,
            el("label", { class: "field hour" }, this.#hours),
            el("label", { class: "field antenna" }, this.#antennas),
            el("label", { class: "field search" }, icon("search"), this.#search),
        );
    }

    /// The time that the grid shows.
    showTime(time: number): void {
        this.#time = time;
        const today = setZone().midnight(now());
        if (today !== this.#first) this.#makeDays(today);
        const shown = String(setZone().midnight(time));
        for (const button of this.#days.children) {
            button.setAttribute("aria-pressed", String((button as HTMLElement).dataset["midnight"] === shown));
        }
        if (document.activeElement !== this.#hours) this.#hours.value = String(setZone().wall(time).hour);
    }

    showAntennas(antennas: readonly string[]): void {
        const chosen = this.#antennas.value;
        fill(
            this.#antennas,
            el("option", { value: "" }, "All antennas"),
            ...antennas.map((antenna) => el("option", { value: antenna }, antennaName(antenna))),
        );
        if (antennas.includes(chosen)) this.#antennas.value = chosen;
    }

    clearSearch(): void {
        this.#search.value = "";
        this.#listener.searched("");
    }

    focusSearch(): void {
        this.#search.focus();
        this.#search.select();
    }

    #makeDays(today: number): void {
        this.#first = today;
        const zone = setZone();
        const buttons = Array.from({ length: days }, (_, number) => {
            const midnight = zone.midnight(today, number);
            const click = () => this.#goToDay(midnight);
            return el(
                "button",
                { type: "button", class: "day", "data-midnight": midnight, onclick: click },
                number === 0 ? "Today" : zone.shortDay(midnight),
                el("span", { class: "visually-hidden" }, number === 0 ? `, ${zone.longDay(midnight)}` : ` ${zone.month(midnight)}`),
            );
        });
        this.#days.replaceChildren(...buttons);
    }

    /// The same time of another day.
    #goToDay(midnight: number): void {
        const { hour, minute } = setZone().wall(this.#time);
        const { year, month, day } = setZone().wall(midnight);
        this.#listener.goTo(setZone().at(year, month, day, hour, minute));
    }

    #goToHour(): void {
        const { year, month, day } = setZone().wall(this.#time);
        this.#listener.goTo(setZone().at(year, month, day, Number(this.#hours.value)));
    }

    #typed(): void {
        clearTimeout(this.#searchTimer);
        const search = () => this.#listener.searched(this.#search.value.trim());
        this.#searchTimer = window.setTimeout(search, this.#search.value === "" ? 0 : restBeforeSearch);
    }
}
