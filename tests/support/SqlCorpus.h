#pragma once

#include <QString>
#include <QStringList>

/// Every Jet statement written in the program's and the tests' source: string literals that
/// start a statement, with the literals they are joined to; a value spliced in between two
/// pieces becomes 1, "%1" placeholders too. The seed of the translator's property test and
/// of the fuzzers.
QStringList jetStatementCorpus(const QString &sourceRoot);

/// Variants of one statement that a shape cache must not confuse with it: its words in upper
/// case and in lower case, and its literals replaced by others of the same kind.
QStringList shapeVariants(const QString &statement);
