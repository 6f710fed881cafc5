#include "Stocktake.h"

#include "AppError.h"
#include "Clock.h"
#include "DbConnection.h"
#include "LoanRoutines.h"
#include "Recordset.h"
#include "SqlText.h"
#include "UpdateDatabase.h"

#include <QStringList>

namespace {

QString jetDate(const QDate &d) { return QLatin1Char('#') + d.toString(QStringLiteral("yyyy-MM-dd")) + QLatin1Char('#'); }

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
        db->Execute(QStringLiteral("Insert into tblLibStocktakes (StocktakeName, StartDate, Categories, SubCategories) Values ('")
                    + Safesql(s.name_) + QStringLiteral("', ") + jetDate(startDate) + QStringLiteral(", '") + s.categories_
                    + QStringLiteral("', '") + s.subCategories_ + QStringLiteral("')"));
        s.id_ = db->Execute(QStringLiteral("select max(StocktakeID) from tblLibStocktakes"))->field(0).toInt();
        return true;
    });
    s.recount();
    return s;
}

std::optional<Stocktake> Stocktake::open()
{
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    const auto rs = db->Execute(QStringLiteral("select StocktakeID, StocktakeName, StartDate, Categories, SubCategories from tblLibStocktakes "
                                               "where Finished = false order by StocktakeID desc"));
    if (rs->atEnd())
        return std::nullopt;
    Stocktake s;
    s.id_ = rs->field(0).toInt();
    s.name_ = rs->field(1).toString();
    s.startDate_ = rs->field(2).toDate();
    s.categories_ = rs->field(3).toString();
    s.subCategories_ = rs->field(4).toString();
    if (!isNumberList(s.categories_) || !isNumberList(s.subCategories_))
        throw AppError(AppError::TypeMismatch, QStringLiteral("The stocktake's scope is damaged."));
    s.recount();
    return s;
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
                    + QStringLiteral(", ") + jetDate(Clock::today()) + QStringLiteral(", '") + QLatin1Char(codes[int(outcome)])
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
    r.missing = copies(QStringLiteral("select i.AccessionID, i.Title from tblLibItems as i where i.PhasedOut = false and ") + scope(QStringLiteral("i"))
                       + QStringLiteral(" and i.ItemID not in (select ItemID from tblLibStocktakeScans where StocktakeID = ") + id
                       + QStringLiteral(" and ItemID is not null) and i.ItemID not in (select ItemID from tblLibTransactions where Returned = false)"
                                        " order by i.AccessionID"));
    r.phasedOut = copies(scanned.arg(QLatin1Char('P')));
    r.onLoan = copies(scanned.arg(QLatin1Char('L')));
    r.unknown = copies(scanned.arg(QLatin1Char('U')));
    r.outside = copies(scanned.arg(QLatin1Char('O')));
    countInDatabase(&r.scanned, &r.expected);
    return r;
}

bool Stocktake::returnToShelf(const QString &accession)
{
    QString memberType;
    if (ItemAvailable(accession, &memberType))
        return ReturnOrRenewLoan(accession, Clock::today(), 0, QStringLiteral("return"), QDate(), Money(), 1); // tells that it is not out
    Money fineAmount;
    qint16 fineInterval = 1;
    GetFineSettings(accession, memberType, &fineAmount, &fineInterval);
    if (!ReturnOrRenewLoan(accession, Clock::today(), 0, QStringLiteral("return"), QDate(), fineAmount, fineInterval))
        return false;
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    db->Execute(QStringLiteral("Update tblLibStocktakeScans set Outcome = 'S' where StocktakeID = ") + QString::number(id_)
                + QStringLiteral(" and AccessionID = '") + Safesql(accession) + QStringLiteral("'"));
    recount();
    return true;
}

void Stocktake::finish()
{
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    db->Execute(QStringLiteral("Update tblLibStocktakes set Finished = true where StocktakeID = ") + QString::number(id_));
}

int Stocktake::markMissingLost()
{
    // One statement decides, inside the transaction, which copies are still missing: a copy lent,
    // scanned or removed by another desk since the result was shown is left as it is.
    const QString lost = QStringLiteral(" Update tblLibItems Set PhasedOut = true ,PhasedOutDate = ") + jetDate(startDate_)
                         + QStringLiteral(" ,PhasedOutReason = 'Lost' Where PhasedOut = false and ") + scope(QStringLiteral("tblLibItems"))
                         + QStringLiteral(" and ItemID not in (select ItemID from tblLibStocktakeScans where StocktakeID = ") + QString::number(id_)
                         + QStringLiteral(" and ItemID is not null) and ItemID not in (select ItemID from tblLibTransactions where Returned = false)");
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    int marked = 0;
    db->RunTransaction([&] {
        db->Execute(lost, &marked);
        return true;
    });
    recount();
    return marked;
}
