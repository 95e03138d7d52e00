#include "ThreadPriority.h"

#include <cerrno>

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace ThreadPriority {

namespace {
id_t threadId()
{
    return static_cast<id_t>(::syscall(SYS_gettid));
}
} // namespace

int niceness()
{
    errno = 0;
    const int nice = ::getpriority(PRIO_PROCESS, threadId());
    return errno == 0 ? nice : 0;
}

void raiseNiceness(int nice)
{
    if (niceness() < nice) {
        ::setpriority(PRIO_PROCESS, threadId(), nice);
    }
}

} // namespace ThreadPriority
