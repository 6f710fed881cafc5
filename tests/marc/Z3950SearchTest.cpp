// Look-ups by ISBN against a real Z39.50 server (Debian's zebrasrv, loaded with records written
// here), a source that never answers and one that refuses.
#include "Isbn.h"
#include "MarcFile.h"
#include "MarcMapping.h"
#include "TaskProgress.h"
#include "Z3950Search.h"
#include "ZebraServer.h"

#include <QElapsedTimer>
#include <QProcess>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

namespace {

MarcRecord book(const QString &title, const QString &author, const QString &isbn, const QString &year)
{
    MarcRecord r;
    r.addControl("008", "240115s" + year + "    sa            000 1 eng d");
    r.addData("020", ' ', ' ', {{'a', isbn}});
    r.addData("100", '1', ' ', {{'a', author}});
    r.addData("245", '1', '0', {{'a', title}});
    r.addData("264", ' ', '1', {{'b', "Tafelberg,"}, {'c', year}});
    return r;
}

class Z3950SearchTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        if (!ZebraServer::available())
            return;
        const QList<MarcRecord> marc8{book(QString::fromUtf8("Łódź stories"), QString::fromUtf8("Geneviève, Anaïs"), "0198526636", "1999")};
        const QList<MarcRecord> utf8{book("The Newer Edition", "Dlamini, Zola", "9780198526636", "2021"),
                                    book("Another Book", "Smith, Ann", "9780804429573", "2010")};
        // A source that sends Latin-1 records (YAZ's own converter writes the test's).
        QProcess latin1;
        latin1.start("yaz-marcdump", {"-f", "utf-8", "-t", "iso-8859-1", "-i", "marc", "-o", "marc", "/dev/stdin"});
        latin1.write(MarcFile::write({book(QString::fromUtf8("Café society"), "Naudé, Pierre", "9780306406157", "2015")}, MarcFile::Format::Iso2709));
        latin1.closeWriteChannel();
        latin1.waitForFinished();
        zebra_ = new ZebraServer(MarcFile::write(marc8, MarcFile::Format::Iso2709, MarcFile::Characters::Marc8)
                                 + MarcFile::write(utf8, MarcFile::Format::Iso2709) + latin1.readAllStandardOutput());
    }
    static void TearDownTestSuite()
    {
        delete zebra_;
        zebra_ = nullptr;
    }
    void SetUp() override
    {
        if (!zebra_ || !zebra_->running())
            GTEST_SKIP() << "skipped: no Zebra server (Debian package idzebra-2.0)";
    }
    static ZebraServer *zebra_;
};

ZebraServer *Z3950SearchTest::zebra_ = nullptr;

} // namespace

// ISBN-10, ISBN-13 and a scanned EAN with its price add-on find the same book's records, the
// MARC-8 one with its accents whole.
TEST_F(Z3950SearchTest, EveryFormOfTheIsbnFindsTheBook)
{
    const QList<RecordSource> sources{{"Local", zebra_->address(), false, "usmarc", 5}};
    for (const QString isbn : {"0-19-852663-6", "9780198526636", "9780198526636 52495"}) {
        TaskProgress progress;
        const Z3950Search::Outcome outcome = Z3950Search::byIsbn(sources, isbn, progress);
        EXPECT_TRUE(outcome.problems.isEmpty()) << outcome.problems.join('|').toStdString();
        QStringList titles;
        for (const Z3950Search::Found &f : outcome.found)
            titles << MarcMapping::fromMarc(f.record, nullptr).title + " / " + MarcMapping::fromMarc(f.record, nullptr).authors.value(0);
        titles.sort();
        EXPECT_EQ(titles, (QStringList{"The Newer Edition / Dlamini, Zola", QString::fromUtf8("Łódź stories / Geneviève, Anaïs")}))
            << isbn.toStdString();
    }
}

// A source that never answers is named once its time is up, one that refuses at once; the
// server that answers still gives its record.
TEST_F(Z3950SearchTest, ASourceThatDoesNotAnswerIsNamedAndTheOthersCount)
{
    int silent = -1;
    const int silentPort = boundSocket(0, &silent);
    ASSERT_EQ(::listen(silent, 4), 0); // takes the connection, never answers
    const QString silentAddress = QString("127.0.0.1:%1/books").arg(silentPort);
    const QString refusing = QString("127.0.0.1:%1/books").arg(freePort());

    const QList<RecordSource> sources{{"Silent", silentAddress, false, "usmarc", 1}, {"Refusing", refusing, false, "usmarc", 5},
                                      {"Local", zebra_->address(), false, "usmarc", 5}};
    TaskProgress progress;
    QElapsedTimer clock;
    clock.start();
    const Z3950Search::Outcome outcome = Z3950Search::byIsbn(sources, "9780804429573", progress);
    EXPECT_LT(clock.elapsed(), 4000) << "a source held the others up";
    ASSERT_EQ(outcome.found.size(), 1);
    EXPECT_EQ(MarcMapping::fromMarc(outcome.found[0].record, nullptr).title, "Another Book");
    ASSERT_EQ(outcome.problems.size(), 2) << outcome.problems.join('|').toStdString();
    EXPECT_EQ(outcome.problems.filter("Silent (" + silentAddress + "): no answer within 1 s").size(), 1) << outcome.problems.join('|').toStdString();
    EXPECT_EQ(outcome.problems.filter("Refusing (" + refusing + "): ").size(), 1);
    ::close(silent);

    // The same server by SRU (CQL on the Bath ISBN index, records in MARCXML).
    TaskProgress sru;
    const Z3950Search::Outcome bySru = Z3950Search::byIsbn({{"Local SRU", zebra_->sruAddress(), true, "usmarc", 5}}, "080442957X", sru);
    EXPECT_TRUE(bySru.problems.isEmpty()) << bySru.problems.join('|').toStdString();
    ASSERT_EQ(bySru.found.size(), 1);
    EXPECT_EQ(MarcMapping::fromMarc(bySru.found[0].record, nullptr).authors, QStringList{"Smith, Ann"});

    // A source whose records are Latin-1 is read through its character set.
    TaskProgress latin1;
    const Z3950Search::Outcome converted =
        Z3950Search::byIsbn({{"Latin-1", zebra_->address(), false, "usmarc", 5, "iso-8859-1"}}, "9780306406157", latin1);
    ASSERT_EQ(converted.found.size(), 1) << converted.problems.join('|').toStdString();
    EXPECT_EQ(MarcMapping::fromMarc(converted.found[0].record, nullptr).title, QString::fromUtf8("Café society"));

    TaskProgress notAnIsbn;
    EXPECT_EQ(Z3950Search::byIsbn(sources, "12345", notAnIsbn).problems, QStringList{"\"12345\" is not an ISBN."});
}
