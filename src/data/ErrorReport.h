#pragma once

#include "AppError.h"

#include <QString>

/// The one error report of the system: an OK box titled "Error : " + number.
void ReportError(const QString &location, const QString &description, const QString &procedure, double number);
/// The same for an error caught by a handler's trap. An error that only a typed value causes (a
/// text too long for its column, a NUL character) is told in a plain user message instead;
/// numbers are checked by the screens' fields.
void ReportError(const QString &location, const QString &procedure, const AppError &error);
/// The old runtime's number-to-text conversion: a leading blank for non-negative numbers.
QString NumberText(double number);

/// The one error trap of a handler: runs work, and an AppError it throws is reported as the
/// handler's (location, procedure); false then. A screen that reports under another screen's name
/// keeps that label on purpose; it is pinned by its tests.
template <typename Work> bool Trap(const QString &location, const QString &procedure, Work &&work)
{
    try {
        work();
        return true;
    } catch (const AppError &e) {
        ReportError(location, procedure, e);
        return false;
    }
}

/// The same, with cleanup run before the report (closing what the work left open).
template <typename Work, typename Cleanup> bool Trap(const QString &location, const QString &procedure, Work &&work, Cleanup &&cleanup)
{
    try {
        work();
        return true;
    } catch (const AppError &e) {
        cleanup();
        ReportError(location, procedure, e);
        return false;
    }
}
