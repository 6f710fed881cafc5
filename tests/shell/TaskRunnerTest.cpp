#include "AppError.h"
#include "TaskRunner.h"

#include <QApplication>
#include <QDialog>
#include <QProgressDialog>
#include <QPushButton>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

QProgressDialog *progressDialog()
{
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->objectName() == QLatin1String("TaskProgressDialog") && w->isVisible())
            return qobject_cast<QProgressDialog *>(w);
    return nullptr;
}

// Work that takes about ms milliseconds, stopping where asked.
void busyFor(TaskProgress &progress, int ms)
{
    progress.setMaximum(ms / 10);
    for (int i = 0; i < ms / 10; ++i) {
        progress.check();
        progress.setValue(i);
        QThread::msleep(10);
    }
}

class TaskRunnerTest : public ::testing::Test {
protected:
    void TearDown() override { TaskRunner::dialogDelayMs = 500; }
    QDialog screen_;
};

TEST_F(TaskRunnerTest, TheWindowLivesWhileTheWorkRunsAndTheLibrariansClicksWait)
{
    auto *button = new QPushButton(QStringLiteral("Show All"), &screen_);
    int clicks = 0;
    QObject::connect(button, &QPushButton::clicked, [&] { ++clicks; });
    screen_.show();

    int ticks = 0;
    bool secondRunRefused = false;
    QTimer beat;
    QObject::connect(&beat, &QTimer::timeout, [&] {
        if (++ticks == 3) {
            QTest::mouseClick(button, Qt::LeftButton); // a second press while the first one's work runs
            secondRunRefused = !TaskRunner(&screen_, QStringLiteral("again")).run([](TaskProgress &) {}) && TaskRunner::busy();
        }
    });
    beat.start(10);
    const auto result = TaskRunner(&screen_, QStringLiteral("Reading...")).compute<int>([](TaskProgress &progress) {
        busyFor(progress, 300);
        return 42;
    });
    beat.stop();

    EXPECT_EQ(result, 42);
    EXPECT_GE(ticks, 5) << "the event loop stood still";
    EXPECT_EQ(clicks, 0) << "a click during the work went through";
    EXPECT_TRUE(secondRunRefused);
    EXPECT_FALSE(TaskRunner::busy());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the wait cursor stayed";
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(clicks, 1) << "clicks are held back after the work";
}

TEST_F(TaskRunnerTest, ProgressShowsAfterTheDelayAndCancelStopsTheWork)
{
    TaskRunner::dialogDelayMs = 0;
    int maximumSeen = -1;
    bool cursorWhileRunning = false;
    QTimer press;
    QObject::connect(&press, &QTimer::timeout, [&] {
        cursorWhileRunning = cursorWhileRunning || (QApplication::overrideCursor() && QApplication::overrideCursor()->shape() == Qt::WaitCursor);
        QProgressDialog *dialog = progressDialog();
        if (!dialog || dialog->maximum() == 0)
            return;
        maximumSeen = dialog->maximum();
        if (auto *cancel = dialog->findChild<QPushButton *>()) {
            press.stop();
            QTest::mouseClick(cancel, Qt::LeftButton); // the dialog takes the librarian's click
        }
    });
    press.start(20);
    bool finished = false;
    const bool ran = TaskRunner(&screen_, QStringLiteral("Counting..."), TaskRunner::Cancel::Yes).run([&](TaskProgress &progress) {
        busyFor(progress, 5000);
        finished = true;
    });
    EXPECT_FALSE(ran);
    EXPECT_FALSE(finished);
    EXPECT_EQ(maximumSeen, 500);
    EXPECT_TRUE(cursorWhileRunning);
    EXPECT_EQ(progressDialog(), nullptr) << "the progress dialog stayed";
}

TEST_F(TaskRunnerTest, AnErrorInTheWorkReachesTheScreensTrap)
{
    try {
        TaskRunner(&screen_, QStringLiteral("Reading...")).run([](TaskProgress &) { throw AppError(3021, QStringLiteral("No current record.")); });
        ADD_FAILURE() << "nothing thrown";
    } catch (const AppError &e) {
        EXPECT_EQ(e.number(), 3021);
    }
    EXPECT_FALSE(TaskRunner::busy());
}

} // namespace
