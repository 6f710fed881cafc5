#include "Recordset.h"

#include "AppError.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace {

const QString NoCurrentRecord = QStringLiteral(
    "Either BOF or EOF is True, or the current record has been deleted. Requested operation requires a current record.");

[[noreturn]] void invalidUseOfNull() { throw AppError(94, QStringLiteral("Invalid use of Null")); }
[[noreturn]] void typeMismatch() { throw AppError(AppError::TypeMismatch, QStringLiteral("Type mismatch")); }

QDateTime parseStoredDate(const QString &text)
{
    if (text.size() <= 10)
        return QDateTime(QDate::fromString(text, Qt::ISODate), QTime(0, 0));
    QDateTime dt = QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    if (!dt.isValid())
        dt = QDateTime::fromString(text, Qt::ISODate);
    return dt;
}

// Round half to even, as the old runtime's integer conversions do.
double bankersRound(double v)
{
    return v - std::floor(v) == 0.5 ? 2.0 * std::round(v / 2.0) : std::round(v);
}

} // namespace

void Recordset::addColumn(const QString &name, FieldType type) { columns_.push_back(Column{name, type}); }

void Recordset::reserveRows(size_t rows) { cells_.reserve(rows * columns_.size()); }

void Recordset::appendText(const char *data, size_t size)
{
    Cell c;
    c.storage = Cell::Text;
    c.offset = text_.size();
    c.length = std::uint32_t(size);
    text_.append(data, size);
    cells_.push_back(c);
}

void Recordset::announceFirstRows()
{
    rows_ = int(cells_.size() / columns_.size());
    position_ = 0;
    const FirstRows show = std::move(firstRows_);
    firstRowCount_ = 0;
    show(*this);
    rows_ = 0;
    position_ = 0;
}

void Recordset::finish()
{
    rows_ = columns_.empty() ? 0 : int(cells_.size() / columns_.size());
    position_ = 0;
}

QStringList Recordset::fieldNames() const
{
    QStringList names;
    for (const Column &c : columns_)
        names << c.name;
    return names;
}

int Recordset::fieldIndex(const QString &name) const
{
    for (size_t i = 0; i < columns_.size(); ++i)
        if (columns_[i].name.compare(name, Qt::CaseInsensitive) == 0)
            return int(i);
    return -1;
}

Field Recordset::field(int column) const
{
    if (column < 0 || column >= fieldCount())
        throw AppError(3265, QStringLiteral("Item cannot be found in the collection corresponding to the requested name or ordinal."));
    if (atEnd() || atStart())
        throw AppError(AppError::NoCurrentRecord, NoCurrentRecord);
    return Field(this, position_, column);
}

Field Recordset::field(const QString &name) const { return field(fieldIndex(name)); }

const Recordset::Cell &Recordset::cell(int row, int column) const
{
    return cells_[size_t(row) * columns_.size() + size_t(column)];
}

QString Field::name() const { return rs_->fieldName(column_); }

bool Field::isNull() const { return rs_->cell(row_, column_).storage == Recordset::Cell::Null; }

Field::Stored Field::stored() const
{
    switch (rs_->cell(row_, column_).storage) {
    case Recordset::Cell::Integer: return Stored::Integer;
    case Recordset::Cell::Real: return Stored::Real;
    case Recordset::Cell::Text: return Stored::Text;
    default: return Stored::Null;
    }
}

qint64 Field::storedInteger() const { return rs_->cell(row_, column_).i; }
double Field::storedReal() const { return rs_->cell(row_, column_).d; }
std::string_view Field::storedText() const
{
    const auto &c = rs_->cell(row_, column_);
    return std::string_view(rs_->text_.data() + c.offset, c.length);
}

QVariant Field::value() const
{
    const auto &c = rs_->cell(row_, column_);
    if (c.storage == Recordset::Cell::Null)
        return QVariant();
    switch (rs_->fieldType(column_)) {
    case Recordset::FieldType::Bool:
        return toBool();
    case Recordset::FieldType::Date: {
        const QDateTime dt = toDateTime();
        return dt.time() == QTime(0, 0) ? QVariant(dt.date()) : QVariant(dt);
    }
    case Recordset::FieldType::Currency:
        return toMoney().toDouble();
    default:
        break;
    }
    switch (c.storage) {
    case Recordset::Cell::Integer: return QVariant(qlonglong(c.i));
    case Recordset::Cell::Real: return QVariant(c.d);
    default: return QVariant(rs_->text(c));
    }
}

