#pragma once

#include <QString>

#include <atomic>
#include <mutex>

/// Thrown by TaskProgress::check when the librarian pressed Cancel; the runner catches it.
struct TaskCancelled {};

/// What long work tells the screen while it runs on the worker thread, and how it learns
/// that the librarian pressed Cancel. Read by the GUI thread, written by the worker.
class TaskProgress {
public:
    /// The number of steps the work will take; 0 (the default) shows a busy bar.
    void setMaximum(int steps) { maximum_ = steps; }
    void setValue(int step) { value_ = step; }
    /// One step done.
    void advance() { ++value_; }
    /// The line above the bar ("Writing page 12 of 355").
    void setText(const QString &text);

    bool cancelled() const { return cancelled_; }
    /// Stops the work here (throws TaskCancelled) when Cancel was pressed: call it where stopping leaves nothing half done.
    void check() const;

    int maximum() const { return maximum_; }
    int value() const { return value_; }
    QString text() const;
    void cancel() { cancelled_ = true; }

private:
    std::atomic<int> maximum_{0};
    std::atomic<int> value_{0};
    std::atomic<bool> cancelled_{false};
    mutable std::mutex textMutex_;
    QString text_;
};
