// SPDX-License-Identifier: MIT
// Timing work started from the event loop, and the longest the event loop was held meanwhile.
#pragma once

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <functional>

// The time `work` takes from the event loop until `done` holds, and the
// longest the event loop was held meanwhile.
struct Timing {
    qint64 total = -1;
    qint64 longest = 0;
    qint64 firstScreen = -1;
};

inline Timing measure(const std::function<void()>& work, const std::function<bool()>& done,
                      const std::function<bool()>& screenShown = {}) {
    QElapsedTimer clock;
    Timing timing;
    qint64 last = 0;
    QEventLoop loop;
    QTimer heartbeat;
    heartbeat.setTimerType(Qt::PreciseTimer);
    heartbeat.setInterval(1);
    QObject::connect(&heartbeat, &QTimer::timeout, [&] {
        const qint64 now = clock.elapsed();
        timing.longest = std::max(timing.longest, now - last);
        last = now;
        if (timing.firstScreen < 0 && screenShown && screenShown()) timing.firstScreen = now;
        if (timing.total < 0 && done()) {
            timing.total = now;
            loop.quit();
        }
    });
    QTimer::singleShot(0, [&] {
        clock.start();
        heartbeat.start();
        work();
    });
    loop.exec();
    return timing;
}
