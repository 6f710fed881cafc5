#include "SettingsStore.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace {
const QString Section = QStringLiteral("Startup");
QString applicationFolderOverride;
} // namespace

SettingsStore::SettingsStore(const QString &file)
{
    if (!file.isEmpty())
        settings_ = std::make_unique<QSettings>(file, QSettings::IniFormat);
    else
#ifdef Q_OS_WIN
        settings_ = std::make_unique<QSettings>(QStringLiteral("HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Quorvane"),
                                                QSettings::NativeFormat);
#else
        settings_ = std::make_unique<QSettings>(QStringLiteral("Quorvane"), QStringLiteral("Quorvane"));
#endif
}

SettingsStore::~SettingsStore() = default;

QString SettingsStore::value(const QString &key) const
{
    if (overrides_.contains(key))
        return overrides_.value(key);
    return settings_->value(Section + QLatin1Char('/') + key, QString()).toString();
}

void SettingsStore::setValue(const QString &key, const QString &value)
{
    overrides_.remove(key);
    settings_->setValue(Section + QLatin1Char('/') + key, value);
    settings_->sync();
}

void SettingsStore::overrideForThisRun(const QString &key, const QString &value) { overrides_.insert(key, value); }

QString SettingsStore::location() const { return settings_->fileName(); }

QString ApplicationFolder()
{
    if (!applicationFolderOverride.isEmpty())
        return applicationFolderOverride;
    const QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(data);
    return data;
}

void SetApplicationFolder(const QString &folder) { applicationFolderOverride = folder.isEmpty() ? QString() : QDir(folder).absolutePath(); }
