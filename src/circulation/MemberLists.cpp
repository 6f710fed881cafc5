#include "MemberLists.h"

#include "AppError.h"
#include "Clock.h"
#include "DbConnection.h"
#include "Recordset.h"
#include "UpdateDatabase.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QSignalBlocker>

std::shared_ptr<Recordset> CentralQuery(const QString &sql)
{
    OpenCentralDatabase();
    struct Closer {
        ~Closer() { CloseCentralDatabase(); }
    } closer;
    if (!CentralConnection || CentralConnection->state() != DbConnection::adStateOpen)
        throw AppError(3709, QStringLiteral("The connection cannot be used to perform this operation. It is either closed or invalid in this context."));
    return CentralConnection->Execute(sql);
}

void FillMemberCombo(QComboBox *combo, const QString &sql, const QString &idField, const QStringList &textFields)
{
    const QSignalBlocker quiet(combo);
    combo->clear();
    const auto rs = CentralQuery(sql);
    QStringList parts;
    for (; !rs->atEnd(); rs->MoveNext()) {
        parts.clear();
        for (const QString &field : textFields)
            parts << rs->field(field).toString();
        combo->addItem(parts.join(QLatin1Char(' ')), rs->field(idField).toInt());
    }
    combo->setCurrentIndex(-1);
}

QString MemberKind(const QAbstractButton *learner, const QAbstractButton *educator)
{
    if (learner->isChecked())
        return QStringLiteral("L");
    return educator->isChecked() ? QStringLiteral("E") : QStringLiteral("S");
}

QString CurrentYear() { return QString::number(Clock::today().year()); }

void FillReservationMembers(QComboBox *combo, const QString &memberKind)
{
    if (memberKind == QLatin1String("L"))
        FillMemberCombo(combo, QStringLiteral("Select id,sname,fname,accessionno,classname from Learner_info left join classes On learner_info.class = classes.classid where status = 'C' order by sname,fname"),
                        QStringLiteral("id"), {QStringLiteral("sname"), QStringLiteral("fname"), QStringLiteral("classname"), QStringLiteral("accessionno")});
    else if (memberKind == QLatin1String("E"))
        FillMemberCombo(combo, QStringLiteral("Select edid,sname,fname, IDNumber from Educators where status = 'C' order by sname,fname"),
                        QStringLiteral("edid"), {QStringLiteral("sname"), QStringLiteral("fname")});
    else
        FillMemberCombo(combo, QStringLiteral("Select staffid,sname,fname, IDNumber from staffmembers where status = 'C' order by sname,fname"),
                        QStringLiteral("staffid"), {QStringLiteral("sname"), QStringLiteral("fname"), QStringLiteral("staffid")});
}
