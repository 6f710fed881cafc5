#pragma once

#include "Messages.h"

#include <QString>
#include <QStringList>

#include <deque>
#include <vector>

/// One message box as it would have been shown.
struct ShownMessage {
    QString prompt;
    QString title;
    int style = 0;
    MessagePicture picture = MessagePicture::None;
    int answer = 0;
};

/// While an instance lives, message boxes are not shown: each is recorded and
/// answered from the queued answers (tests, and runs without a screen). With
/// no answer queued a box gets its first button (OK or Yes).
class MessageScript {
public:
    MessageScript();
    ~MessageScript();
    MessageScript(const MessageScript &) = delete;
    MessageScript &operator=(const MessageScript &) = delete;

    static constexpr int Ok = 1, Cancel = 2, Yes = 6, No = 7;

    void queueAnswer(int code) { answers_.push_back(code); }
    /// The next file dialog answers with this path (an empty one means Cancel).
    void queueFileName(const QString &path) { fileNames_.push_back(path); }
    /// Print jobs skip the print dialog and write this PDF file; with none set they print nothing.
    void setPrintToPdf(const QString &path) { pdfPath_ = path; }
    const QString &printToPdf() const { return pdfPath_; }
    /// The next scripted file name (empty when none is queued).
    QString takeFileName();
    const std::vector<ShownMessage> &shown() const { return shown_; }
    QStringList prompts() const;
    void clear() { shown_.clear(); answers_.clear(); }

    /// The script in force, or null when boxes are really shown.
    static MessageScript *active();
    /// The first button of a box of this style: what a box gets with no answer queued.
    static int defaultAnswer(int style);
    /// Records a box and returns its scripted answer.
    int answer(const QString &prompt, int style, const QString &title, MessagePicture picture);

private:
    std::deque<int> answers_;
    std::deque<QString> fileNames_;
    QString pdfPath_;
    std::vector<ShownMessage> shown_;
    MessageScript *previous_;
};
