// A value that tells when it changes.

export class Signal<T> {
    readonly #listeners = new Set<(value: T) => void>();
    #value: T;

    constructor(value: T) {
        this.#value = value;
    }

    get value(): T {
        return this.#value;
    }

    set value(value: T) {
        this.#value = value;
        for (const listener of [...this.#listeners]) listener(value);
    }

    /// Calls `listener` at each change from now on; the answer ends that.
    onChange(listener: (value: T) => void): () => void {
        this.#listeners.add(listener);
        return () => this.#listeners.delete(listener);
    }
}
