// Booking in a programme's panel.
import assert from "node:assert/strict";
import { after, afterEach, before, beforeEach, describe, it } from "node:test";
import { gridIsFilled, launch, openPage } from "./support/page.js";
import { TestSet } from "./support/set.js";

/** @type {import("playwright-core").Browser} */
let browser;
/** @type {TestSet} */
let set;
before(async () => {
    browser = await launch();
});
after(() => browser.close());

/** @type {Awaited<ReturnType<typeof openPage>>} */
let open;
/** @type {import("playwright-core").Page} */
let page;

/** The set's clock, UNIX seconds, when it starts. */
const start = Date.parse("2026-08-23T12:10:00Z") / 1000;

/**
 * Programmes of channel 1, the next first.
 * @param {number} count
 * @param {string} channel
 */
async function comingUp(count, channel = "cid-000-1") {
    return set.rows(
        `SELECT EventId, ProgramName, ProgramStartTime, ProgramEndTime FROM myView WHERE ChannelId='${channel}' ` +
            `AND ProgramStartTime>${start + 600} ORDER BY ProgramStartTime LIMIT ${count}`,
    );
}

/** @param {string | undefined} id */
const block = (id) => page.locator(`[data-programme="${id}"]`);
const dialog = () => page.getByRole("dialog");
/** @param {string} name */
const button = (name) => dialog().getByRole("button", { name, exact: true });

/** @param {string} text */
const outcome = (text) => dialog().locator(".outcome").getByText(text).waitFor();

async function openFresh() {
    open = await openPage(browser, set.url);
    page = open.page;
    await gridIsFilled(page);
}

