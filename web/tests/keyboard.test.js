// The page by keyboard alone.
import assert from "node:assert/strict";
import { after, before, beforeEach, describe, it } from "node:test";
import { gridIsFilled, launch, openPage } from "./support/page.js";
import { TestSet } from "./support/set.js";

describe("the keyboard", () => {
    /** @type {import("playwright-core").Browser} */
    let browser;
    /** @type {TestSet} */
    let set;
    /** @type {Awaited<ReturnType<typeof openPage>>} */
    let open;
    /** @type {import("playwright-core").Page} */
    let page;
    before(async () => {
        browser = await launch();
        set = await TestSet.start();
    });
    after(async () => {
        await set.stop();
        await browser.close();
    });
    beforeEach(async () => {
        if (open) await open.close();
        open = await openPage(browser, set.url);
        page = open.page;
        await gridIsFilled(page);
    });
    after(() => open.close());

    /** What has the focus: its label, and its row's channel. */
    const focused = () =>
        page.evaluate(() => ({
            label: document.activeElement?.textContent ?? "",
            channel: document.activeElement?.closest(".row")?.querySelector(".name")?.textContent ?? "",
        }));
    /**
     * Presses keys and waits until another block has the focus.
     * @param {string} key
     */
    async function move(key) {
        const before = JSON.stringify(await focused());
        await page.keyboard.press(key);
        await page.waitForFunction(
            (was) =>
                was !==
                JSON.stringify({
                    label: document.activeElement?.textContent ?? "",
                    channel: document.activeElement?.closest(".row")?.querySelector(".name")?.textContent ?? "",
                }),
            before,
        );
        return focused();
    }
    async function enterGrid() {
        await page.getByRole("grid").focus();
        await page.waitForFunction(() => document.activeElement?.getAttribute("role") === "gridcell");
        return focused();
    }

    it("enters the grid at what is on now on the first channel", async () => {
        const { label, channel } = await enterGrid();
        assert.equal(channel, "Meridian One");
        assert.match(label, /on now/);
    });

    it("reaches the grid with the tab key and leaves it with one more", async () => {
        await page.getByRole("searchbox").focus();
        await page.keyboard.press("Tab");
        await page.waitForFunction(() => document.activeElement?.getAttribute("role") === "gridcell");
        await page.keyboard.press("Shift+Tab");
        assert.equal(await page.evaluate(() => document.activeElement?.getAttribute("type")), "search");
    });

    it("goes along a channel, and back", async () => {
        const first = await enterGrid();
        const second = await move("ArrowRight");
        assert.equal(second.channel, "Meridian One");
        assert.match(second.label, /14:30 to/);
        assert.deepEqual(await move("ArrowLeft"), first);
    });

    it("keeps to the time while it goes through the channels", async () => {
        await enterGrid();
        for (const channel of ["Meridian Two", "Harbour News", "Lantern Film"]) {
            const there = await move("ArrowDown");
            assert.equal(there.channel, channel);
            assert.match(there.label, /on now/);
        }
        assert.equal((await move("ArrowUp")).channel, "Harbour News");
    });

    it("goes to the last channel, over one without programmes", async () => {
        await enterGrid();
        await move("Control+End");
        assert.equal(await page.evaluate(() => document.activeElement?.closest(".row")?.getAttribute("aria-rowindex")), "28");
        await move("Control+Home");
        for (let row = 0; row < 8; ++row) await move("ArrowDown");
        const none = await move("ArrowDown");
        assert.deepEqual(none, { label: "No programme information", channel: "Open Studio" });
        assert.equal((await move("ArrowDown")).channel, "Canal Lumen");
    });

    it("goes a day on, out of what was read before", async () => {
        await enterGrid();
        await move("Shift+PageDown");
        assert.equal(
            await page.getByRole("button", { name: "Mon 24 August" }).getAttribute("aria-pressed"),
            "true",
        );
        assert.match((await move("Home")).label, /on now/);
    });

    it("sees the focused block whole, beside the channels", async () => {
        await enterGrid();
        for (let count = 0; count < 12; ++count) await move("ArrowRight");
        const shown = await page.evaluate(() => {
            const cell = document.activeElement?.getBoundingClientRect();
            const edge = document.querySelector(".channel")?.getBoundingClientRect().right ?? 0;
            return cell && cell.left >= edge && cell.left < innerWidth - 40;
        });
        assert.ok(shown);
    });

    it("opens a programme, books it and comes back to its block", async () => {
        await enterGrid();
        const block = await move("ArrowRight");
        await page.keyboard.press("Enter");
        await page.getByRole("dialog").waitFor();
        for (let count = 0; count < 6; ++count) {
            if ((await page.evaluate(() => document.activeElement?.textContent)) === "Remind me") break;
            await page.keyboard.press("Tab");
        }
        await page.keyboard.press("Enter");
        await page.locator("dialog .outcome").getByText("Booked.").waitFor();
        await page.keyboard.press("Escape");
        assert.equal((await focused()).channel, block.channel);
        assert.match((await focused()).label, /reminder set$/);
        await set.clearSchedules();
    });

    it("finds the search with the slash key, and the content past the navigation", async () => {
        await page.keyboard.press("/");
        assert.equal(await page.evaluate(() => document.activeElement?.getAttribute("type")), "search");
        await page.reload();
        await page.keyboard.press("Tab");
        assert.equal(await page.evaluate(() => document.activeElement?.textContent), "To the content");
        await page.keyboard.press("Enter");
        assert.equal(await page.evaluate(() => document.activeElement?.id), "main");
    });
});
