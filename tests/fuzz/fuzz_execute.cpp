// libFuzzer target: translation and execution on a small library database, inside a transaction
// that is rolled back. A finding is a sanitizer report, an exception other than AppError, or an
// effect the statement's kind cannot explain: a second statement, ATTACH, PRAGMA, a transaction
// of its own, a write by a SELECT, a write to a table the statement does not name, or a change
// that outlives the rollback.
#include "SqliteEngine.h"
#include "AppError.h"
#include "JetError.h"
#include "DatabaseSchema.h"
#include "DbConnection.h"
#include "Recordset.h"
#include "SqliteDatabase.h"

#include <QDir>
#include <QString>

#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

struct Action {
    int code;
    std::string a1, a2;
};

struct Watch {
    bool recording = false;
    std::vector<Action> actions;
    int statements = 0;
    int progressTicks = 0;
};
Watch watch;
SqliteDatabase *db = nullptr;
std::string baseline;

int authorize(void *, int code, const char *a1, const char *a2, const char *, const char *)
{
    if (watch.recording)
        watch.actions.push_back({code, a1 ? a1 : "", a2 ? a2 : ""});
    return SQLITE_OK;
}

int traceStatement(unsigned, void *, void *, void *x)
{
    // The engine's own nested work (a constraint check after ALTER ... ADD) is traced as "-- ...".
    const char *text = static_cast<const char *>(x);
    if (watch.recording && !(text && text[0] == '-' && text[1] == '-'))
        ++watch.statements;
    return 0;
}

// Bounds the work of one input (a cross join of every table, say): the statement is interrupted.
int progress(void *) { return ++watch.progressTicks > 20000 ? 1 : 0; }

[[noreturn]] void finding(const std::string &what, std::string_view sql)
{
    std::fprintf(stderr, "FINDING: %s\n  statement: %.*s\n", what.c_str(), int(sql.size()), sql.data());
    std::abort();
}

