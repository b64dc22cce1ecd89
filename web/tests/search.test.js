// Searching titles and channels.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import { smallGuide } from "./support/guide.js";
import { gridIsFilled, launch, openPage } from "./support/page.js";
import { TestSet } from "./support/set.js";

describe("the search", () => {
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
        const guide = smallGuide([
            { title: "Gone Today", start: "2026-08-23T10:00:00Z", stop: "2026-08-23T11:00:00Z" },
            { title: "Night's \"Æther\" & Co", start: "2026-08-23T12:00:00Z", stop: "2026-08-23T13:00:00Z" },
            { title: "Café Today", start: "2026-08-23T13:00:00Z", stop: "2026-08-23T14:00:00Z" },
            { title: "Today Again", start: "2026-08-25T13:00:00Z", stop: "2026-08-25T14:00:00Z" },
        ]);
        set = await TestSet.start({ options: ["--guide", "FOLDER/guide.xml"], files: { "guide.xml": guide } });
        open = await openPage(browser, set.url);
        page = open.page;
        await gridIsFilled(page);
    });
    after(async () => {
        await open.close();
        await set.stop();
        await browser.close();
    });

    const box = () => page.getByRole("searchbox");
    const found = () => page.locator(".results .result");

    it("finds programmes to come by their titles, the next first", async () => {
        await box().fill("today");
        await found().first().waitFor();
        assert.deepEqual(await found().locator("strong").allTextContents(), ["Café Today", "Today Again"]);
    });

    it("takes no account of accents and case", async () => {
        await box().fill("CAFE");
        await found().getByText("Café Today").waitFor();
    });

    it("finds titles with quotes and signs", async () => {
        await box().fill("night's \"");
        await found().getByText("Night's \"Æther\" & Co").waitFor();
    });

    it("opens what was found", async () => {
        await box().fill("again");
        await found().getByText("Today Again").click();
        await page.getByRole("dialog").getByRole("heading", { name: "Today Again" }).waitFor();
        await page.keyboard.press("Escape");
    });

    it("finds channels and shows them in the grid", async () => {
        await box().fill("one");
        await page.locator(".channels-found").getByText("One", { exact: true }).click();
        await page.locator(".cell.now").first().waitFor();
        assert.equal(await box().inputValue(), "");
        await page.waitForFunction(() => document.activeElement?.classList.contains("now"));
    });

    it("says that nothing was found", async () => {
        await box().fill("no such title");
        await page.getByRole("heading", { name: "Nothing found" }).waitFor();
        await box().press("Escape");
        await page.getByRole("grid").waitFor();
    });
});
