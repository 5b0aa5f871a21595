#pragma once

// The three priorities threads run at.

#include <thread>

namespace marvolen {

enum class ThreadPriority {
    Idle,          // runs only when nothing else wants the processor: the drawing threads
    Normal,        // what a thread has by default
    TimeCritical,  // before everything ordinary: the interface thread
};

// Sets the calling thread's priority. TimeCritical is the top of the ordinary range, not a
// real-time policy: a program that watches cameras for months must never lock a machine up. Where
// the system doesn't permit it, the thread silently stays as it was. Threads inherit their maker's
// priority.
void SetThreadPriority(ThreadPriority priority);

// Lifts another thread out of idle priority, where permitted, so that who waits for it doesn't wait
// for every busy program of the machine as well.
void HastenThread(std::thread& thread);

}  // namespace marvolen
