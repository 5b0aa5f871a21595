#include "platform/thread_priority.h"

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

namespace marvolen {
namespace {

// On Linux a nice value belongs to a thread, named by its thread id.
void SetNice(int nice) {
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), nice);
}

void SetPolicy(int policy) {
    const sched_param parameters{};
    pthread_setschedparam(pthread_self(), policy, &parameters);
}

}  // namespace

void SetThreadPriority(ThreadPriority priority) {
    switch (priority) {
        case ThreadPriority::Idle:
            SetPolicy(SCHED_IDLE);
            break;
        case ThreadPriority::Normal:
            SetPolicy(SCHED_OTHER);
            SetNice(0);
            break;
        case ThreadPriority::TimeCritical:
            SetPolicy(SCHED_OTHER);
            SetNice(-20);
            break;
    }
}

void HastenThread(std::thread& thread) {
    const sched_param parameters{};
    pthread_setschedparam(thread.native_handle(), SCHED_OTHER, &parameters);
}

}  // namespace marvolen
