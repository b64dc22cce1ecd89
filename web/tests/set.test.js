// What the page tells of the set.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import { launch, openPage } from "./support/page.js";
import { TestSet } from "./support/set.js";

/** @type {import("playwright-core").Browser} */
let browser;
before(async () => {
    browser = await launch();
});
after(() => browser.close());

/**
 * Opens the set's page of an epghost with these options.
 * @param {string[]} options
 * @param {(page: import("playwright-core").Page, set: TestSet) => Promise<void>} test
 */
async function onSet(options, test) {
    const set = await TestSet.start({ options });
    const open = await openPage(browser, set.url, { hash: "#/set" });
    await test(open.page, set);
    await open.close();
    await set.stop();
}

describe("the set's page", () => {
    it("tells clock, zone, antennas, device and guide", () =>
        onSet([], async (page, set) => {
            await page.getByText("Sunday 23 August, 14:10").waitFor();
            await page.getByText("Europe/Berlin", { exact: true }).waitFor();
            await page.getByText("The set can record").waitFor();
            await page.getByText("Terrestrial").locator("xpath=..").getByText("10 channels").waitFor();
            await page.getByText("Stand-alone set").waitFor();
            const { programs } = await set.status();
            await page.getByText(new Intl.NumberFormat("en-GB").format(programs), { exact: true }).first().waitFor();
        }));

    it("tells which channel it is tuned to", () =>
        onSet([], async (page, set) => {
            const [now] = await set.rows(
                "SELECT EventId FROM myView WHERE ChannelId='cid-000-3' AND ProgramStartTime<=1787487000 AND ProgramEndTime>1787487100",
            );
            assert.equal(await set.post(`/ws/epg2/programs/${now?.["program_id"]}/schedule`, { status: "VIEW" }), 200);
            await page.locator("dd").getByText("3 Harbour News").waitFor();
        }));

    for (const [pvr, text] of [
        ["off", "It does not record at all"],
        ["no-device", "There is no storage device"],
        ["unformatted", "The storage is not formatted"],
    ]) {
        it(`tells why it cannot record: ${pvr}`, () =>
            onSet(["--pvr", String(pvr)], async (page) => {
                await page.getByText("The set cannot record").waitFor();
                await page.getByText(String(text)).waitFor();
            }));
    }

    it("lists how its guides were read, where the set tells", async () => {
        const set = await TestSet.start();
        const open = await openPage(browser, set.url, { hash: "#/sql" });
        await open.page.route("**/set/status", async (route) => {
            const status = await (await route.fetch()).json();
            status.guides = [
                { guide: "good.xml", time: "2026-08-23T12:00:00+00:00", channels: 3, programs: 1200, skipped: 4, error: null },
                { guide: "bad.xml", time: "2026-08-23T12:05:00+00:00", channels: 0, programs: 0, skipped: 0, error: "line 7: not well-formed" },
            ];
            await route.fulfill({ json: status });
        });
        await open.page.reload();
        await open.page.getByRole("link", { name: "Set" }).click();
        const rows = open.page.getByRole("region", { name: "How the guides were read" }).getByRole("row");
        await rows.nth(1).getByText("1,200").waitFor();
        await rows.nth(1).getByText("14:00").waitFor();
        await rows.nth(2).getByText("line 7: not well-formed").waitFor();
        await open.close();
        await set.stop();
    });
});
