// The set's UPnP device identity, scraped out of its device description.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "Vexmoor/HeapText.h"
#include "Vexmoor/TextBuilder.h"
#include "Vexmoor/TextCompare.h"
#include "host/ResponseDocument.h"
#include "host/UPnP.h"

namespace {

constexpr const char* descriptionFile = "/rcr/RemoteControlReceiver.xml";

struct ElementRow {
    const char* search;
    const char* key;
};

/// The elements in the order in which they are searched for, which is the order expected in the file.
constexpr ElementRow elements[] = {
    {"<friendlyName>", "friendlyName"},
    {"<manufacturer>", "manufacturer"},
    {"<manufacturerURL>", "manufacturerURL"},
    {"<modelDescription>", "modelDescription"},
    {"<modelName>", "modelName"},
    {"<modelNumber>", "modelNumber"},
    {"<modelURL>", "modelURL"},
    {"<serialNumber>", "serialNumber"},
    {"<UDN>uuid:", "uuid"},
    {"<qel:deviceID>", "qel_deviceID"},
    {"<qel:ProductCap>", "qel_ProductCap"},
};
constexpr std::size_t elementCount = sizeof elements / sizeof elements[0];

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

int hexDigit(char character) {
    if (character >= '0' && character <= '9') return character - '0';
    if (character >= 'A' && character <= 'F') return character - 'A' + 10;
    if (character >= 'a' && character <= 'f') return character - 'a' + 10;
    return -1;
}

/// Writes a code point as UTF-8, three bytes at most; surrogates are dropped.
char* writeUtf8(char* out, unsigned codePoint) {
    if (codePoint <= 0x7F) {
        *out++ = static_cast<char>(codePoint);
    } else if (codePoint <= 0x7FF) {
        *out++ = static_cast<char>(0xC0 | codePoint >> 6);
        *out++ = static_cast<char>(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0xD800 || codePoint > 0xDFFF) {
        *out++ = static_cast<char>(0xE0 | codePoint >> 12);
        *out++ = static_cast<char>(0x80 | (codePoint >> 6 & 0x3F));
        *out++ = static_cast<char>(0x80 | (codePoint & 0x3F));
    }
    return out;
}

/// The character `index` places on, a blank from the end of the text on.
char characterAt(const char* text, std::size_t index) {
    return index < strnlen(text, index + 1) ? text[index] : ' ';
}

/// Reads the escape after a backslash, at `in`, and writes what it stands for.
void unescape(const char*& in, char*& out) {
    unsigned codePoint = 0;
    int digits = 0;
    for (; digits < 4 && hexDigit(in[digits]) >= 0; ++digits)
        codePoint = codePoint << 4 | static_cast<unsigned>(hexDigit(in[digits]));
    if (digits == 4) {
        adapterLogger.debug("HEX %04X\n", codePoint);
        out = writeUtf8(out, codePoint);
        in += 4;
    } else if (digits == 0) {
        if (*in != '\0') *out++ = *in++;  // the backslash goes, its character stays
    } else {
        adapterLogger.warning("Warning. Invalid JSON string '\\' mark (%c%c%c%c)", characterAt(in, 0),
                              characterAt(in, 1), characterAt(in, 2), characterAt(in, 3));
        ++in;
    }
}

/// Unescapes the value at `cursor` in place, terminates it, and moves past the "<" that ends it.
void takeValue(char*& cursor) {
    const char* in = cursor;
    char* out = cursor;
    while (*in != '\0' && *in != '<') {
        if (*in == '\\')
            unescape(++in, out);
        else
            *out++ = *in++;
    }
    // Looked at first: the terminator may take the place of the "<".
    cursor += (in - cursor) + (*in == '<' ? 1 : 0);
    *out = '\0';
}

/// Reads the whole file; null, logged, when it cannot be read.
HeapText readFile(const std::string& path) {
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "r"));
    if (!file) {
        adapterLogger.error("UUID file cannot be opened");
        return nullptr;
    }
    std::fseek(file.get(), 0, SEEK_END);
    const long size = std::ftell(file.get());
    std::fseek(file.get(), 0, SEEK_SET);
    if (size <= 0) {
        adapterLogger.warning("UUID file size is %d", static_cast<int>(size));
        return nullptr;
    }
    HeapText text(static_cast<char*>(std::malloc(static_cast<std::size_t>(size) + 1)));
    if (!text) {
        adapterLogger.error("t_UPnP_Info malloc failed!");
        return nullptr;
    }
    const std::size_t read = std::fread(text.get(), 1, static_cast<std::size_t>(size), file.get());
    if (read == 0) {
        adapterLogger.error("UUID file read failed!");
        return nullptr;
    }
    text.get()[read] = '\0';
    return text;
}

}  // namespace

int t_UPnP_Info(void* root, const char* method) {
    adapterLogger.trace("t_UPnP_Info");
    if (!isText(method, "GET")) {
        adapterLogger.warning("t_UPnP_Info does not support %s method", method);
        return 404;
    }
    char* rootPath = nullptr;
    const int result = UPnP_CD_GetWebRootPath(&rootPath);
    const HeapText ownedRootPath(rootPath);
    if (rootPath == nullptr) {
        adapterLogger.warning("UPnP_CD_GetWebRootPath failed! (ret:%d)", result);
        return 404;
    }
    adapterLogger.debug("UPnP Root is %s", rootPath);
    const std::size_t pathBytes = std::strlen(rootPath) + std::strlen(descriptionFile) + 1;
    const HeapText path(TextBuilder(pathBytes).add(rootPath).add(descriptionFile).release());
    if (!path) {
        adapterLogger.error("t_UPnP_Info malloc failed!");
        return 404;
    }
    adapterLogger.debug("UUID path is %s\n", path.get());
    const HeapText text = readFile(path.get());
    if (!text) return 404;
    t_UPnP_Info_parse_and_output(root, text.get());
    return 200;
}

int t_UPnP_Info_parse_and_output(void* root, char* text) {
    const char* values[elementCount] = {};
    char* cursor = text;
    for (std::size_t i = 0; i < elementCount; ++i) {
        char* const found = std::strstr(cursor, elements[i].search);
        if (found == nullptr) {
            adapterLogger.warning("Cannot find entry %s in the UUID xml file", elements[i].search);
            continue;  // the cursor stays: an element before it is not found, on purpose
        }
        cursor = found + std::strlen(elements[i].search);
        values[i] = cursor;
        takeValue(cursor);
    }
    for (std::size_t i = 0; i < elementCount; ++i) {
        if (values[i] == nullptr) continue;
        TARNO_rdoc_add_UTF8(root, elements[i].key, values[i]);
        adapterLogger.debug("UPnP Info \"%s\":\"%s\"", elements[i].key, values[i]);
    }
    return 0;
}
