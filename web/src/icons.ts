// The icons: drawn with lines in a box of 24 by 24, in the colour of the text.

const paths = {
    guide: "M4 5h16v14H4zM4 10h16M10 10v9",
    bell: "M18 9a6 6 0 1 0-12 0c0 6-2.5 7-2.5 7h17S18 15 18 9M10 20a2.2 2.2 0 0 0 4 0",
    record: "M12 5a7 7 0 1 0 0 14 7 7 0 0 0 0-14z",
    series: "M4 8a4 4 0 0 1 4-4h9l-2.5-2.5M20 16a4 4 0 0 1-4 4H7l2.5 2.5M12 9.5a2.5 2.5 0 1 0 0 5 2.5 2.5 0 0 0 0-5z",
    stop: "M7 7h10v10H7z",
    play: "M8 5.5v13l11-6.5z",
    close: "M6 6l12 12M18 6L6 18",
    search: "M10.5 4a6.5 6.5 0 1 0 0 13 6.5 6.5 0 0 0 0-13zM15.5 15.5L21 21",
    list: "M8 6h12M8 12h12M8 18h12M4 6h.01M4 12h.01M4 18h.01",
    set: "M3 6h18v11H3zM8 21h8M12 17v4",
    table: "M5 6c0-1.7 3.1-3 7-3s7 1.3 7 3-3.1 3-7 3-7-1.3-7-3zM5 6v12c0 1.7 3.1 3 7 3s7-1.3 7-3V6M5 12c0 1.7 3.1 3 7 3s7-1.3 7-3",
    trash: "M5 7h14M10 11v6M14 11v6M6.5 7l1 13h9l1-13M9 7V4h6v3",
    plus: "M12 5v14M5 12h14",
    check: "M5 12.5l4.5 4.5L19 7",
    warning: "M12 4l9 16H3zM12 10v4M12 17.2h.01",
    sun: "M12 8a4 4 0 1 0 0 8 4 4 0 0 0 0-8zM12 2v2M12 20v2M4.9 4.9l1.4 1.4M17.7 17.7l1.4 1.4M2 12h2M20 12h2M4.9 19.1l1.4-1.4M17.7 6.3l1.4-1.4",
    moon: "M20 14.5A8.5 8.5 0 0 1 9.5 4 8.5 8.5 0 1 0 20 14.5z",
    system: "M12 4a8 8 0 1 0 0 16zM12 4a8 8 0 0 1 0 16",
    left: "M14.5 6L8.5 12l6 6",
    right: "M9.5 6l6 6-6 6",
    refresh: "M20 11a8 8 0 1 0-2.3 6.3M20 4v7h-7",
} as const;

export type IconName = keyof typeof paths;

/// An icon, hidden from screen readers: what it means stands beside it or in a label.
export function icon(name: IconName): SVGSVGElement {
    const space = "http://www.w3.org/2000/svg";
    const svg = document.createElementNS(space, "svg");
    svg.setAttribute("viewBox", "0 0 24 24");
    svg.setAttribute("class", `icon icon-${name}`);
    svg.setAttribute("aria-hidden", "true");
    svg.setAttribute("focusable", "false");
    const path = document.createElementNS(space, "path");
    path.setAttribute("d", paths[name]);
    svg.append(path);
    return svg;
}
