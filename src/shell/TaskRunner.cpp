#include "TaskRunner.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QEventLoop>
#include <QPointer>
#include <QProgressDialog>
#include <QThread>
#include <QTimer>

#include <exception>
#include <memory>

namespace {
std::atomic<bool> underWay{false};

/// Holds back the librarian's input to every window but the progress dialog while work runs.
class InputHold : public QObject {
public:
    explicit InputHold(QPointer<QProgressDialog> &dialog) : dialog_(dialog) { qApp->installEventFilter(this); }
    ~InputHold() override { qApp->removeEventFilter(this); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::Shortcut:
        case QEvent::ShortcutOverride:
        case QEvent::Wheel:
        case QEvent::Close:
            return !insideDialog(watched);
        default:
            return false;
        }
    }

private:
    bool insideDialog(QObject *watched) const
    {
        for (QObject *o = watched; o; o = o->parent())
            if (dialog_ && o == dialog_.data())
                return true;
        return false;
    }
    QPointer<QProgressDialog> &dialog_;
};

struct CursorHold {
    CursorHold() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~CursorHold() { QApplication::restoreOverrideCursor(); }
};
} // namespace

TaskRunner::TaskRunner(QWidget *owner, QString label, Cancel cancel) : owner_(owner), label_(std::move(label)), cancel_(cancel) {}

bool TaskRunner::busy() { return underWay; }

void TaskRunner::onGuiThread(QObject *context, const std::function<void()> &show)
{
    if (QThread::currentThread() == context->thread())
        show();
    else
        QMetaObject::invokeMethod(context, show, Qt::BlockingQueuedConnection);
}

bool TaskRunner::run(const std::function<void(TaskProgress &)> &work)
{
    if (underWay.exchange(true))
        return false;
    struct Release {
        ~Release() { underWay = false; }
    } release;

    TaskProgress progress;
    std::exception_ptr failure;
    bool cancelled = false;
    std::unique_ptr<QThread> worker(QThread::create([&] {
        try {
            work(progress);
        } catch (const TaskCancelled &) {
            cancelled = true;
        } catch (...) {
            failure = std::current_exception();
        }
    }));

    QPointer<QProgressDialog> dialog;
    CursorHold cursor;
    InputHold hold(dialog);
    QEventLoop loop;
    QObject::connect(worker.get(), &QThread::finished, &loop, &QEventLoop::quit);

    QElapsedTimer clock;
    clock.start();
    QTimer poll;
    poll.setInterval(40);
    const auto showProgress = [&] {
        if (!dialog && clock.elapsed() >= dialogDelayMs) {
            dialog = new QProgressDialog(label_, cancel_ == Cancel::Yes ? QApplication::translate("TaskRunner", "Cancel") : QString(), 0, 0,
                                         owner_);
            dialog->setObjectName(QStringLiteral("TaskProgressDialog"));
            dialog->setWindowTitle(owner_ ? owner_->windowTitle() : QApplication::applicationName());
            dialog->setAutoClose(false);
            dialog->setAutoReset(false);
            dialog->setWindowModality(Qt::WindowModal);
            if (cancel_ == Cancel::No)
                dialog->setCancelButton(nullptr);
            QObject::connect(dialog, &QProgressDialog::canceled, [&progress] { progress.cancel(); });
            dialog->show();
        }
        if (dialog) {
            const QString text = progress.text();
            dialog->setLabelText(progress.cancelled() ? QApplication::translate("TaskRunner", "Stopping...")
                                                      : text.isEmpty() ? label_ : text);
            dialog->setMaximum(progress.maximum());
            if (progress.maximum() > 0)
                dialog->setValue(qMin(progress.value(), progress.maximum()));
        }
    };
    QObject::connect(&poll, &QTimer::timeout, showProgress);
    poll.start();
    worker->start();
    showProgress();
    loop.exec();
    worker->wait();
    poll.stop();
    delete dialog.data();

    if (failure)
        std::rethrow_exception(failure);
    return !cancelled;
}