std::string lower(std::string s)
{
    for (char &c : s)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

// Every row of every library table, as one text: what a rollback must leave unchanged.
std::string contents()
{
    std::string all;
    for (const char *sql : {"SELECT group_concat(name || ':' || sql, ';') FROM sqlite_master",
                            "SELECT group_concat(ItemID || AccessionID || Title || ifnull(Cost, ''), ';') FROM tblLibItems",
                            "SELECT group_concat(TransactionID || AccessionID || Returned, ';') FROM tblLibTransactions",
                            "SELECT group_concat(TransactionID || FineAmount, ';') FROM tblLibTransactionFines",
                            "SELECT group_concat(ReserveID || ItemID, ';') FROM tblLibReserves"}) {
        sqlite3_stmt *stmt = nullptr;
        if (sqlite3_prepare_v2(db->handle(), sql, -1, &stmt, nullptr) == SQLITE_OK && sqlite3_step(stmt) == SQLITE_ROW) {
            const unsigned char *t = sqlite3_column_text(stmt, 0);
            all += t ? reinterpret_cast<const char *>(t) : "";
        }
        all += '|';
        sqlite3_finalize(stmt);
    }
    return all;
}

bool isWrite(int code)
{
    switch (code) {
    case SQLITE_INSERT: case SQLITE_UPDATE: case SQLITE_DELETE: case SQLITE_CREATE_TABLE: case SQLITE_CREATE_INDEX:
    case SQLITE_CREATE_TEMP_TABLE: case SQLITE_CREATE_TEMP_INDEX: case SQLITE_CREATE_VIEW: case SQLITE_CREATE_TEMP_VIEW:
    case SQLITE_CREATE_TRIGGER: case SQLITE_CREATE_TEMP_TRIGGER: case SQLITE_DROP_TABLE: case SQLITE_DROP_INDEX:
    case SQLITE_DROP_TEMP_TABLE: case SQLITE_DROP_TEMP_INDEX: case SQLITE_DROP_VIEW: case SQLITE_DROP_TRIGGER:
    case SQLITE_DROP_TEMP_VIEW: case SQLITE_DROP_TEMP_TRIGGER: case SQLITE_ALTER_TABLE: case SQLITE_CREATE_VTABLE:
    case SQLITE_DROP_VTABLE:
        return true;
    default:
        return false;
    }
}

// The table a write action touches.
std::string writtenTable(const Action &a)
{
    switch (a.code) {
    case SQLITE_CREATE_INDEX: case SQLITE_CREATE_TEMP_INDEX: case SQLITE_DROP_INDEX: case SQLITE_DROP_TEMP_INDEX:
    case SQLITE_CREATE_TRIGGER: case SQLITE_CREATE_TEMP_TRIGGER: case SQLITE_DROP_TRIGGER: case SQLITE_DROP_TEMP_TRIGGER:
    case SQLITE_ALTER_TABLE:
        return a.a2;
    default:
        return a.a1;
    }
}

void check(const TranslatedStatement &ts, std::string_view sql)
{
    const std::string text = lower(std::string(sql));
    const bool rebuild = ts.kind == TranslatedStatement::AlterColumnType;
    if (!rebuild && watch.statements > 1)
        finding("more than one statement ran", sql);
    for (const Action &a : watch.actions) {
        if (a.code == SQLITE_ATTACH || a.code == SQLITE_DETACH)
            finding("ATTACH or DETACH", sql);
        // The engine checks the constraints of an added column itself with quick_check.
        const bool addsColumn = ts.sql.rfind("ALTER TABLE", 0) == 0 && a.a1 == "quick_check";
        if (a.code == SQLITE_PRAGMA && !(rebuild && a.a1 == "table_info") && !addsColumn)
            finding("PRAGMA " + a.a1, sql);
        if (a.code == SQLITE_TRANSACTION || (a.code == SQLITE_SAVEPOINT && !rebuild))
            finding("a transaction of its own", sql);
        if (!isWrite(a.code))
            continue;
        if (ts.kind == TranslatedStatement::Rows)
            finding("a write by a SELECT (" + writtenTable(a) + ")", sql);
        const std::string table = lower(writtenTable(a));
        if (table.rfind("sqlite_", 0) == 0 || (rebuild && table == lower(ts.table) + "_shelvora_rebuild"))
            continue;
        if (text.find(table) == std::string::npos)
            finding("a write to a table the statement does not name: " + table, sql);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    char folder[] = "/tmp/shelvora-fuzz-XXXXXX";
    if (!mkdtemp(folder))
        return std::perror("mkdtemp"), 1;
    SqliteEngine::install(EngineRegistry::installed());
    const QString path = QDir(QString::fromLocal8Bit(folder)).filePath(QStringLiteral("library.db"));
    DatabaseSchema::createLibraryDatabase(path);
    {
        DbConnection c;
        c.DataSource = path;
        c.Open();
        for (const char *sql : {"Insert into tblLibCategories (Category) Values ('Fiction')",
                                "Insert into tblLibItems (AccessionID, Title, CategoryID, Cost, DateAdded) Values ('A1', 'Rugby', 1, 95.5, #2026-01-05#)",
                                "Insert into tblLibItems (AccessionID, Title, CategoryID, Cost, DateAdded) Values ('A2', 'Kringe in ''n bos', 1, 120, #2025-03-01#)",
                                "Insert into tblLibTransactions (AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) Values ('A1', 'L', 12, 1, #2026-11-01#, #2026-11-15#)",
                                "Insert into tblLibTransactionFines (TransactionID, MemberID, MemberType, FineAmount, DateFined) Values (1, 12, 'L', 2.5, #2026-11-20#)",
                                "Insert into tblLibReserves (MemberType, MemberID, ItemID, ReserveDate) Values ('E', 3, 1, #2026-11-02#)"})
            c.Execute(QString::fromLatin1(sql));
    }
    db = new SqliteDatabase(path, false);
    sqlite3 *h = db->handle();
    sqlite3_limit(h, SQLITE_LIMIT_LENGTH, 1000000);
    sqlite3_limit(h, SQLITE_LIMIT_SQL_LENGTH, 200000);
    sqlite3_set_authorizer(h, authorize, nullptr);
    sqlite3_trace_v2(h, SQLITE_TRACE_STMT, traceStatement, nullptr);
    sqlite3_progress_handler(h, 100, progress, nullptr);
    baseline = contents();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string_view sql(reinterpret_cast<const char *>(data), size);
    TranslatedStatement ts;
    try {
        ts = SqliteDatabase::sharedTranslator().translate(sql);
    } catch (const JetError &) {
        return 0;
    }
    const QString jet = QString::fromUtf8(sql.data(), qsizetype(sql.size()));
    watch = Watch();
    db->beginTransaction();
    watch.recording = true;
    Recordset rows;
    try {
        db->execute(jet, &rows);
    } catch (const AppError &) {
    }
    watch.recording = false;
    if (db->inTransaction())
        db->rollbackTransaction();
    // The statement as the engine got it: QString replaces bytes that are not UTF-8.
    const QByteArray sent = jet.toUtf8();
    check(ts, std::string_view(sent.constData(), size_t(sent.size())));
    if (contents() != baseline)
        finding("a change outlived the rollback", sql);
    return 0;
}
