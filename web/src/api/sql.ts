// The service's SQL command.
import { RequestError, items, request } from "./request.ts";

/// A row: texts by the service's names of the columns.
export type SqlRow = Record<string, string | boolean | null>;

export interface SqlAnswer {
    rows: SqlRow[];
    error: string | null;
}

/// Runs one statement on the guide table.
export async function runSql(sql: string, signal?: AbortSignal): Promise<SqlAnswer> {
    const answer = await request("GET", "/ws/epg2", { query: { sql }, ...(signal && { signal }) });
    if (answer.sqlError) return { rows: items(answer.data), error: answer.sqlError };
    if (answer.status === 200) return { rows: items(answer.data), error: null };
    if (answer.status === 204) return { rows: [], error: null };
    return { rows: [], error: `The set answered ${answer.status}.` };
}

/// The rows of a statement of the page's own.
export async function select<Row>(sql: string, signal?: AbortSignal): Promise<Row[]> {
    const answer = await runSql(sql, signal);
    if (answer.error) throw new RequestError(`The guide cannot be read: ${answer.error}`);
    return answer.rows as Row[];
}

/// A text as an SQL literal.
export function quoted(text: string): string {
    return `'${text.replaceAll("'", "''")}'`;
}
