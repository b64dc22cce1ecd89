// Reads XMLTV documents.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace epgset {

/// A <channel> as the file has it. Texts are UTF-8 with their white space collapsed.
struct XmltvChannel {
    std::string id;  ///< empty: none given
    std::vector<std::string> displayNames;
    std::string lcn;  ///< the first that is not empty
    int line = 0;     ///< of the file, where it begins
};

/// A <programme> as the file has it. An attribute that is missing is an empty text.
struct XmltvProgramme {
    std::string start;
    std::string stop;
    std::string channel;
    std::string clumpidx;
    std::string title;     ///< of the first <title>
    std::string synopsis;  ///< of the first <desc>
    bool episode = false;  ///< it has an <episode-num> or a <previously-shown>
    int line = 0;          ///< of the file, where it begins
};

/// Receives what is read, in file order. The objects are valid during the call.
class XmltvSink {
public:
    virtual ~XmltvSink() = default;
    virtual void channel(const XmltvChannel& channel) = 0;
    virtual void programme(const XmltvProgramme& programme) = 0;
};

/// Reads a guide file, compressed or not, as a stream: memory does not grow with the file. A document type
/// is passed over, nothing outside of the file is ever loaded, and a reference to an entity stays in a text
/// as it is written. Throws GuideError when the file cannot be read, is not well-formed XML or is not XMLTV;
/// what came before has reached the sink then. `name` is what messages call the file.
void readXmltv(const std::filesystem::path& path, const std::string& name, XmltvSink& sink);

/// The same for a file that messages call by its path.
inline void readXmltv(const std::filesystem::path& path, XmltvSink& sink) {
    readXmltv(path, path.string(), sink);
}

}  // namespace epgset
