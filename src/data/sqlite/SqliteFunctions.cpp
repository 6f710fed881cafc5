#include "SqliteFunctions.h"

#include "Clock.h"

#include <QDateTime>
#include <QString>

#include <sqlite3.h>

#include <cmath>
#include <limits>

namespace {

QString argText(sqlite3_value *v)
{
    const unsigned char *t = sqlite3_value_text(v);
    return QString::fromUtf8(reinterpret_cast<const char *>(t), sqlite3_value_bytes(v));
}

void resultText(sqlite3_context *ctx, const QString &s)
{
    const QByteArray utf8 = s.toUtf8();
    sqlite3_result_text(ctx, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
}

bool argNumber(sqlite3_value *v, double *out);

// Dates are stored as "yyyy-MM-dd" or "yyyy-MM-dd HH:mm:ss".
QDateTime argDate(sqlite3_value *v, bool *ok)
{
    *ok = false;
    if (sqlite3_value_type(v) != SQLITE_TEXT)
        return QDateTime();
    const QString s = argText(v).trimmed();
    // Stored dates are wall-clock values without a zone: read them as UTC, which has no daylight
    // saving to skip or repeat and needs no time-zone look-up per row.
    const QDate date = QDate::fromString(s.left(10), Qt::ISODate);
    QTime time(0, 0);
    if (s.size() > 10)
        time = s.size() == 19 && s[10] == QLatin1Char(' ') ? QTime::fromString(s.mid(11), QStringLiteral("HH:mm:ss")) : QTime();
    const QDateTime dt = date.isValid() && time.isValid() ? QDateTime(date, time, Qt::UTC) : QDateTime();
    *ok = dt.isValid();
    return dt;
}

QString dateText(const QDateTime &dt)
{
    return dt.time() == QTime(0, 0) ? dt.date().toString(Qt::ISODate) : dt.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

void jetDate(sqlite3_context *ctx, int, sqlite3_value **) { resultText(ctx, Clock::today().toString(Qt::ISODate)); }
void jetNow(sqlite3_context *ctx, int, sqlite3_value **) { resultText(ctx, Clock::now().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"))); }
void jetTime(sqlite3_context *ctx, int, sqlite3_value **)
{
    resultText(ctx, QStringLiteral("1899-12-30 ") + Clock::now().time().toString(QStringLiteral("HH:mm:ss")));
}

template <int Part>
void jetDatePart(sqlite3_context *ctx, int, sqlite3_value **argv)
{
    // The stored form "yyyy-mm-dd" (with or without its time) read directly: statistics call this for every loan of a year.
    if (sqlite3_value_type(argv[0]) == SQLITE_TEXT && sqlite3_value_bytes(argv[0]) >= 10) {
        const unsigned char *t = sqlite3_value_text(argv[0]);
        auto digits = [&](int at, int count) {
            int v = 0;
            for (int k = at; k < at + count; ++k) {
                if (t[k] < '0' || t[k] > '9')
                    return -1;
                v = v * 10 + (t[k] - '0');
            }
            return v;
        };
        const int year = digits(0, 4), month = digits(5, 2), day = digits(8, 2);
        if (t[4] == '-' && t[7] == '-' && (t[10] == 0 || t[10] == ' ') && year >= 0 && month >= 0 && day >= 0 && QDate::isValid(year, month, day)) {
            sqlite3_result_int(ctx, Part == 0 ? year : Part == 1 ? month : day);
            return;
        }
    }
    bool ok = false;
    const QDateTime dt = argDate(argv[0], &ok);
    if (!ok) {
        if (sqlite3_value_type(argv[0]) != SQLITE_NULL)
            sqlite3_result_error(ctx, "Data type mismatch in criteria expression.", -1);
        else
            sqlite3_result_null(ctx);
        return;
    }
    const QDate d = dt.date();
    sqlite3_result_int(ctx, Part == 0 ? d.year() : Part == 1 ? d.month() : d.day());
}

void jetDateAdd(sqlite3_context *ctx, int, sqlite3_value **argv)
{
    bool ok = false;
    const QDateTime dt = argDate(argv[2], &ok);
    if (!ok || sqlite3_value_type(argv[1]) == SQLITE_NULL) {
        sqlite3_result_null(ctx);
        return;
    }
    const QString interval = argText(argv[0]).toLower();
    double n = 0;
    if (!argNumber(argv[1], &n)) {
        sqlite3_result_error(ctx, "Data type mismatch in criteria expression.", -1);
        return;
    }
    // Each interval in its own unit, measured before anything is converted: a span beyond the
    // calendar (years 100 to 9999) overflows, as in the old runtime.
    struct Unit { const char *name; double factor; char kind; }; // kind: 'M' months, 'D' days, 'S' seconds
    static const Unit units[] = {{"yyyy", 12, 'M'}, {"q", 3, 'M'}, {"m", 1, 'M'}, {"d", 1, 'D'}, {"y", 1, 'D'}, {"w", 1, 'D'},
                                 {"ww", 7, 'D'},    {"h", 3600, 'S'}, {"n", 60, 'S'}, {"s", 1, 'S'}};
    const Unit *unit = nullptr;
    for (const Unit &u : units)
        if (interval == QLatin1String(u.name))
            unit = &u;
    if (!unit) {
        sqlite3_result_error(ctx, "Invalid procedure call or argument", -1);
        return;
    }
    const double span = std::round(n) * unit->factor;
    const double limit = unit->kind == 'M' ? 12.0 * 10000 : unit->kind == 'D' ? 366.0 * 10000 : 86400.0 * 366 * 10000;
    if (!std::isfinite(span) || std::fabs(span) > limit) {
        sqlite3_result_error(ctx, SqliteFunctionOverflow, -1);
        return;
    }
    const qint64 amount = qint64(span);
    const QDateTime r = unit->kind == 'M' ? dt.addMonths(int(amount)) : unit->kind == 'D' ? dt.addDays(amount) : dt.addSecs(amount);
    if (!r.isValid() || r.date().year() < 100 || r.date().year() > 9999) {
        sqlite3_result_error(ctx, SqliteFunctionOverflow, -1);
        return;
    }
    resultText(ctx, dateText(r));
}

void jetDateDiff(sqlite3_context *ctx, int, sqlite3_value **argv)
{
    bool ok1 = false, ok2 = false;
    const QDateTime a = argDate(argv[1], &ok1), b = argDate(argv[2], &ok2);
    if (!ok1 || !ok2) {
        sqlite3_result_null(ctx);
        return;
    }
    const QString interval = argText(argv[0]).toLower();
    qint64 r = 0;
    if (interval == QLatin1String("yyyy")) r = b.date().year() - a.date().year();
    else if (interval == QLatin1String("m")) r = (b.date().year() - a.date().year()) * 12 + b.date().month() - a.date().month();
    else if (interval == QLatin1String("d") || interval == QLatin1String("y")) r = a.date().daysTo(b.date());
    else if (interval == QLatin1String("ww") || interval == QLatin1String("w")) r = a.date().daysTo(b.date()) / 7;
    else if (interval == QLatin1String("h")) r = a.secsTo(b) / 3600;
    else if (interval == QLatin1String("n")) r = a.secsTo(b) / 60;
    else if (interval == QLatin1String("s")) r = a.secsTo(b);
    else {
        sqlite3_result_error(ctx, "Invalid procedure call or argument", -1);
        return;
    }
    sqlite3_result_int64(ctx, r);
}

void jetDateValue(sqlite3_context *ctx, int, sqlite3_value **argv)
{
    bool ok = false;
    const QDateTime dt = argDate(argv[0], &ok);
    if (ok)
        resultText(ctx, dt.date().toString(Qt::ISODate));
    else
        sqlite3_result_null(ctx);
}

void jetIsNull(sqlite3_context *ctx, int, sqlite3_value **argv)
{
    sqlite3_result_int(ctx, sqlite3_value_type(argv[0]) == SQLITE_NULL ? -1 : 0);
}

void jetNz(sqlite3_context *ctx, int argc, sqlite3_value **argv)
{
    if (sqlite3_value_type(argv[0]) != SQLITE_NULL)
        sqlite3_result_value(ctx, argv[0]);
    else if (argc > 1)
        sqlite3_result_value(ctx, argv[1]);
    else
        sqlite3_result_text(ctx, "", 0, SQLITE_STATIC);
}

template <bool FromLeft>
void jetSide(sqlite3_context *ctx, int, sqlite3_value **argv)
{
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
        sqlite3_result_null(ctx);
        return;
    }
    const QString s = argText(argv[0]);
    const int n = sqlite3_value_int(argv[1]);
    if (n < 0) {
        sqlite3_result_error(ctx, "Invalid procedure call or argument", -1);
        return;
    }
    resultText(ctx, FromLeft ? s.left(n) : s.right(n));
}

// The old runtime's number-to-text conversion: no trailing zeros, no exponent for ordinary values.
QString numberText(sqlite3_value *v)
{
    if (sqlite3_value_type(v) == SQLITE_INTEGER)
        return QString::number(sqlite3_value_int64(v));
    return QString::number(sqlite3_value_double(v), 'g', 15);
}

void jetCStr(sqlite3_context *ctx, int, sqlite3_value **argv)
{
    switch (sqlite3_value_type(argv[0])) {
    case SQLITE_NULL: sqlite3_result_null(ctx); return;
    case SQLITE_INTEGER:
    case SQLITE_FLOAT: resultText(ctx, numberText(argv[0])); return;
    default: sqlite3_result_value(ctx, argv[0]);
    }
}

bool argNumber(sqlite3_value *v, double *out)
{
    switch (sqlite3_value_type(v)) {
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
        *out = sqlite3_value_double(v);
        return true;
    case SQLITE_TEXT: {
        bool ok = false;
        *out = argText(v).trimmed().toDouble(&ok);
        return ok;
    }
    default:
        return false;
    }
}

double bankersRound(double v) { return v - std::floor(v) == 0.5 ? 2.0 * std::round(v / 2.0) : std::round(v); }

template <int Kind> // 0 CInt, 1 CLng, 2 CDbl, 3 CCur, 4 Int
void jetConvert(sqlite3_context *ctx, int, sqlite3_value **argv)
{
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
        sqlite3_result_null(ctx);
        return;
    }
    double d = 0;
    if (!argNumber(argv[0], &d)) {
        sqlite3_result_error(ctx, "Data type mismatch in criteria expression.", -1);
        return;
    }
    // Beyond each conversion's range (and for infinity or NaN) the old runtime raised "Overflow".
    const double range = Kind == 2 ? std::numeric_limits<double>::max() : Kind == 3 ? 922337203685477.5807 : Kind == 4 ? 9.2e18 : 2147483648.0;
    if (!std::isfinite(d) || std::fabs(d) > range) {
        sqlite3_result_error(ctx, SqliteFunctionOverflow, -1);
        return;
    }
    if (Kind == 2) {
        sqlite3_result_double(ctx, d);
    } else if (Kind == 3) {
        sqlite3_result_double(ctx, std::round(d * 10000.0) / 10000.0);
    } else if (Kind == 4) {
        sqlite3_result_int64(ctx, sqlite3_int64(std::floor(d)));
    } else {
        const double r = bankersRound(d);
        const double limit = Kind == 0 ? 32767.0 : 2147483647.0;
        if (r > limit || r < -limit - 1) {
            sqlite3_result_error(ctx, SqliteFunctionOverflow, -1);
            return;
        }
        sqlite3_result_int64(ctx, sqlite3_int64(r));
    }
}

void jetVal(sqlite3_context *ctx, int, sqlite3_value **argv)
{
    if (sqlite3_value_type(argv[0]) == SQLITE_INTEGER || sqlite3_value_type(argv[0]) == SQLITE_FLOAT) {
        sqlite3_result_value(ctx, argv[0]);
        return;
    }
    const QString s = argText(argv[0]).trimmed();
    int end = 0;
    while (end < s.size() && (s[end].isDigit() || (end == 0 && (s[end] == QLatin1Char('-') || s[end] == QLatin1Char('+')))
                              || s[end] == QLatin1Char('.')))
        ++end;
    sqlite3_result_double(ctx, s.left(end).toDouble());
}

void jetFormat(sqlite3_context *ctx, int argc, sqlite3_value **argv)
{
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
        sqlite3_result_null(ctx);
        return;
    }
    bool isDate = false;
    const QDateTime dt = argDate(argv[0], &isDate);
    if (argc < 2 || !isDate) {
        jetCStr(ctx, 1, argv);
        return;
    }
    // Date patterns: the old runtime's "mm" is the month unless it follows hours.
    QString pattern = argText(argv[1]);
    pattern.replace(QLatin1String("hh:mm"), QLatin1String("hh:MI"));
    pattern.replace(QLatin1String("mm"), QLatin1String("MM"));
    pattern.replace(QLatin1String("MI"), QLatin1String("mm"));
    resultText(ctx, dt.toString(pattern));
}

} // namespace

void registerJetFunctions(sqlite3 *db)
{
    const int det = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
    const int vol = SQLITE_UTF8;
    struct Fn { const char *name; int args; int flags; void (*fn)(sqlite3_context *, int, sqlite3_value **); };
    const Fn functions[] = {
        {"jet_date", 0, vol, jetDate},           {"jet_now", 0, vol, jetNow},
        {"jet_time", 0, vol, jetTime},           {"jet_year", 1, det, jetDatePart<0>},
        {"jet_month", 1, det, jetDatePart<1>},   {"jet_day", 1, det, jetDatePart<2>},
        {"jet_dateadd", 3, det, jetDateAdd},     {"jet_datediff", 3, det, jetDateDiff},
        {"jet_datevalue", 1, det, jetDateValue}, {"jet_isnull", 1, det, jetIsNull},
        {"jet_nz", 1, det, jetNz},               {"jet_nz", 2, det, jetNz},
        {"jet_left", 2, det, jetSide<true>},     {"jet_right", 2, det, jetSide<false>},
        {"jet_cstr", 1, det, jetCStr},           {"jet_cint", 1, det, jetConvert<0>},
        {"jet_clng", 1, det, jetConvert<1>},     {"jet_cdbl", 1, det, jetConvert<2>},
        {"jet_ccur", 1, det, jetConvert<3>},     {"jet_int", 1, det, jetConvert<4>},
        {"jet_val", 1, det, jetVal},             {"jet_format", 1, det, jetFormat},
        {"jet_format", 2, det, jetFormat},
    };
    for (const Fn &f : functions)
        sqlite3_create_function_v2(db, f.name, f.args, f.flags, nullptr, f.fn, nullptr, nullptr, nullptr);
}
