#pragma once

#include "OverdueList.h"
#include "PagedDocument.h"

#include <QDate>
#include <QRectF>
#include <QString>

#include <memory>
#include <mutex>
#include <vector>

/// The overdue notices drawn by Qt for the report viewer: class lists for the class teachers (one
/// or more pages per class, in class order, with a line for the teacher's signature) or letters to
/// parents (one page per learner, the school's name as heading, the wording of NoticeTemplate).
class NoticeDocument : public PagedDocument {
public:
    enum Kind { ClassLists, Letters };
    NoticeDocument(Kind kind, std::vector<OverdueRow> rows, const QString &schoolName, const QDate &asAt,
                   const QString &letterWording = QString());

    QString title() const override;
    int pageCount(const QRectF &page, double dpi) const override;
    void paintPage(QPainter &painter, const QRectF &page, int pageNumber) const override;

    /// Each member's rows: [first, last) into the rows, in order.
    struct Group {
        size_t first = 0;
        size_t last = 0;
    };
    /// A letter's text with its placeholders filled (tests read it back from the PDF).
    QString letterText(const Group &learner) const;

private:
    struct Page {
        size_t group = 0;     // the class (class lists) or the learner (letters)
        size_t first = 0;     // rows on this page: [first, last)
        size_t last = 0;
        bool closing = false; // the class's last page: the signature line goes here
        int firstLine = 0;    // letters: the letter's wrapped lines on this page, [firstLine, lastLine)
        int lastLine = 0;
    };
    std::vector<Page> layout(const QRectF &page, double dpi) const;
    /// The layout for a page size and resolution, worked out once (every letter is measured for it).
    std::shared_ptr<const std::vector<Page>> pages(const QRectF &page, double dpi) const;
    void paintClassPage(QPainter &painter, const QRectF &page, const Page &p) const;
    void paintLetter(QPainter &painter, const QRectF &page, const Page &p) const;
    /// A letter's text broken into the lines it is printed in, at the page's width and resolution.
    QStringList letterLines(const Group &learner, double width, double dpi) const;

    Kind kind_;
    std::vector<OverdueRow> rows_;
    QString school_;
    QDate asAt_;
    QString wording_;
    std::vector<Group> classes_;
    std::vector<Group> learners_;
    // The last layout asked for: the viewer and the PDF writer ask page by page, perhaps from two threads.
    mutable std::mutex layoutMutex_;
    mutable QRectF laidOutPage_;
    mutable double laidOutDpi_ = 0;
    mutable std::shared_ptr<const std::vector<Page>> laidOut_;
};