describe("booking", () => {
    before(async () => {
        set = await TestSet.start();
    });
    after(() => set.stop());
    beforeEach(openFresh);
    afterEach(async () => {
        await open.close();
        await set.clearSchedules();
    });

    it("shows a programme: title, channel, times, state and description", async () => {
        const [programme] = await comingUp(1);
        await block(programme?.["program_id"]).click();
        await dialog().getByRole("heading", { name: programme?.["program_name"] }).waitFor();
        await dialog().getByText("Meridian One").waitFor();
        await dialog().getByText(/^Today, 14:30 to /).waitFor();
        await dialog().getByText(/^Starts in /).waitFor();
        const detail = await fetch(`${set.url}/ws/epg2/programs/${programme?.["program_id"]}/detail`);
        await dialog().getByText((await detail.json()).synopsis).waitFor();
    });

    it("sets a reminder and clears it", async () => {
        const [programme] = await comingUp(1);
        await block(programme?.["program_id"]).click();
        await button("Remind me").click();
        await outcome("Booked.");
        await dialog().locator(".badge.view").getByText("Reminder").waitFor();
        const [booked] = await set.schedules();
        assert.equal(booked?.["status"], "VIEW");
        assert.equal(booked?.["program_id"], programme?.["program_id"]);
        assert.match((await block(programme?.["program_id"]).textContent()) ?? "", /reminder set$/);
        await button("Clear reminder").click();
        await button("Remind me").waitFor();
        assert.deepEqual(await set.schedules(), []);
    });

    it("records once, and a series", async () => {
        const [first, second] = await comingUp(2);
        await block(first?.["program_id"]).click();
        await button("Record").click();
        await dialog().locator(".badge.record").waitFor();
        await page.keyboard.press("Escape");
        await block(second?.["program_id"]).click();
        await button("Record series").click();
        await dialog().getByText("Series recording").waitFor();
        const booked = await set.schedules();
        assert.deepEqual(
            booked.map(({ status, repeat }) => [status, repeat]),
            [
                ["RECORD", "ONCE"],
                ["RECORD", "SERIES"],
            ],
        );
    });

    it("makes a recording of a reminder without calling that a conflict", async () => {
        const [programme] = await comingUp(1);
        await set.post(`/ws/epg2/programs/${programme?.["program_id"]}/schedule`, { status: "VIEW" });
        await page.reload();
        await gridIsFilled(page);
        await block(programme?.["program_id"]).click();
        await button("Record").click();
        await dialog().locator(".badge.record").waitFor();
        assert.deepEqual(
            (await set.schedules()).map(({ status }) => status),
            ["RECORD"],
        );
    });

    it("shows all that is in the way, and replaces it", async () => {
        const [long] = await set.rows(
            `SELECT EventId, ProgramName, ProgramStartTime, ProgramEndTime FROM myView WHERE ProgramStartTime>${start + 600} ` +
                "AND ProgramEndTime-ProgramStartTime>=5400 AND ChannelId='cid-000-1' ORDER BY ProgramStartTime LIMIT 1",
        );
        const from = Date.parse(long?.["start"]) / 1000;
        const others = await set.rows(
            `SELECT EventId, ProgramName, ProgramStartTime FROM myView WHERE ChannelId='cid-000-3' AND ProgramStartTime>=${from} ` +
                "ORDER BY ProgramStartTime LIMIT 2",
        );
        for (const other of others) {
            const path = `/ws/epg2/programs/${other["program_id"]}/schedule`;
            assert.equal(await set.post(path, { status: "VIEW", repeat: "ONCE" }), 201);
        }
        await block(long?.["program_id"]).click();
        await button("Remind me").click();
        await dialog().getByText("Something is in the way").waitFor();
        for (const other of others) await dialog().getByRole("listitem").filter({ hasText: other["program_name"] }).waitFor();
        await button("Replace all 2").click();
        await outcome("Booked.");
        assert.deepEqual(
            (await set.schedules()).map((entry) => entry["program_id"]),
            [long?.["program_id"]],
        );
    });

    it("keeps what is in the way when asked to", async () => {
        const [programme] = await comingUp(1);
        const [other] = await comingUp(1, "cid-000-3");
        await set.post(`/ws/epg2/programs/${other?.["program_id"]}/schedule`, { status: "VIEW", repeat: "ONCE" });
        await block(programme?.["program_id"]).click();
        await button("Remind me").click();
        await button("Keep it").click();
        await button("Remind me").waitFor();
        assert.deepEqual(
            (await set.schedules()).map((entry) => entry["program_id"]),
            [other?.["program_id"]],
        );
    });

    it("tunes to what is on now", async () => {
        await page.locator(".row", { hasText: "Track & Field" }).locator(".cell.now").click();
        await button("Watch now").click();
        await outcome("The set now shows Track & Field.");
        assert.equal((await set.status())["channel"].name, "Track & Field");
        assert.deepEqual(await set.schedules(), []);
    });

    it("records the rest of what is on now", async () => {
        await page.locator(".row", { hasText: "Lantern Film" }).locator(".cell.now").click();
        await button("Record the rest").click();
        await outcome("Booked.");
        const [booked] = await set.schedules();
        assert.equal(booked?.["channel_name"], "Lantern Film");
        assert.equal(booked?.["status"].slice(0, 6), "RECORD");
        const begins = Date.parse(booked?.["start"]) / 1000;
        assert.ok(begins > start && begins < start + 300, booked?.["start"]);
    });

    it("offers nothing for what is over", async () => {
        await page.locator(".cell.past").first().click();
        await dialog().getByText("Over", { exact: true }).waitFor();
        assert.deepEqual(await dialog().locator(".panel-actions button").count(), 0);
    });
});

describe("booking on a set that cannot record", () => {
    before(async () => {
        set = await TestSet.start({ options: ["--pvr", "no-device"] });
    });
    after(() => set.stop());
    beforeEach(openFresh);
    afterEach(() => open.close());

    it("offers reminders alone and says why", async () => {
        const [programme] = await comingUp(1);
        await block(programme?.["program_id"]).click();
        await button("Remind me").waitFor();
        assert.equal(await button("Record").count(), 0);
        await dialog().getByText("The set has no storage device to record on.").waitFor();
    });
});
