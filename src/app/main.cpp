#include "AppError.h"
#include "ConnectionPool.h"
#include "SchoolGenerator.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QLabel>
#include <QSettings>
#include <QVBoxLayout>
#include <QWidget>

#include <cstdio>

namespace {

// Writes the demo school into folder: both databases, the learner photos and a settings file naming them.
int makeDemo(const QString &folder)
{
    QDir dir(folder);
    if (!dir.mkpath(QStringLiteral(".")))
        return std::fprintf(stderr, "Cannot create %s\n", qPrintable(folder)), 1;
    const QString library = dir.absoluteFilePath(QStringLiteral("library.db"));
    const QString central = dir.absoluteFilePath(QStringLiteral("central.db"));
    if (QFile::exists(library) || QFile::exists(central))
        return std::fprintf(stderr, "%s already holds a school; remove it first.\n", qPrintable(folder)), 1;
    try {
        SchoolGenerator(SchoolSize::demo()).write(library, central, dir.absoluteFilePath(QStringLiteral("LearnerPhotos")));
    } catch (const AppError &e) {
        return std::fprintf(stderr, "Demo school not written: %s\n", qPrintable(e.description())), 1;
    }
    QSettings settings(dir.absoluteFilePath(QStringLiteral("shelvora.ini")), QSettings::IniFormat);
    settings.beginGroup(QStringLiteral("Startup"));
    settings.setValue(QStringLiteral("LibraryDatabase"), library);
    settings.setValue(QStringLiteral("Database"), central);
    settings.endGroup();
    std::printf("Demo school written to %s\n", qPrintable(dir.absolutePath()));
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Shelvora"));
    QApplication::setApplicationVersion(QStringLiteral(SHELVORA_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Shelvora school library"));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption settingsFile(QStringLiteral("settings"), QStringLiteral("Use this settings file instead of the user's settings."), QStringLiteral("file"));
    const QCommandLineOption makeDemoOption(QStringLiteral("make-demo"), QStringLiteral("Write the demo school into a folder and exit."), QStringLiteral("folder"));
    const QCommandLineOption appFolder(QStringLiteral("app-folder"), QStringLiteral("Folder for LearnerPhotos and work files."), QStringLiteral("folder"));
    parser.addOption(settingsFile);
    parser.addOption(makeDemoOption);
    parser.addOption(appFolder);
    parser.process(app);

    if (parser.isSet(makeDemoOption))
        return makeDemo(parser.value(makeDemoOption));

    // Until the main menu arrives, a window that shows which databases would be used.
    QSettings settings = parser.isSet(settingsFile) ? QSettings(parser.value(settingsFile), QSettings::IniFormat)
                                                    : QSettings(QStringLiteral("Quorvane"), QStringLiteral("Quorvane"));
    settings.beginGroup(QStringLiteral("Startup"));
    QWidget window;
    window.setWindowTitle(QStringLiteral("Shelvora"));
    auto *layout = new QVBoxLayout(&window);
    layout->addWidget(new QLabel(QStringLiteral("<h2>Shelvora</h2><p>The main menu is not built yet.</p>"
                                                "<p>Library database: %1<br>School database: %2</p>")
                                     .arg(settings.value(QStringLiteral("LibraryDatabase")).toString().toHtmlEscaped(),
                                          settings.value(QStringLiteral("Database")).toString().toHtmlEscaped())));
    window.show();
    const int rc = app.exec();
    ConnectionPool::shared().clear();
    return rc;
}
