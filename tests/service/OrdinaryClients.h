// Clients that use the set as it is meant to be, while something else goes on.
#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace epgset::test {

/// A few clients of an address of their own, each of which asks for a list, a file and a status over a
/// connection that it keeps, one after the other, and checks what it is answered. They ask from their
/// beginning until finish().
class OrdinaryClients {
public:
    struct Outcome {
        std::size_t answers = 0;
        std::size_t wrong = 0;                  ///< answers that differ from those before, and failures
        std::chrono::microseconds ninetyNinth;  ///< percentile of the time of an answer
        std::string example;                    ///< of what was wrong
    };

    explicit OrdinaryClients(const std::string& url);
    ~OrdinaryClients();
    OrdinaryClients(const OrdinaryClients&) = delete;
    OrdinaryClients& operator=(const OrdinaryClients&) = delete;

    Outcome finish();

private:
    void ask();

    const std::string url_;
    std::atomic<bool> stopping_ = false;
    std::mutex mutex_;
    std::vector<std::chrono::microseconds> times_;  ///< guarded by mutex_
    std::vector<std::string> faults_;               ///< guarded by mutex_
    std::vector<std::thread> threads_;
};

}  // namespace epgset::test
