#include "MemberPin.h"

#include "AppError.h"
#include "Recordset.h"
#include "clsDataObject.h"

#include <sodium.h>

#include <QRegularExpression>

namespace {

void ready()
{
    if (sodium_init() < 0)
        throw AppError(AppError::ProviderError, QStringLiteral("The PIN routines cannot start (libsodium)."));
}

QString where(const QString &memberType, int memberID)
{
    return QStringLiteral(" where MemberType = '") + (memberType == QLatin1String("L") || memberType == QLatin1String("E") ? memberType : QStringLiteral("S"))
           + QStringLiteral("' and MemberID = ") + QString::number(memberID);
}

} // namespace

QString MemberPin::refusal(const QString &pin)
{
    static const QRegularExpression digits(QStringLiteral("^[0-9]{4,8}$"));
    return digits.match(pin).hasMatch() ? QString() : QStringLiteral("The PIN must be 4 to 8 digits.");
}

void MemberPin::set(const QString &memberType, int memberID, const QString &pin)
{
    if (const QString why = refusal(pin); !why.isEmpty())
        throw AppError(AppError::ProviderError, why);
    ready();
    const QByteArray bytes = pin.toUtf8();
    char hash[crypto_pwhash_STRBYTES];
    if (crypto_pwhash_str(hash, bytes.constData(), static_cast<unsigned long long>(bytes.size()), crypto_pwhash_OPSLIMIT_INTERACTIVE,
                          crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0)
        throw AppError(AppError::ProviderError, QStringLiteral("The PIN could not be kept (out of memory)."));
    clsDataObject data;
    data.RunTransaction([&] {
        data.ExecuteNonQuery(QStringLiteral("Delete from tblLibMemberPins") + where(memberType, memberID));
        data.ExecuteNonQuery(QStringLiteral("Insert into tblLibMemberPins (MemberType, MemberID, PinHash) values ('%1', %2, '%3')")
                                 .arg(where(memberType, memberID).section(QLatin1Char('\''), 1, 1))
                                 .arg(memberID)
                                 .arg(QString::fromLatin1(hash)));
        return true;
    });
}

bool MemberPin::matches(const QString &memberType, int memberID, const QString &pin)
{
    if (!refusal(pin).isEmpty())
        return false;
    ready();
    clsDataObject data;
    data.GetData(QStringLiteral("select PinHash from tblLibMemberPins") + where(memberType, memberID));
    const QByteArray hash = data.rst->atEnd() ? QByteArray() : data.rst->field(0).toString().toLatin1();
    data.CloseCompact();
    const QByteArray bytes = pin.toUtf8();
    return !hash.isEmpty() && crypto_pwhash_str_verify(hash.constData(), bytes.constData(), static_cast<unsigned long long>(bytes.size())) == 0;
}
