#include "Stocktake.h"

#include "AppError.h"
#include "Clock.h"
#include "DbConnection.h"
#include "LoanRoutines.h"
#include "Recordset.h"
#include "SqlText.h"
#include "DatabaseLocations.h"

#include <QStringList>

namespace {

QString numberList(const std::vector<int> &numbers)
{
    QStringList list;
    for (int n : numbers)
        list << QString::number(n);
    return list.join(QLatin1Char(','));
}

// Only digits and commas are ever kept in a scope, so it can stand in a statement as it is.
bool isNumberList(const QString &text)
{
    for (QChar c : text)
        if (!c.isDigit() && c != QLatin1Char(','))
            return false;
    return true;
}

int countOf(const QString &sql)
{
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    const auto rs = db->Execute(sql);
    return rs->atEnd() || rs->field(0).isNull() ? 0 : rs->field(0).toInt();
}

std::vector<Stocktake::Copy> copies(const QString &sql)
{
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    std::vector<Stocktake::Copy> out;
    for (auto rs = db->Execute(sql); !rs->atEnd(); rs->MoveNext())
        out.push_back({rs->field(0).toString(), rs->field(1).toString()});
    return out;
}

} // namespace

QString Stocktake::scope(const QString &alias) const
{
    QStringList parts;
    if (!categories_.isEmpty())
        parts << alias + QStringLiteral(".CategoryID in (") + categories_ + QLatin1Char(')');
    if (!subCategories_.isEmpty())
        parts << alias + QStringLiteral(".SubCategoryID in (") + subCategories_ + QLatin1Char(')');
    return parts.isEmpty() ? QStringLiteral("1 = 1") : QLatin1Char('(') + parts.join(QStringLiteral(" or ")) + QLatin1Char(')');
}

Stocktake Stocktake::start(const QString &name, const QDate &startDate, const std::vector<int> &categories, const std::vector<int> &subCategories)
{
    if (name.trimmed().isEmpty())
        throw AppError(AppError::ProviderError, QStringLiteral("Please give the stocktake a name."));
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    Stocktake s;
    s.name_ = name.trimmed().left(100);
    s.startDate_ = startDate;
    s.categories_ = numberList(categories);
    s.subCategories_ = numberList(subCategories);
    db->RunTransaction([&] {
        if (!db->Execute(QStringLiteral("select StocktakeID from tblLibStocktakes where Finished = false"))->atEnd())
            throw AppError(AppError::ProviderError, QStringLiteral("Another stocktake is still open: finish it first."));
        s.id_ = int(db->ExecuteInsert(QStringLiteral("Insert into tblLibStocktakes (StocktakeName, StartDate, Categories, SubCategories) Values ('")
                                          + Safesql(s.name_) + QStringLiteral("', ") + JetDate(startDate) + QStringLiteral(", '") + s.categories_
                                          + QStringLiteral("', '") + s.subCategories_ + QStringLiteral("')"),
                                      QStringLiteral("StocktakeID")));
        return true;
    });
    s.recount();
    return s;
}

std::optional<Stocktake> Stocktake::open() { return read(QStringLiteral("where Finished = false")); }

std::optional<Stocktake> Stocktake::latest() { return read(QString()); }

std::optional<Stocktake> Stocktake::read(const QString &condition)
{
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    const auto rs = db->Execute(QStringLiteral("select StocktakeID, StocktakeName, StartDate, Categories, SubCategories, Finished, ScannedCount, "
                                               "ExpectedCount from tblLibStocktakes ")
                                + condition + QStringLiteral(" order by StocktakeID desc"));
    if (rs->atEnd())
        return std::nullopt;
    Stocktake s;
    s.id_ = rs->field(0).toInt();
    s.name_ = rs->field(1).toString();
    s.startDate_ = rs->field(2).toDate();
    s.categories_ = rs->field(3).toString();
    s.subCategories_ = rs->field(4).toString();
    s.finished_ = rs->field(5).toBool();
    if (!isNumberList(s.categories_) || !isNumberList(s.subCategories_))
        throw AppError(AppError::TypeMismatch, QStringLiteral("The stocktake's scope is damaged."));
    if (s.finished_ && !rs->field(6).isNull()) {
        s.scanned_ = rs->field(6).toInt();
        s.expected_ = rs->field(7).toInt();
    } else {
        s.recount();
    }
    return s;
}

