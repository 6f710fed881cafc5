#pragma once

#include "OpacTitleIndex.h"

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>

#include <atomic>
#include <mutex>
#include <optional>
#include <semaphore>
#include <thread>

/// What the web catalogue shows of the library: titles (copies grouped by title, main author and
/// ISBN) with their availability counted over the copies. Removed copies are never shown.
///
/// The titles are found in an index held in memory, read again in the background when the
/// library has changed and the index is older than the refresh interval (a new title shows within
/// that time); whether a copy is on the shelf, due back or removed is read from the library for
/// every page, so it is never older than the page. A refresh interval of 0 reads the index for
/// every request (a small library, the tests).
class OpacCatalogue {
public:
    explicit OpacCatalogue(int refreshSeconds = 60);
    ~OpacCatalogue();

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
    using Filter = OpacTitleIndex::Filter;
    using Choice = OpacTitleIndex::Choice;
    using List = OpacTitleIndex::List;
    /// The titles asked for; page counts from 1. Throws AppError.
    Page search(const Filter &filter, int page);
    /// A pick list of the advanced form: id and name, in name order.
    QList<Choice> choices(List list);

    /// Titles added in the last 30 days, newest first.
    Page newInTheLibrary(int page);
    /// The titles lent most since the term began (the quarter: January, April, July, October), with
    /// their number of loans; at most 20.
    QList<QPair<Title, int>> mostBorrowed(QDate *since);

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
    std::optional<Details> details(int itemID);

    /// Waits for a refresh under way (tests).
    void waitForRefresh();

private:
    /// The index to answer from, starting a refresh when it is due.
    std::shared_ptr<const OpacTitleIndex> index();
    void refresh(const QString &mark);

    // How many of the pages' statements run on the library at once, however many learners ask:
    // the desks share the database (and often the computer) with the catalogue.
    std::counting_semaphore<16> readers_;
    const int refreshSeconds_;
    std::mutex mutex_;
    std::shared_ptr<const OpacTitleIndex> index_;
    QString mark_;         // the library's change mark the index was read at
    QDateTime checkedAt_;  // when the mark was last compared
    std::thread refresher_;
    std::atomic<bool> refreshing_{false};
};
