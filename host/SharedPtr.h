// The container's reference-counted pointer.
#pragma once

#include <boost/shared_ptr.hpp>

namespace Container {

/// A reference-counted pointer: copies share one count, the last one deletes the object. The count
/// is safe to share between threads; one SharedPtr object is not.
template <typename T>
class SharedPtr {
public:
    /// Empty.
    SharedPtr() = default;

    /// Takes `object` over; null gives an empty pointer.
    explicit SharedPtr(T* object) : m_pointer(object) {}

    T* operator->() const { return m_pointer.get(); }
    T& operator*() const { return *m_pointer; }

    /// The object, still owned by the pointers; null when empty.
    T* get() const { return m_pointer.get(); }

    explicit operator bool() const { return m_pointer.get() != nullptr; }

private:
    boost::shared_ptr<T> m_pointer;
};

}  // namespace Container
