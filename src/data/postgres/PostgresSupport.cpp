#include "PostgresSupport.h"

namespace {

// "Today" and "now" are the desk's clock, handed to the session as shelvora.now before a statement
// that asks for them, as the embedded engine reads the program's clock.
const char *const Sql[] = {
    "CREATE EXTENSION IF NOT EXISTS citext",
    "DO $$ BEGIN CREATE DOMAIN jet_bit AS smallint; EXCEPTION WHEN duplicate_object THEN NULL; END $$",
    "DO $$ BEGIN CREATE DOMAIN jet_currency AS numeric(19,4); EXCEPTION WHEN duplicate_object THEN NULL; END $$",
    // Beyond what Jet can hold: reported as Jet reports an overflow.
    "CREATE OR REPLACE FUNCTION jet_overflow() RETURNS integer LANGUAGE plpgsql AS "
    "$$ BEGIN RAISE EXCEPTION 'Overflow' USING ERRCODE = '22003'; END $$",
    "CREATE OR REPLACE FUNCTION jet_now() RETURNS timestamp(0) LANGUAGE sql STABLE AS "
    "$$ SELECT CAST(current_setting('shelvora.now') AS timestamp(0)) $$",
    "CREATE OR REPLACE FUNCTION jet_date() RETURNS timestamp(0) LANGUAGE sql STABLE AS "
    "$$ SELECT CAST(date_trunc('day', CAST(current_setting('shelvora.now') AS timestamp)) AS timestamp(0)) $$",
    "CREATE OR REPLACE FUNCTION jet_time() RETURNS timestamp(0) LANGUAGE sql STABLE AS "
    "$$ SELECT CAST(DATE '1899-12-30' + CAST(CAST(current_setting('shelvora.now') AS timestamp) AS time) AS timestamp(0)) $$",
    "CREATE OR REPLACE FUNCTION jet_year(timestamp) RETURNS integer LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CAST(extract(year FROM $1) AS integer) $$",
    "CREATE OR REPLACE FUNCTION jet_month(timestamp) RETURNS integer LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CAST(extract(month FROM $1) AS integer) $$",
    "CREATE OR REPLACE FUNCTION jet_day(timestamp) RETURNS integer LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CAST(extract(day FROM $1) AS integer) $$",
    "CREATE OR REPLACE FUNCTION jet_dateadd(text, double precision, timestamp) RETURNS timestamp(0) LANGUAGE sql IMMUTABLE AS $$ "
    "SELECT CAST(CASE lower($1) "
    "WHEN 'yyyy' THEN $3 + make_interval(years => CAST(trunc($2) AS integer)) "
    "WHEN 'q' THEN $3 + make_interval(months => 3 * CAST(trunc($2) AS integer)) "
    "WHEN 'm' THEN $3 + make_interval(months => CAST(trunc($2) AS integer)) "
    "WHEN 'ww' THEN $3 + make_interval(weeks => CAST(trunc($2) AS integer)) "
    "WHEN 'h' THEN $3 + make_interval(hours => CAST(trunc($2) AS integer)) "
    "WHEN 'n' THEN $3 + make_interval(mins => CAST(trunc($2) AS integer)) "
    "WHEN 's' THEN $3 + make_interval(secs => trunc($2)) "
    "ELSE $3 + make_interval(days => CAST(trunc($2) AS integer)) END AS timestamp(0)) $$",
    "CREATE OR REPLACE FUNCTION jet_dateadd_checked(text, double precision, timestamp) RETURNS timestamp(0) LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CASE WHEN r > TIMESTAMP '9999-12-31 23:59:59' OR r < TIMESTAMP '0100-01-01' "
    "THEN CAST(to_timestamp(jet_overflow()) AS timestamp) ELSE r END FROM (SELECT jet_dateadd($1, $2, $3) AS r) d $$",
    "CREATE OR REPLACE FUNCTION jet_datediff(text, timestamp, timestamp) RETURNS integer LANGUAGE sql IMMUTABLE AS $$ "
    "SELECT CASE lower($1) "
    "WHEN 'yyyy' THEN CAST(extract(year FROM $3) - extract(year FROM $2) AS integer) "
    "WHEN 'q' THEN CAST((extract(year FROM $3) * 4 + ceil(extract(month FROM $3) / 3.0)) "
    "- (extract(year FROM $2) * 4 + ceil(extract(month FROM $2) / 3.0)) AS integer) "
    "WHEN 'm' THEN CAST((extract(year FROM $3) * 12 + extract(month FROM $3)) - (extract(year FROM $2) * 12 + extract(month FROM $2)) AS integer) "
    "WHEN 'ww' THEN (CAST($3 AS date) - CAST($2 AS date)) / 7 "
    "WHEN 'w' THEN (CAST($3 AS date) - CAST($2 AS date)) / 7 "
    "WHEN 'h' THEN CAST((extract(epoch FROM date_trunc('hour', $3)) - extract(epoch FROM date_trunc('hour', $2))) / 3600 AS integer) "
    "WHEN 'n' THEN CAST((extract(epoch FROM date_trunc('minute', $3)) - extract(epoch FROM date_trunc('minute', $2))) / 60 AS integer) "
    "WHEN 's' THEN CAST(extract(epoch FROM $3) - extract(epoch FROM $2) AS integer) "
    "ELSE CAST($3 AS date) - CAST($2 AS date) END $$",
    "CREATE OR REPLACE FUNCTION jet_datevalue(text) RETURNS timestamp(0) LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CAST(CAST(CAST($1 AS timestamp) AS date) AS timestamp(0)) $$",
    "CREATE OR REPLACE FUNCTION jet_datevalue(timestamp) RETURNS timestamp(0) LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CAST(CAST($1 AS date) AS timestamp(0)) $$",
    "CREATE OR REPLACE FUNCTION jet_isnull(anyelement) RETURNS smallint LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CAST(CASE WHEN $1 IS NULL THEN -1 ELSE 0 END AS smallint) $$",
    "CREATE OR REPLACE FUNCTION jet_iif(boolean, anycompatible, anycompatible) RETURNS anycompatible LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CASE WHEN $1 THEN $2 ELSE $3 END $$",
    "CREATE OR REPLACE FUNCTION jet_iif(integer, anycompatible, anycompatible) RETURNS anycompatible LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CASE WHEN $1 <> 0 THEN $2 ELSE $3 END $$",
    // Text as Jet's CStr writes it: currency without trailing zeros, a date without a midnight time.
    "CREATE OR REPLACE FUNCTION jet_cstr(text) RETURNS text LANGUAGE sql IMMUTABLE AS $$ SELECT $1 $$",
    "CREATE OR REPLACE FUNCTION jet_cstr(double precision) RETURNS text LANGUAGE sql IMMUTABLE AS $$ SELECT CAST($1 AS text) $$",
    "CREATE OR REPLACE FUNCTION jet_cstr(numeric) RETURNS text LANGUAGE sql IMMUTABLE AS $$ SELECT CAST(trim_scale($1) AS text) $$",
    "CREATE OR REPLACE FUNCTION jet_cstr(timestamp) RETURNS text LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CASE WHEN CAST($1 AS time) = TIME '00:00' THEN to_char($1, 'YYYY-MM-DD') ELSE to_char($1, 'YYYY-MM-DD HH24:MI:SS') END $$",
    // Whole numbers round half to even, as Jet's CInt and CLng do.
    "CREATE OR REPLACE FUNCTION jet_clng(numeric) RETURNS integer LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CASE WHEN $1 = 'NaN' THEN jet_overflow() "
    "ELSE CAST(CASE WHEN abs($1 - trunc($1)) = 0.5 THEN 2 * round($1 / 2) ELSE round($1) END AS integer) END $$",
    "CREATE OR REPLACE FUNCTION jet_int(double precision) RETURNS double precision LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CASE WHEN abs($1) > 9.2e18 OR $1 = 'NaN' THEN jet_overflow() ELSE floor($1) END $$",
    "CREATE OR REPLACE FUNCTION jet_int(numeric) RETURNS numeric LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CASE WHEN abs($1) > 9.2e18 OR $1 = 'NaN' THEN jet_overflow() ELSE floor($1) END $$",
    "CREATE OR REPLACE FUNCTION jet_clng(double precision) RETURNS integer LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT jet_clng(CAST($1 AS numeric)) $$",
    "CREATE OR REPLACE FUNCTION jet_clng(text) RETURNS integer LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT jet_clng(CAST(trim($1) AS numeric)) $$",
    "CREATE OR REPLACE FUNCTION jet_cint(numeric) RETURNS smallint LANGUAGE sql IMMUTABLE AS $$ SELECT CAST(jet_clng($1) AS smallint) $$",
    "CREATE OR REPLACE FUNCTION jet_cint(double precision) RETURNS smallint LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CAST(jet_clng($1) AS smallint) $$",
    "CREATE OR REPLACE FUNCTION jet_cint(text) RETURNS smallint LANGUAGE sql IMMUTABLE AS $$ SELECT CAST(jet_clng($1) AS smallint) $$",
    "CREATE OR REPLACE FUNCTION jet_cdbl(double precision) RETURNS double precision LANGUAGE sql IMMUTABLE AS $$ SELECT $1 $$",
    "CREATE OR REPLACE FUNCTION jet_cdbl(text) RETURNS double precision LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CAST(trim($1) AS double precision) $$",
    "CREATE OR REPLACE FUNCTION jet_ccur(double precision) RETURNS numeric LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CAST($1 AS numeric(19,4)) $$",
    "CREATE OR REPLACE FUNCTION jet_ccur(text) RETURNS numeric LANGUAGE sql IMMUTABLE AS $$ SELECT CAST(trim($1) AS numeric(19,4)) $$",
    "CREATE OR REPLACE FUNCTION jet_val(text) RETURNS double precision LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT COALESCE(CAST(substring(ltrim($1) FROM '^[-+]?(?:[0-9]+[.]?[0-9]*|[.][0-9]+)(?:[eE][-+]?[0-9]+)?') "
    "AS double precision), 0) $$",
    "CREATE OR REPLACE FUNCTION jet_round(numeric, integer DEFAULT 0) RETURNS numeric LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CASE WHEN abs($1 * power(10::numeric, $2) - trunc($1 * power(10::numeric, $2))) = 0.5 "
    "THEN 2 * round($1 * power(10::numeric, $2) / 2) / power(10::numeric, $2) ELSE round($1, $2) END $$",
    "CREATE OR REPLACE FUNCTION jet_round(double precision, integer DEFAULT 0) RETURNS double precision LANGUAGE sql IMMUTABLE AS "
    "$$ SELECT CAST(jet_round(CAST($1 AS numeric), $2) AS double precision) $$",
    // Format with a date pattern; anything else as CStr writes it.
    "CREATE OR REPLACE FUNCTION jet_format(timestamp, text) RETURNS text LANGUAGE sql IMMUTABLE AS $$ "
    "SELECT to_char($1, replace(replace(replace(replace(replace(replace(replace(replace(replace(replace(replace("
    "lower($2), 'hh:mm', 'HH24:MI'), 'yyyy', 'YYYY'), 'mmmm', 'FMMonth'), 'mmm', 'Mon'), 'mm', 'MM'), 'dddd', 'FMDay'), "
    "'ddd', 'Dy'), 'dd', 'DD'), 'hh', 'HH24'), 'nn', 'MI'), 'ss', 'SS')) $$",
    "CREATE OR REPLACE FUNCTION jet_format(timestamp) RETURNS text LANGUAGE sql IMMUTABLE AS $$ SELECT jet_cstr($1) $$",
    "CREATE OR REPLACE FUNCTION jet_format(text, text) RETURNS text LANGUAGE sql IMMUTABLE AS $$ SELECT $1 $$",
    "CREATE OR REPLACE FUNCTION jet_format(double precision, text) RETURNS text LANGUAGE sql IMMUTABLE AS $$ SELECT jet_cstr($1) $$",
    "CREATE OR REPLACE FUNCTION jet_format(numeric, text) RETURNS text LANGUAGE sql IMMUTABLE AS $$ SELECT jet_cstr($1) $$",
    // A counter given a value by hand moves on past it.
    "CREATE OR REPLACE FUNCTION jet_counter_follow() RETURNS trigger LANGUAGE plpgsql AS $$ "
    "DECLARE v bigint := CAST(to_jsonb(NEW) ->> TG_ARGV[0] AS bigint); s text := pg_get_serial_sequence(TG_TABLE_NAME, TG_ARGV[0]); "
    "BEGIN IF v IS NOT NULL AND v > COALESCE(pg_sequence_last_value(CAST(s AS regclass)), 0) THEN "
    "PERFORM setval(CAST(s AS regclass), v); END IF; RETURN NEW; END $$",
};

} // namespace

const std::vector<std::string> &PostgresSupport::statements()
{
    static const std::vector<std::string> list = [] {
        std::vector<std::string> all(std::begin(Sql), std::end(Sql));
        // Written last: a database answers the new number only once everything above is in place.
        all.push_back("CREATE OR REPLACE FUNCTION jet_support_version() RETURNS integer LANGUAGE sql IMMUTABLE AS $$ SELECT "
                      + std::to_string(Version) + " $$");
        return all;
    }();
    return list;
}
