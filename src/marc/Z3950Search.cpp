#include "Z3950Search.h"

#include "Isbn.h"
#include "MarcFile.h"
#include "TaskProgress.h"

#include <QElapsedTimer>

#include <yaz/zoom.h>

#include <poll.h>

#include <memory>
#include <vector>

namespace {

constexpr int MostRecords = 10; // a look-up by ISBN; more than a few answers are repeats

struct Lookup {
    const RecordSource *source = nullptr;
    ZOOM_connection connection = nullptr;
    ZOOM_resultset results = nullptr;
    bool done = false;
    ~Lookup()
    {
        if (results)
            ZOOM_resultset_destroy(results);
        if (connection)
            ZOOM_connection_destroy(connection);
    }
};

QString failure(ZOOM_connection c)
{
    const char *message = nullptr, *info = nullptr;
    if (ZOOM_connection_error(c, &message, &info) == 0)
        return QString();
    const QString why = QString::fromUtf8(message ? message : "");
    return info && *info ? why + QStringLiteral(" (") + QString::fromUtf8(info) + QLatin1Char(')') : why;
}

} // namespace

Z3950Search::Outcome Z3950Search::byIsbn(const QList<RecordSource> &sources, const QString &isbn, TaskProgress &progress)
{
    Outcome outcome;
    const QString isbn13 = Isbn::normalised(isbn);
    if (isbn13.isEmpty()) {
        outcome.problems << QStringLiteral("\"%1\" is not an ISBN.").arg(isbn.left(40));
        return outcome;
    }
    const QString isbn10 = Isbn::isbn10(isbn13);
    std::vector<std::unique_ptr<Lookup>> lookups;
    for (const RecordSource &s : sources) {
        auto l = std::make_unique<Lookup>();
        l->source = &s;
        ZOOM_options options = ZOOM_options_create();
        ZOOM_options_set(options, "async", "1");
        ZOOM_options_set(options, "preferredRecordSyntax", s.syntax.toUtf8().constData());
        ZOOM_options_set(options, "count", QByteArray::number(MostRecords).constData());
        ZOOM_options_set(options, "elementSetName", "F");
        if (s.sru) {
            ZOOM_options_set(options, "sru", "get");
            ZOOM_options_set(options, "schema", "marcxml"); // SRU sends records as XML; MARCXML reads as MARC
        }
        l->connection = ZOOM_connection_create(options);
        ZOOM_options_destroy(options);
        ZOOM_connection_connect(l->connection, s.address.toUtf8().constData(), 0);
        ZOOM_query query = ZOOM_query_create();
        QByteArray text;
        if (s.sru) {
            text = (QStringLiteral("bath.isbn=") + isbn13 + (isbn10.isEmpty() ? QString() : QStringLiteral(" or bath.isbn=") + isbn10)).toUtf8();
            ZOOM_query_cql(query, text.constData());
        } else {
            text = (isbn10.isEmpty() ? QStringLiteral("@attr 1=7 ") + isbn13
                                     : QStringLiteral("@or @attr 1=7 %1 @attr 1=7 %2").arg(isbn13, isbn10)).toUtf8();
            ZOOM_query_prefix(query, text.constData());
        }
        l->results = ZOOM_connection_search(l->connection, query);
        ZOOM_query_destroy(query);
        lookups.push_back(std::move(l));
    }
    progress.setMaximum(int(lookups.size()));
    QElapsedTimer clock;
    clock.start();
    const auto finish = [&](Lookup &l, const QString &problem) {
        l.done = true;
        progress.advance();
        if (!problem.isEmpty()) {
            outcome.problems << QStringLiteral("%1 (%2): %3").arg(l.source->name, l.source->address, problem);
            return;
        }
        const size_t hits = ZOOM_resultset_size(l.results);
        for (size_t i = 0; i < hits && i < size_t(MostRecords); ++i) {
            ZOOM_record record = ZOOM_resultset_record_immediate(l.results, i);
            int length = 0;
            const QString cs = l.source->characterSet.trimmed().toLower();
            const QByteArray type = cs.isEmpty() || cs == QLatin1String("marc8") || cs == QLatin1String("marc-8") || cs == QLatin1String("utf-8")
                                        ? QByteArray("raw")
                                        : QStringLiteral("raw; charset=%1,utf-8").arg(cs).toLatin1();
            const char *raw = record ? ZOOM_record_get(record, type.constData(), &length) : nullptr;
            if (!raw || length <= 0)
                continue;
            for (const MarcFile::Entry &e : MarcFile::read(QByteArray(raw, length)))
                if (e.record)
                    outcome.found << Found{l.source->name, *e.record};
        }
    };
    // One loop over every connection's socket: each source's answer is taken as it comes.
    while (true) {
        progress.check();
        std::vector<ZOOM_connection> open;
        std::vector<Lookup *> owners;
        for (auto &l : lookups)
            if (!l->done) {
                open.push_back(l->connection);
                owners.push_back(l.get());
            }
        if (open.empty())
            break;
        int fired;
        while ((fired = ZOOM_event_nonblock(int(open.size()), open.data())) > 0) {
            Lookup &l = *owners[size_t(fired - 1)];
            if (l.done)
                continue;
            if (const QString problem = failure(l.connection); !problem.isEmpty())
                finish(l, problem);
            else if (ZOOM_connection_last_event(l.connection) == ZOOM_EVENT_END)
                finish(l, QString());
        }
        std::vector<pollfd> sockets;
        std::vector<Lookup *> polled;
        for (Lookup *l : owners) {
            if (l->done)
                continue;
            if (clock.elapsed() > qint64(l->source->timeoutSeconds) * 1000) {
                finish(*l, QStringLiteral("no answer within %1 s").arg(l->source->timeoutSeconds));
                continue;
            }
            const int socket = ZOOM_connection_get_socket(l->connection);
            const int mask = ZOOM_connection_get_mask(l->connection);
            if (socket < 0 || mask == 0)
                continue;
            sockets.push_back({socket, short(((mask & ZOOM_SELECT_READ) ? POLLIN : 0) | ((mask & ZOOM_SELECT_WRITE) ? POLLOUT : 0)), 0});
            polled.push_back(l);
        }
        if (sockets.empty())
            continue;
        if (::poll(sockets.data(), sockets.size(), 50) <= 0)
            continue;
        for (size_t i = 0; i < sockets.size(); ++i) {
            int mask = 0;
            if (sockets[i].revents & (POLLIN | POLLHUP))
                mask |= ZOOM_SELECT_READ;
            if (sockets[i].revents & POLLOUT)
                mask |= ZOOM_SELECT_WRITE;
            if (sockets[i].revents & (POLLERR | POLLNVAL))
                mask |= ZOOM_SELECT_EXCEPT;
            if (mask)
                ZOOM_connection_fire_event_socket(polled[i]->connection, mask);
        }
    }
    return outcome;
}
