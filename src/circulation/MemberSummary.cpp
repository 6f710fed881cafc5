#include "MemberSummary.h"

#include "LoanRules.h"
#include "MemberLists.h"
#include "Recordset.h"
#include "SettingsStore.h"
#include "clsDataObject.h"
#include "clsTSQL.h"
#include "SchoolDatabase.h"

#include <QDir>
#include <QFileInfo>

QString MemberSummary::standing() const
{
    if (kind == QLatin1String("L")) {
        // Schools name their grades "Grade 8" or just "8".
        QString text = grade.isEmpty() || !grade.front().isDigit() ? grade : QStringLiteral("Grade ") + grade;
        if (!className.isEmpty())
            text += (text.isEmpty() ? QString() : QStringLiteral(", ")) + QStringLiteral("class ") + className;
        return text;
    }
    return kind == QLatin1String("E") ? QStringLiteral("Educator") : QStringLiteral("Staff member");
}

namespace {

int count(clsDataObject &library, const QString &sql, const QString &field, Money *sum = nullptr)
{
    int n = 0;
    if (library.GetData(sql) > 0) {
        n = library.rst->field(field).toInt();
        if (sum && !library.rst->field(QStringLiteral("total")).isNull())
            *sum = library.rst->field(QStringLiteral("total")).toMoney();
    }
    library.CloseCompact();
    return n;
}

} // namespace

MemberSummary MemberSummary::load(clsDataObject &library, const QString &kind, int memberID, const QDate &today)
{
    MemberSummary s;
    s.kind = kind;
    s.memberID = memberID;
    if (memberID <= 0)
        return s;
    const QString id = QString::number(memberID);
    if (kind == QLatin1String("L")) {
        const auto rs = SchoolQuery(QStringLiteral("Select Learner_Info.SName, Learner_Info.FName, SchoolGrades.Name as GradeName, Classes.ClassName, Learner_Info.Photoname"
                                                    " from (Learner_Info left join SchoolGrades on Learner_Info.Grade = SchoolGrades.ID)"
                                                    " left join Classes on Learner_Info.Class = Classes.ClassID where Learner_Info.[ID] = ")
                                     + id);
        if (rs->atEnd())
            return s;
        s.name = rs->field(QStringLiteral("SName")).toString() + QStringLiteral(", ") + rs->field(QStringLiteral("FName")).toString();
        s.grade = rs->field(QStringLiteral("GradeName")).toString();
        s.className = rs->field(QStringLiteral("ClassName")).toString();
        const QString photo = rs->field(QStringLiteral("Photoname")).toString();
        const QString file = QDir(ApplicationFolder()).filePath(QStringLiteral("LearnerPhotos/") + photo);
        if (!photo.isEmpty() && QFileInfo(file).isFile())
            s.photoFile = file;
    } else {
        const auto rs = SchoolQuery(kind == QLatin1String("E") ? QStringLiteral("Select SName, FName from Educators where EdID = ") + id
                                                                : QStringLiteral("Select SName, FName from StaffMembers where StaffID = ") + id);
        if (rs->atEnd())
            return s;
        s.name = rs->field(QStringLiteral("SName")).toString() + QStringLiteral(", ") + rs->field(QStringLiteral("FName")).toString();
    }
    s.found = true;
    const QString member = QStringLiteral(" MemberType = '") + kind + QStringLiteral("' and MemberID = ") + id;
    s.itemsOut = count(library, QStringLiteral("select count(*) as n from tblLibTransactions where") + member + QStringLiteral(" and Returned = false"),
                       QStringLiteral("n"));
    s.overdue = count(library,
                      QStringLiteral("select count(*) as n from tblLibTransactions where") + member + QStringLiteral(" and Returned = false and DueDate < #")
                          + SqlDate(today) + QStringLiteral("#"),
                      QStringLiteral("n"));
    s.openFines = count(library,
                        QStringLiteral("select count(*) as n, sum(FineAmount) as total from tblLibTransactionFines where") + member
                            + QStringLiteral(" and FineCancelled = false and PaymentAmount = 0"),
                        QStringLiteral("n"), &s.finesTotal);
    s.reservations = count(library, QStringLiteral("select count(*) as n from tblLibReserves where") + member + QStringLiteral(" and Canceled = false"),
                           QStringLiteral("n"));
    if (s.reservations > 0)
        // On the shelf, and nobody reserved it earlier.
        s.readyToCollect = count(library,
                                 QStringLiteral("select count(*) as n from tblLibReserves as r where r.MemberType = '") + kind + QStringLiteral("' and r.MemberID = ")
                                     + id
                                     + QStringLiteral(" and r.Canceled = false and r.ItemID not in (select ItemID from tblLibTransactions where Returned = false)"
                                                      " and not exists (select * from tblLibReserves as o where o.ItemID = r.ItemID and o.Canceled = false"
                                                      " and (o.ReserveDate < r.ReserveDate or (o.ReserveDate = r.ReserveDate and o.ReserveID < r.ReserveID)))"),
                                 QStringLiteral("n"));
    return s;
}
