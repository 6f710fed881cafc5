#include "MarcBench.h"

#include "BenchTimer.h"
#include "DbConnection.h"
#include "GuiStall.h"
#include "MessageScript.h"
#include "MarcFile.h"
#include "MarcImport.h"
#include "MarcMapping.h"
#include "Recordset.h"
#include "TaskProgress.h"
#include "Z3950Search.h"
#include "ZebraServer.h"
#include "clsDataObject.h"
#include "frmMarcImport.h"

#include <QAbstractButton>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>

namespace {

// A supplier's delivery: n new titles, each with two authors, a publisher and an ISBN.
QList<MarcRecord> delivery(int n, const QString &name = QStringLiteral("Delivered"))
{
    QList<MarcRecord> records;
    for (int i = 0; i < n; ++i) {
        CatalogueRecord t;
        t.title = QStringLiteral("%1 title %2").arg(name).arg(i);
        t.authors = {QStringLiteral("Author%1, Anna").arg(i % 700), QStringLiteral("Writer%1, Ben").arg(i % 300)};
        t.publisher = QStringLiteral("Publisher %1").arg(i % 40);
        t.year = QString::number(2000 + i % 25);
        t.classification = QStringLiteral("823.%1").arg(i % 100);
        records << MarcMapping::toMarc(t);
    }
    return records;
}

} // namespace

void benchMarc()
{
    std::printf("Copy cataloguing\n");
    QByteArray exported;
    Samples exporting;
    exporting.time([&] {
        TaskProgress progress;
        exported = MarcFile::write(MarcImport::exportCatalogue(progress), MarcFile::Format::Iso2709);
    });
    std::printf("  export of the catalogue (%.1f MB of MARC 21)", double(exported.size()) / 1e6);
    exporting.report("");

    const QByteArray file = MarcFile::write(delivery(10000), MarcFile::Format::Iso2709);
    Samples importing;
    int titles = 0;
    importing.time([&] {
        TaskProgress progress;
        titles = MarcImport::take(MarcImport::preview(file), {QStringLiteral("Fiction"), QStringLiteral("N"), 1}, progress).titles;
    });
    std::printf("  import of %d records (preview and one transaction)", titles);
    importing.report("");

    // Deliveries of the same size through the import screen: the file chosen (its preview) and Import.
    QTemporaryDir dir;
    MessageScript answers;
    Samples choosing, taking;
    GuiStall chooseStall, takeStall;
    for (int run = 0; run < 3; ++run) {
        const QString path = dir.filePath(QStringLiteral("delivery%1.mrc").arg(run));
        QFile out(path);
        if (!out.open(QIODevice::WriteOnly) || out.write(MarcFile::write(delivery(10000, QStringLiteral("Screen %1").arg(run)), MarcFile::Format::Iso2709)) < 0)
            return;
        out.close();
        frmMarcImport screen;
        screen.show();
        answers.queueFileName(path);
        choosing.time([&] { chooseStall.time([&] { screen.findChild<QAbstractButton *>(QStringLiteral("cmdChooseFile"))->click(); }); });
        taking.time([&] { takeStall.time([&] { screen.findChild<QAbstractButton *>(QStringLiteral("cmdImport"))->click(); }); });
    }
    std::printf("  the screen's last word: %s\n", answers.shown().empty() ? "none" : qPrintable(answers.shown().back().prompt));
    choosing.report("screen: file chosen to its preview");
    taking.report("screen: Import to the refreshed preview");
    chooseStall.report("MARC preview");
    takeStall.report("MARC import");

    if (!ZebraServer::available()) {
        std::printf("  look-up: skipped: no Zebra server (Debian package idzebra-2.0)\n");
        return;
    }
    // The server holds the school's own catalogue, as a union catalogue holds many schools'.
    ZebraServer zebra(exported + MarcFile::write({MarcMapping::toMarc(CatalogueRecord{QStringLiteral("Wanted"), {}, {}, {}, {}, {},
                                                                                      {QStringLiteral("9780804429573")}, {}, {}, {}, {}, {}})},
                                                                MarcFile::Format::Iso2709));
    const QList<RecordSource> sources{{QStringLiteral("Local"), zebra.address(), false, QStringLiteral("usmarc"), 10}};
    Samples lookups;
    for (int i = 0; i < 20; ++i)
        lookups.time([&] {
            TaskProgress progress;
            Z3950Search::byIsbn(sources, QStringLiteral("080442957X"), progress);
        });
    lookups.report("look-up by ISBN (Enter to records in hand)");
}
