// Every screen the main menu opens (and the screens those open) gets hostile text typed into
// every box, combo and grid cell, Enter in every box and a press of every button, with every
// message box answered. Afterwards no box may show an engine or run-time error, the library
// database must be sound with only the screen's own tables changed, and the school database
// must be byte for byte what it was.

#include "CatalogueScreens.h"
#include "CirculationScreens.h"
#include "ConnectionPool.h"
#include "FrmuserloanHistory.h"
#include "MemberScreens.h"
#include "ReportScreens.h"
#include "SchoolGenerator.h"
#include "ScreenRegistry.h"
#include "SettingsStore.h"
#include "SpreadGrid.h"
#include "TestDatabases.h"
#include "DatabaseLocations.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QCryptographicHash>
#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QRegularExpression>
#include <QSet>
#include <QTest>
#include <QTimer>

#include <sqlite3.h>

#include <functional>
#include <map>
#include <memory>

namespace {

// What a person can type or paste. The long ones stand for a pasted page.
QStringList hostileValues()
{
    return {QStringLiteral("'"),
            QStringLiteral("O'Brien"),
            QStringLiteral("'; DROP TABLE tblLibItems; --"),
            QStringLiteral("x' OR '1'='1"),
            QStringLiteral("%"),
            QStringLiteral("_"),
            QStringLiteral("["),
            QString(10000, QLatin1Char('W')),
            QStringLiteral("Boek 📚 ë ô"),
            QStringLiteral("مكتبة ספר"),
            QString::fromUtf16(u"a\u0000b", 3),
            QStringLiteral("-1"),
            QStringLiteral("99999999999999999999"),
            QStringLiteral("1e400"),
            QStringLiteral("abc"),
            QStringLiteral("  L100  ")};
}

// Texts that only an engine, the SQL layer or the run-time would put into a box.
const QRegularExpression &rawErrorText()
{
    static const QRegularExpression re(
        QStringLiteral("syntax|SQL|near \"|no such|constraint|mismatch|Overflow|too small|NUL character|Characters found|"
                       "Invalid character|query expression|sqlite|libpq|Error \\d|unrecognized token|malformed"),
        QRegularExpression::CaseInsensitiveOption);
    return re;
}

QString fingerprint(const QString &databasePath, const QString &table)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const QString &row : rowsIn(databasePath, QStringLiteral("select * from ") + table))
        hash.addData(row.toUtf8() + '\n');
    return QString::fromLatin1(hash.result().toHex());
}

std::string integrity(const QString &path)
{
    sqlite3 *db = nullptr;
    std::string result = "cannot open";
    if (sqlite3_open_v2(path.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
        sqlite3_stmt *check = nullptr;
        if (sqlite3_prepare_v2(db, "PRAGMA integrity_check", -1, &check, nullptr) == SQLITE_OK && sqlite3_step(check) == SQLITE_ROW)
            result = reinterpret_cast<const char *>(sqlite3_column_text(check, 0));
        sqlite3_finalize(check);
    }
    sqlite3_close(db);
    return result;
}

QByteArray fileHash(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256);
}

const QStringList LibraryTables = {
    "tblLibItems",           "tblLibCategories", "tblLibSubCategories",  "tblLibSubjectCodes", "tblLibItemSubjects",
    "tblLibKeywords",        "tblLibItemKeywords", "tblLibAuthors",       "tblLibPublishers",   "tblLibSeries",
    "tblLibItemLanguages",   "tblLibMasterCatalogue", "tblLibBook",       "tblLibTransactions", "tblLibTransactionFines",
    "tblLibReserves",        "tblLibNoticeTemplate", "tblLibSettings", "tblLibStocktakes", "tblLibStocktakeScans",
    "tblLibRecordSources", "tblLibMemberPins"};

const QStringList Loans = {"tblLibTransactions", "tblLibTransactionFines", "tblLibReserves"};
const QStringList ItemEditing = {"tblLibItems",        "tblLibItemSubjects", "tblLibItemKeywords", "tblLibSubjectCodes",
                                 "tblLibKeywords",     "tblLibTransactions", "tblLibTransactionFines"};

