#include "tests/service/OrdinaryClients.h"

#include <algorithm>
#include <map>
#include <stdexcept>

#include "tests/support/HttpClient.h"

namespace epgset::test {
namespace {

using std::chrono::duration_cast;
using std::chrono::microseconds;
using std::chrono::steady_clock;

constexpr int clients = 3;
constexpr std::chrono::milliseconds pause{2};
constexpr const char* own = "127.0.0.77";
constexpr const char* targets[] = {"/ws/epg2/channels?items_max=20", "/ws/epg2/antennas",
                                   "/set/openapi.yaml"};

}  // namespace

OrdinaryClients::OrdinaryClients(const std::string& url) : url_(url) {
    for (int number = 0; number < clients; ++number)
        threads_.emplace_back([this] { ask(); });
}

OrdinaryClients::~OrdinaryClients() {
    finish();
}

void OrdinaryClients::ask() {
    HttpClient client(url_, own);
    std::map<std::string, std::string> expected;
    while (!stopping_) {
        for (const char* target : targets) {
            std::string fault;
            const auto begun = steady_clock::now();
            try {
                const HttpAnswer answer = client.get(target);
                const std::string& body = expected.try_emplace(target, answer.body).first->second;
                if (answer.status != 200) fault = std::string(target) + ": " + std::to_string(answer.status);
                if (answer.body != body) fault = std::string(target) + " differs";
            } catch (const std::runtime_error& error) {
                fault = error.what();
            }
            const auto time = duration_cast<microseconds>(steady_clock::now() - begun);
            {
                const std::lock_guard lock(mutex_);
                times_.push_back(time);
                if (!fault.empty()) faults_.push_back(fault);
            }
            std::this_thread::sleep_for(pause);
        }
    }
}

OrdinaryClients::Outcome OrdinaryClients::finish() {
    stopping_ = true;
    for (std::thread& thread : threads_) {
        if (thread.joinable()) thread.join();
    }
    std::ranges::sort(times_);
    Outcome outcome;
    outcome.answers = times_.size();
    outcome.wrong = faults_.size();
    outcome.ninetyNinth = times_.empty() ? microseconds(0) : times_[times_.size() * 99 / 100];
    if (!faults_.empty()) outcome.example = faults_.front();
    return outcome;
}

}  // namespace epgset::test
