// Bookings and recordings that run.
import assert from "node:assert/strict";
import { after, afterEach, before, beforeEach, describe, it } from "node:test";
import { smallGuide } from "./support/guide.js";
import { launch, openPage } from "./support/page.js";
import { TestSet } from "./support/set.js";
import { startSource } from "./support/source.js";

/** @type {import("playwright-core").Browser} */
let browser;
before(async () => {
    browser = await launch();
});
after(() => browser.close());

describe("the schedules", () => {
    /** @type {TestSet} */
    let set;
    /** @type {Awaited<ReturnType<typeof openPage>>} */
    let open;
    /** @type {import("playwright-core").Page} */
    let page;
    before(async () => {
        set = await TestSet.start();
    });
    after(() => set.stop());
    beforeEach(async () => {
        open = await openPage(browser, set.url, { hash: "#/schedules" });
        page = open.page;
    });
    afterEach(async () => {
        await open.close();
        await set.clearSchedules();
    });

    const form = () => page.getByRole("form", { name: "Add by hand" });
    const outcome = () => form().locator(".outcome");

    /**
     * Fills the form for a booking of Meridian One.
     * @param {{ start: string, end: string, date?: string }} times
     */
    async function fillForm({ start, end, date = "2026-08-24" }) {
        await form().getByLabel("Channel").selectOption({ label: "1  Meridian One" });
        await form().getByLabel("Day").fill(date);
        await form().getByLabel("Start").fill(start);
        await form().getByLabel("End").fill(end);
        await form().getByRole("button", { name: "Add" }).click();
    }

    it("tell that nothing is booked", async () => {
        await page.getByRole("heading", { name: "Nothing is booked" }).waitFor();
    });

    it("list what is booked by day, with its state, and cancel it", async () => {
        const programmes = await set.rows(
            "SELECT EventId, ProgramName FROM myView WHERE ChannelId='cid-000-1' AND ProgramStartTime IN " +
                "(SELECT min(ProgramStartTime) FROM myView WHERE ChannelId='cid-000-1' AND ProgramStartTime>1787490000 " +
                "UNION SELECT min(ProgramStartTime) FROM myView WHERE ChannelId='cid-000-1' AND ProgramStartTime>1787576400)",
        );
        const [first, second] = programmes;
        await set.post(`/ws/epg2/programs/${first?.["program_id"]}/schedule`, { status: "RECORD", repeat: "ONCE" });
        await set.post(`/ws/epg2/programs/${second?.["program_id"]}/schedule`, { status: "VIEW", repeat: "ONCE" });
        await page.reload();
        await page.getByRole("heading", { name: "Today" }).waitFor();
        await page.getByRole("heading", { name: "Tomorrow" }).waitFor();
        assert.deepEqual(await page.locator(".entry .badge").allTextContents(), ["Recording", "Reminder"]);
        await page.getByRole("button", { name: `Cancel ${first?.["program_name"]}, Today` }).click();
        await page.locator(".page-head .outcome").getByText("was cancelled").waitFor();
        assert.deepEqual(
            (await set.schedules()).map((entry) => entry["program_id"]),
            [second?.["program_id"]],
        );
        assert.equal(await page.locator(".entry").count(), 1);
    });

    it("take a booking by hand, at the times of the set's clock", async () => {
        await fillForm({ start: "20:15", end: "21:45" });
        await outcome().getByText("Added.").waitFor();
        await page.getByText("20:15 to 21:45 · 1 Meridian One").waitFor();
        const [entry] = await set.schedules();
        assert.equal(entry?.["start"], "2026-08-24T18:15:00+00:00");
        assert.equal(entry?.["end"], "2026-08-24T19:45:00+00:00");
        assert.equal(entry?.["status"], "RECORD");
    });

    it("take an end before the start as the next day's", async () => {
        await fillForm({ start: "23:30", end: "00:30" });
        await outcome().getByText("Added.").waitFor();
        assert.equal((await set.schedules())[0]?.["end"], "2026-08-24T22:30:00+00:00");
    });

    it("refuse a start that has passed", async () => {
        await fillForm({ start: "09:00", end: "10:00", date: "2026-08-23" });
        await outcome().getByText("The start has passed.").waitFor();
        assert.deepEqual(await set.schedules(), []);
    });

    it("show what is in the way of a booking by hand, and replace it", async () => {
        for (const [start, end] of [
            ["2026-08-24T18:00:00Z", "2026-08-24T18:30:00Z"],
            ["2026-08-24T18:30:00Z", "2026-08-24T19:00:00Z"],
        ]) {
            const body = { status: "VIEW", channel_num: "2", antenna: "AIR", start: String(start), end: String(end), repeat: "ONCE" };
            assert.equal(await set.post("/ws/epg2/schedules", body), 201);
        }
        await fillForm({ start: "20:15", end: "20:45" });
        await form().getByText("Something is in the way").waitFor();
        await form().getByRole("button", { name: "Replace all 2" }).click();
        await outcome().getByText("Added.").waitFor();
        assert.deepEqual(
            (await set.schedules()).map((entry) => entry["start"]),
            ["2026-08-24T18:15:00+00:00"],
        );
    });

    it("open the programme that is booked", async () => {
        const [programme] = await set.rows(
            "SELECT EventId, ProgramName FROM myView WHERE ChannelId='cid-000-2' AND ProgramStartTime>1787490000 ORDER BY ProgramStartTime LIMIT 1",
        );
        await set.post(`/ws/epg2/programs/${programme?.["program_id"]}/schedule`, { status: "VIEW", repeat: "ONCE" });
        await page.reload();
        await page.getByRole("button", { name: programme?.["program_name"], exact: true }).click();
        await page.getByRole("dialog").getByRole("heading", { name: programme?.["program_name"] }).waitFor();
    });
});

