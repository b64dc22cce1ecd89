// What happened, said to screen readers.
import { el } from "./dom.ts";

const region = el("div", { class: "visually-hidden", role: "status", "aria-live": "polite" });

/// The element that speaks. A dialog that is open hides the rest of the page from screen readers: the element
/// moves to where it is heard.
export function announcer(): HTMLElement {
    return region;
}

export function announce(text: string): void {
    const place = document.querySelector("dialog[open]") ?? document.body;
    if (region.parentElement !== place) place.append(region);
    region.textContent = "";
    setTimeout(() => (region.textContent = text), 30);
}
