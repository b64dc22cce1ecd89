// The guide grid.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import { numberedGuide } from "./support/guide.js";
import { gridIsFilled, launch, openPage } from "./support/page.js";
import { TestSet, startTime } from "./support/set.js";

/** @type {import("playwright-core").Browser} */
let browser;
before(async () => {
    browser = await launch();
});
after(() => browser.close());

describe("the grid on the demo guide", () => {
    /** @type {TestSet} */
    let set;
    /** @type {Awaited<ReturnType<typeof openPage>>} */
    let open;
    /** @type {import("playwright-core").Page} */
    let page;
    before(async () => {
        set = await TestSet.start();
        open = await openPage(browser, set.url);
        page = open.page;
        await gridIsFilled(page);
    });
    after(async () => {
        await open.close();
        await set.stop();
    });

    /** @param {string} name */
    const pressed = (name) => page.getByRole("button", { name, exact: true }).getAttribute("aria-pressed");

    const hours = () => page.getByRole("combobox", { name: "Hour" });

    it("shows what is on now on the first channels, in their order", async () => {
        const numbers = await page.locator(".row .channel .number").allTextContents();
        assert.deepEqual(numbers.slice(0, 8), ["1", "2", "3", "4", "5", "6", "7-1", "7-2"]);
        const [row] = await set.rows(
            "SELECT ProgramName FROM myView WHERE ChannelId='cid-000-1' AND ProgramStartTime<=1787487000 AND ProgramEndTime>1787487000",
        );
        const now = page.locator(".row").first().locator(".cell.now");
        assert.match((await now.textContent()) ?? "", new RegExp(`^${row?.["program_name"]}, 14:00 to .*, on now`));
    });

    it("draws the line at the set's clock, through what is on", async () => {
        const line = await page.locator(".now-line").boundingBox();
        const cell = await page.locator(".row").first().locator(".cell.now").boundingBox();
        assert.ok(line && cell && line.x > cell.x && line.x < cell.x + cell.width);
        assert.equal(await page.locator(".now-label").textContent(), "14:10");
    });

    it("says so where a channel has no programmes", async () => {
        const row = page.locator(".row", { hasText: "Open Studio" });
        await row.getByText("No programme information").waitFor();
    });

    it("jumps to a day, keeping the hour, and to an hour, keeping the day", async () => {
        await page.getByRole("button", { name: "Tue 25 August" }).click();
        await page.waitForFunction(() => document.querySelector('.day[aria-pressed="true"]')?.textContent?.startsWith("Tue 25"));
        assert.equal(await hours().inputValue(), "14");
        await hours().selectOption("20");
        await gridIsFilled(page);
        assert.equal(await pressed("Tue 25 August"), "true");
        const [row] = await set.rows(
            "SELECT ProgramName FROM myView WHERE ChannelId='cid-000-1' AND ProgramStartTime<=1787680800 AND ProgramEndTime>1787680800",
        );
        await page.locator(".row").first().getByText(String(row?.["program_name"])).first().waitFor();
        await page.getByRole("button", { name: "Now", exact: true }).click();
        await page.waitForFunction(() => document.querySelector('.day[aria-pressed="true"]')?.textContent?.startsWith("Today"));
    });

    it("shows the channels of one antenna", async () => {
        await page.getByRole("combobox", { name: "Antenna" }).selectOption("CABLE");
        await gridIsFilled(page);
        assert.equal(await page.getByRole("grid").getAttribute("aria-rowcount"), "9");
        assert.equal(await page.locator(".row .name").first().textContent(), "Canal Lumen");
        await page.getByRole("combobox", { name: "Antenna" }).selectOption("");
        assert.equal(await page.getByRole("grid").getAttribute("aria-rowcount"), "28");
    });

    it("shows a programme that began before the view", async () => {
        await hours().selectOption("23");
        await gridIsFilled(page);
        const crossing = await page.evaluate(() => {
            const edge = document.querySelector(".channel")?.getBoundingClientRect().right ?? 0;
            return [...document.querySelectorAll(".cell")].filter((cell) => {
                const box = cell.getBoundingClientRect();
                return box.left < edge && box.right > edge + 60;
            }).length;
        });
        assert.ok(crossing > 3, `${crossing} programmes cross the edge`);
    });
});

