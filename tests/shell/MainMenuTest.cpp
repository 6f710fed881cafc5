#include "AppError.h"
#include "ConnectionPool.h"
#include "DatabaseFile.h"
#include "Engine.h"
#include "DatabaseSchema.h"
#include "DbConnection.h"
#include "Recordset.h"
#include "ScreenRegistry.h"
#include "SettingsStore.h"
#include "TestDatabases.h"
#include "TestEngine.h"
#include "DatabaseLocations.h"
#include "clsDataObject.h"
#include "frmAbout.h"
#include "frmBackups.h"
#include "Clock.h"
#include "LibraryBackup.h"
#include "ScreenDriver.h"
#include "frmDatabases.h"
#include "frmMainMenu.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QUrl>
#include <QApplication>
#include <QTimer>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>

// The main menu driven through its real widgets, on databases and a settings file made by the test.
class MainMenuTest : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        central("Insert into general_info(schoolname) values ('Hillview High')");
        settingsFile_ = path("shelvora.ini");
        SetApplicationFolder(path("app"));
    }
    void TearDown() override
    {
        SetApplicationFolder(QString());
        DatabaseTest::TearDown();
    }

    std::unique_ptr<frmMainMenu> start(bool withPaths = true)
    {
        if (withPaths) {
            SettingsStore(settingsFile_).setValue("LibraryDatabase", libraryPath_);
            SettingsStore(settingsFile_).setValue("Database", centralPath_);
        }
        // Backups go into the test's own folder.
        QDir().mkpath(path("backups"));
        SettingsStore(settingsFile_).setValue(SettingsStore::BackupFolderKey, path("backups"));
        settings_ = std::make_unique<SettingsStore>(settingsFile_);
        auto menu = std::make_unique<frmMainMenu>(*settings_, screens_);
        menu->Form_Load();
        return menu;
    }
    template <typename T> T *child(frmMainMenu &menu, const char *name) { return menu.findChild<T *>(QLatin1String(name)); }
    bool menuEnabled(frmMainMenu &menu)
    {
        bool all = true;
        for (const char *frame : {"Frame2", "Frame3", "Frame5", "Frame6", "Frame7"})
            all = all && child<QGroupBox>(menu, frame)->isEnabled();
        return all;
    }
    void upgradesOnce(const QString &old);
    /// The structure of a database as text: its definitions (a file) or its columns and types (a server).
    QString schema(const QString &location)
    {
        DbConnection c;
        c.DataSource = location;
        c.Open();
        auto rs = c.Execute(location.startsWith("postgresql://")
                                ? "select table_name & '.' & column_name & ' ' & data_type from information_schema.columns "
                                  "where table_schema = 'public' order by table_name, column_name"
                                : "select sql from sqlite_master where sql is not null order by name");
        QStringList out;
        for (; !rs->atEnd(); rs->MoveNext())
            out << rs->field(0).toString();
        return out.join('\n');
    }
    /// Writes and deletes rows so the file has room to shrink; returns the menu started on it, the log folded in.
    std::unique_ptr<frmMainMenu> startWithSlack(const QString &keepCondition)
    {
        for (int i = 0; i < 300; ++i)
            library(QString("Insert into tblLibAuthors(AuthorSurname, AuthorFirstName) values ('Surname %1', '%2')").arg(i).arg(QString(80, 'x')));
        library("Delete * from tblLibAuthors where " + keepCondition);
        auto menu = start();
        ConnectionPool::shared().clear();
        DatabaseFile::settle(libraryPath_);
        return menu;
    }
    static QByteArray fileHash(const QString &file)
    {
        QFile f(file);
        f.open(QIODevice::ReadOnly);
        return QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256);
    }

    QString settingsFile_;
    std::unique_ptr<SettingsStore> settings_;
    ScreenRegistry screens_;
};

