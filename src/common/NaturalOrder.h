#pragma once

#include <QString>

/// Orders texts as people count: runs of digits compare by their value, the rest without
/// regard to case, so classes run 1A, 1B, 2A … 10A, 11B (never 10A before 1A).
int NaturalCompare(const QString &a, const QString &b);
inline bool NaturalLess(const QString &a, const QString &b) { return NaturalCompare(a, b) < 0; }
