#include "host/Mutex.h"

namespace Container {

Mutex::Mutex() = default;
Mutex::~Mutex() = default;

void Mutex::lock() {
    m_mutex.lock();
}
void Mutex::unlock() {
    m_mutex.unlock();
}

}  // namespace Container
