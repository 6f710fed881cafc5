#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

class QAbstractButton;
class QComboBox;
class QLineEdit;
class Recordset;

/// Fills a member combo from a statement on the school database: one entry a row, its text the
/// named fields joined by single blanks, its item data the member's internal number (idField).
/// The list is emptied first; errors reach the caller as AppError.
void FillMemberCombo(QComboBox *combo, const QString &sql, const QString &idField, const QStringList &textFields);

/// The member kind chosen with the three option buttons: "L" learner, "E" educator, else "S" staff member.
QString MemberKind(const QAbstractButton *learner, const QAbstractButton *educator);

/// The year the learner lists are drawn up for (learners admitted up to this year).
QString CurrentYear();

/// The reservation screens' member list of a kind: learners by surname, first name, class and
/// admission number; educators by surname and first name; staff members with their number.
void FillReservationMembers(QComboBox *combo, const QString &memberKind);

/// The fine payment screen's member list of a kind (surname and first name; learners also class
/// and admission number).
void FillFinePaymentMembers(QComboBox *combo, const QString &memberKind);

/// The member choice of the reservation and fine screens: three kind options, the list of the
/// kind's current members (type-ahead) and the member-number box that choosing from the list fills
/// (GetMemberIDNo). Errors are reported from the screen's location.
class MemberPicker : public QObject {
    Q_OBJECT
public:
    using Filler = void (*)(QComboBox *, const QString &memberKind);
    MemberPicker(QAbstractButton *learner, QAbstractButton *educator, QAbstractButton *staff, QComboBox *members, QLineEdit *number,
                 Filler fill, const QString &location);

    /// "L", "E" or "S", as the options stand.
    QString kind() const { return MemberKind(learner_, educator_); }
    /// Fills the list for the chosen kind.
    void FillMembers();

Q_SIGNALS:
    /// A member was chosen from the list (before the number box is written).
    void memberChosen();

private:
    void chosen();

    QAbstractButton *learner_;
    QAbstractButton *educator_;
    QComboBox *members_;
    QLineEdit *number_;
    Filler fill_;
    QString location_;
};
