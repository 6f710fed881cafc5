// The busiest screens at the default font and at 125 %: every grid column holds its caption and
// its whole values (dates, amounts), no label is cut, sheets show every column, and each screen is
// saved as a picture for a person to look at (screens/ beside the test).

#include "CatalogueScreens.h"
#include "CirculationScreens.h"
#include "ConnectionPool.h"
#include "FrmuserloanHistory.h"
#include "MemberScreens.h"
#include "ReportScreens.h"
#include "SchoolGenerator.h"
#include "ScreenDriver.h"
#include "ScreenRegistry.h"
#include "SettingsStore.h"
#include "SpreadGrid.h"
#include "TestDatabases.h"
#include "DatabaseLocations.h"
#include "frmDatabases.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include <functional>
#include <memory>

namespace {

struct Case {
    const char *screen;
    double scale;
};

class ScreenLayout : public ::testing::TestWithParam<Case> {
protected:
    static void SetUpTestSuite()
    {
        school_ = new QTemporaryDir;
        SchoolGenerator(SchoolSize{300, 60, 6, 4, 400, 40, 12, false}).write(school_->filePath("library.db"), school_->filePath("central.db"));
    }
    static void TearDownTestSuite()
    {
        delete school_;
        school_ = nullptr;
    }
    void SetUp() override
    {
        ASSERT_TRUE(QFile::copy(school_->filePath("library.db"), dir_.filePath("library.db")));
        LibraryDatabasePath = dir_.filePath("library.db");
        CentralDatabasePath = school_->filePath("central.db");
        SchoolName = SchoolGenerator::schoolName();
        messages_ = std::make_unique<MessageScript>();
        settings_ = std::make_unique<SettingsStore>(dir_.filePath("shelvora.ini"));
        registerCirculationScreens(screens_);
        registerCatalogueScreens(screens_, *settings_);
        registerMemberScreens(screens_);
        registerReportScreens(screens_);
        font_ = QApplication::font();
        QFont font = font_;
        font.setPointSizeF(font.pointSizeF() * GetParam().scale);
        QApplication::setFont(font);
    }
    void TearDown() override
    {
        QApplication::setFont(font_);
        messages_.reset();
        LibraryDatabasePath.clear();
        CentralDatabasePath.clear();
        SchoolName.clear();
        ConnectionPool::shared().clear();
    }

    // A member of a kind with open loans and open fines (internal number).
    int busyLearner()
    {
        const QStringList row = rowsIn(LibraryDatabasePath, "select MemberID from tblLibTransactionFines where MemberType = 'L' and FineCancelled = false and PaymentAmount = 0 order by MemberID");
        return row.isEmpty() ? 1 : row.first().toInt();
    }

    std::unique_ptr<QDialog> openWithWork(const QString &name)
    {
        if (name == QLatin1String("FrmuserloanHistory")) {
            auto history = std::make_unique<FrmuserloanHistory>();
            history->setMember(QStringLiteral("L"), busyLearner(), QStringLiteral("A learner"));
            history->findChild<QAbstractButton *>("optHistory")->click();
            FitOnScreen(history.get(), QSize(1366, 728));
            return history;
        }
        std::unique_ptr<QDialog> screen(screens_.make(name, nullptr));
        FitOnScreen(screen.get(), QSize(1366, 728)); // as the menu opens it on a laptop
        if (name == QLatin1String("frmIssueSystem")) {
            // A few transactions of the day, with a fine among them.
            auto *returns = screen->findChild<QLineEdit *>("txtAccessionReturn");
            for (const QString &accession : rowsIn(LibraryDatabasePath, "select AccessionID from tblLibTransactions where Returned = false order by DueDate").mid(0, 4)) {
                returns->setText(accession);
                QTest::keyClick(returns, Qt::Key_Return);
            }
        } else if (name == QLatin1String("frmReservedItems")) {
            screen->findChild<QAbstractButton *>("cmdFindAll")->click();
        } else if (name == QLatin1String("frmFinePayment")) {
            auto *members = screen->findChild<QComboBox *>("cboMembers");
            const int index = members->findData(busyLearner());
            members->setCurrentIndex(index);
            Q_EMIT members->activated(index);
            screen->findChild<QAbstractButton *>("cmdFind")->click();
        } else if (name == QLatin1String("frmLibraryUsers")) {
            screen->findChild<QAbstractButton *>("cmdShowAllLearners")->click();
        } else if (name == QLatin1String("frmOverdueNotices")) {
            screen->findChild<QAbstractButton *>("cmdShow")->click();
        }
        return screen;
    }

    QTemporaryDir dir_;
    std::unique_ptr<MessageScript> messages_;
    std::unique_ptr<SettingsStore> settings_;
    ScreenRegistry screens_;
    QFont font_;
    static inline QTemporaryDir *school_ = nullptr;
};

} // namespace

