// What takes orders where nothing is recorded.
#pragma once

#include "host/Logger.h"
#include "set/recorder/RecordingOrder.h"

namespace epgset {

/// Refuses every order, with a warning.
class NoRecorder : public OrderTaker {
public:
    bool begin(const RecordingOrder& order) override {
        Container::Logger::logger("set/epghost")
            .warning("reminder %lu is due and is not recorded: there is no recorder", order.uid);
        return false;
    }

    void end(unsigned long /*uid*/, RecordingEnd /*why*/) override {}
};

}  // namespace epgset
