#include "LoanRoutines.h"

#include "AppError.h"
#include "DbConnection.h"
#include "Recordset.h"
#include "SchoolDatabase.h"
#include "SqlText.h"
#include "DatabaseLocations.h"
#include "Messages.h"

#include <algorithm>


namespace {

// The library connection is the routine's for its duration and is closed however it ends.
class LibraryScope {
public:
    LibraryScope() : connection_(OpenLibraryDatabase()) {}
    std::shared_ptr<Recordset> query(const QString &sql) { return connection().Execute(sql); }
    DbConnection &connection()
    {
        if (connection_->state() != DbConnection::adStateOpen)
            throw AppError(3709, QStringLiteral("The connection cannot be used to perform this operation. It is either closed or invalid in this context."));
        return *connection_;
    }

private:
    std::unique_ptr<DbConnection> connection_;
};

QString sqlDate(const QDate &d) { return d.toString(QStringLiteral("yyyy-MM-dd")); }

// The statement for a member kind: "L" learner, "E" educator, "S" staff member; empty for any other kind.
QString byKind(const QString &memberType, const QString &learner, const QString &educator, const QString &staff)
{
    if (memberType == QLatin1String("L"))
        return learner;
    if (memberType == QLatin1String("E"))
        return educator;
    if (memberType == QLatin1String("S"))
        return staff;
    return QString();
}

// Opens the school database and reads the IDNo column of a member look-up; empty when nothing matches.
QVariant readIDNo(const QString &sql)
{
    if (sql.isEmpty())
        return QVariant();
    const auto rs = SchoolQuery(sql);
    return rs->atEnd() ? QVariant() : rs->field(QStringLiteral("IDNo")).value();
}
QString num(qint64 v) { return QString::number(v); }

struct LoanAction {
    QString accession;
    QDate actionDate;
    QString mode;
    QDate newDueDate;
    Money fineAmount;
    qint16 fineInterval;
};

// Charges the overdue fine (first) and closes or extends the loan, inside the caller's transaction.
// False when the loan row was no longer open, so nothing may be kept.
bool closeOrExtend(DbConnection &db, const QDate &dueDate, int transactionID, int memberID, const QString &memberType, qint16 renewals,
                   const LoanAction &a)
{
    const Money fine = OverdueFine(a.actionDate, dueDate, a.fineAmount, a.fineInterval);
    const QString memberKey = QStringLiteral(" WHERE transactionid = ") + num(transactionID) + QStringLiteral(" AND memberid = ")
                              + num(memberID) + QStringLiteral(" AND membertype = '") + memberType + QStringLiteral("'");
    if (fine > Money()) {
        const auto fineRow = db.Execute(QStringLiteral("SELECT * FROM tbllibtransactionfines") + memberKey);
        if (fineRow->atEnd()) {
            db.Execute(QStringLiteral("Insert into tbllibtransactionfines(transactionid,memberid,membertype,fineamount,datefined)VALUES(")
                       + num(transactionID) + QLatin1Char(',') + num(memberID) + QStringLiteral(",'") + memberType
                       + QStringLiteral("',") + fine.toSqlText() + QStringLiteral(",#") + sqlDate(a.actionDate) + QStringLiteral("#)"));
        } else {
            const Money total = fineRow->field(QStringLiteral("fineamount")).toMoney() + fine;
            db.Execute(QStringLiteral("UPDATE tbllibtransactionfines Set fineamount = ") + total.toSqlText()
                       + QStringLiteral(", datefined = #") + sqlDate(a.actionDate) + QStringLiteral("#") + memberKey);
        }
    }
    int changed = 0;
    if (a.mode == QLatin1String("return")) {
        db.Execute(QStringLiteral("Update tbllibtransactions set returndate =#") + sqlDate(a.actionDate)
                       + QStringLiteral("#,extensions = 0, returned = true where accessionid = '") + Safesql(a.accession)
                       + QStringLiteral("' and transactionid =") + num(transactionID),
                   &changed);
    } else if (a.mode == QLatin1String("renewal")) {
        db.Execute(QStringLiteral("Update tbllibtransactions set duedate =#") + sqlDate(a.newDueDate) + QStringLiteral("#,extensions = ")
                       + num(renewals) + QStringLiteral(" where accessionid = '") + Safesql(a.accession) + QStringLiteral("' and transactionid =")
                       + num(transactionID),
                   &changed);
    } else {
        return true; // any other mode charges the fine only
    }
    return changed > 0;
}

} // namespace

