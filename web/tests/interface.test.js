// The page that shows the description of the HTTP interface.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import { desktop, launch, openPage, phone, screenshot } from "./support/page.js";
import { TestSet } from "./support/set.js";

describe("the page of the interface", () => {
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

    // Opening fails on a request that leaves the set, and on what the page's policy forbids.
    for (const [name, how] of Object.entries({
        light: { colours: /** @type {const} */ ("light"), size: desktop },
        dark: { colours: /** @type {const} */ ("dark"), size: desktop },
        phone: { colours: /** @type {const} */ ("light"), size: phone },
    })) {
        it(`shows every tag's operations (${name})`, async () => {
            const open = await openPage(browser, set.url, { ...how, hash: "set/api" });
            await open.page.getByText("The programme guide of a television set over HTTP").first().waitFor();
            assert.equal(await open.page.locator("rapi-doc").getAttribute("theme"), how.colours);
            for (const operation of ["One channel", "Run an SQL statement on the guide", "The state of the set"]) {
                await open.page.getByText(operation).locator("visible=true").first().waitFor();
            }
            await screenshot(open.page, `interface-${name}`);
            await open.close();
        });
    }

    it("shows an operation's parameters and answers, and asks the set", async () => {
        const open = await openPage(browser, set.url, { hash: "set/api#get-/ws/epg2/antennas" });
        const operation = open.page.locator("rapi-doc");
        await operation.getByText("The antennas that have channels").first().waitFor();
        const asked = open.page.waitForResponse((response) => response.url().endsWith("/ws/epg2/antennas"));
        await operation.getByRole("button", { name: "TRY" }).click();
        assert.equal((await asked).status(), 200);
        await operation.getByText('"SATELLITE"').first().waitFor();
        await screenshot(open.page, "interface-answer");
        await open.close();
    });
});
