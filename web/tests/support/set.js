// A set of the test's own: the real epghost on a free port.
import { spawn } from "node:child_process";
import { mkdtemp, rm, writeFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import { join } from "node:path";

/// Where the set's clock starts, unless a test says otherwise: a Sunday, ten past two in Berlin.
export const startTime = "2026-08-23T12:10:00Z";

const program = process.env["EPGHOST"];
const readyWithin = 30_000;

/// Sets that a test that failed has left running: they end with the tests.
/** @type {Set<import("node:child_process").ChildProcess>} */
const running = new Set();
process.on("exit", () => {
    for (const child of running) child.kill("SIGKILL");
});

export class TestSet {
    /** @type {import("node:child_process").ChildProcess} */
    #process;
    #folder;
    url;

    /**
     * @param {import("node:child_process").ChildProcess} process
     * @param {string} folder
     * @param {string} url
     */
    constructor(process, folder, url) {
        this.#process = process;
        this.#folder = folder;
        this.url = url;
    }

    /**
     * Starts it and waits until it answers.
     * @param {{ options?: string[], zone?: string, files?: Record<string, string> }} [how] options are epghost's;
     *     "FOLDER" in them stands for the folder in which `files` are written
     */
    static async start({ options = [], zone = "Europe/Berlin", files = {} } = {}) {
        if (!program) throw new Error("EPGHOST has to name the program");
        const folder = await mkdtemp(join(tmpdir(), "guide-page-"));
        for (const [name, text] of Object.entries(files)) await writeFile(join(folder, name), text);
        const given = options.map((option) => option.replace("FOLDER", folder));
        const now = given.includes("--now") ? [] : ["--now", startTime];
        const child = spawn(
            program,
            ["--port", "0", "--state", join(folder, "state"), "--log-level", "off", ...now, ...given],
            { env: { ...process.env, TZ: zone }, stdio: ["ignore", "pipe", "inherit"] },
        );
        running.add(child);
        child.once("exit", () => running.delete(child));
        const url = await new Promise((resolve, reject) => {
            const timer = setTimeout(() => reject(new Error("epghost does not listen")), readyWithin);
            let said = "";
            child.stdout.on("data", (data) => {
                said += data;
                const found = /listening on (\S+)\//.exec(said);
                if (!found) return;
                clearTimeout(timer);
                resolve(found[1]);
            });
            child.once("exit", (code) => reject(new Error(`epghost ended with ${code}`)));
        });
        child.unref();
        /** @type {import("node:net").Socket} */ (child.stdout).unref();
        return new TestSet(child, folder, url);
    }

    /** @param {NodeJS.Signals} signal */
    signal(signal) {
        this.#process.kill(signal);
    }

    /**
     * @param {string} name
     * @param {string} text
     */
    async write(name, text) {
        await writeFile(join(this.#folder, name), text);
    }

    /**
     * The rows of an SQL statement.
     * @param {string} sql
     * @returns {Promise<Record<string, any>[]>}
     */
    async rows(sql) {
        const response = await fetch(`${this.url}/ws/epg2?sql=${encodeURIComponent(sql)}`);
        return response.status === 200 ? (await response.json()).items : [];
    }

    /** @returns {Promise<Record<string, any>[]>} */
    async schedules() {
        const response = await fetch(`${this.url}/ws/epg2/schedules`);
        return response.status === 200 ? (await response.json()).items : [];
    }

    /**
     * @param {string} path
     * @param {Record<string, string>} body
     */
    async post(path, body) {
        return (await fetch(`${this.url}${path}`, { method: "POST", body: JSON.stringify(body) })).status;
    }

    /** @returns {Promise<Record<string, any>>} */
    async status() {
        return (await fetch(`${this.url}/set/status`)).json();
    }

    /** Removes all bookings. */
    async clearSchedules() {
        for (const { id } of await this.schedules()) {
            await fetch(`${this.url}/ws/epg2/schedules/${id}`, { method: "DELETE" });
        }
    }

    async stop() {
        this.#process.ref();
        const ended = new Promise((resolve) => this.#process.once("exit", resolve));
        this.#process.kill("SIGTERM");
        await ended;
        await rm(this.#folder, { recursive: true, force: true });
    }
}