TEST_F(MainMenuTest, OpensWithEveryControlOnAWorkingLibrary)
{
    auto menu = start();
    EXPECT_TRUE(menuEnabled(*menu));
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join(" | ").toStdString();
    EXPECT_EQ(SchoolName, "Hillview High");
    EXPECT_EQ(child<QLineEdit>(*menu, "txtDatabase")->text(), libraryPath_);
    const std::pair<const char *, const char *> captions[] = {
        {"cmdlearners", "Library User Records"}, {"cmdFines", "Fine Transactions"}, {"cmdReserve", "Reservations"},
        {"cmdQuickFind", "Item Quick Find"}, {"cmdViewReservation", "View Reservations"}, {"cmdissues", "Issues and Returns"},
        {"cmdSettings", "General Settings"}, {"cmdLabels", "Labels"}, {"Command2", "Reports"},
        {"cmdKeywordList", "Maintain Search Keywords"}, {"cmdLanguage", "Maintain Languages"}, {"cmdItems", "Maintain Catalogue Items"},
        {"cmdSubjectcodes", "Maintain Subject Classification"}, {"cmdCategories", "Maintain Item Categories"},
        {"cmdSeries", "Maintain Series"}, {"cmdPublisher", "Maintain Publishers"}, {"cmdAuthors", "Maintain Authors"},
        {"cmdCompact", "Compact Library Database"}, {"cmdBrowse", "Browse for Library Database"}, {"cmdAbout", "About Form"},
        {"cmdDone", "Done"}};
    for (const auto &[name, caption] : captions) {
        QPushButton *button = child<QPushButton>(*menu, name);
        ASSERT_TRUE(button) << name;
        EXPECT_EQ(button->text(), caption);
    }
    EXPECT_EQ(child<QRadioButton>(*menu, "optLong")->text(), "Holiday period");
    EXPECT_TRUE(child<QRadioButton>(*menu, "optNormal")->isChecked());
    EXPECT_EQ(child<QGroupBox>(*menu, "Frame7")->title(), "Issue System");

    // A screen that is not built yet says so rather than pretending.
    child<QPushButton>(*menu, "cmdAuthors")->click();
    ASSERT_EQ(messages_->prompts().size(), 1);
    EXPECT_EQ(messages_->prompts()[0], "\"Maintain Authors\" is not part of this version of Shelvora yet.");
}

TEST_F(MainMenuTest, AFirstStartOffersOnlyBrowsing)
{
    auto menu = start(false);
    EXPECT_FALSE(menuEnabled(*menu));
    EXPECT_TRUE(child<QPushButton>(*menu, "cmdBrowse")->isEnabled());
    EXPECT_TRUE(LibraryDatabasePath.isEmpty());
    EXPECT_TRUE(CentralDatabasePath.isEmpty());
    EXPECT_TRUE(SchoolName.isEmpty());
    const QStringList prompts = messages_->prompts();
    ASSERT_GE(prompts.size(), 2);
    EXPECT_TRUE(prompts.contains("Database connection failed"));
    EXPECT_EQ(prompts.last(), "Please browse for your Library Database.");
    EXPECT_EQ(messages_->shown().front().title.left(8), "Error : "); // the school database could not be opened

    // Browsing to the library enables everything and remembers the path.
    messages_->clear();
    messages_->queueFileName(libraryPath_);
    child<QPushButton>(*menu, "cmdBrowse")->click();
    EXPECT_TRUE(menuEnabled(*menu));
    EXPECT_EQ(SettingsStore(settingsFile_).value("LibraryDatabase"), libraryPath_);
    EXPECT_EQ(child<QLineEdit>(*menu, "txtDatabase")->text(), libraryPath_);
}

TEST_F(MainMenuTest, BrowsingToANonLibraryFileIsRefusedButThePathIsKept)
{
    auto menu = start();
    messages_->queueFileName(centralPath_); // a database, but not a library
    child<QPushButton>(*menu, "cmdBrowse")->click();
    EXPECT_EQ(messages_->prompts().last(), "The database you have selected is not an Veltrix Library database.");
    EXPECT_EQ(LibraryDatabasePath, centralPath_);
    EXPECT_EQ(SettingsStore(settingsFile_).value("LibraryDatabase"), libraryPath_);
    EXPECT_EQ(child<QLineEdit>(*menu, "txtDatabase")->text(), libraryPath_);

    // Cancelling the dialog changes nothing.
    messages_->clear();
    messages_->queueFileName(QString());
    child<QPushButton>(*menu, "cmdBrowse")->click();
    EXPECT_TRUE(messages_->shown().empty());
    EXPECT_EQ(LibraryDatabasePath, centralPath_);
}

