#pragma once

#include "OpacAccount.h"
#include "OpacCatalogue.h"

#include <QString>

/// The web catalogue's pages as HTML: small, server-rendered, usable without JavaScript, on an old
/// phone and with a screen reader. Every value written into a page is escaped.
namespace OpacPages {
/// Text made safe to stand in HTML, in an element or an attribute.
QString escaped(const QString &text);
/// The search page (the box, and the advanced form's lists), with the results when something was asked.
struct SearchForm {
    OpacCatalogue::Filter filter;
    QList<OpacCatalogue::Choice> categories, subCategories, languages, series;
};
QString search(const SearchForm &form, const OpacCatalogue::Page &results, int page);
/// "New in the library": titles added in the last 30 days.
QString newTitles(const OpacCatalogue::Page &results, int page);
/// "Most borrowed this term".
QString mostBorrowed(const QList<QPair<OpacCatalogue::Title, int>> &ranked, const QDate &since);
/// A title's page; with formToken (a member signed in) a title whose copies are all out has "Reserve".
QString title(const OpacCatalogue::Details &details, const QString &formToken = QString());
/// The sign-in form (number and PIN), with a message above it when the last try failed.
QString signIn(const QString &formToken, const QString &message);
/// "My account": the member's loans (overdue marked, fine so far) and fines, and Sign out.
QString account(const OpacAccount::Member &member, const QList<OpacAccount::Loan> &loans, const QList<OpacAccount::Fine> &fines,
                const QList<OpacAccount::Reservation> &reservations, const QString &formToken);
/// A page that says something went wrong, in plain words.
QString message(const QString &heading, const QString &text);
} // namespace OpacPages
