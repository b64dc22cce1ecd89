// Lets operator new fail.
#pragma once

namespace epgtest {

/// While it lives, every operator new of this thread fails, with or without std::nothrow. A program that
/// uses it compiles FailingNew.cpp in.
class FailingNew {
public:
    FailingNew();
    ~FailingNew();
    FailingNew(const FailingNew&) = delete;
    FailingNew& operator=(const FailingNew&) = delete;
};

}  // namespace epgtest
