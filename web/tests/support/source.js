// What a recording is read from.
import { createServer } from "node:http";

/** Serves bytes without end at every path; the answer has the server's address. */
export async function startSource() {
    const server = createServer((_request, response) => {
        response.writeHead(200, { "Content-Type": "video/mp2t" });
        const packet = Buffer.alloc(188 * 100, 0x47);
        const timer = setInterval(() => response.write(packet), 50);
        response.on("close", () => clearInterval(timer));
    });
    await new Promise((resolve) => server.listen(0, "127.0.0.1", () => resolve(undefined)));
    const address = /** @type {import("node:net").AddressInfo} */ (server.address());
    return {
        url: `http://127.0.0.1:${address.port}/one.ts`,
        stop() {
            server.closeAllConnections();
            server.close();
        },
    };
}
