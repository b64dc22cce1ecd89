// Answers of the plug-in that cannot have changed.
#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "set/middleware/StateRevision.h"
#include "set/web/WebMessage.h"

namespace epgset {

/// What an answer is kept under: the text of its request as far as the plug-in reads it. Nothing for a
/// request whose answer is not kept: one that may change something, or that depends on more than
/// StateRevision tells.
std::optional<std::string> answerKey(const WebRequest& request);

/// Whether a request changes nothing that an answer depends on but what counts itself: the bookings and the
/// fills of the table.
bool changesNothing(const WebRequest& request);

/// Keeps answers, the least recently used first to go. Used by any thread.
class AnswerCache {
public:
    /// Holds that many bytes of keys, headers and bodies; 0: nothing.
    explicit AnswerCache(std::size_t capacity) : capacity_(capacity) {}

    /// The answer that was made under that key and the same revision; nothing where there is none.
    std::optional<WebResponse> find(const std::string& key, const StateRevision& revision);

    /// Keeps an answer that was made while the revision stayed the same, in place of one under that key; its
    /// body is shared from then on. One that is no plain 200 or that alone fills the cache is not kept.
    void keep(const std::string& key, const StateRevision& revision, WebResponse& response);

    /// How many bytes are kept.
    std::size_t size() const;

private:
    struct Entry {
        std::string key;
        StateRevision revision;
        WebResponse response;  ///< its body is shared
        std::size_t bytes;
    };
    using Entries = std::list<Entry>;

    void drop(Entries::iterator entry);

    const std::size_t capacity_;
    mutable std::mutex mutex_;
    Entries entries_;                                                ///< guarded by mutex_; last used first
    std::unordered_map<std::string_view, Entries::iterator> byKey_;  ///< guarded by mutex_; keys of entries_
    std::size_t bytes_ = 0;                                          ///< guarded by mutex_
};

}  // namespace epgset
