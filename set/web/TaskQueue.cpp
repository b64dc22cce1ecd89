#include "set/web/TaskQueue.h"

#include <utility>

namespace epgset {

TaskQueue::TaskQueue() : thread_([this] { run(); }) {}

TaskQueue::~TaskQueue() {
    close();
}

bool TaskQueue::post(Task task) {
    {
        const std::lock_guard lock(mutex_);
        if (closed_) return false;
        tasks_.push_back(std::move(task));
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

void TaskQueue::run() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return closed_ || !tasks_.empty(); });
        if (tasks_.empty()) return;
        const Task task = std::move(tasks_.front());
        tasks_.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
}

}  // namespace epgset
