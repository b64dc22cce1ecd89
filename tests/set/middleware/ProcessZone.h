// The process's time zone for the length of a test.
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace epgset {

/// Sets TZ and brings the old one back. One at a time, and no other thread may ask for local time meanwhile.
class ProcessZone {
public:
    explicit ProcessZone(const char* zone) {
        if (const char* old = std::getenv("TZ")) old_ = old;
        set(zone);
    }
    ~ProcessZone() { set(old_ ? old_->c_str() : nullptr); }
    ProcessZone(const ProcessZone&) = delete;
    ProcessZone& operator=(const ProcessZone&) = delete;

private:
    static void set(const char* zone) {
        if (zone) {
            setenv("TZ", zone, 1);
        } else {
            unsetenv("TZ");
        }
        tzset();
    }

    std::optional<std::string> old_;
};

}  // namespace epgset
