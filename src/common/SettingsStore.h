#pragma once

#include <QMap>
#include <QString>

#include <memory>

class QSettings;

/// The per-user settings of application "Quorvane", section "Startup": the
/// paths of the library database ("LibraryDatabase") and of the school
/// database ("Database", written by the school administration program). On
/// Windows this is the registry key GetSetting/SaveSetting use, so both
/// programs find it. A settings file given on the command line replaces the
/// user's store (tests, the demo); values may be overridden for one run
/// without writing anything.
class SettingsStore {
public:
    explicit SettingsStore(const QString &file = QString());
    ~SettingsStore();

    static constexpr const char *LibraryDatabaseKey = "LibraryDatabase";
    static constexpr const char *CentralDatabaseKey = "Database";
    /// The program folder the school chose (learner photos, work files); the per-user data folder when empty.
    static constexpr const char *ProgramFolderKey = "ProgramFolder";
    /// Where backups go (the per-user data folder's "Backups" when empty), and a second folder for a copy.
    static constexpr const char *BackupFolderKey = "BackupFolder";
    static constexpr const char *SecondBackupFolderKey = "SecondBackupFolder";

    /// The value, or an empty text.
    QString value(const QString &key) const;
    /// Writes the value (and ends any override of it).
    void setValue(const QString &key, const QString &value);
    void overrideForThisRun(const QString &key, const QString &value);
    /// Where the values are kept (a file or registry path).
    QString location() const;

private:
    std::unique_ptr<QSettings> settings_;
    QMap<QString, QString> overrides_;
};

/// The program's own folder, for "LearnerPhotos", the compaction work folder and the
/// label merge file: the folder set (the school's choice, or --app-folder), else the per-user
/// data folder; never the executable's folder, which belongs to the installed package.
QString ApplicationFolder();
void SetApplicationFolder(const QString &folder);