namespace {
std::vector<int> numbersOf(const QString &list)
{
    std::vector<int> numbers;
    for (const QString &n : list.split(QLatin1Char(','), Qt::SkipEmptyParts))
        numbers.push_back(n.toInt());
    return numbers;
}
} // namespace

std::vector<int> Stocktake::categories() const { return numbersOf(categories_); }
std::vector<int> Stocktake::subCategories() const { return numbersOf(subCategories_); }

std::vector<std::pair<Stocktake::Scan, Stocktake::Copy>> Stocktake::exceptions() const
{
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    std::vector<std::pair<Scan, Copy>> out;
    const auto rs = db->Execute(QStringLiteral("select s.Outcome, s.AccessionID, i.Title from tblLibStocktakeScans as s left join tblLibItems as i on "
                                               "s.ItemID = i.ItemID where s.StocktakeID = ")
                                + QString::number(id_) + QStringLiteral(" and s.Outcome in ('U', 'O', 'P', 'L') order by s.ScannedAt, s.AccessionID"));
    for (; !rs->atEnd(); rs->MoveNext()) {
        const QString code = rs->field(0).toString();
        const Scan kind = code == QLatin1String("U") ? Scan::Unknown : code == QLatin1String("O") ? Scan::OutsideScope
                          : code == QLatin1String("P") ? Scan::PhasedOut : Scan::OnLoan;
        out.push_back({kind, {rs->field(1).toString(), rs->field(2).toString()}});
    }
    return out;
}

Stocktake::Scan Stocktake::scan(const QString &typed)
{
    const QString accession = typed.trimmed();
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    const auto item = db->Execute(QStringLiteral("select i.ItemID, i.PhasedOut, ") + scope(QStringLiteral("i"))
                                  + QStringLiteral(" as inScope from tblLibItems as i where i.AccessionID = '") + Safesql(accession)
                                  + QStringLiteral("'"));
    Scan outcome = Scan::Unknown;
    QString itemID = QStringLiteral("Null");
    if (!item->atEnd()) {
        itemID = item->field(0).toString();
        if (item->field(1).toBool())
            outcome = Scan::PhasedOut;
        else if (!item->field(2).toBool())
            outcome = Scan::OutsideScope;
        else if (!db->Execute(QStringLiteral("select TransactionID from tblLibTransactions where ItemID = ") + itemID
                              + QStringLiteral(" and Returned = false"))
                      ->atEnd())
            outcome = Scan::OnLoan;
        else
            outcome = Scan::OnShelf;
    }
    static const char codes[] = {'S', 'D', 'U', 'O', 'P', 'L'};
    try {
        db->Execute(QStringLiteral("Insert into tblLibStocktakeScans (StocktakeID, AccessionID, ItemID, ScannedAt, Outcome) Values (")
                    + QString::number(id_) + QStringLiteral(", '") + Safesql(accession.left(50)) + QStringLiteral("', ") + itemID
                    + QStringLiteral(", ") + JetDate(Clock::today()) + QStringLiteral(", '") + QLatin1Char(codes[int(outcome)])
                    + QStringLiteral("')"));
    } catch (const AppError &e) {
        if (e.cause() == AppError::Cause::Duplicate)
            return Scan::AlreadyScanned; // the number was recorded before: nothing changes
        throw;
    }
    if (outcome == Scan::OnShelf || outcome == Scan::OnLoan)
        ++scanned_;
    return outcome;
}

void Stocktake::countInDatabase(int *scanned, int *expected) const
{
    *scanned = countOf(QStringLiteral("select count(*) from tblLibStocktakeScans where StocktakeID = ") + QString::number(id_)
                       + QStringLiteral(" and Outcome in ('S', 'L')"));
    *expected = countOf(QStringLiteral("select count(*) from tblLibItems as i where i.PhasedOut = false and ") + scope(QStringLiteral("i")));
}

void Stocktake::recount() { countInDatabase(&scanned_, &expected_); }

