// Work that is done in turn.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace epgset {

/// Runs tasks one after the other, in the order in which they were given, on a thread of its own.
class TaskQueue {
public:
    /// A task must not throw.
    using Task = std::function<void()>;

    TaskQueue();
    ~TaskQueue();
    TaskQueue(const TaskQueue&) = delete;
    TaskQueue& operator=(const TaskQueue&) = delete;

    /// Takes a task; false when the queue has been closed.
    bool post(Task task);

    /// Takes no further tasks and waits until those taken have run.
    void close();

private:
    void run();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Task> tasks_;
    bool closed_ = false;
    std::thread thread_;
};

}  // namespace epgset
