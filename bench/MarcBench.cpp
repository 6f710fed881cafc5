#include "MarcBench.h"

#include "BenchTimer.h"
#include "DbConnection.h"
#include "MarcFile.h"
#include "MarcImport.h"
#include "MarcMapping.h"
#include "Recordset.h"
#include "TaskProgress.h"
#include "Z3950Search.h"
#include "ZebraServer.h"
#include "clsDataObject.h"

#include <cstdio>

namespace {

// A supplier's delivery: n new titles, each with two authors, a publisher and an ISBN.
QList<MarcRecord> delivery(int n)
{
    QList<MarcRecord> records;
    for (int i = 0; i < n; ++i) {
        CatalogueRecord t;
        t.title = QStringLiteral("Delivered title %1").arg(i);
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