// The tables each screen may write, with those of the screens it opens.
const std::map<QString, QStringList> &ownedTables()
{
    static const std::map<QString, QStringList> owned = {
        {"frmIssueSystem", Loans},
        {"frmSystemSettings", {"tblLibSettings"}},
        {"frmReserves", {"tblLibReserves"}},
        {"frmReservedItems", {"tblLibReserves"}},
        {"frmFinePayment", {"tblLibTransactionFines"}},
        {"FrmuserloanHistory", Loans},
        {"frmItemList", ItemEditing},
        {"frmItemAddModify", ItemEditing},
        {"frmCategories", {"tblLibCategories", "tblLibSubCategories"}},
        {"frmQuickFind", {}},
        {"frmSeries", {"tblLibSeries"}},
        {"frmPublisher", {"tblLibPublishers"}},
        {"frmAuthor", {"tblLibAuthors"}},
        {"frmLanguages", {"tblLibItemLanguages"}},
        {"frmSubjectsList", {"tblLibSubjectCodes"}},
        {"frmKeywordList", {"tblLibKeywords"}},
        {"frmLabelList", {}},
        {"frmLibraryUsers", Loans},
        {"frmLibraryReport", {}},
        {"frmOverdueNotices", {"tblLibNoticeTemplate"}},
        {"frmLibraryStatistics", {}},
        {"frmStocktake", {"tblLibStocktakes", "tblLibStocktakeScans", "tblLibItems", "tblLibTransactions", "tblLibTransactionFines"}},
        // The import writes items with their authors, publishers and series only from a file chosen.
        {"frmMarcImport", {"tblLibItems", "tblLibAuthors", "tblLibPublishers", "tblLibSeries"}},
        {"frmRecordSources", {"tblLibRecordSources"}}};
    return owned;
}

