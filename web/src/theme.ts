// Light or dark: as the browser says, or as chosen.
import { el, fill } from "./dom.ts";
import { type IconName, icon } from "./icons.ts";

const themes: readonly { name: string; text: string; symbol: IconName }[] = [
    { name: "system", text: "As the system", symbol: "system" },
    { name: "light", text: "Light", symbol: "sun" },
    { name: "dark", text: "Dark", symbol: "moon" },
];
const kept = "guide-theme";

/// A button that goes through the themes; the choice is kept in this browser.
export function themeButton(): HTMLElement {
    const button = el("button", { type: "button", class: "icon-button" });
    const show = (name: string | null) => {
        const theme = themes.find((one) => one.name === name) ?? themes[0]!;
        if (theme.name === "system") delete document.documentElement.dataset["theme"];
        else document.documentElement.dataset["theme"] = theme.name;
        fill(button, icon(theme.symbol));
        button.title = `Colours: ${theme.text}`;
        button.setAttribute("aria-label", `Colours: ${theme.text}`);
        return theme;
    };
    let shown = show(localStorage.getItem(kept));
    button.addEventListener("click", () => {
        shown = show(themes[(themes.indexOf(shown) + 1) % themes.length]!.name);
        localStorage.setItem(kept, shown.name);
    });
    return button;
}
