#include "OpacSessions.h"

#include "AppError.h"

#include <sodium.h>

QString OpacSessions::randomToken()
{
    if (sodium_init() < 0)
        throw AppError(AppError::ProviderError, QStringLiteral("The session routines cannot start (libsodium)."));
    unsigned char bytes[32];
    randombytes_buf(bytes, sizeof bytes);
    return QString::fromLatin1(QByteArray(reinterpret_cast<const char *>(bytes), sizeof bytes).toHex());
}

QString OpacSessions::open(const OpacAccount::Member &member, const QDateTime &now)
{
    const QString id = randomToken();
    std::lock_guard lock(mutex_);
    sessions_.insert(id, Session{member, randomToken(), now});
    return id;
}

std::optional<OpacSessions::Session> OpacSessions::find(const QString &id, const QDateTime &now)
{
    std::lock_guard lock(mutex_);
    const auto it = sessions_.find(id);
    if (it == sessions_.end())
        return std::nullopt;
    if (it->lastSeen.secsTo(now) > IdleMinutes * 60) {
        sessions_.erase(it);
        return std::nullopt;
    }
    it->lastSeen = now;
    return *it;
}

void OpacSessions::close(const QString &id)
{
    std::lock_guard lock(mutex_);
    sessions_.remove(id);
}

bool OpacSessions::underLimit(QList<QDateTime> &attempts, const QDateTime &now)
{
    attempts.removeIf([&now](const QDateTime &t) { return t.secsTo(now) >= 60; });
    attempts << now;
    return attempts.size() <= AttemptsPerMinute;
}

bool OpacSessions::mayTry(const QString &number, const QString &address, const QDateTime &now)
{
    std::lock_guard lock(mutex_);
    // Both are counted, so that neither a guesser at one number nor one machine trying many gets far.
    const bool member = underLimit(byNumber_[number.trimmed().toCaseFolded().left(20)], now);
    const bool machine = underLimit(byAddress_[address], now);
    return member && machine;
}