class InputSweep : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        school_ = new QTemporaryDir;
        SchoolSize size{300, 60, 6, 4, 400, 40, 12, false};
        SchoolGenerator(size).write(school_->filePath("library.db"), school_->filePath("central.db"));
    }
    static void TearDownTestSuite()
    {
        delete school_;
        school_ = nullptr;
    }

    void SetUp() override
    {
        ASSERT_TRUE(dir_.isValid());
        library_ = dir_.filePath("library.db");
        central_ = dir_.filePath("central.db");
        ASSERT_TRUE(QFile::copy(school_->filePath("library.db"), library_));
        ASSERT_TRUE(QFile::copy(school_->filePath("central.db"), central_));
        LibraryDatabasePath = library_;
        CentralDatabasePath = central_;
        SchoolName = SchoolGenerator::schoolName();
        SetApplicationFolder(dir_.path());
        messages_ = std::make_unique<MessageScript>();
        settings_ = std::make_unique<SettingsStore>(dir_.filePath("shelvora.ini"));
        registerCirculationScreens(screens_);
        registerCatalogueScreens(screens_, *settings_);
        registerMemberScreens(screens_);
        registerReportScreens(screens_);
        for (const QString &table : LibraryTables)
            before_[table] = fingerprint(library_, table);
        centralHash_ = fileHash(central_);
    }

    void TearDown() override
    {
        messages_.reset();
        SchoolName.clear();
        LibraryDatabasePath.clear();
        CentralDatabasePath.clear();
        ConnectionPool::shared().clear();
    }

    /// Sweeps a screen and checks what it left.
    void sweepScreen(const QString &name, QDialog *screen)
    {
        std::unique_ptr<QDialog> owner(screen);
        sweep(name, screen, hostileValues());
        owner.reset();
        ConnectionPool::shared().clear();
        checkDatabases(name);
    }

    void checkDatabases(const QString &name)
    {
        EXPECT_EQ(integrity(library_), "ok") << name.toStdString();
        const QStringList &owned = ownedTables().at(name);
        for (const QString &table : LibraryTables) {
            if (!owned.contains(table)) {
                EXPECT_EQ(fingerprint(library_, table), before_[table]) << name.toStdString() << " changed " << table.toStdString();
            }
        }
        EXPECT_EQ(fileHash(central_), centralHash_) << name.toStdString() << " wrote the school database";
        EXPECT_FALSE(QFile::exists(central_ + "-wal")) << name.toStdString();
        EXPECT_TRUE(faults_.isEmpty()) << name.toStdString() << ":\n" << faults_.join('\n').toStdString();
    }

    // ---- the sweep ----

    static bool usable(const QWidget *w) { return w->isVisibleTo(w->window()) && w->isEnabled(); }

    static QList<QLineEdit *> boxes(QWidget *screen)
    {
        QList<QLineEdit *> out;
        for (QLineEdit *box : screen->findChildren<QLineEdit *>()) {
            // Spin boxes and date editors own their line edit and filter what is typed.
            if (qobject_cast<QAbstractSpinBox *>(box->parentWidget()) || box->isReadOnly() || !usable(box))
                continue;
            if (box->window() == screen)
                out << box;
        }
        return out;
    }

    static void fill(QWidget *screen, const QString &value)
    {
        // Typed or pasted: through the box's own limits, as a person's text goes.
        for (QLineEdit *box : boxes(screen)) {
            box->clear();
            box->insert(value);
        }
        for (QPlainTextEdit *text : screen->findChildren<QPlainTextEdit *>())
            if (usable(text) && !text->isReadOnly())
                text->setPlainText(value);
        for (SpreadGrid *grid : screen->findChildren<SpreadGrid *>()) {
            if (!usable(grid))
                continue;
            SpreadModel *model = grid->model();
            // A sheet (the item details, the loan settings) gets every cell; a long list its first rows.
            const int rows = model->maxRows() <= 30 ? model->maxRows() : 3;
            for (int row = 1; row <= rows; ++row)
                for (int col = 1; col <= model->maxCols(); ++col) {
                    const QModelIndex index = model->index(row - 1, col - 1);
                    const SpreadModel::CellType type = model->cellType(col, row);
                    if ((model->flags(index) & Qt::ItemIsEditable) && (type == SpreadModel::CellType::Text || type == SpreadModel::CellType::Combo))
                        model->setData(index, value, Qt::EditRole);
                }
        }
    }

    /// Every way to act on the screen: Enter in each box, each combo entry chosen, each button.
    static QList<std::function<QString()>> actions(QWidget *screen)
    {
        QList<std::function<QString()>> out;
        for (QLineEdit *box : boxes(screen)) {
            QPointer<QLineEdit> p(box);
            out << [p] {
                if (p && usable(p)) {
                    p->setFocus();
                    QTest::keyClick(p, Qt::Key_Return);
                }
                return QStringLiteral("Enter in ") + (p ? p->objectName() : QString());
            };
        }
        for (QComboBox *combo : screen->findChildren<QComboBox *>()) {
            if (combo->window() != screen || combo->count() == 0)
                continue;
            QPointer<QComboBox> p(combo);
            out << [p] {
                if (p && usable(p) && p->count() > 0) {
                    p->setCurrentIndex(p->count() - 1);
                    Q_EMIT p->activated(p->count() - 1);
                }
                return QStringLiteral("choosing in ") + (p ? p->objectName() : QString());
            };
        }
        for (SpreadGrid *grid : screen->findChildren<SpreadGrid *>()) {
            QPointer<SpreadGrid> p(grid);
            out << [p] {
                if (p && usable(p) && p->maxRows() > 0) {
                    p->clickCell(1, 1);
                    Q_EMIT p->cellDoubleClicked(1, 1);
                }
                return QStringLiteral("double click in ") + (p ? p->objectName() : QString());
            };
        }
        QList<QAbstractButton *> buttons = screen->findChildren<QAbstractButton *>();
        std::sort(buttons.begin(), buttons.end(), [](auto *a, auto *b) { return a->objectName() < b->objectName(); });
        for (QAbstractButton *button : buttons) {
            if (button->window() != screen || button->objectName().isEmpty() || button->objectName().startsWith("qt_"))
                continue;
            QPointer<QAbstractButton> p(button);
            out << [p] {
                if (p && usable(p))
                    p->click();
                return QStringLiteral("pressing ") + (p ? p->objectName() : QString());
            };
        }
        return out;
    }

    void sweep(const QString &name, QDialog *screen, const QStringList &values)
    {
        stack_ << screen;
        screen->show();
        QApplication::processEvents();
        const auto all = actions(screen);
        for (const QString &value : values) {
            for (const auto &act : all) {
                if (!screen->isVisible())
                    screen->show();
                fill(screen, value);
                const size_t seen = messages_->shown().size();
                watchModals(name);
                const QString what = act();
                QApplication::processEvents();
                for (size_t i = seen; i < messages_->shown().size(); ++i) {
                    const ShownMessage &m = messages_->shown()[i];
                    if (m.title.startsWith(QStringLiteral("Error : ")) || rawErrorText().match(m.prompt).hasMatch())
                        faults_ << QStringLiteral("%1: %2 after typing \"%3\": [%4] %5")
                                       .arg(name, what, value.left(40).replace(QChar(0), QStringLiteral("\\0")), m.title,
                                            m.prompt.left(300));
                }
                if (faults_.size() > 60)
                    break;
            }
        }
        screen->hide();
        stack_.removeLast();
    }

    /// A screen opened modal by an action is swept once per kind (with a few values), then closed.
    void watchModals(const QString &name)
    {
        QTimer::singleShot(0, &timers_, [this, name] {
            QWidget *modal = QApplication::activeModalWidget();
            auto *dialog = qobject_cast<QDialog *>(modal);
            if (!dialog || stack_.contains(dialog))
                return;
            const QString kind = QString::fromLatin1(dialog->metaObject()->className());
            if (stack_.size() < 2 && !sweptKinds_.contains(kind)) {
                sweptKinds_.insert(kind);
                sweep(name + QStringLiteral(" > ") + kind, dialog, {QStringLiteral("O'Brien"), QString(10000, QLatin1Char('W')),
                                                                    QString::fromUtf16(u"a\u0000b", 3), QStringLiteral("1e400")});
            }
            if (dialog->isVisible())
                dialog->reject();
        });
        // A screen that opens its dialog after the first turn of the event loop is caught by the next one.
        QTimer::singleShot(20, &timers_, [this, name] {
            auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            if (dialog && !stack_.contains(dialog))
                dialog->reject();
        });
    }

    static QTemporaryDir *school_;
    QTemporaryDir dir_;
    QString library_, central_;
    std::unique_ptr<MessageScript> messages_;
    std::unique_ptr<SettingsStore> settings_;
    ScreenRegistry screens_;
    std::map<QString, QString> before_;
    QByteArray centralHash_;
    QList<QDialog *> stack_;
    QSet<QString> sweptKinds_;
    QStringList faults_;
    QObject timers_; // the watching timers end with the test that started them
};

