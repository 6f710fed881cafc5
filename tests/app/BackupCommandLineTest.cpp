// The program's --backup and --restore, as a school's IT person runs them from a script: one line
// on success, a non-zero exit with a one-line reason on failure, and a backup killed half way
// leaves nothing under a backup's name.
#include "LibraryBackup.h"
#include "GeneratedSchoolSuite.h"
#include "TestDatabases.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <csignal>

namespace {

class BackupCommandLine : public GeneratedSchoolSuite {
protected:
    void SetUp() override { QDir().mkpath(folder_); }

    struct Run {
        int exitCode = -1;
        QString out, err;
    };
    Run shelvora(const QStringList &arguments)
    {
        QProcess p;
        p.start(SHELVORA_PROGRAM, QStringList{"--settings", dir_.filePath("none.ini"), "--library", library()} + arguments);
        p.waitForFinished(120000);
        return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()).trimmed(), QString::fromUtf8(p.readAllStandardError()).trimmed()};
    }
    QStringList backupNames() { return QDir(folder_).entryList({"shelvora-library-*"}, QDir::Files | QDir::Hidden); }

    QTemporaryDir dir_;
    QString folder_ = dir_.filePath("backups");
};

} // namespace

TEST_F(BackupCommandLine, BackUpAndRestoreSayWhatTheyDidInOneLine)
{
    const Run backup = shelvora({"--backup", folder_});
    EXPECT_EQ(backup.exitCode, 0) << backup.err.toStdString();
    ASSERT_EQ(backupNames().size(), 1);
    const QString file = QDir(folder_).filePath(backupNames().first());
    EXPECT_EQ(backup.out, "Backed up " + library() + " to " + file + ": 20000 items, "
                              + QString::number(LibraryBackup::check(file).openLoans) + " open loans, "
                              + QString::number(LibraryBackup::check(file).membersWithFines) + " members with fines.");

    const Run missing = shelvora({"--backup", dir_.filePath("no-such-folder")});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.err.endsWith("Backup failed: The backup folder " + dir_.filePath("no-such-folder")
                                     + " is not there (is the disk or the USB stick attached?).")) << missing.err.toStdString();

    QFile::copy(file, dir_.filePath("cut.db"));
    QFile(dir_.filePath("cut.db")).resize(QFileInfo(file).size() / 3);
    const Run refused = shelvora({"--restore", dir_.filePath("cut.db")});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.contains("Restore failed: cut.db is damaged or is not a library backup")) << refused.err.toStdString();
    EXPECT_EQ(refused.err.count('\n'), refused.err.count("QStandardPaths")) << "more than one line: " << refused.err.toStdString();
}

// kill -9 while a backup is written: no file carries a backup's name unless it is whole, and the
// next backup goes through.
TEST_F(BackupCommandLine, AKilledBackupLeavesNoBackupBehind)
{
    int killedHalfWay = 0;
    for (int attempt = 0; attempt < 10 && killedHalfWay < 2; ++attempt) {
        QProcess p;
        p.start(SHELVORA_PROGRAM, {"--settings", dir_.filePath("none.ini"), "--library", library(), "--backup", folder_});
        ASSERT_TRUE(p.waitForStarted());
        // The moment its work file appears, the power goes.
        while (p.state() == QProcess::Running && QDir(folder_).entryList({"*.partial*"}, QDir::Files | QDir::Hidden).isEmpty())
            QThread::usleep(200);
        ::kill(pid_t(p.processId()), SIGKILL);
        p.waitForFinished();
        const bool cutOff = p.exitStatus() == QProcess::CrashExit;
        for (const QString &name : backupNames()) {
            EXPECT_NO_THROW(LibraryBackup::check(QDir(folder_).filePath(name))) << name.toStdString() << " is not whole";
            QFile::remove(QDir(folder_).filePath(name));
        }
        if (cutOff && backupNames().isEmpty())
            ++killedHalfWay;
    }
    EXPECT_GE(killedHalfWay, 1) << "the backup was never caught half way";
    const Run next = shelvora({"--backup", folder_});
    EXPECT_EQ(next.exitCode, 0) << next.err.toStdString();
    ASSERT_EQ(backupNames().size(), 1);
    EXPECT_NO_THROW(LibraryBackup::check(QDir(folder_).filePath(backupNames().first())));
}
