// What happens in the set, as it tells of it; where it does not, the page asks at intervals.

/// Names of the set's events.
const names = [
    "guide-reloaded",
    "schedule-added",
    "schedule-changed",
    "schedule-removed",
    "schedule-due",
    "recording-started",
    "recording-ended",
    "channel-changed",
    "reset",
] as const;

export type EventName = (typeof names)[number];

export interface EventListener {
    /// Something happened; "reset" means that anything may have.
    happened(name: EventName): void;
    /// Whether the set tells of events.
    listening(yes: boolean): void;
}

/// How long to wait before the stream is tried again once the set has refused it, in milliseconds.
const retryPeriod = 60_000;

/// Listens as long as the page stands.
export function listenForEvents(listener: EventListener): void {
    const source = new EventSource("/set/events");
    source.addEventListener("open", () => listener.listening(true));
    source.addEventListener("error", () => {
        listener.listening(false);
        // Otherwise the browser connects again by itself.
        if (source.readyState !== EventSource.CLOSED) return;
        setTimeout(() => listenForEvents(listener), retryPeriod);
    });
    for (const name of names) source.addEventListener(name, () => listener.happened(name));
}