QTemporaryDir *InputSweep::school_ = nullptr;

class EveryScreen : public InputSweep, public ::testing::WithParamInterface<const char *> {};

TEST_P(EveryScreen, HostileTextReachesNoEngine)
{
    const QString name = QString::fromLatin1(GetParam());
    ASSERT_TRUE(screens_.has(name));
    sweepScreen(name, screens_.make(name, nullptr));
}

INSTANTIATE_TEST_SUITE_P(Registered, EveryScreen,
                         ::testing::Values("frmIssueSystem", "frmSystemSettings", "frmReserves", "frmReservedItems", "frmFinePayment",
                                           "frmItemList", "frmItemAddModify", "frmCategories", "frmQuickFind", "frmSeries",
                                           "frmPublisher", "frmAuthor", "frmLanguages", "frmSubjectsList", "frmKeywordList",
                                           "frmLabelList", "frmLibraryUsers", "frmLibraryReport", "frmOverdueNotices",
                                           "frmLibraryStatistics", "frmStocktake", "frmMarcImport", "frmRecordSources"),
                         [](const auto &info) { return std::string(info.param); });

TEST_F(InputSweep, TheListAboveIsEveryRegisteredScreen)
{
    QStringList listed;
    for (const auto &[name, tables] : ownedTables())
        if (name != QLatin1String("FrmuserloanHistory"))
            listed << name;
    listed.sort();
    EXPECT_EQ(screens_.names(), listed);
}

TEST_F(InputSweep, ItemEditorCopyingAndEditing)
{
    ScreenOptions options;
    options.itemID = rowsIn(library_, "select min(ItemID) from tblLibItems where PhasedOut = false").value(0).toInt();
    for (int mode : {1, 2}) {
        options.itemEditMode = mode;
        std::unique_ptr<QDialog> editor(screens_.make("frmItemAddModify", nullptr, options));
        sweep(QStringLiteral("frmItemAddModify mode %1").arg(mode), editor.get(), hostileValues());
    }
    ConnectionPool::shared().clear();
    checkDatabases("frmItemAddModify");
}

TEST_F(InputSweep, LoanHistoryOfABorrower)
{
    const QStringList borrower = rowsIn(library_, "select MemberType, MemberID from tblLibTransactions where Returned = false").value(0).split('|');
    ASSERT_EQ(borrower.size(), 2);
    auto *history = new FrmuserloanHistory;
    history->setMember(borrower[0], borrower[1].toInt(), QStringLiteral("A borrower"));
    sweepScreen("FrmuserloanHistory", history);
}

} // namespace
