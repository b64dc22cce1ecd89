// Sees whether a heap block is freed.
#pragma once

namespace epgtest {

/// While it lives, watches one heap block; the block is freed as ever. One at a time. Frees of the
/// program's own code count, those of libraries do not. A program that uses it compiles FreedBlock.cpp in
/// and links with -Wl,--wrap=free.
class FreedBlock {
public:
    explicit FreedBlock(const void* block);
    ~FreedBlock();
    FreedBlock(const FreedBlock&) = delete;
    FreedBlock& operator=(const FreedBlock&) = delete;

    /// How often the block was freed so far.
    int times() const;
};

}  // namespace epgtest
