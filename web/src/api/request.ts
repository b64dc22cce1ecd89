// Requests to the set.

/// An answer of the set: `data` is null when it has no body.
export interface Answer {
    status: number;
    data: unknown;
    sqlError: string | null;
}

/// The set cannot be reached, or answered what the page has no use for.
export class RequestError extends Error {
    readonly status: number;

    constructor(message: string, status = 0) {
        super(message);
        this.name = "RequestError";
        this.status = status;
    }
}

export interface RequestOptions {
    query?: Record<string, string>;
    body?: Record<string, string>;
    signal?: AbortSignal;
}

/// Sends a request below the set's root. Whatever status comes back is an answer; only a set that does not
/// answer is an error.
export async function request(method: string, path: string, options: RequestOptions = {}): Promise<Answer> {
    const query = options.query ? `?${encodeQuery(options.query)}` : "";
    const init: RequestInit = { method, cache: "no-store", headers: { Accept: "application/json" } };
    // The service wants no blanks around colons, which is how the browser writes an object.
    if (options.body) init.body = JSON.stringify(options.body);
    if (options.signal) init.signal = options.signal;
    let response: Response;
    let text: string;
    try {
        response = await fetch(path + query, init);
        text = await response.text();
    } catch (error) {
        if (error instanceof DOMException && error.name === "AbortError") throw error;
        throw new RequestError("The set does not answer.");
    }
    // The set asks for its token: it comes back here when it has been given.
    if (response.status === 401) location.assign("/set/login");
    return {
        status: response.status,
        data: parsed(text, response.headers.get("Content-Type")),
        sqlError: response.headers.get("EPG-SQL-Error"),
    };
}

/// The data of an answer that has to be 200.
export async function get(path: string): Promise<unknown> {
    const answer = await request("GET", path);
    if (answer.status !== 200) throw new RequestError(`The set answered ${answer.status} for ${path}.`, answer.status);
    return answer.data;
}

function encodeQuery(query: Record<string, string>): string {
    return Object.entries(query)
        .map(([name, value]) => `${encodeURIComponent(name)}=${encodeURIComponent(value)}`)
        .join("&");
}

function parsed(text: string, contentType: string | null): unknown {
    if (text === "" || !contentType?.startsWith("application/json")) return null;
    try {
        return JSON.parse(text) as unknown;
    } catch {
        throw new RequestError("The set's answer cannot be read.");
    }
}

/// Rows of an answer's "items"; none when it has no body.
export function items<Row>(data: unknown): Row[] {
    const list = (data as { items?: unknown } | null)?.items;
    return Array.isArray(list) ? (list as Row[]) : [];
}
