// Look-ups by ISBN against a real Z39.50 server (Debian's zebrasrv, loaded with records written
// here), a source that never answers and one that refuses.
#include "Isbn.h"
#include "MarcFile.h"
#include "MarcMapping.h"
#include "TaskProgress.h"
#include "Z3950Search.h"

#include <QDir>
#include <QStandardPaths>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <netinet/in.h>
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

// A socket bound on 127.0.0.1 (port 0: any free one); its port.
int boundSocket(int port, int *fd)
{
    *fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in at{};
    at.sin_family = AF_INET;
    at.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    at.sin_port = htons(quint16(port));
    if (::bind(*fd, reinterpret_cast<sockaddr *>(&at), sizeof at) != 0)
        return -1;
    socklen_t size = sizeof at;
    ::getsockname(*fd, reinterpret_cast<sockaddr *>(&at), &size);
    return ntohs(at.sin_port);
}

int freePort()
{
    int fd = -1;
    const int port = boundSocket(0, &fd);
    ::close(fd);
    return port;
}

// A Zebra server on 127.0.0.1 holding the records, for the whole suite.
class ZebraServer {
public:
    explicit ZebraServer(const QByteArray &records)
    {
        const QDir d(dir_.path());
        for (const char *sub : {"reg", "lock", "tmp"})
            d.mkpath(sub);
        QFile abs("/usr/share/idzebra-2.0/tab/marc21.abs");
        abs.open(QIODevice::ReadOnly);
        QFile own(d.filePath("marc21.abs"));
        own.open(QIODevice::WriteOnly);
        own.write(abs.readAll() + "\nmelm 020$a\t\tISBN:w\n"); // the ISBN index the stock rules leave out
        own.close();
        QFile cfg(d.filePath("zebra.cfg"));
        cfg.open(QIODevice::WriteOnly);
        cfg.write(QString("profilePath: %1:/usr/share/idzebra-2.0/tab\nmodulePath: /usr/lib/x86_64-linux-gnu/idzebra-2.0/modules\n"
                          "recordType: grs.marcxml.marc21\nattset: bib1.att\nregister: %1/reg:20M\nlockDir: %1/lock\nkeyTmpDir: %1/tmp\n")
                      .arg(d.path()).toUtf8());
        cfg.close();
        QFile data(d.filePath("records.mrc"));
        data.open(QIODevice::WriteOnly);
        data.write(records);
        data.close();
        QProcess::execute("zebraidx", {"-c", d.filePath("zebra.cfg"), "-d", "books", "-l", d.filePath("idx.log"), "update", d.filePath("records.mrc")});
        QProcess::execute("zebraidx", {"-c", d.filePath("zebra.cfg"), "-l", d.filePath("idx.log"), "commit"});
        port_ = freePort();
        server_.start("zebrasrv", {"-c", d.filePath("zebra.cfg"), "-l", d.filePath("srv.log"), QString("tcp:127.0.0.1:%1").arg(port_)});
        server_.waitForStarted();
        for (int i = 0; i < 100 && !answers(); ++i)
            QThread::msleep(20);
    }
    ~ZebraServer()
    {
        server_.kill();
        server_.waitForFinished();
    }
    QString address() const { return QString("127.0.0.1:%1/books").arg(port_); }
    bool running() const { return server_.state() == QProcess::Running; }

private:
    bool answers() const
    {
        int fd = -1;
        const bool taken = boundSocket(port_, &fd) < 0;
        ::close(fd);
        return taken;
    }
    QTemporaryDir dir_;
    QProcess server_;
    int port_ = 0;
};

class Z3950SearchTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        if (QStandardPaths::findExecutable("zebrasrv").isEmpty())
            return;
        const QList<MarcRecord> marc8{book(QString::fromUtf8("Łódź stories"), QString::fromUtf8("Geneviève, Anaïs"), "0198526636", "1999")};
        const QList<MarcRecord> utf8{book("The Newer Edition", "Dlamini, Zola", "9780198526636", "2021"),
                                    book("Another Book", "Smith, Ann", "9780804429573", "2010")};
        zebra_ = new ZebraServer(MarcFile::write(marc8, MarcFile::Format::Iso2709, MarcFile::Characters::Marc8)
                                 + MarcFile::write(utf8, MarcFile::Format::Iso2709));
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

    TaskProgress notAnIsbn;
    EXPECT_EQ(Z3950Search::byIsbn(sources, "12345", notAnIsbn).problems, QStringList{"\"12345\" is not an ISBN."});
}
