// The guide page in a real browser.
import { mkdir } from "node:fs/promises";
import { join } from "node:path";
import { chromium } from "playwright-core";

export const desktop = { width: 1360, height: 860 };
export const phone = { width: 390, height: 844 };
export const large = { width: 2560, height: 1440 };

const screenshots = process.env["SCREENSHOTS"] ?? "../build/web/screenshots";
/// How long a test waits for what it expects, in milliseconds: machines under load are slow.
const patience = 15_000;
const executablePath = process.env["CHROMIUM"] ?? "/usr/bin/chromium";

export async function launch() {
    return chromium.launch({ executablePath, args: ["--no-sandbox"] });
}

/**
 * Opens the page; whatever it complains of, and each request that leaves the set, fails the test.
 * @param {import("playwright-core").Browser} browser
 * @param {string} url
 * @param {{ size?: { width: number, height: number }, colours?: "light" | "dark", hash?: string, without?: string[] }} [how]
 *     without: paths that the set answers 404
 */
export async function openPage(browser, url, { size = desktop, colours = "light", hash = "", without = [] } = {}) {
    const context = await browser.newContext({
        viewport: size,
        colorScheme: colours,
        hasTouch: size.width < 640,
        isMobile: size.width < 640,
        reducedMotion: "reduce",
        locale: "en-GB",
    });
    context.setDefaultTimeout(patience);
    for (const path of without) await context.route(path, (route) => route.fulfill({ status: 404 }));
    const page = await context.newPage();
    /** @type {string[]} */
    const complaints = [];
    page.on("pageerror", (error) => complaints.push(String(error)));
    page.on("console", (message) => {
        // A set without events, and a refused booking, show as failed requests.
        if (message.type() === "error" && !/Failed to load resource/.test(message.text())) {
            complaints.push(message.text());
        }
    });
    page.on("request", (request) => {
        if (!request.url().startsWith(url)) complaints.push(`left the set: ${request.url()}`);
    });
    await page.goto(`${url}/${hash}`);
    return {
        page,
        /** Ends the page; throws when it complained. */
        async close() {
            await context.close();
            if (complaints.length > 0) throw new Error(complaints.join("\n"));
        },
    };
}

/**
 * Waits until the grid's view is filled.
 * @param {import("playwright-core").Page} page
 */
export async function gridIsFilled(page) {
    await page.locator(".row .cell").first().waitFor();
    await page.waitForFunction(() => !document.querySelector(".row[aria-busy=true]"));
}

/**
 * @param {import("playwright-core").Page} page
 * @param {string} name
 */
export async function screenshot(page, name) {
    await mkdir(screenshots, { recursive: true });
    await page.evaluate(() => document.fonts.ready);
    await page.screenshot({ path: join(screenshots, `${name}.png`) });
}
