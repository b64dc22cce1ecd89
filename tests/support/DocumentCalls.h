// The calls that build a response document.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace epgtest {

/// While it lives, keeps the calls that build documents, in order, each as a line such as
/// `make object 1`, `root "items": object 1`, `object 1 unnamed: object 2`, `object 2 "name": text News`.
/// Objects are numbered as they are made. One at a time. A program that uses it compiles
/// DocumentCalls.cpp in.
class DocumentCalls {
public:
    DocumentCalls();
    ~DocumentCalls();
    DocumentCalls(const DocumentCalls&) = delete;
    DocumentCalls& operator=(const DocumentCalls&) = delete;

    std::vector<std::string> lines;

    // For the functions that stand before the document builder's own.
    void made(void* object);
    void added(void* object, const char* key, const std::string& value);
    std::string nameOf(void* object) const;

private:
    std::map<void*, int> numbers_;
};

}  // namespace epgtest