// The school's database, as its own program leaves it (rollback journal), is never changed by
// being looked at: not by browsing to it, not by a library path that names it.
TEST_F(MainMenuTest, TheSchoolDatabaseIsNeverWrittenWhicheverWayItIsOpened)
{
    DatabaseFile::useRollbackJournal(centralPath_);
    ConnectionPool::shared().clear();
    auto fingerprint = [&] {
        QFile f(centralPath_);
        EXPECT_TRUE(f.open(QIODevice::ReadOnly));
        return QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256);
    };
    const QByteArray before = fingerprint();
    auto menu = start();
    messages_->queueFileName(centralPath_);
    child<QPushButton>(*menu, "cmdBrowse")->click();
    EXPECT_EQ(messages_->prompts().last(), "The database you have selected is not an Veltrix Library database.");

    // A start with the library path naming the school's database refuses it as Browse does and
    // offers only browsing.
    messages_->clear();
    SettingsStore(settingsFile_).setValue("LibraryDatabase", centralPath_);
    settings_ = std::make_unique<SettingsStore>(settingsFile_);
    frmMainMenu second(*settings_, screens_);
    second.Form_Load();
    EXPECT_EQ(messages_->prompts(), (QStringList{"The database you have selected is not an Veltrix Library database.",
                                                 "Please browse for your Library Database."}));
    EXPECT_FALSE(child<QGroupBox>(second, "Frame7")->isEnabled());
    EXPECT_TRUE(child<QPushButton>(second, "cmdBrowse")->isEnabled());

    // Opened for writing by any object, the school's file still refuses every write.
    DbConnection writer;
    writer.DataSource = centralPath_;
    writer.Open();
    EXPECT_THROW(writer.Execute("Insert into general_info(schoolname) values ('Changed')"), AppError);
    writer.Close();
    clsDataObject data;
    LibraryDatabasePath = centralPath_;
    EXPECT_THROW(data.ExecuteNonQuery("Delete * from general_info"), AppError);
    EXPECT_EQ(rowsIn(centralPath_, "select schoolname from general_info"), QStringList{"Hillview High"});
    menu.reset();
    ConnectionPool::shared().clear();

    EXPECT_EQ(fingerprint(), before);
    EXPECT_FALSE(QFile::exists(centralPath_ + "-wal"));
    EXPECT_FALSE(QFile::exists(centralPath_ + "-shm"));
    EXPECT_TRUE(rowsIn(centralPath_, "select name from sqlite_master where name = 'tblLibKeywords'").isEmpty());
}

// An older release's library, as a file or on a server: upgraded at start-up, rows kept, and a second
// start changes nothing more.
void MainMenuTest::upgradesOnce(const QString &old)
{
    DatabaseSchema::createDatabase(old, DatabaseSchema::olderReleaseLibraryStatements());
    runOn(old, "Insert into tblLibSubjectCodes (SubjectDescription, ClassificationNo) Values ('Sport', 796.5)");
    runOn(old, "Insert into tblLibItems (AccessionID, Title, ShelfNumber, ClassificationNo) Values ('A1', 'Rugby', '796 RUG', 796.5)");
    runOn(old, "Insert into tblLibItemLanguages (ItemLanguage) Values ('English')");
    EXPECT_THROW(runOn(old, "select Author3 from tblLibItems"), AppError);
    SettingsStore(settingsFile_).setValue("LibraryDatabase", old);
    SettingsStore(settingsFile_).setValue("Database", centralPath_);

    auto menu = start(false);
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join(" | ").toStdString();
    EXPECT_TRUE(menuEnabled(*menu));
    for (const char *probe : {"select PhasedOut from tblLibItemLanguages where PhasedOut = false", "select PhasedOut from tblLibSubjectCodes",
                              "select KeyID, KeywordEng, KeywordAfr from tblLibKeywords", "select KeyID, ItemID from tblLibItemKeywords",
                              "select Author3, Edition from tblLibItems"})
        EXPECT_NO_THROW(runOn(old, probe)) << probe;
    runOn(old, "Insert into tblLibSubjectCodes (SubjectDescription, ClassificationNo) Values ('Poetry', '821.A')");
    DbConnection c;
    c.DataSource = old;
    c.Open();
    auto rs = c.Execute("select ClassificationNo from tblLibSubjectCodes order by Id");
    EXPECT_EQ(rs->field(0).toString(), "796.5");
    EXPECT_EQ(c.Execute("select ClassificationNo from tblLibItems")->field(0).toString(), "796.5");
    EXPECT_EQ(c.Execute("select * from tblLibItemLanguages where PhasedOut = false")->RecordCount(), 1);
    EXPECT_EQ(c.Execute("select * from tblLibSubjectCodes where ClassificationNo = 'abcRollback'")->RecordCount(), 0);
    c.Close();

    const QString upgraded = schema(old);
    auto again = start(false);
    EXPECT_EQ(schema(old), upgraded);
    EXPECT_TRUE(messages_->shown().empty());
}

TEST_F(MainMenuTest, AnOlderReleaseDatabaseIsUpgradedOnceAndKeepsItsRows) { upgradesOnce(path("old.db")); }

TEST_F(MainMenuTest, AnOlderReleaseDatabaseOnAServerIsUpgradedOnceAndKeepsItsRows)
{
    if (TestEngine::serverAddress().isEmpty()) {
        std::fprintf(stderr, "skipped: no PostgreSQL\n");
        GTEST_SKIP() << "skipped: no PostgreSQL";
    }
    const QString old = TestEngine::makeEmptyServerDatabase();
    upgradesOnce(old);
    ConnectionPool::shared().clear();
    TestEngine::dropLibrary(old);
}

