// Making elements.

type Attribute = string | number | boolean | null | undefined | ((event: never) => void);
export type Child = Node | string | null | undefined | false;

/// An element. An attribute whose name begins with "on" is a listener; true is an attribute without a value;
/// false, null and undefined leave it out.
export function el<K extends keyof HTMLElementTagNameMap>(
    tag: K,
    attributes: Record<string, Attribute> = {},
    ...children: Child[]
): HTMLElementTagNameMap[K] {
    const element = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) {
        if (value === null || value === undefined || value === false) continue;
        if (typeof value === "function") {
            element.addEventListener(name.slice(2), value as EventListener);
        } else {
            element.setAttribute(name, value === true ? "" : String(value));
        }
    }
    element.append(...shown(children));
    return element;
}

/// Puts `children` in place of what the element holds.
export function fill(element: Element, ...children: Child[]): void {
    element.replaceChildren(...shown(children));
}

function shown(children: Child[]): (Node | string)[] {
    return children.filter((child): child is Node | string => !!child);
}
