#include "AppError.h"
#include "Money.h"
#include "Recordset.h"

#include <gtest/gtest.h>

TEST(MoneyValues, ParseFormatAndArithmeticAreExact)
{
    Money m;
    ASSERT_TRUE(Money::parse("12.5", &m));
    EXPECT_EQ(m.units(), 125000);
    EXPECT_EQ(m.toSqlText(), "12.5");
    EXPECT_EQ(m.toDisplayText(), "12.50");
    ASSERT_TRUE(Money::parse("-0.0001", &m));
    EXPECT_EQ(m.toSqlText(), "-0.0001");
    ASSERT_TRUE(Money::parse(" 3 ", &m));
    EXPECT_EQ(m.toSqlText(), "3");
    for (const char *bad : {"", "abc", "1.23456", "1e5", "--1", "12.5.1", "."})
        EXPECT_FALSE(Money::parse(bad, &m)) << bad;
    // Ten fines of 0.10 are exactly 1, as a currency sum must be.
    Money total;
    for (int i = 0; i < 10; ++i)
        total += Money::fromDouble(0.1);
    EXPECT_EQ(total, Money::fromUnits(10000));
    EXPECT_EQ((Money::fromUnits(5000) * 3).toSqlText(), "1.5");
}

namespace {
// A one-row result with one field of each kind the engines deliver.
Recordset sample()
{
    Recordset rs;
    rs.addColumn("Count", Recordset::FieldType::Integer);
    rs.addColumn("Amount", Recordset::FieldType::Currency);
    rs.addColumn("Flag", Recordset::FieldType::Bool);
    rs.addColumn("When", Recordset::FieldType::Date);
    rs.addColumn("Text", Recordset::FieldType::Text);
    rs.addColumn("Empty", Recordset::FieldType::Text);
    rs.addColumn("Big", Recordset::FieldType::Integer);
    rs.addColumn("Half", Recordset::FieldType::Double);
    rs.appendInteger(42);
    rs.appendDouble(0.3);
    rs.appendInteger(-1);
    const std::string when = "2026-11-23 14:05:00";
    rs.appendText(when.data(), when.size());
    const std::string text = " 17 ";
    rs.appendText(text.data(), text.size());
    rs.appendNull();
    rs.appendInteger(40000);
    rs.appendDouble(2.5);
    rs.finish();
    return rs;
}
} // namespace

TEST(RecordsetValues, FieldsConvertAsTheOldRuntimeDid)
{
    const Recordset rs = sample();
    EXPECT_EQ(rs.RecordCount(), 1);
    EXPECT_EQ(rs.field("count").toInt(), 42);
    EXPECT_EQ(rs.field("AMOUNT").toMoney(), Money::fromUnits(3000));
    EXPECT_EQ(rs.field("Amount").toString(), "0.3");
    EXPECT_TRUE(rs.field("Flag").toBool());
    EXPECT_EQ(rs.field("Flag").toString(), "True");
    EXPECT_EQ(rs.field("Flag").toInt(), -1);
    EXPECT_EQ(rs.field("When").toDateTime(), QDateTime(QDate(2026, 11, 23), QTime(14, 5)));
    EXPECT_EQ(rs.field("When").value().typeId(), QMetaType::QDateTime);
    EXPECT_EQ(rs.field("Text").toInt(), 17); // a number held as text converts
    EXPECT_EQ(rs.field("Half").toInt(), 2);  // halves round to even
    EXPECT_TRUE(rs.field("Empty").isNull());
    EXPECT_FALSE(rs.field("Empty").value().isValid());
    EXPECT_EQ(rs.field("Empty").toString(), "");
    std::string utf8;
    rs.field("Flag").appendUtf8(&utf8);
    rs.field("Count").appendUtf8(&utf8);
    EXPECT_EQ(utf8, "True42");
}

TEST(RecordsetValues, ImpossibleConversionsRaiseTheRuntimesErrors)
{
    const Recordset rs = sample();
    auto number = [&](auto f) {
        try {
            f();
        } catch (const AppError &e) {
            return e.number();
        }
        return 0.0;
    };
    EXPECT_EQ(number([&] { rs.field("Big").toInt16(); }), AppError::Overflow);
    EXPECT_EQ(number([&] { rs.field("Empty").toInt(); }), 94.0); // invalid use of Null
    EXPECT_EQ(number([&] { rs.field("When").toInt(); }), AppError::TypeMismatch);
    EXPECT_EQ(number([&] { rs.field("Count").toDate(); }), AppError::TypeMismatch);
    EXPECT_EQ(number([&] { rs.field("NoSuchField"); }), 3265.0);

    Recordset empty;
    empty.addColumn("x", Recordset::FieldType::Integer);
    empty.finish();
    EXPECT_TRUE(empty.atEnd());
    EXPECT_EQ(number([&] { empty.field(0); }), AppError::NoCurrentRecord);
}

TEST(RecordsetValues, TheCursorMovesBothWays)
{
    Recordset rs;
    rs.addColumn("n", Recordset::FieldType::Integer);
    for (int i = 1; i <= 3; ++i)
        rs.appendInteger(i);
    rs.finish();
    rs.MoveLast();
    EXPECT_EQ(rs.field(0).toInt(), 3);
    rs.MovePrevious();
    EXPECT_EQ(rs.field(0).toInt(), 2);
    rs.MoveNext();
    rs.MoveNext();
    EXPECT_TRUE(rs.atEnd());
    rs.MoveFirst();
    EXPECT_EQ(rs.field(0).toInt(), 1);
    EXPECT_EQ(rs.fieldNames(), QStringList{"n"});
}