TEST_F(MainMenuTest, TheWriteProbeLeavesNoRowOnACurrentDatabase)
{
    auto menu = start();
    EXPECT_EQ(libraryCount("select * from tblLibSubjectCodes"), 0);
}

TEST_F(MainMenuTest, CompactionDeclinedLeavesTheFileByteForByte)
{
    auto menu = startWithSlack("AuthorID > 0");
    const QByteArray before = fileHash(libraryPath_);

    messages_->queueAnswer(MessageScript::Yes); // backed up: continue
    messages_->queueAnswer(MessageScript::No);  // do not use the copy
    child<QPushButton>(*menu, "cmdCompact")->click();
    const QStringList prompts = messages_->prompts();
    ASSERT_EQ(prompts.size(), 3) << prompts.join(" | ").toStdString();
    EXPECT_EQ(prompts[0], "Please make sure that you have backed up your database before performing this action. Are you sure you want to continue?");
    EXPECT_TRUE(QRegularExpression("^Your database has been compacted from  \\d+kb to  \\d+kb\r\nDo you want to use the compacted database\\?$")
                    .match(prompts[1]).hasMatch())
        << prompts[1].toStdString();
    EXPECT_EQ(prompts[2], "Your old database has been restored");
    EXPECT_EQ(fileHash(libraryPath_), before);
    EXPECT_FALSE(QDir(path("app/library/compact")).exists());
}

TEST_F(MainMenuTest, CompactionAcceptedReplacesTheFile)
{
    auto menu = startWithSlack("AuthorID > 1");
    const qint64 before = QFileInfo(libraryPath_).size();

    messages_->queueAnswer(MessageScript::Yes);
    messages_->queueAnswer(MessageScript::Yes);
    child<QPushButton>(*menu, "cmdCompact")->click();
    EXPECT_EQ(messages_->prompts().last(), "Your database has been compacted");
    EXPECT_LT(QFileInfo(libraryPath_).size(), before);
    EXPECT_EQ(libraryRows("select AuthorSurname from tblLibAuthors"), QStringList{"Surname 0"});
    EXPECT_FALSE(QDir(path("app/library/compact")).exists());
    EXPECT_FALSE(QFile::exists(libraryPath_ + ".incoming"));

    // Declining at the first question does nothing at all.
    messages_->clear();
    messages_->queueAnswer(MessageScript::No);
    child<QPushButton>(*menu, "cmdCompact")->click();
    EXPECT_EQ(messages_->prompts().size(), 1);
}

TEST(CompactionSizes, KilobytesRoundHalvesToEven)
{
    EXPECT_EQ(Engine::Compaction::kilobytes(1536), 2);
    EXPECT_EQ(Engine::Compaction::kilobytes(2560), 2);
    EXPECT_EQ(Engine::Compaction::kilobytes(3584), 4);
    EXPECT_EQ(Engine::Compaction::kilobytes(1535), 1);
}

TEST_F(MainMenuTest, TheIssueDeskNeedsLoanSettingsAndGetsThePeriod)
{
    QList<bool> holiday; // what the desk is told each time it is opened
    screens_.addWithOptions("frmIssueSystem", [&](QWidget *, const ScreenOptions &options) -> QDialog * {
        holiday << options.holidayPeriod;
        return nullptr;
    });
    auto menu = start();
    child<QPushButton>(*menu, "cmdissues")->click();
    EXPECT_EQ(messages_->prompts(), QStringList{"Please enter library settings to continue."});

    library("Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUserRes)"
            "VALUES('N','L',14,0.5,7,2,7,2,1,2)");
    messages_->clear();
    child<QRadioButton>(*menu, "optLong")->setChecked(true);
    child<QPushButton>(*menu, "cmdissues")->click();
    EXPECT_EQ(messages_->prompts(), QStringList{"\"Issues and Returns\" is not part of this version of Shelvora yet."});
    child<QRadioButton>(*menu, "optNormal")->setChecked(true);
    child<QPushButton>(*menu, "cmdissues")->click();
    EXPECT_EQ(holiday, (QList<bool>{true, false}));
}

TEST_F(MainMenuTest, PathsGivenForOneRunAreNotSaved)
{
    SettingsStore store(settingsFile_);
    store.overrideForThisRun("LibraryDatabase", libraryPath_);
    store.overrideForThisRun("Database", centralPath_);
    frmMainMenu menu(store, screens_);
    menu.Form_Load();
    EXPECT_TRUE(menuEnabled(menu));
    EXPECT_EQ(SchoolName, "Hillview High");
    EXPECT_TRUE(SettingsStore(settingsFile_).value("LibraryDatabase").isEmpty());
}

