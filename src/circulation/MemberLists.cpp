#include "MemberLists.h"

#include "AppError.h"
#include "Clock.h"
#include "LoanRoutines.h"
#include "Recordset.h"
#include "ErrorReport.h"
#include "mCombo.h"
#include "SchoolDatabase.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QStandardItemModel>

#include <vector>

void FillMemberCombo(QComboBox *combo, const QString &sql, const QString &idField, const QStringList &textFields)
{
    const QSignalBlocker quiet(combo);
    const auto rs = SchoolQuery(sql);
    // A school's learners run into thousands: the entries are built in a model of their own and
    // handed to the combo at once, instead of one insertion (and one relayout) per entry.
    auto *entries = new QStandardItemModel(combo);
    const int id = rs->fieldIndex(idField);
    std::vector<int> fields;
    for (const QString &field : textFields)
        fields.push_back(rs->fieldIndex(field));
    QString text;
    for (; !rs->atEnd(); rs->MoveNext()) {
        text.clear();
        for (size_t i = 0; i < fields.size(); ++i) {
            if (i > 0)
                text += QLatin1Char(' ');
            text += rs->field(fields[i]).toString();
        }
        auto *entry = new QStandardItem(text);
        entry->setData(rs->field(id).toInt(), Qt::UserRole);
        entries->appendRow(entry);
    }
    // Sized by a typical entry, not by measuring thousands of names each time the form is laid out.
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(30);
    combo->setModel(entries); // the combo deletes the list it owned
    combo->setInsertPolicy(QComboBox::NoInsert); // a stray scan is never made into a member
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
    : QObject(members), learner_(learner), educator_(educator), members_(members), staff_(staff), number_(number), fill_(fill), location_(location)
{
    connect(number, &QLineEdit::editingFinished, this, &MemberPicker::showName);
    new ComboTypeAhead(members);
    for (QAbstractButton *option : {learner, educator, staff})
        connect(option, &QAbstractButton::clicked, this, &MemberPicker::FillMembers);
    connect(members, &QComboBox::activated, this, &MemberPicker::chosen);
}

void MemberPicker::FillMembers()
{
    Trap(location_, QStringLiteral("FillMembers"), [&] {
        fill_(members_, kind());
    });
}

void MemberPicker::chosen()
{
    if (members_->currentIndex() < 0)
        return;
    Trap(location_, QStringLiteral("cboMembers_Click"), [&] {
        Q_EMIT memberChosen();
        number_->setText(GetMemberIDNo(members_->currentData().toInt(), kind()).toString());
    });
    showName();
}

void MemberPicker::setNameLabel(QLabel *label)
{
    name_ = label;
    name_->clear();
}

void MemberPicker::showName()
{
    if (!name_)
        return;
    const QString number = number_->text().trimmed();
    if (number.isEmpty()) {
        name_->clear();
        return;
    }
    Trap(location_, QStringLiteral("Member Name"), [&] {
        const QVariant member = GetMemberByIDNo(number, kind());
        const QString name = member.isNull() ? QString() : MemberName(kind(), member.toInt());
        name_->setText(name.isEmpty() ? QStringLiteral("No member with number %1").arg(number) : name);
    });
}

void MemberPicker::choose(const QString &memberKind, int memberID)
{
    QAbstractButton *option = memberKind == QLatin1String("L") ? learner_ : memberKind == QLatin1String("E") ? educator_ : staff_;
    option->setChecked(true);
    FillMembers();
    const int index = members_->findData(memberID);
    if (index >= 0) {
        members_->setCurrentIndex(index);
        chosen();
    }
}

QString MemberName(const QString &memberKind, int memberID)
{
    const QString id = QString::number(memberID);
    const QString sql = memberKind == QLatin1String("L")
                            ? QStringLiteral("Select sname, fname, classname from Learner_info left join classes on learner_info.class = classes.classid where status = 'C' and [ID] = ") + id
                        : memberKind == QLatin1String("E") ? QStringLiteral("Select sname, fname from Educators where status = 'C' and EdID = ") + id
                                                           : QStringLiteral("Select sname, fname from staffmembers where status = 'C' and StaffID = ") + id;
    const auto rs = SchoolQuery(sql);
    if (rs->atEnd())
        return QString();
    QString name = rs->field(QStringLiteral("sname")).toString() + QStringLiteral(", ") + rs->field(QStringLiteral("fname")).toString();
    if (memberKind == QLatin1String("L") && !rs->field(QStringLiteral("classname")).toString().isEmpty())
        name += QStringLiteral(" (") + rs->field(QStringLiteral("classname")).toString() + QLatin1Char(')');
    return name;
}
