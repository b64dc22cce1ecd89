// What the page tells of the set.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import { numberedGuide } from "./support/guide.js";
import { launch, openPage, screenshot } from "./support/page.js";
import { TestSet, startTime } from "./support/set.js";

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

    it("lists how its guides were read, with what went wrong", async () => {
        const set = await TestSet.start({
            options: ["--guide", "FOLDER/good.xml", "--guide", "FOLDER/bad.xml"],
            files: {
                "good.xml": numberedGuide({ channels: 3, start: startTime, hours: 10, minutes: 30 }),
                "bad.xml": "<tv></tv>",
            },
        });
        await set.write("bad.xml", "<tv>\n<channel>\n");
        set.signal("SIGHUP");
        const open = await openPage(browser, set.url, { hash: "#/set" });
        const rows = open.page.getByRole("region", { name: "How the guides were read" }).getByRole("row");
        const good = rows.filter({ hasText: "good.xml" });
        await good.getByRole("cell", { name: "60", exact: true }).waitFor();
        await good.getByText("Sun 23, 14:10").waitFor();
        await good.getByText("Read", { exact: true }).waitFor();
        await rows.filter({ hasText: "bad.xml" }).locator(".outcome.bad").getByText(/bad\.xml/).waitFor();
        await open.page.locator(".set-view").evaluate((view) => view.scrollTo(0, view.scrollHeight));
        await screenshot(open.page, "desktop-light-set-with-error");
        await open.close();
        await set.stop();
    });

    it("does without what an older set does not tell", async () => {
        const set = await TestSet.start();
        const open = await openPage(browser, set.url, { hash: "#/sql" });
        await open.page.route("**/set/status", async (route) => {
            const { guides, ...rest } = await (await route.fetch()).json();
            await route.fulfill({ json: rest });
        });
        await open.page.reload();
        await open.page.getByRole("link", { name: "Set", exact: true }).click();
        await open.page.getByText("The set tells nothing of how its guides were read.").waitFor();
        await open.close();
        await set.stop();
    });
});
