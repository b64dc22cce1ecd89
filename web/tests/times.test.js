// Times on the page are those of the set's own zone, whatever its middleware counts in.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import { smallGuide } from "./support/guide.js";
import { gridIsFilled, launch, openPage } from "./support/page.js";
import { TestSet } from "./support/set.js";

/** @type {import("playwright-core").Browser} */
let browser;
before(async () => {
    browser = await launch();
});
after(() => browser.close());

/**
 * @param {{ now: string, zone: string, options?: string[], programmes: Parameters<typeof smallGuide>[0] }} how
 * @param {(page: import("playwright-core").Page, set: TestSet) => Promise<void>} test
 */
async function onGuide({ now, zone, options = [], programmes }, test) {
    const set = await TestSet.start({
        options: ["--guide", "FOLDER/guide.xml", "--now", now, ...options],
        files: { "guide.xml": smallGuide(programmes) },
        zone,
    });
    const open = await openPage(browser, set.url);
    await gridIsFilled(open.page);
    await test(open.page, set);
    await open.close();
    await set.stop();
}

/**
 * @param {import("playwright-core").Page} page
 * @param {string} title
 */
const label = (page, title) => page.getByRole("gridcell", { name: title }).textContent();

const evening = [
    { title: "Before", start: "2026-08-23T17:00:00Z", stop: "2026-08-23T18:00:00Z" },
    { title: "Evening", start: "2026-08-23T18:00:00Z", stop: "2026-08-23T19:30:00Z" },
];

for (const [zone, shown, booked] of [
    ["Europe/Berlin", "20:00 to 21:30", "20:30"],
    ["America/New_York", "14:00 to 15:30", "14:30"],
    ["Asia/Kolkata", "23:30 to 01:00", "00:00"],
    ["UTC", "18:00 to 19:30", "18:30"],
]) {
    for (const counted of ["utc", "local"]) {
        it(`shows and books in ${zone} while the set counts in ${counted}`, () =>
            onGuide(
                { now: "2026-08-23T17:30:00Z", zone: String(zone), options: ["--zone", counted], programmes: evening },
                async (page, set) => {
                    assert.equal(await label(page, "Evening"), `Evening, ${shown}`);
                    assert.match(String(await label(page, "Before")), /on now$/);
                    await page.getByRole("gridcell", { name: "Evening" }).click();
                    await page.getByRole("button", { name: "Remind me" }).click();
                    await page.locator("dialog .outcome").getByText("Booked.").waitFor();
                    await page.keyboard.press("Escape");
                    await page.getByRole("link", { name: "Schedules" }).click();
                    await page.getByText(`${shown} · 1 One`).waitFor();
                    await set.clearSchedules();
                    const form = page.getByRole("form");
                    await form.getByLabel("Day").fill(booked === "00:00" ? "2026-08-26" : "2026-08-25");
                    await form.getByLabel("Start").fill(String(booked));
                    await form.getByLabel("End").fill("23:59");
                    await form.getByRole("button", { name: "Add" }).click();
                    await form.locator(".outcome").getByText("Added.").waitFor();
                    await page.getByText(`${booked} to 23:59 · 1 One`).waitFor();
                },
            ));
    }
}

describe("a day on which the clocks are changed", () => {
    it("has 25 hours in autumn", () =>
        onGuide(
            {
                now: "2026-10-25T00:30:00Z",
                zone: "Europe/Berlin",
                programmes: [
                    { title: "Summer Hour", start: "2026-10-25T00:00:00Z", stop: "2026-10-25T01:00:00Z" },
                    { title: "Winter Hour", start: "2026-10-25T01:00:00Z", stop: "2026-10-25T02:00:00Z" },
                    { title: "After", start: "2026-10-25T02:00:00Z", stop: "2026-10-25T03:00:00Z" },
                ],
            },
            async (page) => {
                assert.match(String(await label(page, "Summer Hour")), /^Summer Hour, 02:00 to 02:00/);
                assert.match(String(await label(page, "Winter Hour")), /^Winter Hour, 02:00 to 03:00/);
                const ticks = await page.locator(".tick:not(.half)").evaluateAll((list) =>
                    list.slice(0, 26).map((tick) => (tick.firstChild?.textContent ?? "").slice(0, 2)),
                );
                assert.deepEqual(ticks.slice(0, 5), ["00", "01", "02", "02", "03"]);
                assert.equal(ticks[25], "00");
            },
        ));

    it("has 23 hours in spring", () =>
        onGuide(
            {
                now: "2027-03-28T00:30:00Z",
                zone: "Europe/Berlin",
                programmes: [{ title: "Night", start: "2027-03-28T00:00:00Z", stop: "2027-03-28T02:00:00Z" }],
            },
            async (page) => {
                assert.match(String(await label(page, "Night")), /^Night, 01:00 to 04:00/);
                const ticks = await page.locator(".tick:not(.half)").evaluateAll((list) =>
                    list.slice(0, 24).map((tick) => (tick.firstChild?.textContent ?? "").slice(0, 2)),
                );
                assert.deepEqual(ticks.slice(0, 4), ["00", "01", "03", "04"]);
                assert.equal(ticks[23], "00");
            },
        ));
});
