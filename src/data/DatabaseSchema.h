#pragma once

#include <QString>
#include <QStringList>

/// The table definitions of the library database and of the school
/// administration (central) tables this program reads, as Jet DDL run through
/// the dialect layer, so every engine gets the same structure.
class DatabaseSchema {
public:
    /// The structure versions of the library database: each upgrade step raises the version to its
    /// own number. A library made before versions were kept is version Oldest (and its tables tell
    /// which steps it still needs).
    enum Version : int {
        Oldest = 0,
        LanguagesPhasedOut,
        SubjectCodesPhasedOut,
        Keywords,
        ItemKeywords,
        TextClassification,
        Author3,
        Edition,
        Notices,   // the letters' wording and the period indexes of the statistics
        Stocktake,        // the stocktake tables
        StocktakeResults, // a finished stocktake keeps its counts
        RecordSources,    // the catalogues a book's record is looked up in
        MemberPins,       // the members' PINs for the web catalogue (hashes only)
        Current = MemberPins
    };
    /// The library database of the current release, with its indexes.
    static QStringList libraryStatements();
    /// The library database as an older release left it: numeric ClassificationNo,
    /// no keyword tables, no Author3, Edition or PhasedOut on languages and subject codes.
    static QStringList olderReleaseLibraryStatements();
    /// The library database's tables as a structure version left them, without the version table
    /// (as the releases before versions were kept made them): tests of every upgrade.
    static QStringList structureStatements(int version);
    /// The one-row table holding the structure version.
    static QStringList versionTable();
    /// The table keeping the wording of the overdue letters to parents (made with the database, or by an upgrade).
    static QString noticeTemplateTable();
    /// The loans by issue date and the fines by their dates (made with the database, or by the upgrade that adds the notice table).
    static QStringList periodIndexes();
    /// The stocktakes and their scans (made with the database, or by a structure upgrade), as a
    /// structure version has them.
    static QStringList stocktakeTables(int version = Current);
    /// The counts a finished stocktake keeps (added by a structure upgrade to older stocktake tables).
    static QStringList stocktakeResultColumns();
    /// The catalogues searched for a book's record by its ISBN (Z39.50 or SRU), with the public ones
    /// a new library starts with (made with the database, or by a structure upgrade).
    static QStringList recordSourceTable();
    /// The members' web catalogue PINs, as Argon2id hashes (made with the database, or by a structure upgrade).
    static QStringList memberPinTable();
    /// The indexes of the keyword tables (made with the tables, or when an upgrade adds them).
    static QStringList keywordIndexes();
    /// The size of a text column of the library database ("tblLibItems", "Title" -> 255); 0 when the
    /// column is not text or not known. Names are matched without regard to case.
    static int textColumnSize(const QString &table, const QString &column);
    /// The central tables read by this program.
    static QStringList centralStatements();

    /// Creates a new database file at path and runs the statements in one transaction.
    /// Throws AppError when the file exists or a statement fails.
    static void createDatabase(const QString &path, const QStringList &statements);
    static void createLibraryDatabase(const QString &path) { createDatabase(path, libraryStatements()); }
    static void createCentralDatabase(const QString &path) { createDatabase(path, centralStatements()); }
};