TEST_P(ScreenLayout, NothingIsCut)
{
    const QString name = QString::fromLatin1(GetParam().screen);
    std::unique_ptr<QDialog> screen = openWithWork(name);
    screen->show();
    QApplication::processEvents();
    const std::string where = GetParam().screen + std::string(" at ") + std::to_string(int(GetParam().scale * 100)) + "%";

    const QDir pictures(QDir::current().absoluteFilePath("screens"));
    QDir().mkpath(pictures.path());
    screen->grab().save(pictures.filePath(QString("%1-%2.png").arg(name).arg(int(GetParam().scale * 100))));

    int filled = 0;
    for (const SpreadGrid *grid : screen->findChildren<SpreadGrid *>()) {
        if (!grid->isVisibleTo(screen.get()))
            continue;
        ScreenDriver::expectColumnsHoldTheirText(*grid, where + " " + grid->objectName().toStdString());
        filled += grid->maxRows() > 0;
        if (grid->view()->horizontalScrollBarPolicy() == Qt::ScrollBarAlwaysOff) { // a sheet: every column in view
            EXPECT_LE(grid->view()->horizontalHeader()->length(), grid->view()->viewport()->width()) << where << " " << grid->objectName().toStdString();
        }
    }
    EXPECT_GT(filled, 0) << where << ": the screen was meant to show some rows";
    for (const QLabel *label : screen->findChildren<QLabel *>()) {
        if (!label->isVisibleTo(screen.get()) || label->wordWrap() || label->text().isEmpty() || !label->pixmap().isNull())
            continue;
        EXPECT_GE(label->width(), label->sizeHint().width()) << where << " label " << label->objectName().toStdString() << " \"" << label->text().toStdString() << "\"";
    }
    for (const QComboBox *combo : screen->findChildren<QComboBox *>()) {
        if (!combo->isVisibleTo(screen.get()) || !combo->isEditable() || combo->currentIndex() >= 0 || combo->currentText().isEmpty())
            continue; // a placeholder such as "Optional Grade Filter" must show whole
        EXPECT_GE(combo->lineEdit()->width(), combo->lineEdit()->fontMetrics().horizontalAdvance(combo->currentText()))
            << where << " combo " << combo->objectName().toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Busy, ScreenLayout,
                         ::testing::Values(Case{"frmIssueSystem", 1.0}, Case{"frmIssueSystem", 1.25}, Case{"FrmuserloanHistory", 1.0},
                                           Case{"FrmuserloanHistory", 1.25}, Case{"frmFinePayment", 1.0}, Case{"frmFinePayment", 1.25},
                                           Case{"frmReservedItems", 1.0}, Case{"frmReservedItems", 1.25}, Case{"frmLibraryUsers", 1.0},
                                           Case{"frmLibraryUsers", 1.25}, Case{"frmItemAddModify", 1.0}, Case{"frmItemAddModify", 1.25},
                                           Case{"frmSystemSettings", 1.0}, Case{"frmSystemSettings", 1.25}, Case{"frmOverdueNotices", 1.0},
                                           Case{"frmOverdueNotices", 1.25}, Case{"frmLibraryStatistics", 1.0}, Case{"frmLibraryStatistics", 1.25}),
                         [](const ::testing::TestParamInfo<Case> &info) {
                             return std::string(info.param.screen) + (info.param.scale > 1 ? "_125" : "_100");
                         });

// Every registered screen fits a 1366x768 laptop with a taskbar's room left (1366x728) as it opens at
// the default font, and at 125 % it can still be made that small (what does not fit scrolls).
class ScreenFits : public ScreenLayout {};

TEST_P(ScreenFits, OnALaptop)
{
    const QSize room(1366, 728);
    QStringList tooBig;
    // The setup screen too, which the program itself registers.
    screens_.add("frmDatabases", [this](QWidget *parent) { return new frmDatabases(*settings_, [] { return QString(); }, parent); });
    for (const QString &name : screens_.names()) {
        std::unique_ptr<QDialog> screen(screens_.make(name, nullptr));
        ASSERT_TRUE(screen) << name.toStdString();
        FitOnScreen(screen.get(), room);
        screen->show();
        QApplication::processEvents();
        const QSize least = screen->minimumSizeHint().expandedTo(screen->minimumSize());
        const QSize opened = screen->size();
        if (least.width() > room.width() || least.height() > room.height() || opened.width() > room.width() || opened.height() > room.height())
            tooBig << QString("%1 opens %2x%3, least %4x%5").arg(name).arg(opened.width()).arg(opened.height()).arg(least.width()).arg(least.height());
        // At the default font nothing needs scrolling.
        if (const auto *scroll = screen->findChild<QScrollArea *>("scrollScreen"); scroll && GetParam().scale == 1.0
            && (scroll->horizontalScrollBar()->isVisible() || scroll->verticalScrollBar()->isVisible()))
            tooBig << name + QString(" scrolls: contents %1x%2 in %3x%4").arg(scroll->widget()->minimumSizeHint().width()).arg(scroll->widget()->minimumSizeHint().height()).arg(scroll->viewport()->width()).arg(scroll->viewport()->height());
    }
    EXPECT_TRUE(tooBig.isEmpty()) << "at " << int(GetParam().scale * 100) << "%: " << tooBig.join("; ").toStdString();
}

INSTANTIATE_TEST_SUITE_P(Laptop, ScreenFits, ::testing::Values(Case{"", 1.0}, Case{"", 1.25}),
                         [](const ::testing::TestParamInfo<Case> &info) { return std::string(info.param.scale > 1 ? "At125" : "At100"); });
