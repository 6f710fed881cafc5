#pragma once

#include "BenchTimer.h"

#include <QAbstractButton>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <cstdio>
#include <functional>

// The GUI thread's longest stall during an action: the widest gap between two turns of the
// event loop (a zero-interval timer fires on every turn, nested loops included), counted from
// the moment the action starts until it has returned.
class GuiStall {
public:
    template <typename F>
    void time(F &&action)
    {
        using Clock = std::chrono::steady_clock;
        double longest = 0;
        auto last = Clock::now();
        const auto turn = [&] {
            const auto now = Clock::now();
            longest = std::max(longest, std::chrono::duration<double, std::milli>(now - last).count());
            last = now;
        };
        QTimer beat;
        beat.setInterval(0);
        QObject::connect(&beat, &QTimer::timeout, turn);
        beat.start();
        last = Clock::now();
        action();
        turn();
        stalls_.add(longest);
    }
    // "Show All: longest GUI stall  median 12.3 ms  p99 20.1 ms" (the totals are reported beside it as before).
    void report(const char *action)
    {
        std::printf("  %s: longest GUI stall  median %.1f ms  p99 %.1f ms\n", action, stalls_.median(), stalls_.percentile(0.99));
    }

private:
    Samples stalls_;
};

// A screen's button pressed a number of times, each press timed from the click to its return beside
// the GUI thread's longest stall; before runs ahead of each press (answers to queue, say).
class Presses {
public:
    void press(QWidget &screen, const char *button, int runs, const std::function<void()> &before = {})
    {
        for (int run = 0; run < runs; ++run) {
            if (before)
                before();
            total_.time([&] { stall_.time([&] { screen.findChild<QAbstractButton *>(QLatin1String(button))->click(); }); });
        }
    }
    void report(const char *total, const char *action)
    {
        total_.report(total);
        stall_.report(action);
    }

private:
    Samples total_;
    GuiStall stall_;
};
