// The hours above the grid, and the line at the time that it is.
import { el } from "../dom.ts";
import { setZone } from "../time/setClock.ts";
import { type Geometry, ticks, xOf } from "./geometry.ts";

/// Room that the label at the line takes, in pixels.
const labelWidth = 52;

export class Axis {
    readonly element: HTMLElement;
    readonly nowLine = el("div", { class: "now-line", "aria-hidden": "true" });
    readonly #geometry: Geometry;
    readonly #nowLabel = el("span", { class: "now-label" });
    readonly #ticks: { time: number; element: HTMLElement }[] = [];

    constructor(geometry: Geometry) {
        this.#geometry = geometry;
        this.element = el("div", { class: "axis", "aria-hidden": "true" });
        const strip = el("div", { class: "ticks" });
        for (const time of ticks(geometry)) {
            const text = setZone().clock(time);
            const tick = el("span", { class: text.endsWith(":00") ? "tick" : "tick half" }, text);
            if (text === "00:00") tick.append(el("b", {}, setZone().shortDay(time)));
            tick.style.left = `${geometry.channelWidth + xOf(geometry, time)}px`;
            strip.append(tick);
            this.#ticks.push({ time, element: tick });
        }
        this.element.append(el("div", { class: "corner" }), strip, this.#nowLabel);
    }

    showNow(time: number): void {
        const x = `${this.#geometry.channelWidth + xOf(this.#geometry, time)}px`;
        this.nowLine.style.left = x;
        this.#nowLabel.style.left = x;
        this.#nowLabel.textContent = setZone().clock(time);
        for (const tick of this.#ticks) {
            const distance = xOf(this.#geometry, time) - xOf(this.#geometry, tick.time);
            tick.element.classList.toggle("covered", distance > -labelWidth / 2 && distance < 1.5 * labelWidth);
        }
    }
}
