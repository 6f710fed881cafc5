#pragma once

#include <QString>

/// ISBNs as a catalogue compares them: hyphens, spaces and qualifiers such as "(pbk.)" removed,
/// the check digit verified, ISBN-10 and ISBN-13 of one book made the same, and a scanned EAN
/// with a price add-on (13 + 2 or 5 digits) read as its ISBN.
namespace Isbn {
/// The ISBN-13 (13 digits) of what was typed, scanned or found in 020 $a, or empty when it is
/// not an ISBN (wrong length, letters, wrong check digit).
QString normalised(const QString &text);
/// The ISBN-10 of a 978 ISBN-13 (its digits, "X" for ten), else empty.
QString isbn10(const QString &isbn13);
} // namespace Isbn
