// Holders for what the adapter's and the host's signatures hand out as heap blocks.
#pragma once

#include <cstdlib>
#include <memory>

struct FreeHeapBlock {
    void operator()(void* block) const noexcept { std::free(block); }
};

/// Owns a NUL-terminated text from malloc; may be null.
using HeapText = std::unique_ptr<char, FreeHeapBlock>;

/// Owns a raw block from malloc; may be null.
using HeapBlock = std::unique_ptr<void, FreeHeapBlock>;
