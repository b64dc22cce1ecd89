// Text conversions between the middleware's UTF-16 and the service's UTF-8.
#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <utility>

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "Vexmoor/HeapText.h"

namespace {

constexpr int noLimit = 0x7FFFFFF;  // seven digits, 134,217,727

/// Units of the block that t_change_UTF8_to_ZorviStr hands out.
constexpr int zorviStrUnits = 512;

void swapBytes(void* handle, std::size_t units) {
    auto* bytes = static_cast<unsigned char*>(handle);
    for (std::size_t i = 0; i < units; ++i)
        std::swap(bytes[2 * i], bytes[2 * i + 1]);
}

/// Writes UTF-8 into a bounded buffer, a character whole or not at all.
class Utf8Writer {
public:
    Utf8Writer(char* buffer, int size) : m_buffer(buffer), m_size(size) {}

    bool isFull() const { return m_length + 1 >= m_size; }

    bool write(unsigned codePoint) {
        if (codePoint <= 0x7F) return put({codePoint});
        if (codePoint <= 0x7FF) return put({0xC0 | codePoint >> 6, tail(codePoint)});
        if (codePoint <= 0xFFFF) return put({0xE0 | codePoint >> 12, tail(codePoint >> 6), tail(codePoint)});
        return put({0xF0 | codePoint >> 18, tail(codePoint >> 12), tail(codePoint >> 6), tail(codePoint)});
    }

    int finish() {
        m_buffer[m_length] = '\0';
        return m_length;
    }

private:
    static unsigned tail(unsigned bits) { return 0x80 | (bits & 0x3F); }

    bool put(std::initializer_list<unsigned> bytes) {
        if (m_length + static_cast<int>(bytes.size()) >= m_size) return false;
        for (const unsigned byte : bytes)
            m_buffer[m_length++] = static_cast<char>(byte);
        return true;
    }

    char* m_buffer;
    int m_size;
    int m_length = 0;
};

/// The code point of two units, the second of which is taken as it comes. A low surrogate first is
/// taken in reverse order.
unsigned joinSurrogates(unsigned first, unsigned second) {
    const bool inOrder = (first & 0xFC00) == 0xD800;
    const unsigned high = inOrder ? first : second;
    const unsigned low = inOrder ? second : first;
    return (((high & 0x3FF) << 10) + 0x10000) | (low & 0x3FF);
}

/// Reads UTF-8 bytes of a bounded text that may also end at a NUL.
class ByteReader {
public:
    ByteReader(const char* text, int length)
        : m_text(reinterpret_cast<const unsigned char*>(text)), m_length(length) {}

    bool has(int bytes) const { return bytes <= m_length - m_position; }

    /// The next `count` bytes; false when one is missing or 0.
    bool take(int count, unsigned* bytes) {
        if (!has(count)) return false;
        for (int i = 0; i < count; ++i) {
            bytes[i] = m_text[m_position++];
            if (bytes[i] == 0) return false;
        }
        return true;
    }

private:
    const unsigned char* m_text;
    int m_length;
    int m_position = 0;
};

/// How many bytes follow a lead byte; -1 for a byte that leads nothing and is skipped.
int continuationCount(unsigned lead) {
    if (lead < 0x80) return 0;
    if ((lead & 0xE0) == 0xC0) return 1;
    if ((lead & 0xF0) == 0xE0) return 2;
    if ((lead & 0xF8) == 0xF0) return 3;
    if ((lead & 0xFC) == 0xF8) return 4;
    if ((lead & 0xFE) == 0xFC) return 5;
    return -1;
}

}  // namespace

char* t_alloc_copy(const char* text) {
    if (text == nullptr) return nullptr;
    const std::size_t bytes = std::strlen(text) + 1;
    HeapText copy(static_cast<char*>(std::malloc(bytes)));
    if (copy) std::memcpy(copy.get(), text, bytes);
    return copy.release();
}

int t_read_int(const char* text) {
    return static_cast<int>(std::strtol(text, nullptr, 10));
}

int t_conv_UTF16_to_UTF8(const unsigned short* src, int src_units, char* dst, int dst_bytes) {
    if (src == nullptr || dst == nullptr || dst_bytes < 1) return -1;
    if (src_units < 0) src_units = noLimit;
    Utf8Writer out(dst, dst_bytes);
    for (int read = 0; read < src_units;) {
        unsigned codePoint = src[read++];
        if (codePoint == 0 || out.isFull()) break;
        if (codePoint >= 0xD800 && codePoint <= 0xDFFF) {
            if (read >= src_units) break;
            const unsigned second = src[read++];
            if (second == 0) break;
            codePoint = joinSurrogates(codePoint, second);
        }
        if (!out.write(codePoint)) break;
    }
    return out.finish();
}

int t_conv_UTF8_to_UTF16(const char* src, int src_bytes, unsigned short* dst, int dst_units) {
    if (src == nullptr || dst == nullptr || dst_units < 1) return -1;
    if (src_bytes < 0) src_bytes = noLimit;
    ByteReader in(src, src_bytes);
    int out = 0;
    const auto put = [&](unsigned unit) { dst[out++] = static_cast<unsigned short>(unit); };
    unsigned lead = 0;
    while (in.take(1, &lead) && out + 1 < dst_units) {
        const int following = continuationCount(lead);
        if (following < 0) continue;
        unsigned c[5] = {};
        if (following == 3 && out + 2 >= dst_units) break;
        if (!in.take(following, c)) break;
        if (following == 0) {
            put(lead);
        } else if (following == 1) {
            put((lead & 0x1F) << 6 | (c[0] & 0x3F));
        } else if (following == 2) {
            put((lead & 0x0F) << 12 | (c[0] & 0x3F) << 6 | (c[1] & 0x3F));
        } else if (following == 3) {
            // The lead's low bits are left aside, on purpose: planes above 3 fold onto lower ones.
            put(0xD800u | (((c[0] & 0x30) >> 4) - 1u) << 6 | (c[0] & 0x0F) << 2 | (c[1] & 0x30) >> 4);
            put(0xDC00u | (c[1] & 0x0F) << 6 | (c[2] & 0x3F));
        }  // five- and six-byte forms are skipped
    }
    dst[out] = 0;
    return out;
}

char* t_change_ZorviStr_to_UTF8(void* handle, int length_in_bytes, int free_handle) {
    const int units = length_in_bytes / 2;
    if (handle == nullptr || units < 1) return nullptr;
    const HeapBlock owned(free_handle != 0 ? handle : nullptr);
    if (units > (INT_MAX - 1) / 3) return nullptr;
    const int bytes = units * 3 + 1;
    HeapText text(static_cast<char*>(std::malloc(static_cast<std::size_t>(bytes))));
    if (!text) return nullptr;
    swapBytes(handle, static_cast<std::size_t>(units));  // the handle is left so
    t_conv_UTF16_to_UTF8(static_cast<const unsigned short*>(handle), units, text.get(), bytes);
    text.get()[std::strcspn(text.get(), "\r\n")] = '\0';
    return text.release();
}

char* t_change_UTF8_to_ZorviStr(const char* text) {
    if (text == nullptr) return nullptr;
    HeapBlock block(std::calloc(zorviStrUnits, sizeof(unsigned short)));
    if (!block) return nullptr;
    const int length = static_cast<int>(std::min<std::size_t>(std::strlen(text), noLimit));
    const int units = t_conv_UTF8_to_UTF16(text, length, static_cast<unsigned short*>(block.get()),
                                           std::min(length + 1, zorviStrUnits));
    swapBytes(block.get(), static_cast<std::size_t>(units));
    return static_cast<char*>(block.release());
}