Money OverdueFine(const QDate &actionDate, const QDate &dueDate, Money fineAmount, qint16 fineInterval)
{
    if (actionDate <= dueDate)
        return Money();
    const qint64 late = dueDate.daysTo(actionDate);
    if (late > 32767)
        throw AppError(AppError::Overflow, QStringLiteral("Overflow"));
    if (fineInterval == 0)
        throw AppError(AppError::DivisionByZero, QStringLiteral("Division by zero"));
    const qint16 days = qint16(late);
    Money fine = fineAmount * (days / fineInterval);
    if (days % fineInterval != 0)
        fine += fineAmount;
    return fine;
}

bool GetItemByAccession(const QString &accession, int *itemID)
{
    LibraryScope library;
    const auto rs = library.query(QStringLiteral("select accessionid, itemid from tbllibitems where accessionid = '") + Safesql(accession)
                                  + QStringLiteral("' and phasedout = false"));
    if (rs->atEnd())
        return false;
    if (itemID)
        *itemID = rs->field(QStringLiteral("itemid")).toInt();
    return true;
}

bool MemberExists(int memberID, const QString &memberType)
{
    const QString sql = byKind(memberType, QStringLiteral("select AccessionNo from Learner_info where status = 'C' and [ID] = ") + num(memberID),
                               QStringLiteral("select IDnumber from educators where status = 'C' and EdID= ") + num(memberID),
                               QStringLiteral("select IDnumber from staffmembers where status = 'C' and StaffID = ") + num(memberID));
    return !sql.isEmpty() && !SchoolQuery(sql)->atEnd();
}

bool ReturnOrRenewLoan(const QString &accession, const QDate &actionDate, qint16 maximumRenewals, const QString &mode,
                       const QDate &newDueDate, Money fineAmount, qint16 fineInterval, LoanHandled *handled)
{
    const QString notOut = QStringLiteral("This accession number is not out on loan and cannot be returned or renewed");
    LibraryScope library;
    DbConnection &db = library.connection();
    // The loan is read and changed in one transaction, so two desks closing the same loan
    // cannot both find it open; the fine and the loan change together or not at all.
    QString refusal;
    db.RunTransaction([&] {
        refusal.clear();
        const auto loan = db.Execute(QStringLiteral("select * from tbllibtransactions where accessionid = '") + Safesql(accession)
                                     + QStringLiteral("' and returned =  false"));
        if (loan->atEnd()) {
            refusal = notOut;
        } else {
            const int transactionID = loan->field(QStringLiteral("transactionid")).toInt();
            const QString memberType = loan->field(QStringLiteral("membertype")).toString();
            const int memberID = loan->field(QStringLiteral("memberid")).toInt();
            if (handled)
                *handled = LoanHandled{transactionID, memberType, memberID, QDate()};

            const qint16 extensions = loan->field(QStringLiteral("extensions")).isNull() ? 0 : loan->field(QStringLiteral("extensions")).toInt16();
            if (extensions == 32767)
                throw AppError(AppError::Overflow, QStringLiteral("Overflow"));
            const qint16 renewals = qint16(extensions + 1);
            if (maximumRenewals != 0 && renewals > maximumRenewals)
                refusal = QStringLiteral("This item has been renewed for the maximum number of times for this user and must be returned");
            else {
                // A renewal never shortens a loan: the later of the due date and the renewal's new date.
                const QDate dueDate = loan->field(QStringLiteral("duedate")).toDate();
                const QDate extended = newDueDate.isValid() && dueDate.isValid() ? std::max(dueDate, newDueDate) : newDueDate;
                if (!closeOrExtend(db, dueDate, transactionID, memberID, memberType, renewals,
                                   {accession, actionDate, mode, extended, fineAmount, fineInterval}))
                    refusal = notOut;
                else if (handled)
                    handled->dueDate = mode == QLatin1String("renewal") ? extended : dueDate;
            }
        }
        return refusal.isEmpty();
    });
    // The lock is given up before the librarian is shown anything.
    if (!refusal.isEmpty()) {
        UserMessage(refusal);
        return false;
    }
    return true;
}

