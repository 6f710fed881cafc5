#pragma once

#include "Money.h"

#include <QDate>
#include <QString>
#include <QStringList>

class clsDataObject;

/// The loan rules a desk applies to one item and one member category: the item's reference and
/// restricted flags and the settings row of its loan type, or the desk's defaults (1 day, no fine,
/// interval 1, extension 1) when there is none. A Long loan type, once met, is kept for every
/// later item while the desk is open: a holiday loan period stays in force.
class LoanRules {
public:
    explicit LoanRules(const QString &loanType = QStringLiteral("N")) : LoanType(loanType) {}

    /// Reads the item (when found its flags, and its loan type unless Long is in force) and the
    /// settings row for the loan type and category. Errors reach the caller as AppError.
    void load(clsDataObject &data, const QString &accession, const QString &category);
    /// The renewal limit of the whole library: maxext of the last settings row read (0 without rows).
    static qint16 maxRenewals(clsDataObject &data);

    QString LoanType;
    bool ReferenceItem = false;
    bool RestrictedItem = false;
    qint16 LoanPeriod = 1;
    Money FineAmount;
    qint16 FineInterval = 1;
    qint16 ExtensionDays = 1;
    /// The values as shown: loan type, loan period, max items, fine amount, fine interval, extension.
    QStringList shown;
};

/// Writes an issue as one transaction: the loan row (issued today, due dueDate) and the removal of
/// this member's reservation of the item (an issue consumes it); returns the new loan's transaction
/// number as the insert gave it. LentElsewhere (and nothing written) when another desk lent the copy
/// since the checks. Other errors reach the caller as AppError, with nothing written.
constexpr int LentElsewhere = -1;
int RecordIssue(const QString &accession, const QString &memberType, int memberID, int itemID, const QDate &dueDate);

/// A date as the circulation statements write it between # signs.
QString SqlDate(const QDate &date);
