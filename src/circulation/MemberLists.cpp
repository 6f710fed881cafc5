#include "MemberLists.h"

#include "AppError.h"
#include "Clock.h"
#include "DbConnection.h"
#include "LoanRoutines.h"
#include "Recordset.h"
#include "UpdateDatabase.h"
#include "mCombo.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
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

void FillFinePaymentMembers(QComboBox *combo, const QString &memberKind)
{
    if (memberKind == QLatin1String("L"))
        FillMemberCombo(combo, QStringLiteral("Select id,sname,fname,accessionno,classname from Learner_info left join classes On learner_info.class = classes.classid where status = 'C' order by sname,fname"),
                        QStringLiteral("id"), {QStringLiteral("sname"), QStringLiteral("fname"), QStringLiteral("classname"), QStringLiteral("accessionno")});
    else if (memberKind == QLatin1String("E"))
        FillMemberCombo(combo, QStringLiteral("Select edid,sname,fname from Educators where status = 'C' order by sname,fname"),
                        QStringLiteral("edid"), {QStringLiteral("sname"), QStringLiteral("fname")});
    else
        FillMemberCombo(combo, QStringLiteral("Select staffid,sname,fname from staffmembers where status = 'C' order by sname,fname"),
                        QStringLiteral("staffid"), {QStringLiteral("sname"), QStringLiteral("fname")});
}

MemberPicker::MemberPicker(QAbstractButton *learner, QAbstractButton *educator, QAbstractButton *staff, QComboBox *members, QLineEdit *number,
                           Filler fill, const QString &location)
    : QObject(members), learner_(learner), educator_(educator), members_(members), number_(number), fill_(fill), location_(location)
{
    new ComboTypeAhead(members);
    for (QAbstractButton *option : {learner, educator, staff})
        connect(option, &QAbstractButton::clicked, this, &MemberPicker::FillMembers);
    connect(members, &QComboBox::activated, this, &MemberPicker::chosen);
}

void MemberPicker::FillMembers()
{
    try {
        fill_(members_, kind());
    } catch (const AppError &e) {
        ReportError(location_, QStringLiteral("FillMembers"), e);
    }
}

void MemberPicker::chosen()
{
    if (members_->currentIndex() < 0)
        return;
    try {
        Q_EMIT memberChosen();
        number_->setText(GetMemberIDNo(members_->currentData().toInt(), kind()).toString());
    } catch (const AppError &e) {
        ReportError(location_, QStringLiteral("cboMembers_Click"), e);
    }
}
