#include "tests/support/EpghostProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace epgset::test {
namespace {

using SteadyClock = std::chrono::steady_clock;
constexpr std::chrono::seconds patience{60};
constexpr std::chrono::milliseconds step{20};

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// This process's environment without what the added lines replace, and these.
std::vector<std::string> environmentWith(const std::vector<std::string>& added) {
    std::vector<std::string> result = added;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string line = *entry;
        const std::string name = line.substr(0, line.find('=') + 1);
        bool replaced = false;
        for (const std::string& other : added) {
            replaced = replaced || other.starts_with(name);
        }
        if (!replaced) result.push_back(line);
    }
    return result;
}

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        fcntl(ends[0], F_SETFL, O_NONBLOCK);
        reader = ends[0];
        writer = ends[1];
    }
    int reader;
    int writer;
};

/// Appends what a pipe holds; closes it at its end.
void drain(int& pipe, std::string& text) {
    std::array<char, 65536> buffer{};
    while (pipe >= 0) {
        const ssize_t count = read(pipe, buffer.data(), buffer.size());
        if (count > 0) {
            text.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0) {
            close(std::exchange(pipe, -1));
        } else {
            return;
        }
    }
}

}  // namespace

EpghostProcess::EpghostProcess(const Arguments& arguments, const Arguments& environment) {
    Arguments texts = {EPGHOST_PROGRAM};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<std::string> lines = environmentWith(environment);
    const Pipe output;
    const Pipe errors;
    outputPipe_ = output.reader;
    errorPipe_ = errors.reader;

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output.writer, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors.writer, STDERR_FILENO);
    const int error = posix_spawn(&process_, EPGHOST_PROGRAM, &actions, nullptr, pointersTo(texts).data(),
                                  pointersTo(lines).data());
    posix_spawn_file_actions_destroy(&actions);
    close(output.writer);
    close(errors.writer);
    if (error != 0) throw std::runtime_error("cannot start " EPGHOST_PROGRAM);
}

EpghostProcess::~EpghostProcess() {
    if (!reap()) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    for (const int pipe : {outputPipe_, errorPipe_}) {
        if (pipe >= 0) close(pipe);
    }
}

std::string EpghostProcess::waitUntilReady() {
    const std::string begin = "listening on ";
    const auto deadline = SteadyClock::now() + patience;
    while (output_.find('\n') == std::string::npos) {
        const bool over = reap() || SteadyClock::now() > deadline;
        gather(step);
        if (over && output_.find('\n') == std::string::npos) {
            throw std::runtime_error("epghost is not ready: " + output_ + errors_);
        }
    }
    if (!output_.starts_with(begin)) throw std::runtime_error("no ready line: " + output_);
    return output_.substr(begin.size(), output_.find('\n') - begin.size());
}

void EpghostProcess::signal(int number) const {
    if (!ended_) kill(process_, number);
}

int EpghostProcess::wait() {
    const auto deadline = SteadyClock::now() + patience;
    while (!reap()) {
        gather(step);
        if (SteadyClock::now() > deadline) throw std::runtime_error("epghost does not end: " + errors_);
    }
    gather(std::chrono::milliseconds(0));
    return status_;
}

bool EpghostProcess::running() {
    return !reap();
}

const std::string& EpghostProcess::output() {
    gather(std::chrono::milliseconds(0));
    return output_;
}

const std::string& EpghostProcess::errors() {
    gather(std::chrono::milliseconds(0));
    return errors_;
}

bool EpghostProcess::waitForError(const std::string& text) {
    const auto deadline = SteadyClock::now() + std::chrono::seconds(20);
    while (errors_.find(text) == std::string::npos) {
        if (SteadyClock::now() > deadline) return false;
        gather(step);
    }
    return true;
}

void EpghostProcess::gather(std::chrono::milliseconds limit) {
    std::array<pollfd, 2> pipes = {pollfd{outputPipe_, POLLIN, 0}, pollfd{errorPipe_, POLLIN, 0}};
    poll(pipes.data(), pipes.size(), static_cast<int>(limit.count()));
    drain(outputPipe_, output_);
    drain(errorPipe_, errors_);
}

bool EpghostProcess::reap() {
    int status = 0;
    if (!ended_ && waitpid(process_, &status, WNOHANG) == process_) {
        ended_ = true;
        status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    return ended_;
}

}  // namespace epgset::test
