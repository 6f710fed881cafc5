// The screens' long work on a generated school of some size: it runs off the GUI thread (the
// event loop turns meanwhile), gives what the routine gives when called directly, and a
// cancelled PDF leaves no file.
#include "Clock.h"
#include "ConnectionPool.h"
#include "DatabaseLocations.h"
#include "LibraryStatistics.h"
#include "MessageScript.h"
#include "GeneratedSchoolSuite.h"
#include "ScreenDriver.h"
#include "ScreenRegistry.h"
#include "SpreadGrid.h"
#include "clsDataObject.h"
#include "TaskRunner.h"
#include "frmItemList.h"
#include "frmLabelList.h"
#include "SettingsStore.h"
#include "frmLibraryStatistics.h"
#include "frmOverdueNotices.h"
#include "frmReportViewer.h"

#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace ScreenDriver;

namespace {

class LongWork : public GeneratedSchoolSuite {
protected:
    void SetUp() override
    {
        LibraryDatabasePath = library();
        CentralDatabasePath = central();
        messages_ = std::make_unique<MessageScript>();
        beat_.setInterval(1);
        QObject::connect(&beat_, &QTimer::timeout, [this] { ++ticks_; });
        beat_.start();
    }
    void TearDown() override
    {
        TaskRunner::dialogDelayMs = 500;
        LibraryDatabasePath.clear();
        CentralDatabasePath.clear();
    }
    // Event-loop turns since the last call.
    int ticks()
    {
        const int n = ticks_;
        ticks_ = 0;
        return n;
    }

    std::unique_ptr<MessageScript> messages_;
    QTimer beat_;
    int ticks_ = 0;
};
TEST_F(LongWork, StatisticsFromTheWorkerEqualTheRoutinesOwn)
{
    ticks();
    frmLibraryStatistics screen; // counts the last twelve months as it opens
    EXPECT_GT(ticks(), 0) << "the window stood still while the statistics were counted";
    const LibraryStatistics direct = LibraryStatistics::compute(Clock::today().addYears(-1).addDays(1), Clock::today());
    ASSERT_GT(direct.topTitles.size(), 0u);
    const QStringList titles = column(screen, "gridTopTitles", 1), loans = column(screen, "gridTopTitles", 2);
    ASSERT_EQ(titles.size(), qsizetype(direct.topTitles.size()));
    for (size_t i = 0; i < direct.topTitles.size(); ++i) {
        EXPECT_EQ(titles[qsizetype(i)], direct.topTitles[i].name);
        EXPECT_EQ(loans[qsizetype(i)].toInt(), direct.topTitles[i].count);
    }
    EXPECT_EQ(child<SpreadGrid>(screen, "gridUnborrowed")->maxRows(), int(direct.unborrowed.size()));
    EXPECT_EQ(child<SpreadGrid>(screen, "gridMonths")->maxRows(), int(direct.months.size()));
    EXPECT_TRUE(messages_->shown().empty());
}

TEST_F(LongWork, ShowAllListsEveryCopyOnShelfWhileTheWindowLives)
{
    const ScreenRegistry screens;
    frmItemList screen(screens);
    ticks();
    click(screen, "cmdAll");
    EXPECT_GT(ticks(), 0) << "the window stood still while the catalogue was read";
    clsDataObject data;
    data.GetData(QStringLiteral("select count(*) from tblLibItems where PhasedOut = false"));
    const int onShelf = data.rst->field(0).toInt();
    EXPECT_GT(onShelf, 19000);
    EXPECT_EQ(child<SpreadGrid>(screen, "fpSpreadStock")->maxRows(), onShelf);
    EXPECT_EQ(child<QLineEdit>(screen, "txtTotalItems")->text(), QString::number(onShelf));

    // The label list reads the same shelves the same way.
    QTemporaryDir dir;
    SettingsStore settings(dir.filePath("labels.ini"));
    frmLabelList labels(settings);
    ticks();
    click(labels, "cmdAll");
    EXPECT_GT(ticks(), 0) << "the window stood still while the label list was read";
    EXPECT_EQ(child<SpreadGrid>(labels, "fpSpreadStock")->maxRows(), onShelf);
}

TEST_F(LongWork, ACancelledPdfLeavesNoFile)
{
    frmOverdueNotices screen;
    click(screen, "cmdDefaultTemplate");
    const QString pdf = QFileInfo(library()).dir().filePath("letters.pdf");
    frmReportViewer::Saved saved = frmReportViewer::Saved::Yes;
    int pages = 0;
    const auto watch = whenModal<frmReportViewer>([&](frmReportViewer *viewer) {
        pages = viewer->pageCount();
        TaskRunner::dialogDelayMs = 0;
        QTimer cancel;
        QObject::connect(&cancel, &QTimer::timeout, [&] {
            for (QWidget *w : QApplication::topLevelWidgets())
                if (auto *progress = qobject_cast<QProgressDialog *>(w); progress && progress->isVisible())
                    if (auto *button = progress->findChild<QPushButton *>()) {
                        cancel.stop();
                        QTest::mouseClick(button, Qt::LeftButton);
                    }
        });
        cancel.start(1);
        saved = viewer->saveAsPdf(pdf);
        viewer->close();
    });
    click(screen, "cmdLetters");
    EXPECT_GT(pages, 1);
    EXPECT_EQ(saved, frmReportViewer::Saved::Cancelled);
    EXPECT_FALSE(QFile::exists(pdf));
}

} // namespace
