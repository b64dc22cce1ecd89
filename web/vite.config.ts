import { defineConfig } from "vite";

// The page is checked in as built: file names without hashes, so that a change shows as a change of a file.
export default defineConfig({
    base: "./",
    build: {
        target: "es2022",
        assetsInlineLimit: 0,
        modulePreload: { polyfill: false },
        cssCodeSplit: false,
        reportCompressedSize: false,
        rollupOptions: {
            output: {
                entryFileNames: "assets/guide.js",
                chunkFileNames: "assets/[name].js",
                assetFileNames: "assets/[name][extname]",
            },
        },
    },
    server: {
        proxy: {
            "/ws": process.env["EPG_URL"] ?? "http://127.0.0.1:8080",
            "/set": process.env["EPG_URL"] ?? "http://127.0.0.1:8080",
        },
    },
});
