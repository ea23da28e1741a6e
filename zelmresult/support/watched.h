#pragma once

namespace ZelmResult {

class Watchable;

// A link in the chain of the pointers that watch an object. Only WatchedPointer uses it.
class Watcher {
public:
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

protected:
    Watcher() = default;
    ~Watcher() { Leave(); }

    [[nodiscard]] bool IsWatching() const { return m_place != nullptr; }
    void Join(Watchable& object);
    void Leave()
    {
        if (m_place == nullptr) return;
        *m_place = m_next;
        if (m_next != nullptr) m_next->m_place = m_place;
        m_place = nullptr;
    }

private:
    friend class Watchable;

    Watcher* m_next = nullptr;
    Watcher** m_place = nullptr; // what points at this link
};

// A base of objects that a WatchedPointer may point at. Its destructor makes those pointers null, so they are still
// valid while the destructors of derived classes run.
//
// Copies   are other objects: nothing watches a new copy, and an assignment doesn't change who watches either side.
// Threads  an object and all pointers that watch it belong to one thread at a time.
class Watchable {
public:
    Watchable() = default;
    Watchable(const Watchable& /*other*/) {}
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment,cert-oop54-cpp): nothing is assigned
    Watchable& operator=(const Watchable& /*other*/) { return *this; }

protected:
    ~Watchable() { LoseWatchers(); }
    // For a destructor that must make the pointers null earlier, before its bases do.
    void LoseWatchers()
    {
        while (m_first != nullptr) m_first->Leave();
    }

private:
    friend class Watcher;

    Watcher* m_first = nullptr;
};

inline void Watcher::Join(Watchable& object)
{
    m_next = object.m_first;
    if (m_next != nullptr) m_next->m_place = &m_next;
    m_place = &object.m_first;
    object.m_first = this;
}

// A pointer that becomes null when its object dies, and owns nothing. It is used like a plain one. Pointing it
// somewhere takes constant time, however many watch the object, and no memory besides its own. T may be incomplete
// where the pointer is only declared and compared.
template <class T>
class WatchedPointer : private Watcher {
public:
    WatchedPointer() = default;
    WatchedPointer(T* object) { PointAt(object); }
    WatchedPointer(const WatchedPointer& other) : Watcher() { PointAt(other.get()); }
    WatchedPointer& operator=(const WatchedPointer& other)
    {
        if (this != &other) PointAt(other.get());
        return *this;
    }
    WatchedPointer& operator=(T* object)
    {
        PointAt(object);
        return *this;
    }

    [[nodiscard]] T* get() const { return IsWatching() ? m_object : nullptr; }
    operator T*() const { return get(); }
    T* operator->() const { return get(); }
    // Null because the object died, and not because null was given.
    [[nodiscard]] bool HasDied() const { return m_object != nullptr && !IsWatching(); }

private:
    void PointAt(T* object)
    {
        Leave();
        m_object = object;
        if (object != nullptr) Join(*object);
    }

    T* m_object = nullptr; // also when it died
};

} // namespace ZelmResult
