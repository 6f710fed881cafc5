#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

/// A socket bound on 127.0.0.1 to port (0: any free one) in *fd; its port, or -1 when taken.
int boundSocket(int port, int *fd);
/// A port on 127.0.0.1 nothing listens on (at the moment asked).
int freePort();

/// A Z39.50 server of the tests' own (Debian's zebrasrv) on 127.0.0.1 and a free port, holding the
/// MARC records given (ISO 2709) in its database "books", indexed for ISBN, title and author,
/// answering Z39.50 and SRU on the one port.
class ZebraServer {
public:
    explicit ZebraServer(const QByteArray &records);
    ~ZebraServer();
    /// host:port/books (Z39.50)
    QString address() const;
    /// http://host:port/books: the same server answering SRU (CQL with the Bath indexes, MARCXML)
    QString sruAddress() const;
    bool running() const { return server_.state() == QProcess::Running; }
    /// Whether zebrasrv is installed here.
    static bool available();

private:
    bool answers() const;
    QTemporaryDir dir_;
    QProcess server_;
    int port_ = 0;
};