bool ItemAvailable(const QString &accession, QString *borrowerType)
{
    LibraryScope library;
    const auto rs = library.query(QStringLiteral("select transactionid, membertype, returned from tbllibtransactions where (accessionid = '")
                                  + Safesql(accession) + QStringLiteral("') and returned = False"));
    if (rs->atEnd())
        return true;
    if (!rs->field(QStringLiteral("returned")).toBool()) {
        if (borrowerType)
            *borrowerType = rs->field(QStringLiteral("membertype")).toString();
        return false;
    }
    return true;
}

void GetItemHolder(int itemID, QString *memberType, QVariant *memberID)
{
    LibraryScope library;
    const auto rs = library.query(QStringLiteral("SELECT lt.memberType, lt.MemberID FROM tbllibtransactions AS lt WHERE lt.returned = False AND (lt.ItemID = ")
                                  + num(itemID) + QStringLiteral(")"));
    if (rs->atEnd())
        return;
    *memberType = rs->field(0).toString();
    *memberID = rs->field(1).value();
}

bool MemberCanBorrow(int memberID, const QString &memberType, qint16 maximumItems)
{
    LibraryScope library;
    const auto rs = library.query(QStringLiteral("Select Count(transactionid) as total from tbllibtransactions where memberid = ") + num(memberID)
                                  + QStringLiteral(" and membertype = '") + memberType + QStringLiteral("' and returned = false"));
    if (rs->atEnd())
        return true;
    return rs->field(QStringLiteral("total")).toLongLong() < maximumItems;
}

bool GetNextReservation(int itemID, int memberID, const QString &memberType, QString *reservedFor)
{
    std::shared_ptr<Recordset> reservation;
    {
        LibraryScope library;
        reservation = library.query(QStringLiteral(" select top 1 * from tbllibreserves  where (itemid = ") + num(itemID)
                                    + QStringLiteral(" and ([canceled] <> true or [canceled] = false)) order by [reservedate]"));
    }
    if (reservation->atEnd())
        return false;
    // Learners, educators and staff are numbered apart: learner 12 is not educator 12.
    const int holder = reservation->field(QStringLiteral("memberid")).toInt();
    const QString holderType = reservation->field(QStringLiteral("membertype")).toString();
    if (holder == memberID && holderType == memberType)
        return false;

    QString name;
    if (holderType == QLatin1String("L")) {
        const auto rs = SchoolQuery(QStringLiteral("select fname, sname, classname from Learner_info left join classes on Learner_info.class = classes.classid where [ID] = ")
                                     + num(holder));
        if (!rs->atEnd())
            name = rs->field(QStringLiteral("fname")).toString() + QLatin1Char(' ') + rs->field(QStringLiteral("sname")).toString()
                   + QLatin1Char(' ') + rs->field(QStringLiteral("classname")).toString();
    } else {
        const QString sql = holderType == QLatin1String("E") ? QStringLiteral("Select fname,sname from educators where EdID = ")
                                                             : QStringLiteral("Select fname,sname from staffmembers where StaffID = ");
        const auto rs = SchoolQuery(sql + num(holder));
        if (!rs->atEnd())
            name = rs->field(QStringLiteral("fname")).toString() + QLatin1Char(' ') + rs->field(QStringLiteral("sname")).toString();
    }
    if (reservedFor)
        *reservedFor = name;
    return true;
}

QVariant GetMemberIDNo(int memberID, const QString &memberType)
{
    return readIDNo(byKind(memberType,
                           QStringLiteral("Select id,sname,fname,accessionno as IDNo,classname from Learner_info left join classes On learner_info.class = classes.classid where status = 'C' and [ID] = ")
                               + num(memberID) + QStringLiteral(" order by sname,fname"),
                           QStringLiteral("Select edid,sname,fname,IDNumber as IDNo from Educators where status = 'C'and EdID = ") + num(memberID)
                               + QStringLiteral("  order by sname,fname"),
                           QStringLiteral("Select staffid,sname,fname, IDNumber as IDNo from staffmembers where status = 'C' and StaffID = ") + num(memberID)));
}

