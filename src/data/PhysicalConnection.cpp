#include "PhysicalConnection.h"

#include "AppError.h"
#include "JetError.h"

TranslatedStatement PhysicalConnection::translated(const QString &jetSql) const
{
    const QByteArray utf8 = jetSql.toUtf8();
    try {
        return translator().translate(std::string_view(utf8.constData(), size_t(utf8.size())));
    } catch (const JetError &e) {
        throw AppError(e.number(), QString::fromStdString(e.what()), jetSql,
                       e.problem() == JetError::Problem::NulCharacter ? AppError::Cause::NulCharacter : AppError::Cause::Other);
    }
}
