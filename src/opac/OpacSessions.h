#pragma once

#include "OpacAccount.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>

#include <mutex>
#include <optional>

/// The web catalogue's signed-in members (kept by the server process only: a restart signs
/// everybody out) and the limit on sign-in attempts, per member number and per address.
class OpacSessions {
public:
    static constexpr int AttemptsPerMinute = 5;
    static constexpr int IdleMinutes = 30;

    struct Session {
        OpacAccount::Member member;
        QString formToken; // carried by every form that changes something
        QDateTime lastSeen;
    };
    /// A random text of 32 bytes in hex (session ids and form tokens).
    static QString randomToken();

    /// Opens a session; its id (the cookie's value).
    QString open(const OpacAccount::Member &member, const QDateTime &now);
    /// The session of an id, kept alive; empty when unknown or idle too long.
    std::optional<Session> find(const QString &id, const QDateTime &now);
    void close(const QString &id);

    /// Counts a sign-in attempt; false when this number or this address has had its share this minute.
    bool mayTry(const QString &number, const QString &address, const QDateTime &now);

private:
    bool underLimit(QList<QDateTime> &attempts, const QDateTime &now);

    std::mutex mutex_;
    QHash<QString, Session> sessions_;
    QHash<QString, QList<QDateTime>> byNumber_, byAddress_;
};
