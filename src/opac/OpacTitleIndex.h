#pragma once

#include <QByteArray>
#include <QDate>
#include <QHash>
#include <QList>
#include <QString>

#include <memory>
#include <vector>

/// The catalogue's words held in memory: every title (copies grouped by title, main author and
/// ISBN) with what a search matches it by, and the advanced form's lists. A search answers from
/// here in a millisecond instead of scanning the items, keywords and subjects for every page;
/// whether a copy is on the shelf is not held here but read for the page shown. Built in one go
/// and never changed: a newer library gives a new index.
class OpacTitleIndex {
public:
    struct Copy {
        int itemID = 0;
        int category = 0, subCategory = 0, language = 0, series = 0;
        QDate added;
    };
    struct Title {
        QString title, author, year, classification, isbn;
        int authorID = 0, seriesID = 0;
        std::vector<Copy> copies; // in ItemID order
    };
    /// What is asked: typed text, and list ids (0 for any).
    struct Filter {
        QString text;
        int category = 0, subCategory = 0, language = 0, series = 0;
        bool any() const { return !text.trimmed().isEmpty() || category || subCategory || language || series; }
        bool admits(const Copy &c) const;
    };
    /// A title found, with its copies that the filter admits.
    struct Found {
        const Title *title = nullptr;
        std::vector<int> itemIDs;
    };
    struct Choice {
        int id = 0;
        QString name;
    };
    enum class List { Categories, SubCategories, Languages, Series, Count };

    /// Reads the library (removed copies left out). Throws AppError.
    static std::shared_ptr<const OpacTitleIndex> read();

    /// The titles the filter finds, in title order: the typed text is found in a title, at the start
    /// of the main author's surname, a keyword (English or Afrikaans) or a subject, or is an ISBN or
    /// accession number; case does not matter.
    std::vector<Found> search(const Filter &filter) const;
    /// Titles with copies added on or after since, their newest copy first.
    std::vector<Found> addedSince(const QDate &since) const;
    /// The title a copy belongs to, or null.
    const Title *titleOf(int itemID) const;
    /// Up to max other titles (not named title) by an author or in a series, in title order.
    std::vector<const Title *> byAuthor(int authorID, const QString &title, int max) const;
    std::vector<const Title *> inSeries(int seriesID, const QString &title, int max) const;
    const QList<Choice> &choices(List list) const { return choices_[int(list)]; }

private:
    std::vector<const Title *> others(int Title::*id, int value, const QString &title, int max) const;

    std::vector<Title> titles_; // in title order
    // Every title case folded, in UTF-8, each ended by a newline: one memmem() pass finds a word in all.
    QByteArray foldedTitles_;
    std::vector<qsizetype> titleStarts_;
    QHash<int, int> titleOfItem_;          // item id -> title
    QHash<QString, int> titleOfAccession_; // case folded
    QHash<QString, std::vector<int>> titlesOfIsbn_;
    // Keywords (both languages), subjects and main authors' surnames, case folded, with their titles.
    std::vector<std::pair<QString, std::vector<int>>> terms_;
    QList<Choice> choices_[int(List::Count)];
};
