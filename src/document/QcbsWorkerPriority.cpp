// SPDX-License-Identifier: GPL-3.0-or-later
// Background work on a document gives way to the window's thread.
#include "document/QcbsWorkerPriority.hpp"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

void yieldToTheWindow() {
    thread_local bool lowered = false;
    if (lowered) return;
    lowered = true;
    const pid_t thread = gettid();
    errno = 0;
    const int nice = getpriority(PRIO_PROCESS, static_cast<id_t>(thread));
    if (errno == 0) setpriority(PRIO_PROCESS, static_cast<id_t>(thread), std::min(nice + 5, 19));
}