// A library on a PostgreSQL server: the address is taken (never with a password in it), compaction
// becomes the server's VACUUM with a message saying so, and the About box names the server.
TEST_F(MainMenuTest, ALibraryOnAServerIsChosenByItsAddress)
{
    if (TestEngine::serverAddress().isEmpty()) {
        std::fprintf(stderr, "skipped: no PostgreSQL\n");
        GTEST_SKIP() << "skipped: no PostgreSQL";
    }
    const QString server = TestEngine::makeServerLibrary();
    screens_.add("frmDatabases", [this](QWidget *parent) { return new frmDatabases(*settings_, [] { return QString(); }, parent); });
    auto menu = start();
    // "Databases...": the address typed into the library box, the school as it was.
    auto choose = [&](const QString &address) {
        QObject scope;
        QTimer::singleShot(0, &scope, [&] {
            if (auto *setup = qobject_cast<frmDatabases *>(QApplication::activeModalWidget())) {
                setup->findChild<QLineEdit *>("txtLibrary")->setText(address);
                setup->findChild<QLineEdit *>("txtProgramFolder")->setText(path("app"));
                setup->findChild<QPushButton *>("cmdSave")->click();
                if (setup->isVisible())
                    setup->reject();
            }
        });
        child<QPushButton>(*menu, "cmdDatabases")->click();
    };
    QUrl withPassword(server);
    withPassword.setPassword("secret");
    choose(withPassword.toString());
    EXPECT_TRUE(messages_->prompts().last().startsWith("Library database: Please leave the password out of the address"));
    EXPECT_EQ(LibraryDatabasePath, libraryPath_);

    messages_->clear();
    choose(server);
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join(" | ").toStdString();
    EXPECT_EQ(SettingsStore(settingsFile_).value("LibraryDatabase"), server);
    auto *box = child<QLineEdit>(*menu, "txtDatabase");
    EXPECT_EQ(box->text(), server);
    menu->show();
    EXPECT_GE(box->width(), box->fontMetrics().horizontalAdvance(server)) << "the whole address is seen";
    EXPECT_TRUE(menuEnabled(*menu));

    // A database name the server does not have: why it was not reached, once, never "not a library".
    QUrl wrong(server);
    wrong.setPath("/no_such_library");
    messages_->clear();
    choose(wrong.toString());
    ASSERT_EQ(messages_->shown().size(), 1u) << messages_->prompts().join(" | ").toStdString();
    EXPECT_TRUE(messages_->prompts().first().contains("/no_such_library cannot be reached: the server has no database of that name"))
        << messages_->prompts().first().toStdString();
    EXPECT_EQ(SettingsStore(settingsFile_).value("LibraryDatabase"), server);
    EXPECT_EQ(LibraryDatabasePath, server);

    messages_->queueAnswer(MessageScript::Yes);
    child<QPushButton>(*menu, "cmdCompact")->click();
    EXPECT_EQ(messages_->prompts().last(), "The library database on the server has been compacted (VACUUM ANALYZE): free space is reused "
                                           "and the server's statistics are up to date.");

    frmAbout about;
    const QString text = about.findChild<QLabel *>("lblAbout")->text();
    EXPECT_TRUE(text.contains(QRegularExpression("Library database: PostgreSQL \\d+\\.\\d+ on 127\\.0\\.0\\.1:\\d+/shelvora_lib_\\w+ \\(connected\\)")))
        << text.toStdString();
    // System Info says whether each server answers, and why not; never "(missing)" for an address.
    const QString school = std::exchange(CentralDatabasePath, wrong.toString());
    const QString report = SystemInfoDialog::report();
    CentralDatabasePath = school;
    EXPECT_TRUE(report.contains(QRegularExpression("Library database: PostgreSQL \\d+\\.\\d+ on 127\\.0\\.0\\.1:\\d+/shelvora_lib_\\w+ \\(connected\\)")))
        << report.toStdString();
    EXPECT_TRUE(report.contains(QRegularExpression("School database: PostgreSQL on 127\\.0\\.0\\.1:\\d+/no_such_library \\(not reachable: the server has no database of that name")))
        << report.toStdString();
    EXPECT_FALSE(report.contains("(missing)"));

    ConnectionPool::shared().clear();
    TestEngine::dropLibrary(server);
}

