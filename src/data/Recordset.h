#pragma once

#include "Money.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class Recordset;

/// One value of the current row of a Recordset. Conversions follow the old
/// runtime's rules: a number held as text converts, Null does not.
class Field {
public:
    Field(const Recordset *rs, int row, int column) : rs_(rs), row_(row), column_(column) {}

    QString name() const;
    bool isNull() const;
    /// Null gives an invalid QVariant; Booleans give bool, dates QDate/QDateTime, currency double.
    QVariant value() const;
    /// Text as a grid shows it ("True"/"False", ISO dates, plain numbers); Null gives "".
    QString toString() const;
    /// toString() without the blanks around it (names and titles as typed, padded or not).
    QString trimmed() const { return toString().trimmed(); }
    qint64 toLongLong() const;
    int toInt() const;
    /// The old 16-bit conversion: throws AppError Overflow beyond -32768..32767.
    qint16 toInt16() const;
    double toDouble() const;
    Money toMoney() const;
    bool toBool() const;
    QDate toDate() const;
    QDateTime toDateTime() const;
    /// Appends toString()'s text as UTF-8, without building a QString for plain texts and numbers.
    void appendUtf8(std::string *out) const;
    /// The value as the engine handed it over (copying between engines): an integer, a real
    /// number or text; Null is none of them.
    enum class Stored { Null, Integer, Real, Text };
    Stored stored() const;
    qint64 storedInteger() const;
    double storedReal() const;
    std::string_view storedText() const;

private:
    const Recordset *rs_;
    int row_;
    int column_;
};

/// A client-side static result: every row read at once, so RecordCount is
/// exact and the cursor moves freely. Values are kept compact (numbers inline,
/// texts in one UTF-8 buffer) and converted only when a field is read.
class Recordset {
public:
    enum class FieldType : std::uint8_t { Unknown, Integer, Double, Text, Bool, Date, Currency };

    // Building, used by the engines.
    void addColumn(const QString &name, FieldType type);
    void reserveRows(size_t rows);
    void appendNull() { cells_.push_back(Cell{}); }
    void appendInteger(std::int64_t v) { Cell c; c.storage = Cell::Integer; c.i = v; cells_.push_back(c); }
    void appendDouble(double v) { Cell c; c.storage = Cell::Real; c.d = v; cells_.push_back(c); }
    void appendText(const char *data, size_t size);
    /// Ends building: row count from the cells appended, cursor on the first row.
    void finish();

    /// A reader that wants to show the first rows of a long result while the rest is still read
    /// (a list's first screenful) sets this before the statement runs: the engine calls it once,
    /// after `count` rows, with the result holding just those rows.
    using FirstRows = std::function<void(const Recordset &firstRows)>;
    void setFirstRows(int count, FirstRows show)
    {
        firstRowCount_ = count;
        firstRows_ = std::move(show);
    }
    /// For the engines: called after each row appended.
    void rowAppended()
    {
        if (firstRowCount_ > 0 && int(cells_.size() / columns_.size()) == firstRowCount_)
            announceFirstRows();
    }

    // Reading.
    int RecordCount() const { return rows_; }
    bool atEnd() const { return position_ >= rows_ || rows_ == 0; }
    bool atStart() const { return position_ < 0 || rows_ == 0; }
    void MoveFirst() { position_ = 0; }
    void MoveNext() { if (position_ < rows_) ++position_; }
    void MovePrevious() { if (position_ >= 0) --position_; }
    void MoveLast() { position_ = rows_ - 1; }
    int AbsolutePosition() const { return position_; }

    int fieldCount() const { return int(columns_.size()); }
    QString fieldName(int column) const { return columns_.at(size_t(column)).name; }
    QStringList fieldNames() const;
    FieldType fieldType(int column) const { return columns_.at(size_t(column)).type; }
    /// Case-insensitive; -1 when there is no such field.
    int fieldIndex(const QString &name) const;
    /// The current row's field. Throws AppError when the cursor is past either end or the field is unknown.
    Field field(int column) const;
    Field field(const QString &name) const;
    /// Any row's field, without moving the cursor.
    Field fieldAt(int row, int column) const { return Field(this, row, column); }

private:
    friend class Field;
    struct Cell {
        enum Storage : std::uint8_t { Null, Integer, Real, Text } storage = Null;
        std::uint32_t length = 0;
        union {
            std::int64_t i = 0;
            double d;
            std::uint64_t offset;
        };
    };
    const Cell &cell(int row, int column) const;
    void announceFirstRows();
    QString text(const Cell &c) const { return QString::fromUtf8(text_.data() + c.offset, qsizetype(c.length)); }

    struct Column { QString name; FieldType type; };
    std::vector<Column> columns_;
    std::vector<Cell> cells_;
    std::string text_;
    int rows_ = 0;
    int position_ = 0;
    int firstRowCount_ = 0;
    FirstRows firstRows_;
};