Stocktake::Result Stocktake::result() const
{
    Result r;
    const QString id = QString::number(id_);
    const QString scanned = QStringLiteral("select s.AccessionID, i.Title from tblLibStocktakeScans as s left join tblLibItems as i on s.ItemID = i.ItemID "
                                           "where s.StocktakeID = ") + id + QStringLiteral(" and s.Outcome = '%1' order by s.AccessionID");
    // Once finished, the copies missing at finishing (kept then), whatever became of them since.
    r.missing = finished_ ? copies(scanned.arg(QLatin1Char('M')))
                          : copies(QStringLiteral("select i.AccessionID, i.Title from tblLibItems as i where ") + missingCondition(QStringLiteral("i"))
                                   + QStringLiteral(" order by i.AccessionID"));
    r.phasedOut = copies(scanned.arg(QLatin1Char('P')));
    r.onLoan = copies(scanned.arg(QLatin1Char('L')));
    r.unknown = copies(scanned.arg(QLatin1Char('U')));
    r.outside = copies(scanned.arg(QLatin1Char('O')));
    if (finished_) {
        r.scanned = scanned_;
        r.expected = expected_;
    } else {
        countInDatabase(&r.scanned, &r.expected);
    }
    return r;
}

bool Stocktake::returnToShelf(const QString &accession, Money *fine)
{
    QString memberType;
    if (ItemAvailable(accession, &memberType))
        return ReturnOrRenewLoan(accession, Clock::today(), 0, QStringLiteral("return"), QDate(), Money(), 1); // tells that it is not out
    Money fineAmount;
    qint16 fineInterval = 1;
    GetFineSettings(accession, memberType, &fineAmount, &fineInterval);
    LoanHandled handled;
    if (!ReturnOrRenewLoan(accession, Clock::today(), 0, QStringLiteral("return"), QDate(), fineAmount, fineInterval, &handled))
        return false;
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    db->Execute(QStringLiteral("Update tblLibStocktakeScans set Outcome = 'S' where StocktakeID = ") + QString::number(id_)
                + QStringLiteral(" and AccessionID = '") + Safesql(accession) + QStringLiteral("'"));
    if (fine) {
        const auto charged = db->Execute(QStringLiteral("select FineAmount from tblLibTransactionFines where TransactionID = ")
                                         + QString::number(handled.transactionID));
        *fine = charged->atEnd() ? Money() : charged->field(0).toMoney();
    }
    recount();
    return true;
}

void Stocktake::finish()
{
    recount();
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    const QString id = QString::number(id_);
    // The result is kept as it stands: the missing copies as rows of their own, and the counts.
    db->RunTransaction([&] {
        db->Execute(QStringLiteral("Insert into tblLibStocktakeScans (StocktakeID, AccessionID, ItemID, ScannedAt, Outcome) select ") + id
                    + QStringLiteral(", i.AccessionID, min(i.ItemID), ") + JetDate(Clock::today())
                    + QStringLiteral(", 'M' from tblLibItems as i where ") + missingCondition(QStringLiteral("i"))
                    + QStringLiteral(" group by i.AccessionID"));
        db->Execute(QStringLiteral("Update tblLibStocktakes set Finished = true, ScannedCount = ") + QString::number(scanned_)
                    + QStringLiteral(", ExpectedCount = ") + QString::number(expected_) + QStringLiteral(" where StocktakeID = ") + id);
        return true;
    });
    finished_ = true;
}

QString Stocktake::missingCondition(const QString &alias) const
{
    // In scope and on the books, neither scanned nor out on loan.
    return alias + QStringLiteral(".PhasedOut = false and ") + scope(alias) + QStringLiteral(" and ") + alias
           + QStringLiteral(".ItemID not in (select ItemID from tblLibStocktakeScans where StocktakeID = ") + QString::number(id_)
           + QStringLiteral(" and ItemID is not null and Outcome <> 'M') and ") + alias
           + QStringLiteral(".ItemID not in (select ItemID from tblLibTransactions where Returned = false)");
}

int Stocktake::markMissingLost()
{
    // One statement decides, inside the transaction, which copies are still missing: a copy lent,
    // scanned or removed by another desk since the result was shown is left as it is. A finished
    // stocktake marks only what its kept result lists.
    QString lost = QStringLiteral(" Update tblLibItems Set PhasedOut = true ,PhasedOutDate = ") + JetDate(startDate_)
                   + QStringLiteral(" ,PhasedOutReason = 'Lost' Where ") + missingCondition(QStringLiteral("tblLibItems"));
    if (finished_)
        lost += QStringLiteral(" and ItemID in (select ItemID from tblLibStocktakeScans where StocktakeID = ") + QString::number(id_)
                + QStringLiteral(" and Outcome = 'M')");
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    int marked = 0;
    db->RunTransaction([&] {
        db->Execute(lost, &marked);
        return true;
    });
    if (!finished_)
        recount();
    return marked;
}
