#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

class QAbstractButton;
class QComboBox;
class QLabel;
class QLineEdit;
class Recordset;

/// Fills a member combo from a statement on the school database: one entry a row, its text the
/// named fields joined by single blanks, its item data the member's internal number (idField).
/// The list is emptied first; errors reach the caller as AppError.
void FillMemberCombo(QComboBox *combo, const QString &sql, const QString &idField, const QStringList &textFields);

/// The member kind chosen with the three option buttons: "L" learner, "E" educator, else "S" staff member.
QString MemberKind(const QAbstractButton *learner, const QAbstractButton *educator);

/// A current member's name as the screens show it: "Surname, First name (class)" for learners,
/// "Surname, First name" otherwise; empty when nobody current has that kind and number.
QString MemberName(const QString &memberKind, int memberID);

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
    /// Where the chosen member's name is shown (the number typed, or the entry chosen).
    void setNameLabel(QLabel *label);
    /// Shows the name of the member whose number is in the box.
    void showName();
    /// Chooses a member by kind and internal number, as if picked from the list.
    void choose(const QString &memberKind, int memberID);

Q_SIGNALS:
    /// A member was chosen from the list (before the number box is written).
    void memberChosen();

private:
    void chosen();

    QAbstractButton *learner_;
    QAbstractButton *educator_;
    QComboBox *members_;
    QAbstractButton *staff_;
    QLineEdit *number_;
    QLabel *name_ = nullptr;
    Filler fill_;
    QString location_;
};
