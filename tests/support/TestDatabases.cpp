#include "TestDatabases.h"

#include "Clock.h"
#include "ConnectionPool.h"
#include "DatabaseSchema.h"
#include "DbConnection.h"
#include "Engine.h"
#include "Recordset.h"
#include "TestEngine.h"
#include "DatabaseLocations.h"

#include <QProcess>
#include <QXmlStreamReader>

#include <cstdio>

namespace {
// The fixture's own statements are not part of what a test traces.
struct TracePause {
    QStringList *saved = DbConnection::statementTrace();
    TracePause() { DbConnection::traceStatements(nullptr); }
    ~TracePause() { DbConnection::traceStatements(saved); }
};
} // namespace

void runOn(const QString &databasePath, const QString &sql)
{
    TracePause pause;
    DbConnection c;
    c.DataSource = databasePath;
    c.Open();
    c.Execute(sql);
}

void DatabaseTest::SetUp()
{
    ASSERT_TRUE(dir_.isValid());
    if (TestEngine::onPostgres() && TestEngine::serverAddress().isEmpty()) {
        std::fprintf(stderr, "skipped: no PostgreSQL\n");
        GTEST_SKIP() << "skipped: no PostgreSQL";
    }
    libraryPath_ = TestEngine::makeLibrary(dir_.filePath(QStringLiteral("library.db")));
    centralPath_ = dir_.filePath(QStringLiteral("central.db"));
    DatabaseSchema::createCentralDatabase(centralPath_);
    LibraryDatabasePath = libraryPath_;
    CentralDatabasePath = centralPath_;
    messages_ = std::make_unique<MessageScript>();
}

void DatabaseTest::TearDown()
{
    messages_.reset();
    Clock::setFixed(QDateTime());
    LibraryDatabasePath.clear();
    CentralDatabasePath.clear();
    ConnectionPool::shared().clear();
    TestEngine::dropLibrary(libraryPath_);
}

void DatabaseTest::library(const QString &sql) { runOn(libraryPath_, sql); }

void DatabaseTest::central(const QString &sql) { writeSchool(centralPath_, sql); }

void writeSchool(const QString &databasePath, const QString &sql)
{
    // The school's administration program fills its database; the tests stand in for it, through the
    // engine itself, past the rule that keeps Shelvora from ever writing it.
    TracePause pause;
    const std::unique_ptr<PhysicalConnection> c = EngineRegistry::installed().forLocation(databasePath).open(databasePath, false);
    Recordset rows;
    c->execute(sql, &rows);
}

QString DatabaseTest::libraryValue(const QString &sql)
{
    const QStringList rows = rowsIn(libraryPath_, sql);
    return rows.isEmpty() ? QString() : rows.first().section('|', 0, 0);
}

int DatabaseTest::libraryCount(const QString &sql) { return int(rowsIn(libraryPath_, sql).size()); }

QStringList rowsIn(const QString &databasePath, const QString &sql)
{
    TracePause pause;
    DbConnection c;
    c.DataSource = databasePath;
    c.Open();
    auto rs = c.Execute(sql);
    QStringList out;
    for (; !rs->atEnd(); rs->MoveNext()) {
        QStringList cells;
        for (int f = 0; f < rs->fieldCount(); ++f)
            cells << rs->field(f).toString();
        out << cells.join('|');
    }
    return out;
}

QString pdfText(const QString &pdfPath)
{
    QProcess pdftotext;
    pdftotext.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdfPath, QStringLiteral("-")});
    if (!pdftotext.waitForFinished(30000))
        return QString();
    // Compatibility forms undone: typographic ligatures (ﬀ, ﬁ) read as their letters.
    return QString::fromUtf8(pdftotext.readAllStandardOutput()).normalized(QString::NormalizationForm_KC);
}

// The first sheet of a workbook as rows of cells joined by '|', read with unzip and the sheet's XML.
QStringList workbookRows(const QString &file)
{
    auto part = [&](const char *name) {
        QProcess unzip;
        unzip.start("unzip", {"-p", file, QLatin1String(name)});
        EXPECT_TRUE(unzip.waitForFinished(30000));
        return unzip.readAllStandardOutput();
    };
    QStringList shared;
    QXmlStreamReader strings(part("xl/sharedStrings.xml"));
    while (!strings.atEnd())
        if (strings.readNext() == QXmlStreamReader::StartElement && strings.name() == QLatin1String("t"))
            shared << strings.readElementText();
    QStringList rows;
    QXmlStreamReader sheet(part("xl/worksheets/sheet1.xml"));
    QStringList cells;
    QString type;
    while (!sheet.atEnd()) {
        sheet.readNext();
        if (sheet.isStartElement() && sheet.name() == QLatin1String("row"))
            cells.clear();
        else if (sheet.isStartElement() && sheet.name() == QLatin1String("c")) {
            const int column = sheet.attributes().value("r").toString().at(0).toLatin1() - 'A';
            while (cells.size() < column)
                cells << QString();
            type = sheet.attributes().value("t").toString();
        } else if (sheet.isStartElement() && sheet.name() == QLatin1String("v")) {
            const QString v = sheet.readElementText();
            cells << (type == "s" ? shared.value(v.toInt()) : "#" + v); // numbers marked with #
        } else if (sheet.isEndElement() && sheet.name() == QLatin1String("row"))
            rows << cells.join('|');
    }
    return rows;
}