describe("the grid on 400 channels and seven days", () => {
    const channels = 400;
    /** @type {TestSet} */
    let set;
    /** @type {Awaited<ReturnType<typeof openPage>>} */
    let open;
    /** @type {import("playwright-core").Page} */
    let page;
    before(async () => {
        const guide = numberedGuide({ channels, start: "2026-08-23T00:00:00Z", hours: 7 * 24, minutes: 50 });
        set = await TestSet.start({ options: ["--guide", "FOLDER/large.xml"], files: { "large.xml": guide }, zone: "UTC" });
        open = await openPage(browser, set.url);
        page = open.page;
        await gridIsFilled(page);
    });
    after(async () => {
        await open.close();
        await set.stop();
    });

    it("makes no more rows and blocks than the view takes", async () => {
        assert.equal(await page.getByRole("grid").getAttribute("aria-rowcount"), String(channels));
        const made = await page.evaluate(() => ({
            rows: document.querySelectorAll(".row").length,
            cells: document.querySelectorAll(".cell").length,
        }));
        assert.ok(made.rows < 40, `${made.rows} rows`);
        assert.ok(made.cells < 400, `${made.cells} blocks`);
    });

    it("reads what comes into view, and nothing else", async () => {
        /** @type {string[]} */
        const asked = [];
        page.on("request", (request) => asked.push(decodeURIComponent(request.url())));
        await page.getByRole("grid").evaluate((grid) => grid.scrollTo({ top: 300 * 60, left: 5 * 24 * 280 }));
        await page.getByText("Channel 305", { exact: true }).waitFor();
        await gridIsFilled(page);
        // Programme n of a channel begins n * 50 minutes after the first midnight.
        await page.locator(".row", { hasText: "Channel 305" }).getByText("Programme 305.145", { exact: true }).waitFor();
        const statements = asked.filter((url) => url.includes("sql="));
        assert.ok(statements.length <= 4, `${statements.length} requests`);
        assert.ok(statements.every((url) => !url.includes("'cid-000-100'")));
    });

    it("makes a few rows a frame while it is scrolled through all channels", async (test) => {
        await page.getByRole("grid").evaluate((grid) => grid.scrollTo({ top: 0, left: 14 * 280 }));
        await gridIsFilled(page);
        const { made, kept, frame } = await page.getByRole("grid").evaluate(
            (grid) =>
                new Promise((resolve) => {
                    const found = { made: 0, kept: 0, frame: 0 };
                    let last = performance.now();
                    let added = 0;
                    const rows = /** @type {Element} */ (grid.querySelector("[role=rowgroup]"));
                    new MutationObserver((list) => {
                        for (const change of list) added += change.addedNodes.length;
                    }).observe(rows, { childList: true });
                    const step = () => {
                        found.made = Math.max(found.made, added);
                        found.kept = Math.max(found.kept, rows.childElementCount);
                        found.frame = Math.max(found.frame, performance.now() - last);
                        added = 0;
                        last = performance.now();
                        grid.scrollTop += 120;
                        if (grid.scrollTop + grid.clientHeight < grid.scrollHeight - 1) requestAnimationFrame(step);
                        else resolve(found);
                    };
                    requestAnimationFrame(step);
                }),
        );
        test.diagnostic(`the longest frame took ${Math.round(frame)} ms`);
        // Two rows come into view with each frame; a frame that is late may find those of two.
        assert.ok(made >= 2 && made <= 4, `${made} rows made in a frame`);
        assert.ok(kept < 40, `${kept} rows kept`);
        await page.locator(".row", { hasText: "Channel 400" }).locator(".cell").first().waitFor();
    });
});

describe("the grid as the guide changes", () => {
    it("tells that there are no channels, and shows them once a guide has some", async () => {
        const set = await TestSet.start({ options: ["--guide", "FOLDER/guide.xml"], files: { "guide.xml": "<tv></tv>" } });
        const open = await openPage(browser, set.url);
        await open.page.getByText("There are no channels").waitFor();
        await set.write("guide.xml", numberedGuide({ channels: 3, start: startTime, hours: 4, minutes: 30 }));
        set.signal("SIGHUP");
        await open.page.getByText("Programme 3.1", { exact: true }).waitFor({ timeout: 25_000 });
        await open.close();
        await set.stop();
    });

    it("tells when the set does not answer any more", async () => {
        const set = await TestSet.start();
        const open = await openPage(browser, set.url);
        await gridIsFilled(open.page);
        await set.stop();
        await open.page.getByRole("alert").getByText("The set does not answer.").waitFor({ timeout: 25_000 });
        await open.page.locator(".cell").first().waitFor(); // what was read stays
        await open.close();
    });
});
