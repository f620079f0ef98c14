// SPDX-License-Identifier: GPL-3.0-or-later
// Tests that a document's background work gives way to the window's thread and to nothing else.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <thread>

#include "document/QcbsWorkerPriority.hpp"

namespace {

int niceOf(pid_t thread) { return getpriority(PRIO_PROCESS, static_cast<id_t>(thread)); }

TEST(WorkerPriority, AWorkerThreadGivesWayOnceAndTheWindowsThreadKeepsItsPlace) {
    const int window = niceOf(gettid());
    int first = 0;
    int second = 0;
    std::thread worker([&] {
        yieldToTheWindow();
        first = niceOf(gettid());
        yieldToTheWindow();  // a pool thread runs many jobs: lowered once, not each time
        second = niceOf(gettid());
    });
    worker.join();
    EXPECT_EQ(first, std::min(window + 5, 19));
    EXPECT_EQ(second, first);
    EXPECT_EQ(niceOf(gettid()), window);
    EXPECT_EQ(niceOf(getpid()), window);
}

}  // namespace
