#pragma once

#include "Money.h"

#include <QDate>
#include <QString>

#include <optional>
#include <utility>
#include <vector>

/// A check of the shelves against the catalogue, kept in the library database
/// (tblLibStocktakes, tblLibStocktakeScans) so that it survives closing the program and can be
/// resumed; several may exist, one open at a time. Its scope is the whole catalogue or chosen
/// categories and sub-categories. Every scan is recorded at once.
class Stocktake {
public:
    /// What a scan found.
    enum class Scan {
        OnShelf,      // a copy in scope, as expected
        AlreadyScanned,
        Unknown,      // no copy has this accession number
        OutsideScope,
        PhasedOut,    // the catalogue shows the copy as removed
        OnLoan,       // the catalogue shows the copy out on loan, yet it is on the shelf
    };
    struct Copy {
        QString accession;
        QString title;
    };
    struct Result {
        std::vector<Copy> missing;   // in scope, not scanned, not on loan
        std::vector<Copy> phasedOut; // scanned although removed
        std::vector<Copy> onLoan;    // scanned although out on loan
        std::vector<Copy> unknown;   // numbers no copy has (title empty)
        std::vector<Copy> outside;   // copies outside the scope
        int scanned = 0;             // copies of the scope found (on the shelf or on loan)
        int expected = 0;
    };

    /// Starts a stocktake (scope: category and sub-category numbers; both empty for the whole catalogue).
    /// Throws AppError when another one is open or the name is empty.
    static Stocktake start(const QString &name, const QDate &startDate, const std::vector<int> &categories,
                           const std::vector<int> &subCategories);
    /// The open stocktake, if there is one.
    static std::optional<Stocktake> open();
    /// The newest stocktake, open or finished: a finished one's result stays at hand (export, print,
    /// marking lost) until the next one starts.
    static std::optional<Stocktake> latest();

    int id() const { return id_; }
    const QString &name() const { return name_; }
    const QDate &startDate() const { return startDate_; }
    bool finished() const { return finished_; }
    /// The scope it was started with: category and sub-category numbers (both empty: the whole catalogue).
    std::vector<int> categories() const;
    std::vector<int> subCategories() const;
    /// The scans that need attention so far (not on the shelf as expected), in the order scanned.
    std::vector<std::pair<Scan, Copy>> exceptions() const;

    /// Records one scan (the number as the scanner typed it, trimmed).
    Scan scan(const QString &accession);
    /// Copies of the scope found so far, and copies the scope holds (not phased out): counted by the
    /// database when the stocktake is started or opened and after a return or marking lost, and kept
    /// up to date by each scan, so a scan costs no count of the catalogue.
    int scannedCount() const { return scanned_; }
    int expectedCount() const { return expected_; }
    Result result() const;
    /// Returns a copy scanned on the shelf although the catalogue shows it on loan, as the issue desk
    /// returns it (today, with the fine of its loan rules, which goes to fine); its scan then counts
    /// as on the shelf. False (after the loan routine's message) when it is not on loan.
    bool returnToShelf(const QString &accession, Money *fine = nullptr);
    /// Ends the stocktake (a new one may then start), keeping its result as it is now: the missing
    /// copies and the counts stay as they were at finishing.
    void finish();
    /// Phases the missing copies out with the reason "Lost" and the stocktake's date, as the item editor
    /// does (those of the result at finishing, once finished), leaving any copy lent, scanned or
    /// removed meanwhile; returns how many.
    int markMissingLost();

private:
    Stocktake() = default;
    static std::optional<Stocktake> read(const QString &condition);
    QString scope(const QString &alias) const;
    QString missingCondition(const QString &alias) const;
    void countInDatabase(int *scanned, int *expected) const;
    void recount();

    int id_ = 0;
    QString name_;
    QDate startDate_;
    QString categories_;    // "1,4" or empty
    QString subCategories_; // "7" or empty
    int scanned_ = 0;
    int expected_ = 0;
    bool finished_ = false;
};
