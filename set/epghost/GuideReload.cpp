#include "set/epghost/GuideReload.h"

#include <atomic>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <utility>

namespace epgset {

/// One load, shared with its thread.
struct GuideReload::Load {
    Outcome outcome;  ///< the thread's until `ended`
    std::atomic<bool> ended = false;
};

GuideReload::~GuideReload() {
    if (!running()) return;
    if (!load_->ended) {
        std::cout.flush();
        std::_Exit(0);
    }
    thread_.join();
}

void GuideReload::begin(bool askServers) {
    if (askServers) source_.askServers();
    load_ = std::make_shared<Load>();
    thread_ = std::thread([&source = source_, load = load_] {
        try {
            load->outcome.guide = source.load();
        } catch (const std::exception& error) {
            load->outcome.error = error.what();
        }
        load->ended = true;
    });
}

std::optional<GuideReload::Outcome> GuideReload::takeOutcome() {
    if (!running() || !load_->ended) return std::nullopt;
    thread_.join();
    Outcome outcome = std::move(load_->outcome);
    load_.reset();
    return outcome;
}

}  // namespace epgset
