// A running epghost.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <string>
#include <vector>

namespace epgset::test {

/// Starts the program and gathers what it prints. Killed when the object goes while it still runs.
class EpghostProcess {
public:
    using Arguments = std::vector<std::string>;

    /// Starts epghost with exactly these arguments. `environment` holds lines such as "TZ=UTC" that are
    /// set in addition.
    explicit EpghostProcess(const Arguments& arguments, const Arguments& environment = {});
    ~EpghostProcess();
    EpghostProcess(const EpghostProcess&) = delete;
    EpghostProcess& operator=(const EpghostProcess&) = delete;

    /// Waits for the line that tells that the set is ready and answers the URL in it. Throws
    /// std::runtime_error, with what was printed on standard error, when the program ends first or 60 s
    /// have passed.
    std::string waitUntilReady();

    void signal(int number) const;

    pid_t id() const { return process_; }

    /// Waits until the program ends and answers its exit status; 128 plus its number for a signal that
    /// ended it. Throws std::runtime_error after 60 s.
    int wait();

    /// Asks the program to end and waits.
    int stop(int number = SIGTERM) {
        signal(number);
        return wait();
    }

    bool running();

    /// What was printed so far.
    const std::string& output();
    const std::string& errors();

    /// Waits until standard error holds `text`; false when it does not within 20 s.
    bool waitForError(const std::string& text);

private:
    /// Takes in what has been printed, waiting at most `limit` for it.
    void gather(std::chrono::milliseconds limit);
    bool reap();

    pid_t process_ = -1;
    int outputPipe_ = -1;
    int errorPipe_ = -1;
    std::string output_;
    std::string errors_;
    int status_ = -1;
    bool ended_ = false;
};

}  // namespace epgset::test