QString Field::toString() const
{
    const auto &c = rs_->cell(row_, column_);
    switch (c.storage) {
    case Recordset::Cell::Null:
        return QString();
    case Recordset::Cell::Text:
        return rs_->text(c);
    default:
        break;
    }
    switch (rs_->fieldType(column_)) {
    case Recordset::FieldType::Bool:
        return toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case Recordset::FieldType::Currency:
        return toMoney().toSqlText();
    default:
        break;
    }
    return c.storage == Recordset::Cell::Integer ? QString::number(c.i) : QString::number(c.d, 'g', 15);
}

namespace {
// A double rounded to a whole number as the old runtime did; beyond 64 bits it overflows.
qint64 wholeNumber(double d)
{
    if (!std::isfinite(d) || std::fabs(d) > 9.2e18)
        throw AppError(AppError::Overflow, QStringLiteral("Overflow"));
    return qint64(bankersRound(d));
}
} // namespace

qint64 Field::toLongLong() const
{
    const auto &c = rs_->cell(row_, column_);
    switch (c.storage) {
    case Recordset::Cell::Null:
        invalidUseOfNull();
    case Recordset::Cell::Integer:
        return c.i;
    case Recordset::Cell::Real:
        return wholeNumber(c.d);
    case Recordset::Cell::Text: {
        bool ok = false;
        const QString t = rs_->text(c).trimmed();
        const qint64 v = t.toLongLong(&ok);
        if (ok)
            return v;
        const double d = t.toDouble(&ok);
        if (!ok)
            typeMismatch();
        return wholeNumber(d);
    }
    }
    return 0;
}

int Field::toInt() const
{
    const qint64 v = toLongLong();
    if (v < std::numeric_limits<int>::min() || v > std::numeric_limits<int>::max())
        throw AppError(AppError::Overflow, QStringLiteral("Overflow"));
    return int(v);
}

qint16 Field::toInt16() const
{
    const qint64 v = toLongLong();
    if (v < -32768 || v > 32767)
        throw AppError(AppError::Overflow, QStringLiteral("Overflow"));
    return qint16(v);
}

double Field::toDouble() const
{
    const auto &c = rs_->cell(row_, column_);
    switch (c.storage) {
    case Recordset::Cell::Null:
        invalidUseOfNull();
    case Recordset::Cell::Integer:
        return double(c.i);
    case Recordset::Cell::Real:
        return c.d;
    case Recordset::Cell::Text: {
        bool ok = false;
        const double d = rs_->text(c).trimmed().toDouble(&ok);
        if (!ok)
            typeMismatch();
        return d;
    }
    }
    return 0;
}

Money Field::toMoney() const
{
    const auto &c = rs_->cell(row_, column_);
    if (c.storage == Recordset::Cell::Integer)
        return Money::fromUnits(c.i * Money::Scale);
    if (c.storage == Recordset::Cell::Text) {
        Money m;
        if (!Money::parse(rs_->text(c), &m))
            typeMismatch();
        return m;
    }
    return Money::fromDouble(toDouble());
}

bool Field::toBool() const
{
    const auto &c = rs_->cell(row_, column_);
    if (c.storage == Recordset::Cell::Text) {
        const QString t = rs_->text(c).trimmed();
        if (t.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
            return true;
        if (t.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
            return false;
    }
    return toDouble() != 0.0;
}

QDate Field::toDate() const { return toDateTime().date(); }

QDateTime Field::toDateTime() const
{
    const auto &c = rs_->cell(row_, column_);
    if (c.storage == Recordset::Cell::Null)
        invalidUseOfNull();
    if (c.storage != Recordset::Cell::Text)
        typeMismatch();
    const QDateTime dt = parseStoredDate(rs_->text(c));
    if (!dt.isValid())
        typeMismatch();
    return dt;
}

void Field::appendUtf8(std::string *out) const
{
    const auto &c = rs_->cell(row_, column_);
    const Recordset::FieldType type = rs_->fieldType(column_);
    if (c.storage == Recordset::Cell::Text) {
        out->append(rs_->text_.data() + c.offset, c.length);
        return;
    }
    if (c.storage == Recordset::Cell::Integer && type != Recordset::FieldType::Bool && type != Recordset::FieldType::Currency) {
        char buf[24];
        const auto r = std::to_chars(buf, buf + sizeof buf, c.i);
        out->append(buf, size_t(r.ptr - buf));
        return;
    }
    if (c.storage != Recordset::Cell::Null)
        out->append(toString().toStdString());
}
