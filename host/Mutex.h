// The container's lock.
#pragma once

#include <mutex>

#include "host/Export.h"

namespace Container {

/// A lock that is not recursive.
class HOST_API Mutex {
public:
    Mutex();
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock();
    void unlock();

private:
    std::mutex m_mutex;
};

/// Holds a Mutex from construction to destruction.
class ScopedLock {
public:
    explicit ScopedLock(Mutex& mutex) : m_mutex(mutex) { m_mutex.lock(); }
    ~ScopedLock() { m_mutex.unlock(); }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    Mutex& m_mutex;
};

}  // namespace Container
