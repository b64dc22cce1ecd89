// Lets operator new fail.
#pragma once

namespace epgtest {

/// While it lives, the next `times` calls of operator new in this thread fail, with or without std::nothrow;
/// a negative number means all of them. A program that uses it compiles FailingNew.cpp in.
class FailingNew {
public:
    explicit FailingNew(int times = -1);
    ~FailingNew();
    FailingNew(const FailingNew&) = delete;
    FailingNew& operator=(const FailingNew&) = delete;
};

}  // namespace epgtest
