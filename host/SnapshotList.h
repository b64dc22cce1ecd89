// The list type behind the middleware's lists.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

/// A list of middleware objects in ascending order, walked with a position.
///
/// The list works on a snapshot that was taken when it was filled: what changes in the middleware
/// afterwards does not show. An object is made when it is first asked for, so counting a list costs
/// no object; all share one block of memory. The list owns its objects: they go with Delete, Destroy or
/// the list itself; who wants to keep one copies it. Used by one thread.
template <typename T>
class SnapshotList {
public:
    /// What a list is filled with; shared and never changed.
    class Source {
    public:
        virtual ~Source() = default;
        virtual int Count() const = 0;

        /// Makes the object of entry `index` (0 to Count() - 1) in `object`, which is empty before and
        /// stays so for an empty entry.
        virtual void Make(int index, std::optional<T>& object) const = 0;
    };

    /// Where a Seek starts.
    enum Origin { First, Current, Last };

    /// Makes the list empty and ready to be filled.
    void Create() { Fill(nullptr); }

    /// Replaces the content by `source`; null leaves the list empty. No position is taken.
    void Fill(std::shared_ptr<const Source> source) {
        m_objects.clear();
        m_source = std::move(source);
        m_count = m_source ? m_source->Count() : 0;
        m_position = -1;
    }

    /// Number of entries.
    int Size() const { return m_count; }

    /// Moves to the entry `step` places from `origin` and answers whether there is one; otherwise
    /// the position stays.
    bool Seek(Origin origin, int step) {
        const int from = origin == First ? 0 : origin == Last ? m_count - 1 : m_position;
        const long long target = static_cast<long long>(from) + step;
        if (target < 0 || target >= m_count) return false;
        m_position = static_cast<int>(target);
        return true;
    }

    /// The object at the position, owned by the list; null without a position or for an empty entry.
    T* Data() {
        if (m_position < 0) return nullptr;
        if (m_objects.empty()) m_objects = std::vector<std::optional<T>>(static_cast<std::size_t>(m_count));
        std::optional<T>& object = m_objects[static_cast<std::size_t>(m_position)];
        if (!object) m_source->Make(m_position, object);
        return object ? &*object : nullptr;
    }

    /// Destroys the object at the position, if one was made; the entry stays and makes it anew.
    void Delete() {
        if (m_position >= 0 && !m_objects.empty()) m_objects[static_cast<std::size_t>(m_position)].reset();
    }

    /// Destroys every object that the list still holds, and empties it.
    void Destroy() { Fill(nullptr); }

private:
    std::shared_ptr<const Source> m_source;
    std::vector<std::optional<T>> m_objects;  ///< by entry; empty until the first Data()
    int m_count = 0;
    int m_position = -1;
};
