#include "set/web/TaskQueue.h"

#include <algorithm>
#include <utility>

namespace epgset {

TaskQueue::TaskQueue() : thread_([this] { run(); }) {}

TaskQueue::~TaskQueue() {
    close();
}

bool TaskQueue::post(const ClientAddress& client, Task task) {
    {
        const std::lock_guard lock(mutex_);
        if (closed_) return false;
        const auto line = std::ranges::find(lines_, client, &Line::client);
        if (line != lines_.end()) {
            line->tasks.push_back(std::move(task));
        } else {
            std::list<Line> made(1);
            made.front().client = client;
            made.front().tasks.push_back(std::move(task));
            lines_.splice(lines_.end(), made);
        }
    }
    changed_.notify_one();
    return true;
}

void TaskQueue::close() {
    {
        const std::lock_guard lock(mutex_);
        closed_ = true;
    }
    changed_.notify_one();
    if (thread_.joinable()) thread_.join();
}

TaskQueue::Task TaskQueue::takeNext() {
    Line& line = lines_.front();
    Task task = std::move(line.tasks.front());
    line.tasks.pop_front();
    if (line.tasks.empty()) {
        lines_.pop_front();
    } else {
        lines_.splice(lines_.end(), lines_, lines_.begin());
    }
    return task;
}

void TaskQueue::run() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return closed_ || !lines_.empty(); });
        if (lines_.empty()) return;
        const Task task = takeNext();
        lock.unlock();
        task();
        lock.lock();
    }
}

}  // namespace epgset
