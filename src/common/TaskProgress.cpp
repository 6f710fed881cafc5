#include "TaskProgress.h"

void TaskProgress::setText(const QString &text)
{
    std::lock_guard lock(textMutex_);
    text_ = text;
}

QString TaskProgress::text() const
{
    std::lock_guard lock(textMutex_);
    return text_;
}

void TaskProgress::check() const
{
    if (cancelled_)
        throw TaskCancelled{};
}
