#pragma once

#include <QDate>
#include <QList>
#include <QString>

#include <optional>

/// What the web catalogue shows of the library: titles (copies grouped by title, main author and
/// ISBN) with their availability counted over the copies. Removed copies are never shown.
class OpacCatalogue {
public:
    static constexpr int PageSize = 20;

    struct Title {
        int itemID = 0; // one copy of the title, the address of its page
        QString title, author, year, classification, isbn;
        int copies = 0, onShelf = 0;
        bool referenceOnly = false;
        QDate dueBack; // the earliest due date when every copy is out
        /// "2 of 3 on the shelf", "Due back 2026-12-07" or "Reference only".
        QString availability() const;
    };
    struct Page {
        QList<Title> titles;
        int total = 0; // titles found in all
    };
    /// What is asked: typed text matched against title, author, ISBN, accession number, keyword
    /// (English or Afrikaans) and subject; and the advanced search's choices (list ids; 0 for any).
    struct Filter {
        QString text;
        int category = 0, subCategory = 0, language = 0, series = 0;
        bool any() const { return !text.trimmed().isEmpty() || category || subCategory || language || series; }
    };
    /// The titles asked for; page counts from 1. Throws AppError.
    static Page search(const Filter &filter, int page);
    /// A pick list of the advanced form: id and name, in name order.
    struct Choice {
        int id = 0;
        QString name;
    };
    enum class List { Categories, SubCategories, Languages, Series };
    static QList<Choice> choices(List list);

    /// Titles added in the last 30 days, newest first.
    static Page newInTheLibrary(int page);
    /// The titles lent most since the term began (the quarter: January, April, July, October), with
    /// their number of loans; at most 20.
    static QList<QPair<Title, int>> mostBorrowed(QDate *since);

    struct Copy {
        QString accession, shelf, state; // "On the shelf", "Due back 2026-12-07", "Reference only"
        int itemID = 0;
        QDate due; // when out
    };
    struct Details {
        Title title;
        QString subtitle, publisher, series;
        QList<Copy> copies;
        QList<Title> byAuthor, inSeries; // the library's other titles
        /// The copy a reservation waits for: every copy is out (none reference only); the one due back first.
        std::optional<Copy> toReserve() const;
    };
    /// The title one copy belongs to, with every copy; empty for a removed or unknown copy.
    static std::optional<Details> details(int itemID);
};
