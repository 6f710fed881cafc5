#include "frmAbout.h"

#include "SettingsStore.h"
#include "AppError.h"
#include "Engine.h"
#include "DatabaseLocations.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QStorageInfo>
#include <QSysInfo>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace {

QString databaseLine(const QString &role, const QString &path)
{
    if (path.isEmpty())
        return role + QStringLiteral(": (not set)");
    try {
        const Engine &engine = EngineRegistry::installed().forLocation(path);
        if (!engine.isFile())
            return role + QStringLiteral(": ") + engine.describe(path);
    } catch (const AppError &e) {
        return role + QStringLiteral(": ") + e.description();
    }
    const QFileInfo info(path);
    if (!info.exists())
        return role + QStringLiteral(": ") + path + QStringLiteral(" (missing)");
    const QStorageInfo storage(info.absolutePath());
    return role + QStringLiteral(": ") + info.absoluteFilePath()
           + QStringLiteral("\n    %1 KB, modified %2, %3, %4 MB free on its disk")
                 .arg(info.size() / 1024)
                 .arg(info.lastModified().toString(Qt::ISODate))
                 .arg(info.isWritable() ? QStringLiteral("writable") : QStringLiteral("read-only"))
                 .arg(storage.bytesAvailable() / (1024 * 1024));
}

} // namespace

frmAbout::frmAbout(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About Shelvora"));
    auto *layout = new QVBoxLayout(this);
    auto *text = new QLabel(this);
    text->setObjectName(QStringLiteral("lblAbout"));
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    text->setText(QStringLiteral("<h2>Shelvora</h2><p>School library, version %1</p><p>Qt %2 &middot; %3</p>"
                                 "<p>Library database: %4<br>School database: %5</p>")
                      .arg(QStringLiteral(SHELVORA_VERSION), QString::fromLatin1(qVersion()),
                           EngineRegistry::installed().versions().join(QStringLiteral(" &middot; ")),
                           EngineRegistry::installed().describe(LibraryDatabasePath).toHtmlEscaped(),
                           EngineRegistry::installed().describe(CentralDatabasePath).toHtmlEscaped()));
    layout->addWidget(text);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    QPushButton *info = buttons->addButton(QStringLiteral("System Info..."), QDialogButtonBox::ActionRole);
    info->setObjectName(QStringLiteral("cmdSysInfo"));
    connect(info, &QPushButton::clicked, this, [this] { SystemInfoDialog(this).exec(); });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    layout->addWidget(buttons);
}

SystemInfoDialog::SystemInfoDialog(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmSystemInfo"));
    setWindowTitle(QStringLiteral("System Information"));
    resize(640, 420);
    auto *layout = new QVBoxLayout(this);
    auto *view = new QTextBrowser(this);
    view->setPlainText(report());
    layout->addWidget(view);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

QString SystemInfoDialog::report()
{
    QStringList lines;
    lines << QStringLiteral("Shelvora %1").arg(QStringLiteral(SHELVORA_VERSION));
    lines << QStringLiteral("Operating system: %1 (%2 %3)").arg(QSysInfo::prettyProductName(), QSysInfo::kernelType(), QSysInfo::kernelVersion());
    lines << QStringLiteral("Processor: %1; built for %2").arg(QSysInfo::currentCpuArchitecture(), QSysInfo::buildAbi());
    lines << QStringLiteral("Computer name: %1").arg(QSysInfo::machineHostName());
    lines << QStringLiteral("Qt %1, %2").arg(QString::fromLatin1(qVersion()), EngineRegistry::installed().versions().join(QStringLiteral(", ")));
    lines << QStringLiteral("Program folder: %1").arg(ApplicationFolder());
    lines << databaseLine(QStringLiteral("Library database"), LibraryDatabasePath);
    lines << databaseLine(QStringLiteral("School database"), CentralDatabasePath);
    lines << QStringLiteral("School: %1").arg(SchoolName.isEmpty() ? QStringLiteral("(unknown)") : SchoolName);
    return lines.join(QLatin1Char('\n'));
}
