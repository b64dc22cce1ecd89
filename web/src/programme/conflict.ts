// The entries in the way of a booking, and the choice to replace them.
import type { Entry } from "../api/schedules.ts";
import { el } from "../dom.ts";
import { icon } from "../icons.ts";
import { entryTitle, repeatText, spanText, stateText } from "./entryTexts.ts";

export interface ConflictChoice {
    replace(): void;
    keep(): void;
}

export function conflictBox(entries: readonly Entry[], choice: ConflictChoice): HTMLElement {
    const many = entries.length > 1;
    return el(
        "section",
        { class: "conflict", "aria-labelledby": "conflict-title" },
        el("h3", { id: "conflict-title", tabindex: -1 }, icon("warning"), "Something is in the way"),
        entries.length > 0
            ? el("ul", {}, ...entries.map(line))
            : el("p", {}, "An entry of a channel that the set does not have now."),
        el(
            "div",
            { class: "actions" },
            el(
                "button",
                { type: "button", class: "button danger", onclick: () => choice.replace() },
                many ? `Replace all ${entries.length}` : "Replace it",
            ),
            el(
                "button",
                { type: "button", class: "button", onclick: () => choice.keep() },
                many ? "Keep them" : "Keep it",
            ),
        ),
    );
}

function line(entry: Entry): HTMLElement {
    const details = [stateText(entry), entry.series ? "" : repeatText(entry), entry.channelName].filter(Boolean);
    return el(
        "li",
        {},
        el("strong", {}, entryTitle(entry)),
        el("span", { class: "dim" }, spanText(entry.start, entry.end)),
        el("span", { class: "dim" }, details.join(" · ")),
        entry.state === "RECORDING" && el("span", { class: "warn" }, "Replacing it ends this recording."),
    );
}
