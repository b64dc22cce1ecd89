// UTF-8 from anywhere made well formed.
#pragma once

#include <string>
#include <string_view>

namespace epgset {

/// Which characters of a valid text stay as they are.
enum class Utf8Repertoire {
    All,  ///< every character, NUL and the other control characters included
    Xml,  ///< those that an XML 1.0 document can hold: of the control characters below U+0020 only TAB, LF
          ///< and CR, neither U+FFFE nor U+FFFF
};

/// Whether a text is valid UTF-8 and made of characters of the repertoire alone, so that a repair would
/// change nothing.
bool isCleanUtf8(std::string_view text, Utf8Repertoire repertoire = Utf8Repertoire::All) noexcept;

/// Appends a text to `out`, with U+FFFD for each character outside the repertoire and for each maximal
/// invalid part: the bytes that begin a character and then break off count as one part, any other byte
/// as a part of its own. A clean text is copied as a whole.
void appendRepairedUtf8(std::string& out, std::string_view text,
                        Utf8Repertoire repertoire = Utf8Repertoire::All);

/// The repaired text, by the rules of appendRepairedUtf8.
std::string repairedUtf8(std::string_view text, Utf8Repertoire repertoire = Utf8Repertoire::All);

}  // namespace epgset
