// The page follows what happens in the set.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import { gridIsFilled, launch, openPage } from "./support/page.js";
import { TestSet } from "./support/set.js";

describe("a booking of another client", () => {
    /** @type {import("playwright-core").Browser} */
    let browser;
    /** @type {TestSet} */
    let set;
    before(async () => {
        browser = await launch();
        set = await TestSet.start();
    });
    after(async () => {
        await set.stop();
        await browser.close();
    });

    async function bookNext() {
        const [programme] = await set.rows(
            "SELECT EventId FROM myView WHERE ChannelId='cid-000-1' AND ProgramStartTime>1787488000 ORDER BY ProgramStartTime LIMIT 1",
        );
        const id = programme?.["program_id"];
        assert.equal(await set.post(`/ws/epg2/programs/${id}/schedule`, { status: "VIEW", repeat: "ONCE" }), 201);
        return id;
    }

    it("is shown when the set tells of it, without asking at intervals", async () => {
        const open = await openPage(browser, set.url);
        await gridIsFilled(open.page);
        await open.page.waitForTimeout(500); // until what was read at the start is all there
        let asked = 0;
        open.page.on("request", (request) => {
            if (request.url().endsWith("/schedules")) ++asked;
        });
        const id = await bookNext();
        await open.page.locator(`[data-programme="${id}"].booked.view`).waitFor();
        await set.clearSchedules();
        await open.page.locator(`[data-programme="${id}"]:not(.booked)`).waitFor();
        assert.ok(asked >= 2 && asked <= 4, `asked ${asked} times`);
        await open.close();
    });

    it("is shown a while later when the set tells nothing", async () => {
        const silent = await openPage(browser, set.url, { without: ["**/set/events"] });
        await gridIsFilled(silent.page);
        const id = await bookNext();
        await silent.page.locator(`[data-programme="${id}"].booked.view`).waitFor();
        await set.clearSchedules();
        await silent.close();
    });
});
