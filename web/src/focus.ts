// The focus where what holds it is made anew.

/// Runs `change`, which makes the content of `place` anew. Where the focus was in it, the control of the same name
/// gets it, else the first one.
export function keepingFocus(place: HTMLElement, change: () => void): void {
    const held = document.activeElement;
    const name = held && held !== place && place.contains(held) ? nameOf(held) : null;
    change();
    if (name === null || place.contains(document.activeElement)) return;
    const controls = [...place.querySelectorAll<HTMLElement>("button, a, input, select")];
    (controls.find((control) => nameOf(control) === name) ?? controls[0])?.focus();
}

function nameOf(element: Element): string {
    return element.getAttribute("aria-label") ?? element.textContent ?? "";
}