// A library a newer release made: start-up says so once, the menu works, and nothing is written.
// A step that cannot be done is told plainly, without the engine's words.
TEST_F(MainMenuTest, StartUpTellsOfANewerLibraryOrAStepThatFailed)
{
    library("Update tblLibVersion set Version = 999");
    auto menu = start();
    ASSERT_EQ(messages_->prompts().size(), 1);
    EXPECT_TRUE(messages_->prompts().first().contains("made by a newer release of Shelvora. It is opened read-only"));
    EXPECT_TRUE(menuEnabled(*menu));
    clsDataObject data;
    EXPECT_THROW(data.ExecuteNonQuery("Insert into tblLibItems (AccessionID, Title) Values ('N1', 'New')"), AppError);
    menu.reset();
    ConnectionPool::shared().keepReadOnly(libraryPath_, false);
    EXPECT_EQ(libraryCount("select * from tblLibItems"), 0);

    library("Update tblLibVersion set Version = 8");
    library("DROP TABLE tblLibStocktakeScans");
    library("DROP TABLE tblLibStocktakes");
    library("CREATE TABLE tblObstacle (x INT)");
    library("CREATE INDEX ixStocktakeScansItem ON tblObstacle (x)");
    messages_->clear();
    auto second = start();
    ASSERT_EQ(messages_->prompts().size(), 1);
    EXPECT_EQ(messages_->prompts().first(), "The library database could not be brought up to date: adding stocktake did not work. Everything "
                                            "else works as before; Shelvora tries again at the next start.");
    EXPECT_TRUE(menuEnabled(*second));
}

// Start-up with the library on a server that cannot be reached: one message naming it and why, the
// menu waits, the settings stay as they were.
TEST_F(MainMenuTest, StartUpWithAServerThatIsDownSaysSoOnce)
{
    const QString address = "postgresql://shelvora@127.0.0.1:1/library";
    SettingsStore(settingsFile_).setValue("LibraryDatabase", address);
    SettingsStore(settingsFile_).setValue("Database", centralPath_);
    // The setup screen is offered with the reason, and leaving it keeps the settings as they were.
    int setupOpened = 0;
    screens_.add("frmDatabases", [&](QWidget *parent) {
        ++setupOpened;
        auto *setup = new frmDatabases(*settings_, [] { return QString(); }, parent);
        QTimer::singleShot(0, setup, &QDialog::reject);
        return setup;
    });
    messages_->queueAnswer(MessageScript::Yes);
    auto menu = start(false);
    ASSERT_EQ(messages_->shown().size(), 1u) << messages_->prompts().join(" | ").toStdString();
    EXPECT_TRUE(messages_->prompts().first().startsWith("The database server 127.0.0.1:1/library cannot be reached: nothing answers"));
    EXPECT_TRUE(messages_->prompts().first().endsWith("Do you want to choose the databases now (\"Databases...\")?"));
    EXPECT_EQ(setupOpened, 1);
    EXPECT_FALSE(menuEnabled(*menu));
    EXPECT_EQ(SettingsStore(settingsFile_).value("LibraryDatabase"), address);
}

// A server that asks for a password this computer does not have: one message naming the address
// and where the password goes, the settings kept; with the password the same settings work.
TEST_F(MainMenuTest, StartUpWithoutTheServersPasswordSaysWhereItGoes)
{
    if (TestEngine::serverAddress().isEmpty()) {
        std::fprintf(stderr, "skipped: no PostgreSQL\n");
        GTEST_SKIP() << "skipped: no PostgreSQL";
    }
    const QString server = TestEngine::makeServerLibraryOwnedBy("shelvora_password", "desk-secret");
    SettingsStore(settingsFile_).setValue("LibraryDatabase", server);
    SettingsStore(settingsFile_).setValue("Database", centralPath_);
    qputenv("PGPASSFILE", path("no-pgpass").toUtf8());
    qunsetenv("PGPASSWORD");
    {
        auto menu = start(false);
        ASSERT_EQ(messages_->shown().size(), 1u) << messages_->prompts().join(" | ").toStdString();
        const QString said = messages_->prompts().first();
        EXPECT_TRUE(said.contains(QUrl(server).host() + ":" + QString::number(QUrl(server).port()) + QUrl(server).path()
                                  + " cannot be reached: it asks for a password, which this computer does not have "
                                    "(put it in ~/.pgpass or PGPASSWORD)"))
            << said.toStdString();
        EXPECT_FALSE(menuEnabled(*menu));
        EXPECT_EQ(SettingsStore(settingsFile_).value("LibraryDatabase"), server);
    }
    messages_->clear();
    qputenv("PGPASSWORD", "desk-secret");
    {
        auto menu = start(false);
        EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join(" | ").toStdString();
        EXPECT_TRUE(menuEnabled(*menu));
    }
    qunsetenv("PGPASSWORD");
    qunsetenv("PGPASSFILE");
    ConnectionPool::shared().clear();
    TestEngine::dropLibrary(server);
}

