#pragma once

// Locks that the compiler checks: clang's -Wthread-safety proves that a field marked GUARDED_BY is
// touched only while its Mutex is held. Other compilers ignore the marks.
//
//     mutable Mutex lock;
//     bool busy GUARDED_BY(lock) = false;
//     ...
//     const MutexLock guard(lock);
//     busy = true;
//
// To wait: std::condition_variable_any::wait(guard) with a guard that isn't const, in a loop that
// looks at the condition itself. The analysis doesn't look into a lambda given as predicate.

#include <mutex>

#if defined(__clang__)
#define MARVOLEN_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define MARVOLEN_THREAD_ANNOTATION(x)
#endif

// On a type: it is a lock; or it holds one for as long as it lives.
#define CAPABILITY(name) MARVOLEN_THREAD_ANNOTATION(capability(name))
#define SCOPED_CAPABILITY MARVOLEN_THREAD_ANNOTATION(scoped_lockable)

// On a field: touched only while the lock is held.
#define GUARDED_BY(lock) MARVOLEN_THREAD_ANNOTATION(guarded_by(lock))

// On an operation: its caller holds the locks; it takes them; gives them back.
#define REQUIRES(...) MARVOLEN_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define ACQUIRE(...) MARVOLEN_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define RELEASE(...) MARVOLEN_THREAD_ANNOTATION(release_capability(__VA_ARGS__))

namespace marvolen {

// A std::mutex that the analysis knows.
class CAPABILITY("mutex") Mutex {
public:
    void lock() ACQUIRE() { mutex.lock(); }
    void unlock() RELEASE() { mutex.unlock(); }

private:
    std::mutex mutex;
};

// Holds a Mutex while it lives. lock and unlock are for std::condition_variable_any.
class SCOPED_CAPABILITY MutexLock {
public:
    explicit MutexLock(Mutex& held) ACQUIRE(held) : mutex(held) { mutex.lock(); }
    ~MutexLock() RELEASE() { mutex.unlock(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

    void lock() ACQUIRE() { mutex.lock(); }
    void unlock() RELEASE() { mutex.unlock(); }

private:
    Mutex& mutex;
};

}  // namespace marvolen
