#include "ZebraServer.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QThread>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

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

ZebraServer::ZebraServer(const QByteArray &records)
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
    // The server's own configuration: SRU's CQL mapped by YAZ's Bath profile, records as MARCXML.
    QFile gfs(d.filePath("gfs.xml"));
    gfs.open(QIODevice::WriteOnly);
    gfs.write(QString("<yazgfs><listen id=\"l\">tcp:127.0.0.1:%1</listen><server id=\"s\" listenref=\"l\"><directory>%2</directory>"
                      "<config>zebra.cfg</config><cql2rpn>/usr/share/yaz/etc/pqf.properties</cql2rpn><retrievalinfo>"
                      "<retrieval syntax=\"usmarc\" name=\"F\"/><retrieval syntax=\"xml\" name=\"marcxml\" "
                      "identifier=\"info:srw/schema/1/marcxml-v1.1\"><backend syntax=\"usmarc\" name=\"F\"><marc inputformat=\"marc\" "
                      "outputformat=\"marcxml\" inputcharset=\"utf-8\" outputcharset=\"utf-8\"/></backend></retrieval>"
                      "</retrievalinfo></server></yazgfs>")
                  .arg(port_)
                  .arg(d.path())
                  .toUtf8());
    gfs.close();
    server_.start("zebrasrv", {"-f", d.filePath("gfs.xml"), "-l", d.filePath("srv.log")});
    server_.waitForStarted();
    for (int i = 0; i < 100 && !answers(); ++i)
        QThread::msleep(20);
}

ZebraServer::~ZebraServer()
{
    server_.kill();
    server_.waitForFinished();
}

QString ZebraServer::address() const { return QString("127.0.0.1:%1/books").arg(port_); }

QString ZebraServer::sruAddress() const { return QString("http://127.0.0.1:%1/books").arg(port_); }

bool ZebraServer::available() { return !QStandardPaths::findExecutable("zebrasrv").isEmpty(); }

bool ZebraServer::answers() const
{
    int fd = -1;
    const bool taken = boundSocket(port_, &fd) < 0;
    ::close(fd);
    return taken;
}
