#include "set/document/PrintBuffer.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace epgset {

void PrintBuffer::append(std::string_view text) {
    if (text.empty()) return;
    Reserve(text.size());
    std::memcpy(end_, text.data(), text.size());
    end_ += text.size();
}

MallocText PrintBuffer::release() {
    Put('\0');
    return std::move(text_);
}

void PrintBuffer::grow(std::size_t count) {
    const std::size_t used = size();
    const auto capacity = static_cast<std::size_t>(limit_ - text_.get());
    const std::size_t wanted = std::max(used + count, capacity + capacity / 2);
    auto* grown = static_cast<char*>(std::realloc(text_.get(), wanted));
    if (grown == nullptr) throw std::bad_alloc();
    (void)text_.release();  // realloc took the old text over
    text_.reset(grown);
    end_ = grown + used;
    limit_ = grown + wanted;
}

}  // namespace epgset
