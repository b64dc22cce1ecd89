// Work that is done in turn.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

#include "set/web/ClientAddress.h"

namespace epgset {

/// Runs tasks one after the other on a thread of its own: those of one client in the order in which they were
/// given, and one of each client in turn, so that who gives many makes others wait for one of them.
class TaskQueue {
public:
    /// A task must not throw.
    using Task = std::function<void()>;

    TaskQueue();
    ~TaskQueue();
    TaskQueue(const TaskQueue&) = delete;
    TaskQueue& operator=(const TaskQueue&) = delete;

    /// Takes a task; false when the queue has been closed. Throws std::bad_alloc; the task is not taken then.
    bool post(const ClientAddress& client, Task task);

    /// Takes no further tasks and waits until those taken have run.
    void close();

private:
    /// The tasks of a client that wait.
    struct Line {
        ClientAddress client;
        std::deque<Task> tasks;
    };

    void run();
    Task takeNext();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::list<Line> lines_;  ///< none is empty; the first is next
    bool closed_ = false;
    std::thread thread_;
};

}  // namespace epgset
