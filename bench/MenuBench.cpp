#include "MenuBench.h"

#include "BenchTimer.h"
#include "ConnectionPool.h"
#include "DatabaseLocations.h"
#include "GuiStall.h"
#include "MessageScript.h"
#include "ScreenRegistry.h"
#include "SettingsStore.h"
#include "frmMainMenu.h"

#include <QDir>

#include <cstdio>
#include <initializer_list>

void benchMenuWork(const QString &workFolder)
{
    std::printf("Main menu: backing up and compacting the library\n");
    const QDir work(workFolder);
    work.mkpath(QStringLiteral("backups"));
    SettingsStore settings(work.filePath(QStringLiteral("menu.ini")));
    settings.setValue(QLatin1String(SettingsStore::LibraryDatabaseKey), LibraryDatabasePath);
    settings.setValue(QLatin1String(SettingsStore::CentralDatabaseKey), CentralDatabasePath);
    settings.setValue(QLatin1String(SettingsStore::BackupFolderKey), work.filePath(QStringLiteral("backups")));
    SetApplicationFolder(workFolder);
    MessageScript answers;
    const ScreenRegistry screens;
    {
        frmMainMenu menu(settings, screens);
        menu.Form_Load();
        menu.show();
        const auto press = [&](const char *button, const char *action, std::initializer_list<int> replies) {
            Presses presses;
            presses.press(menu, button, 3, [&] {
                answers.clear();
                for (const int reply : replies)
                    answers.queueAnswer(reply);
            });
            std::printf("  %s, then: %s\n", action, answers.shown().empty() ? "no message" : qPrintable(answers.shown().back().prompt));
            presses.report(action, action);
        };
        press("cmdBackup", "Back Up Now", {});
        // The compacted copy is declined, so every run compacts the same file.
        press("cmdCompact", "Compact Library Database", {MessageScript::Yes, MessageScript::No});
    }
    ConnectionPool::shared().clear();
    SetApplicationFolder(QString());
}
