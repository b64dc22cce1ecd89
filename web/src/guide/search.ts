// What a search found, in place of the grid.
import { type Channel, type Programme, searchChannels, searchProgrammes } from "../api/guide.ts";
import { announce } from "../announce.ts";
import { el, fill } from "../dom.ts";
import { dayText } from "../programme/entryTexts.ts";
import { channelById, channels, entryOf } from "../state.ts";
import { now, setZone } from "../time/setClock.ts";
import { entryIcon } from "./row.ts";

/// More programmes are not listed.
const most = 100;

export interface SearchListener {
    channelChosen(channel: Channel): void;
    programmeChosen(programme: Programme, channel: Channel): void;
}

export class Search {
    readonly element = el("div", { class: "results", hidden: true, tabindex: -1 });
    readonly #listener: SearchListener;
    #running: AbortController | null = null;

    constructor(listener: SearchListener) {
        this.#listener = listener;
    }

    /// Shows what is found; nothing for an empty text.
    async show(text: string): Promise<void> {
        this.#running?.abort();
        this.element.hidden = text === "";
        if (text === "") return;
        const running = new AbortController();
        this.#running = running;
        this.element.setAttribute("aria-busy", "true");
        try {
            const [ids, programmes] = await Promise.all([
                searchChannels(text, running.signal),
                searchProgrammes(text, now(), most, running.signal),
            ]);
            const found = (channels.value ?? []).filter((channel) => ids.has(channel.id) || channel.number === text);
            this.#list(text, found, programmes);
        } catch (error) {
            if (running.signal.aborted) return;
            fill(this.element, el("p", { class: "empty" }, error instanceof Error ? error.message : String(error)));
        }
        this.element.setAttribute("aria-busy", "false");
    }

    #list(text: string, found: readonly Channel[], programmes: readonly Programme[]): void {
        const count = found.length + programmes.length;
        announce(count === 0 ? "Nothing found" : `${found.length} channels and ${programmes.length} programmes found`);
        if (count === 0) {
            fill(
                this.element,
                el(
                    "div",
                    { class: "empty" },
                    el("h2", {}, "Nothing found"),
                    el("p", {}, `No channel and no programme to come is called “${text}”.`),
                ),
            );
            return;
        }
        const programmeCount = programmes.length === most ? `the next ${most}` : String(programmes.length);
        fill(
            this.element,
            found.length > 0 && el("h2", {}, "Channels ", el("span", { class: "dim" }, String(found.length))),
            found.length > 0 && el("ul", { class: "found channels-found" }, ...found.map((one) => this.#channel(one))),
            programmes.length > 0 && el("h2", {}, "Programmes ", el("span", { class: "dim" }, programmeCount)),
            programmes.length > 0 && el("ul", { class: "found" }, ...programmes.map((one) => this.#programme(one))),
        );
        this.element.scrollTop = 0;
    }

    #channel(channel: Channel): HTMLElement {
        const click = () => this.#listener.channelChosen(channel);
        return el(
            "li",
            {},
            el(
                "button",
                { type: "button", class: "result", onclick: click },
                el("span", { class: "number" }, channel.number),
                el("strong", {}, channel.name),
            ),
        );
    }

    #programme(programme: Programme): HTMLElement | null {
        const channel = channelById(programme.channelId);
        if (!channel) return null;
        const entry = entryOf(programme.id);
        const onNow = programme.start <= now();
        const click = () => this.#listener.programmeChosen(programme, channel);
        return el(
            "li",
            {},
            el(
                "button",
                { type: "button", class: "result", onclick: click },
                el(
                    "span",
                    { class: onNow ? "when on-now" : "when" },
                    onNow ? "On now" : dayText(programme.start),
                    " ",
                    el("b", {}, setZone().clock(programme.start)),
                ),
                el("strong", {}, entry && entryIcon(entry), programme.title),
                el("span", { class: "dim" }, channel.name),
            ),
        );
    }
}