// The setup screen: each choice checked as start-up checks it, the settings written only when both
// databases work; a new empty library, an existing file, the demo school.
TEST_F(MainMenuTest, TheSetupScreenKeepsOnlyChoicesThatWork)
{
    SettingsStore store(settingsFile_);
    QString demoWrittenTo;
    frmDatabases setup(store, [&] {
        demoWrittenTo = path("demo");
        QDir().mkpath(demoWrittenTo);
        DatabaseSchema::createLibraryDatabase(QDir(demoWrittenTo).filePath("library.db"));
        DatabaseSchema::createCentralDatabase(QDir(demoWrittenTo).filePath("central.db"));
        return demoWrittenTo;
    });
    auto *library = setup.findChild<QLineEdit *>("txtLibrary");
    auto *school = setup.findChild<QLineEdit *>("txtSchool");
    auto *folder = setup.findChild<QLineEdit *>("txtProgramFolder");
    auto click = [&](const char *button) { setup.findChild<QPushButton *>(button)->click(); };
    folder->setText(path("shared"));
    EXPECT_TRUE(setup.findChild<QLabel *>("lblPhotos")->text().contains(path("shared") + "/LearnerPhotos"));

    // The school's database given as the library: refused, nothing kept.
    library->setText(centralPath_);
    school->setText(centralPath_);
    click("cmdSave");
    EXPECT_EQ(messages_->prompts().last(), "Library database: " + centralPath_ + " is the school administration database; choose the library database here.");
    EXPECT_TRUE(store.value("LibraryDatabase").isEmpty());
    // A library whose school database is missing: refused too.
    messages_->queueFileName(libraryPath_);
    click("cmdOpenLibrary");
    EXPECT_EQ(library->text(), libraryPath_);
    school->setText(path("gone.db"));
    click("cmdSave");
    EXPECT_EQ(messages_->prompts().last(), "School administration database: There is no file " + path("gone.db") + ".");
    EXPECT_TRUE(store.value("LibraryDatabase").isEmpty());

    // A new empty library and the school's file: both work, all three kept.
    messages_->queueFileName(path("new-library"));
    click("cmdNewLibrary");
    EXPECT_EQ(library->text(), path("new-library.db"));
    EXPECT_EQ(rowsIn(path("new-library.db"), "select count(*) from tblLibItems"), QStringList{"0"});
    messages_->queueFileName(centralPath_);
    click("cmdOpenSchool");
    messages_->clear();
    click("cmdSave");
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join(" | ").toStdString();
    EXPECT_EQ(setup.result(), QDialog::Accepted);
    EXPECT_EQ(store.value("LibraryDatabase"), path("new-library.db"));
    EXPECT_EQ(store.value("Database"), centralPath_);
    EXPECT_EQ(store.value("ProgramFolder"), path("shared"));
    EXPECT_EQ(ApplicationFolder(), path("shared"));

    // The demo school: written and used, its learner photos with it.
    messages_->clear();
    click("cmdDemo");
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join(" | ").toStdString();
    ASSERT_FALSE(demoWrittenTo.isEmpty());
    EXPECT_EQ(store.value("LibraryDatabase"), QDir(demoWrittenTo).filePath("library.db"));
    EXPECT_EQ(store.value("ProgramFolder"), demoWrittenTo);
    SetApplicationFolder(path("app"));
}

// A fresh install: no databases chosen, so start-up begins with the setup screen, and the menu then
// works on what was chosen, with no error box before or after.
TEST_F(MainMenuTest, AFreshInstallStartsWithTheSetupScreen)
{
    screens_.add("frmDatabases", [this](QWidget *parent) { return new frmDatabases(*settings_, [] { return QString(); }, parent); });
    bool offered = false;
    QObject scope;
    QTimer::singleShot(0, &scope, [&] {
        if (auto *setup = qobject_cast<frmDatabases *>(QApplication::activeModalWidget())) {
            offered = true;
            setup->findChild<QLineEdit *>("txtLibrary")->setText(libraryPath_);
            setup->findChild<QLineEdit *>("txtSchool")->setText(centralPath_);
            setup->findChild<QLineEdit *>("txtProgramFolder")->setText(path("app"));
            setup->findChild<QPushButton *>("cmdSave")->click();
        }
    });
    auto menu = start(false);
    EXPECT_TRUE(offered);
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join(" | ").toStdString();
    EXPECT_TRUE(menuEnabled(*menu));
    EXPECT_EQ(SettingsStore(settingsFile_).value("LibraryDatabase"), libraryPath_);
}