QVariant GetMemberByIDNo(const QString &identityNumber, const QString &memberType)
{
    return readIDNo(byKind(memberType,
                           QStringLiteral("Select id  as IDNo,sname,fname,accessionno,classname from Learner_info left join classes On learner_info.class = classes.classid where status = 'C' and AccessionNo = '")
                               + Safesql(identityNumber) + QStringLiteral("' order by sname,fname"),
                           QStringLiteral("Select edid  as IDNo,sname,fname,IDNumber from Educators where status = 'C'and IDNumber = '") + Safesql(identityNumber)
                               + QStringLiteral("'  order by sname,fname"),
                           QStringLiteral("Select staffid  as IDNo,sname,fname,IDNumber from staffmembers where status = 'C' and IDNumber = '") + Safesql(identityNumber)
                               + QStringLiteral("'")));
}

bool GetLoanHolderMessage(int memberID, const QString &memberType)
{
    // Any kind other than learner or educator is read as a staff member.
    const QString kind = memberType == QLatin1String("L") || memberType == QLatin1String("E") ? memberType : QStringLiteral("S");
    const auto rs = SchoolQuery(byKind(kind,
                                        QStringLiteral("Select sname,fname,accessionno,classname from Learner_info left join classes On learner_info.class = classes.classid where status = 'C' and iD = ")
                                            + num(memberID) + QStringLiteral(" order by sname,fname"),
                                        QStringLiteral("Select sname,fname,IDNumber from Educators where status = 'C'and edID = ") + num(memberID)
                                            + QStringLiteral("  order by sname,fname"),
                                        QStringLiteral("Select sname,fname,IDNumber from staffmembers where status = 'C' and staffID = ") + num(memberID)));
    QString message = QStringLiteral("This book is currently on loan ") + QStringLiteral("to ") + rs->field(QStringLiteral("fname")).toString()
                      + QLatin1Char(' ') + rs->field(QStringLiteral("sname")).toString();
    if (memberType == QLatin1String("L"))
        message += QStringLiteral(" in the ") + rs->field(QStringLiteral("classname")).toString() + QStringLiteral(" class");
    message += QStringLiteral(" and will be marked as returned before it is removed from the library stock.") + QStringLiteral("\r\n")
               + QStringLiteral("Are you sure you want to continue?");
    const bool answer = UserWarning(message);
    return answer;
}

void GetFineSettings(const QString &accession, const QString &userCategory, Money *fineAmount, qint16 *fineInterval)
{
    LibraryScope library;
    const auto rs = library.query(QStringLiteral("select fineAmount, fineInterval from tblLibSettings as ls inner join tbllibitems as li on ls.loantype = li.loantype where li.accessionid = '")
                                  + Safesql(accession) + QStringLiteral("' and ls.UserCat = '") + userCategory + QStringLiteral("'"));
    if (rs->atEnd())
        return;
    *fineAmount = rs->field(QStringLiteral("fineAmount")).toMoney();
    *fineInterval = rs->field(QStringLiteral("fineInterval")).toInt16();
}

IssueCheck CheckIssue(int memberID, const QString &memberType, qint16 maximumItems, const QString &accession)
{
    IssueCheck check;
    if (!MemberExists(memberID, memberType))
        check.refusal = IssueRefusal::UnknownMember;
    else if (!MemberCanBorrow(memberID, memberType, maximumItems))
        check.refusal = IssueRefusal::LoanLimit;
    else if (!GetItemByAccession(accession, &check.itemID))
        check.refusal = IssueRefusal::UnknownItem;
    else if (!ItemAvailable(accession))
        check.refusal = IssueRefusal::OnLoan;
    else if (GetNextReservation(check.itemID, memberID, memberType, &check.reservedFor))
        check.refusal = IssueRefusal::ReservedForAnother;
    return check;
}