/**
 * Waits until it is so, for some seconds.
 * @param {() => Promise<boolean>} isSo
 */
async function until(isSo) {
    for (let count = 0; count < 150; ++count) {
        if (await isSo()) return;
        await new Promise((resolve) => setTimeout(resolve, 100));
    }
    assert.fail("it did not become so");
}

describe("a recording that runs", () => {
    it("is shown, with what it has so far, and stopped", async () => {
        const source = await startSource();
        const set = await TestSet.start({
            options: ["--guide", "FOLDER/guide.xml", "--lineup", "FOLDER/lineup.toml"],
            files: {
                "guide.xml": smallGuide([
                    { title: "The Long Match", start: "2026-08-23T12:00:00Z", stop: "2026-08-23T15:00:00Z" },
                ]),
                "lineup.toml": `[[channel]]\nid = "one"\nsource = "${source.url}"\n`,
            },
        });
        const body = {
            status: "RECORD",
            channel_num: "1",
            antenna: "AIR",
            start: new Date(Date.parse((await set.status())["clock"]) + 2000).toISOString().slice(0, 19) + "Z",
            end: "2026-08-23T15:00:00Z",
            repeat: "ONCE",
        };
        assert.equal(await set.post("/ws/epg2/schedules", body), 201);
        await until(async () => (await set.status())["recordings"].length > 0);
        const open = await openPage(browser, set.url, { hash: "#/schedules" });
        const running = open.page.getByRole("region", { name: "Recording now" });
        await running.getByText(/so far, [1-9][\d.]* (bytes|kB|MB)/).waitFor();
        await open.page.locator(".entry .badge.recording").getByText("Recording now").waitFor();
        await running.getByRole("button", { name: /^Stop recording/ }).click();
        await open.page.locator(".page-head .outcome").getByText("was stopped").waitFor();
        await running.waitFor({ state: "hidden" });
        assert.deepEqual((await set.status())["recordings"], []);
        await open.close();
        await set.stop();
        source.stop();
    });
});