// The menu backs the library up at start when no backup is a day old, shows when the last one was
// taken, backs up on request and when it closes after changes, and warns when a backup failed.
TEST_F(MainMenuTest, TheMenuBacksTheLibraryUpAndSaysWhen)
{
    Clock::setFixed(QDateTime(QDate(2026, 11, 23), QTime(16, 5)));
    const QString folder = path("backups");
    auto menu = start();
    const auto status = [&] { return child<QLabel>(*menu, "lblBackup"); };
    ASSERT_EQ(LibraryBackup::list(folder).size(), 1) << "no backup at start";
    EXPECT_EQ(status()->text(), "Last backup: 2026-11-23 16:05 (" + QDir::toNativeSeparators(folder) + ")");
    EXPECT_FALSE(status()->property("warning").toBool());
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join(" | ").toStdString();

    // Started again within the day, unchanged: no new backup, and none as it closes.
    Clock::setFixed(QDateTime(QDate(2026, 11, 23), QTime(17, 0)));
    menu = start();
    menu->close();
    EXPECT_EQ(LibraryBackup::list(folder).size(), 1);

    // "Back Up Now" answers with what was backed up.
    menu = start();
    child<QPushButton>(*menu, "cmdBackup")->click();
    ASSERT_EQ(messages_->prompts().size(), 1);
    EXPECT_EQ(messages_->prompts()[0], "The library is backed up: " + QDir::toNativeSeparators(folder + "/shelvora-library-2026-11-23-1700.db")
                                           + " (0 items, 0 open loans, 0 members with fines).");
    EXPECT_TRUE(status()->text().startsWith("Last backup: 2026-11-23 17:00"));

    // A second folder that is not there: said at once, and the status line warns until a backup works.
    messages_->clear();
    settings_->setValue(SettingsStore::SecondBackupFolderKey, path("usb"));
    Clock::setFixed(QDateTime(QDate(2026, 11, 23), QTime(17, 30)));
    child<QPushButton>(*menu, "cmdBackup")->click();
    ASSERT_EQ(messages_->prompts().size(), 1);
    EXPECT_EQ(messages_->prompts()[0], "The library is backed up, but not into the second folder: The backup folder " + path("usb")
                                           + " is not there (is the disk or the USB stick attached?).");
    EXPECT_TRUE(status()->property("warning").toBool());
    EXPECT_TRUE(status()->text().startsWith("The backup of 2026-11-23 17:30 failed: ")) << status()->text().toStdString();
    settings_->setValue(SettingsStore::SecondBackupFolderKey, QString());

    // A day's work is backed up as the menu closes.
    library("Insert into tblLibItems(AccessionID, Title) values ('A1', 'Issued today')");
    Clock::setFixed(QDateTime(QDate(2026, 11, 23), QTime(18, 0)));
    menu->close();
    // (the day's earlier backups are thinned out: the newest of a day is kept)
    ASSERT_EQ(LibraryBackup::list(folder).size(), 1);
    EXPECT_EQ(LibraryBackup::list(folder).first().taken, QDateTime(QDate(2026, 11, 23), QTime(18, 0)));
    EXPECT_EQ(rowsIn(LibraryBackup::list(folder).first().path, "select Title from tblLibItems"), QStringList{"Issued today"});
    Clock::setFixed(QDateTime());
}

// "Restore from Backup..." lists the backups with what they hold; restoring one puts the library
// back as it was, keeps the library as it was aside, and opens the restored library.
TEST_F(MainMenuTest, RestoreFromTheMenuPutsTheLibraryBack)
{
    Clock::setFixed(QDateTime(QDate(2026, 11, 23), QTime(16, 5)));
    library("Insert into tblLibItems(AccessionID, Title) values ('A1', 'Kept')");
    auto menu = start();
    library("Insert into tblLibItems(AccessionID, Title) values ('A2', 'Added after the backup')");
    Clock::setFixed(QDateTime(QDate(2026, 11, 24), QTime(8, 0)));
    QStringList listed;
    auto watch = ScreenDriver::whenModal<frmBackups>([&](frmBackups *screen) {
        listed = ScreenDriver::rows(*screen, "gridBackups");
        ScreenDriver::click(*screen, "cmdRestore");
    });
    child<QPushButton>(*menu, "cmdRestore")->click();
    EXPECT_EQ(listed, QStringList{"2026-11-23 16:05|1|0|0|shelvora-library-2026-11-23-1605.db"});
    const QStringList prompts = messages_->prompts();
    ASSERT_EQ(prompts.size(), 2) << prompts.join(" | ").toStdString();
    EXPECT_TRUE(prompts[0].startsWith("Put the library back as it was in the backup of 2026-11-23 16:05 (1 items, 0 open loans, 0 members with fines)?"));
    EXPECT_EQ(prompts[1], "The library is back as it was in the backup of 2026-11-23 16:05. The library as it was before the restore is kept in "
                              + QDir::toNativeSeparators(path("backups/before-restore-2026-11-24-0800.db")) + ".");
    EXPECT_EQ(libraryRows("select Title from tblLibItems"), QStringList{"Kept"});
    EXPECT_EQ(rowsIn(path("backups/before-restore-2026-11-24-0800.db"), "select count(*) from tblLibItems"), QStringList{"2"});
    EXPECT_TRUE(menuEnabled(*menu));
    Clock::setFixed(QDateTime());
}
