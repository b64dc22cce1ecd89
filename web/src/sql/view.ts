// The SQL console: one statement on the guide table, its rows, and the table's columns beside it.
import { type SqlRow, runSql } from "../api/sql.ts";
import { announce } from "../announce.ts";
import { el, fill } from "../dom.ts";
import { icon } from "../icons.ts";
import { type Column, columns, examples, firstStatement } from "./columns.ts";

/// More rows are not shown.
const most = 1000;
const kept = "guide-sql";

export function sqlView(): HTMLElement {
    const text = el("textarea", {
        id: "sql-text",
        spellcheck: "false",
        autocapitalize: "off",
        autocomplete: "off",
        rows: 6,
        "aria-describedby": "sql-help",
    });
    text.value = sessionStorage.getItem(kept) ?? firstStatement;
    const run = el("button", { type: "submit", class: "button primary" }, icon("play"), "Run");
    const result = el("div", { class: "sql-result" });
    let running: AbortController | null = null;

    const submit = async () => {
        const sql = text.value.trim();
        if (sql === "") return text.focus();
        sessionStorage.setItem(kept, sql);
        running?.abort();
        const mine = new AbortController();
        running = mine;
        run.disabled = true;
        const begun = performance.now();
        try {
            const answer = await runSql(sql, mine.signal);
            if (answer.error) fill(result, sqlError(answer.error));
            else fill(result, ...rowsTable(answer.rows, performance.now() - begun));
            announce(answer.error ?? `${answer.rows.length} rows`);
        } catch (error) {
            if (!mine.signal.aborted) fill(result, sqlError(error instanceof Error ? error.message : String(error)));
        }
        if (running === mine) run.disabled = false;
    };
    const form = el(
        "form",
        { class: "card sql-form", "aria-label": "Statement" },
        el("label", { class: "labelled", for: "sql-text" }, "Statement", text),
        el(
            "div",
            { class: "actions" },
            run,
            el("span", { class: "dim", id: "sql-help" }, "Ctrl and Enter runs it too."),
        ),
        el(
            "div",
            { class: "examples", role: "group", "aria-label": "Examples" },
            ...examples.map((example) => exampleButton(example.title, () => setText(text, example.sql()))),
        ),
    );
    form.addEventListener("submit", (event) => {
        event.preventDefault();
        void submit();
    });
    text.addEventListener("keydown", (event) => {
        if (event.key !== "Enter" || !(event.ctrlKey || event.metaKey)) return;
        event.preventDefault();
        void submit();
    });
    fill(result, el("p", { class: "empty" }, "The statement's rows will stand here."));
    return el(
        "section",
        { class: "view page sql-view", "aria-label": "SQL" },
        el(
            "div",
            { class: "page-head" },
            el("h1", { tabindex: -1 }, "SQL"),
            el("p", { class: "dim" }, "One SQLite statement on the guide table. What changes the table lasts until it is filled again."),
        ),
        el("div", { class: "columns" }, el("div", { class: "main-column" }, form, result), columnList(text)),
    );
}

function exampleButton(title: string, click: () => void): HTMLElement {
    return el("button", { type: "button", class: "chip", onclick: click }, title);
}

function setText(text: HTMLTextAreaElement, sql: string): void {
    text.value = sql;
    text.focus();
}

function columnList(text: HTMLTextAreaElement): HTMLElement {
    const insert = (column: Column) => {
        text.setRangeText(column.name, text.selectionStart, text.selectionEnd, "end");
        text.focus();
    };
    return el(
        "aside",
        { class: "card column-list", "aria-labelledby": "columns-title" },
        el("h2", { id: "columns-title" }, "Table ", el("code", {}, "myView")),
        el("p", { class: "note" }, "On the right, a column's name in answers."),
        el(
            "ul",
            {},
            ...columns.map((column) =>
                el(
                    "li",
                    {},
                    el(
                        "button",
                        { type: "button", title: "Put it into the statement", onclick: () => insert(column) },
                        el("code", { class: "column-name" }, column.name),
                        el("code", { class: "dim" }, el("span", { class: "visually-hidden" }, "in answers "), column.key),
                        el("span", { class: "dim" }, column.holds),
                    ),
                ),
            ),
        ),
    );
}

function sqlError(message: string): HTMLElement {
    return el("p", { class: "sql-error", role: "alert" }, icon("warning"), message);
}

function rowsTable(rows: readonly SqlRow[], milliseconds: number): HTMLElement[] {
    const took = `${Math.round(milliseconds)} ms`;
    if (rows.length === 0) return [el("p", { class: "empty" }, `No rows, ${took}.`)];
    const names = [...new Set(rows.flatMap((row) => Object.keys(row)))];
    const counted = `${rows.length} ${rows.length === 1 ? "row" : "rows"}, ${took}`;
    return [
        el("p", { class: "dim" }, rows.length > most ? `${counted}; the first ${most} are shown.` : `${counted}.`),
        el(
            "div",
            { class: "scroller", tabindex: 0, role: "region", "aria-label": "Rows" },
            el(
                "table",
                {},
                el("thead", {}, el("tr", {}, ...names.map((name) => el("th", { scope: "col" }, name)))),
                el("tbody", {}, ...rows.slice(0, most).map((row) => tableRow(names, row))),
            ),
        ),
    ];
}

function tableRow(names: readonly string[], row: SqlRow): HTMLElement {
    return el("tr", {}, ...names.map((name) => el("td", {}, cellText(row[name]))));
}

function cellText(value: SqlRow[string] | undefined): string {
    return value === null || value === undefined ? "" : String(value);
}
