#pragma once

class QLineEdit;
class QWidget;

/// What a person may type into a screen's boxes. No box takes a NUL (nothing can store it), and a
/// box takes at most as many characters as its database column holds: the widest text column
/// (255) unless the box is tied to a narrower one.
///
/// A date box takes a date typed whole ("2026-03-01").
///
/// Every screen calls GuardTypedFields once its form is built; boxes that feed a column call
/// LimitToColumn (before or after) with the column they end in.
void GuardTypedFields(QWidget *screen);
/// Escape never throws a screen's work away: in a text box it clears that box, anywhere else on
/// the screen it does nothing; a screen closes through its own buttons. GuardTypedFields gives
/// every screen this too.
void KeepWorkOnEscape(QWidget *screen);
/// Ties a box to a library column ("tblLibAuthors", "AuthorSurname"): at most the column's size.
void LimitToColumn(QLineEdit *box, const char *table, const char *column);
