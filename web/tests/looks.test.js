// Each view in light and dark, on a phone, a desk and a large screen: a screenshot of it, and what axe finds.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { createRequire } from "node:module";
import { after, before, describe, it } from "node:test";
import { desktop, gridIsFilled, large, launch, openPage, phone, screenshot } from "./support/page.js";
import { TestSet } from "./support/set.js";

const axeFile = createRequire(import.meta.url).resolve("axe-core/axe.min.js");

/** @typedef {import("playwright-core").Page} Page */

/**
 * Violations as lines of text. The page's own rules let in no script but the set's: axe goes past them through the
 * browser's tools.
 * @param {Page} page
 * @returns {Promise<string[]>}
 */
async function violations(page) {
    await page.evaluate(await readFile(axeFile, "utf8"));
    return page.evaluate(async () => {
        const axe = /** @type {any} */ (globalThis).axe;
        const { violations: found } = await axe.run();
        return found.map(
            (/** @type {any} */ violation) =>
                `${violation.id}: ${violation.help}: ${violation.nodes.length} times, as in ${violation.nodes[0].html}`,
        );
    });
}

/** @param {Page} page */
async function fitsItsWidth(page) {
    return page.evaluate(() => document.documentElement.scrollWidth <= innerWidth);
}

/** @type {[string, (page: Page) => Promise<unknown>][]} */
const views = [
    ["guide", (page) => gridIsFilled(page)],
    [
        "panel",
        async (page) => {
            await gridIsFilled(page);
            await page.locator(".row", { hasText: "Harbour News" }).locator(".cell.next").first().click();
            await page.locator("dialog .synopsis p:not(.reading-text)").waitFor();
        },
    ],
    [
        "conflict",
        async (page) => {
            await page.getByRole("button", { name: "Remind me" }).click();
            await page.getByText("Something is in the way").waitFor();
        },
    ],
    [
        "search",
        async (page) => {
            await page.keyboard.press("Escape");
            await page.getByRole("searchbox").fill("the");
            await page.locator(".result").first().waitFor();
        },
    ],
    [
        "nothing-found",
        async (page) => {
            await page.getByRole("searchbox").fill("no such title");
            await page.getByText("Nothing found", { exact: true }).first().waitFor();
        },
    ],
    [
        "schedules",
        async (page) => {
            await page.getByRole("link", { name: "Schedules" }).click();
            await page.locator(".entry").first().waitFor();
        },
    ],
    [
        "set",
        async (page) => {
            await page.getByRole("link", { name: "Set", exact: true }).click();
            await page.getByText("Stand-alone set").waitFor();
            await page.getByText("The set can record").waitFor();
        },
    ],
    [
        "sql",
        async (page) => {
            await page.getByRole("link", { name: "SQL" }).click();
            await page.getByRole("button", { name: "Titles with" }).click();
            await page.getByRole("button", { name: "Run" }).click();
            await page.locator(".sql-result table").waitFor();
        },
    ],
    [
        "sql-error",
        async (page) => {
            await page.getByRole("textbox", { name: "Statement" }).fill("SELECT Elsewhere FROM myView");
            await page.getByRole("button", { name: "Run" }).click();
            await page.locator(".sql-error").waitFor();
        },
    ],
];

describe("the page", () => {
    /** @type {import("playwright-core").Browser} */
    let browser;
    /** @type {TestSet} */
    let set;
    before(async () => {
        browser = await launch();
        set = await TestSet.start();
        // Reminders and recordings one after the other, so that each next programme meets one of them.
        const programmes = await set.rows(
            "SELECT EventId, ProgramStartTime, ProgramEndTime FROM myView WHERE ChannelId='cid-000-1' AND " +
                "ProgramStartTime>1787487600 ORDER BY ProgramStartTime LIMIT 5",
        );
        for (const [index, programme] of programmes.entries()) {
            const body = { status: index % 2 ? "VIEW" : "RECORD", repeat: index === 2 ? "SERIES" : "ONCE" };
            await set.post(`/ws/epg2/programs/${programme["program_id"]}/schedule`, body);
        }
    });
    after(async () => {
        await set.stop();
        await browser.close();
    });

    for (const [sizeName, size] of Object.entries({ phone, desktop, large })) {
        for (const colours of /** @type {const} */ (["light", "dark"])) {
            it(`is well made on a ${sizeName} screen in ${colours} colours`, async () => {
                const open = await openPage(browser, set.url, { size, colours });
                for (const [name, show] of views) {
                    await show(open.page);
                    await screenshot(open.page, `${sizeName}-${colours}-${name}`);
                    assert.deepEqual(await violations(open.page), [], `${name}, by axe`);
                    assert.ok(await fitsItsWidth(open.page), `${name} is wider than the screen`);
                }
                await open.close();
            });
        }
    }

    it("is well made while the guide has no channels", async () => {
        const empty = await TestSet.start({ options: ["--guide", "FOLDER/empty.xml"], files: { "empty.xml": "<tv></tv>" } });
        const open = await openPage(browser, empty.url);
        await open.page.getByText("There are no channels").waitFor();
        await screenshot(open.page, "desktop-light-no-channels");
        assert.deepEqual(await violations(open.page), []);
        await open.page.getByRole("link", { name: "Schedules" }).click();
        await open.page.getByText("Nothing is booked").waitFor();
        await screenshot(open.page, "desktop-light-nothing-booked");
        assert.deepEqual(await violations(open.page), []);
        await open.close();
        await empty.stop();
    });

    it("changes its colours when told to, and keeps to them", async () => {
        const open = await openPage(browser, set.url);
        const paper = () => open.page.evaluate(() => getComputedStyle(document.body).backgroundColor);
        const light = await paper();
        await open.page.getByRole("button", { name: /^Colours/ }).click();
        assert.equal(await paper(), light);
        await open.page.getByRole("button", { name: "Colours: Light" }).click();
        const dark = await paper();
        assert.notEqual(dark, light);
        await open.page.reload();
        assert.equal(await paper(), dark);
        await open.close();
    });
});
