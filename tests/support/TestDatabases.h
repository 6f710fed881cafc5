#pragma once

#include "MessageScript.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>

/// Every row of a query on a database file, fields as text joined by '|'.
QStringList rowsIn(const QString &databasePath, const QString &sql);

/// A fixture with a fresh library database and central database in a
/// temporary folder, the process-wide paths pointing at them, and message
/// boxes scripted. Everything is undone after the test.
class DatabaseTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Runs Jet SQL on the library database (test set-up and checks).
    void library(const QString &sql);
    /// Runs Jet SQL on the central database.
    void central(const QString &sql);
    /// First field of the first row of a library query, as text ("" for no row or Null).
    QString libraryValue(const QString &sql);
    int libraryCount(const QString &sql);
    /// Every row of a library query, fields as text joined by '|'.
    QStringList libraryRows(const QString &sql) { return rowsIn(libraryPath_, sql); }
    QStringList centralRows(const QString &sql) { return rowsIn(centralPath_, sql); }

    QString path(const QString &fileName) const { return dir_.filePath(fileName); }

    QTemporaryDir dir_;
    QString libraryPath_;
    QString centralPath_;
    std::unique_ptr<MessageScript> messages_;
};

/// Writes a row into a school administration database as the school's own program would (tests only).
void writeSchool(const QString &databasePath, const QString &sql);
void runOn(const QString &databasePath, const QString &sql);

inline void PrintTo(const QString &s, std::ostream *os) { *os << '"' << s.toStdString() << '"'; }


/// The first sheet of a workbook as rows of cells joined by '|' (numbers marked with #), read with unzip and the sheet's XML.
QStringList workbookRows(const QString &file);

/// The text of a PDF file (pdftotext, layout kept), for tests that print.
QString pdfText(const QString &pdfPath);
