// The SQL console.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import { launch, openPage } from "./support/page.js";
import { TestSet } from "./support/set.js";

describe("the SQL console", () => {
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
        open = await openPage(browser, set.url, { hash: "#/sql" });
        page = open.page;
    });
    after(async () => {
        await open.close();
        await set.stop();
        await browser.close();
    });

    /** @param {string} sql */
    async function run(sql) {
        await page.getByLabel("Statement", { exact: true }).last().fill(sql);
        await page.getByRole("button", { name: "Run" }).click();
    }

    it("shows a statement's rows as a table", async () => {
        await run("SELECT ChannelId, ChannelName FROM myView WHERE AntennaType='AIR' GROUP BY ChannelId ORDER BY ChannelId LIMIT 2");
        await page.getByText(/^2 rows, /).waitFor();
        assert.deepEqual(await page.locator(".sql-result th").allTextContents(), ["id", "name"]);
        assert.deepEqual(await page.locator(".sql-result td").allTextContents(), [
            "cid-000-1",
            "Meridian One",
            "cid-000-2",
            "Meridian Two",
        ]);
    });

    it("shows why a statement failed", async () => {
        await run("SELECT Elsewhere FROM myView");
        await page.getByRole("alert").getByText("no such column: Elsewhere").waitFor();
        assert.equal(await page.locator(".sql-result table").count(), 0);
    });

    it("refuses what reaches outside the table", async () => {
        await run("ATTACH DATABASE '/tmp/other.db' AS other");
        await page.locator(".sql-error").getByText(/not authorized|prohibited|denied/i).waitFor();
    });

    it("tells when there are no rows", async () => {
        await run("SELECT ChannelId FROM myView WHERE ChannelId='none'");
        await page.getByText(/^No rows, /).waitFor();
    });

    it("runs with control and enter", async () => {
        await page.getByLabel("Statement", { exact: true }).last().fill("SELECT count(*) FROM myView");
        await page.keyboard.press("Control+Enter");
        await page.locator(".sql-result th").getByText("count(*)").waitFor();
    });

    it("lists the table's columns and puts one into the statement", async () => {
        const names = await page.locator(".column-name").allTextContents();
        const [row] = await set.rows("SELECT sql FROM sqlite_master WHERE name='myView'");
        for (const name of names) assert.match(String(row?.["sql"]), new RegExp(`\\b${name}\\b`));
        assert.equal(names.length, 14);
        await page.getByLabel("Statement", { exact: true }).last().fill("SELECT ");
        await page.getByRole("button", { name: /^ServiceType/ }).click();
        assert.equal(await page.getByLabel("Statement", { exact: true }).last().inputValue(), "SELECT ServiceType");
    });

    it("shows the first thousand of many rows and says so", async () => {
        await run("SELECT EventId FROM myView WHERE EventId<>'' LIMIT 1200");
        await page.getByText("the first 1000 are shown").waitFor();
        assert.equal(await page.locator(".sql-result tbody tr").count(), 1000);
    });

    it("has examples that run", async () => {
        for (const name of ["Long programmes", "Programmes a channel", "Titles with “news”"]) {
            await page.getByRole("button", { name }).click();
            await page.getByRole("button", { name: "Run" }).click();
            await page.getByText(/^[1-9]\d* rows, /).waitFor();
        }
    });
});
