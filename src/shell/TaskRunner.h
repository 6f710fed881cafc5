#pragma once

#include "TaskProgress.h"

#include <QString>

#include <atomic>
#include <functional>
#include <optional>
#include <utility>

class QObject;
class QWidget;

/// Runs a screen's long work on a worker thread. The call waits for the result, but the
/// event loop turns meanwhile: the window repaints, timers fire, a wait cursor shows at
/// once and a progress dialog (with Cancel where stopping is safe) once the work has
/// taken longer than dialogDelayMs (half a second). The librarian's clicks and keys meant for any other
/// window are held back while it runs, so a second click on the same button does nothing.
///
/// The work must not touch widgets or this thread's open recordsets; it opens its own
/// data objects, which take their own connection from the pool. What it throws is
/// thrown again here, on the GUI thread, for the screen's usual error trap.
class TaskRunner {
public:
    enum class Cancel { No, Yes };
    /// How long work runs before the progress dialog shows (tests shorten it to see the dialog at once).
    static inline std::atomic<int> dialogDelayMs{500};

    TaskRunner(QWidget *owner, QString label, Cancel cancel = Cancel::No);

    /// False when the librarian cancelled, or when another long work is still under way.
    bool run(const std::function<void(TaskProgress &)> &work);

    /// The same for work with a result; empty when cancelled or refused.
    template <class Result>
    std::optional<Result> compute(const std::function<Result(TaskProgress &)> &work)
    {
        std::optional<Result> result;
        if (!run([&](TaskProgress &progress) { result.emplace(work(progress)); }))
            return std::nullopt;
        return result;
    }

    /// From the work: runs show on context's (the GUI) thread and waits for it, e.g. to put the
    /// first screenful of a long list on the screen while the rest is still read.
    static void onGuiThread(QObject *context, const std::function<void()> &show);

    /// Whether long work is under way in this process.
    static bool busy();

private:
    QWidget *owner_;
    QString label_;
    Cancel cancel_;
};
