#include "MessageScript.h"
#include "ScreenRegistry.h"
#include "SettingsStore.h"
#include "DatabaseLocations.h"
#include "frmAbout.h"

#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

TEST(SettingsStore, KeysLiveInTheStartupSectionOfTheGivenFile)
{
    QTemporaryDir dir;
    const QString file = dir.filePath("settings.ini");
    {
        SettingsStore store(file);
        EXPECT_EQ(store.value("LibraryDatabase"), "");
        store.setValue("LibraryDatabase", "/srv/library.db");
        EXPECT_EQ(store.location(), file);
    }
    QFile ini(file);
    ASSERT_TRUE(ini.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(ini.readAll());
    EXPECT_TRUE(text.contains("[Startup]"));
    EXPECT_TRUE(text.contains("LibraryDatabase=/srv/library.db"));

    // An override lasts for this run only, and a saved value replaces it.
    SettingsStore store(file);
    store.overrideForThisRun("LibraryDatabase", "/tmp/other.db");
    EXPECT_EQ(store.value("LibraryDatabase"), "/tmp/other.db");
    EXPECT_EQ(SettingsStore(file).value("LibraryDatabase"), "/srv/library.db");
    store.setValue("LibraryDatabase", "/srv/new.db");
    EXPECT_EQ(store.value("LibraryDatabase"), "/srv/new.db");
}

TEST(SettingsStore, TheApplicationFolderCanBeSetAndCleared)
{
    QTemporaryDir dir;
    SetApplicationFolder(dir.path());
    EXPECT_EQ(ApplicationFolder(), dir.path());
    SetApplicationFolder(QString());
    EXPECT_FALSE(ApplicationFolder().isEmpty());
    EXPECT_NE(ApplicationFolder(), dir.path());
}

TEST(AboutBox, NamesTheVersionsAndBothDatabases)
{
    LibraryDatabasePath = "/srv/school/library.db";
    CentralDatabasePath = "/srv/school/central.db";
    frmAbout about;
    const QString text = about.findChild<QLabel *>("lblAbout")->text();
    EXPECT_TRUE(text.contains("Qt " + QString::fromLatin1(qVersion())));
    EXPECT_TRUE(text.contains("SQLite 3."));
    EXPECT_TRUE(text.contains("/srv/school/library.db"));
    EXPECT_TRUE(text.contains("/srv/school/central.db"));
    const QString report = SystemInfoDialog::report();
    EXPECT_TRUE(report.contains("Library database: /srv/school/library.db (missing)")) << "a file that is not there";
    EXPECT_TRUE(report.contains("Operating system: "));
    LibraryDatabasePath.clear();
    CentralDatabasePath.clear();
}

TEST(ScreenRegistry, OpensRegisteredScreensModal)
{
    MessageScript script;
    ScreenRegistry screens;
    bool opened = false;
    screens.add("frmSeries", [&](QWidget *parent) {
        auto *dialog = new QDialog(parent);
        QTimer::singleShot(0, dialog, [&opened, dialog] {
            opened = dialog->isModal() && dialog->isVisible();
            dialog->accept();
        });
        return dialog;
    });
    screens.open("frmSeries", "Maintain Series", nullptr);
    EXPECT_TRUE(opened);
    EXPECT_TRUE(script.shown().empty());
    screens.open("frmAuthor", "Maintain Authors", nullptr);
    EXPECT_EQ(script.prompts(), QStringList{"\"Maintain Authors\" is not part of this version of Shelvora yet."});
}
