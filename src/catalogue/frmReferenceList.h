#pragma once

#include "clsDataObject.h"

#include <QDialog>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

namespace Ui {
class frmReferenceList;
}

/// The one design of the reference-list screens (series, publishers, authors, languages, subject
/// classification codes, search keywords): an entry frame, a search frame and a grid of the live
/// rows. Each list is this screen configured by its Definition: its controls' names and captions,
/// its statements and its messages.
class frmReferenceList : public QDialog {
    Q_OBJECT
public:
    /// A rule that refuses: a statement that must find no row, and the message when it does.
    struct Check {
        QString sql;
        QString message;
    };
    /// The entry texts (trimmed; quote-doubled for statements) that the statements take.
    using Values = QStringList;
    struct Definition {
        QString objectName, caption;
        std::vector<std::pair<const char *, const char *>> fields; // entry text boxes: objectName, label
        const char *table = nullptr;
        std::vector<const char *> fieldColumns; // the column of the table each entry box is saved to
        std::vector<std::pair<const char *, double>> columns;
        const char *searchBox = nullptr; // objectName; none: the search takes the entry texts
        QString allCaption = QStringLiteral("&All");
        QString printCaption = QStringLiteral("Prin&t Grid");
        QString printHeading, addLocation, printLocation;
        QString listAll;
        std::function<QString(const QString &text)> search;
        std::function<QString(const Values &raw)> missing;              // a message when a required text is empty
        std::function<QString(const Values &raw, bool updating)> differentTexts; // keywords: a message when both are the same
        std::function<std::vector<Check>(const Values &v)> duplicates;  // tried in order on add
        std::function<QString(const Values &v)> insert;
        QString added;
        std::function<std::vector<Check>(const Values &v)> updateChecks; // keywords: tried on update too
        std::function<QString(int id, const Values &v)> update;
        QString updated, noneToEdit;
        std::function<std::vector<Check>(int id, const Values &v)> inUse; // tried before a delete is confirmed
        QString confirmDelete;
        std::function<QString(int id)> phaseOut;
        QString deleted, noneToDelete;
    };

    frmReferenceList(const Definition &definition, QWidget *parent = nullptr);
    ~frmReferenceList() override;

    /// The key of the row last clicked, 0 when none.
    int selectedID() const { return selectedID_; }

public Q_SLOTS:
    void cmdAll_Click();
    void cmdSeach_Click();
    void cmdAdd_Click();
    void cmdModify_Click();
    void cmdDelete_Click();
    void cmdClear_Click();
    void cmdPrint_Click();
    void fpSpread_Click(int col, int row);

private:
    Values entries(bool quoted) const;
    bool refused(const std::vector<Check> &checks);
    void fill(const QString &sql);

    std::unique_ptr<Ui::frmReferenceList> ui;
    Definition d_;
    std::vector<class QLineEdit *> fields_;
    Values shown_; // the entry texts of the row last clicked
    clsDataObject data_;
    int selectedID_ = 0;
};

// The six lists, each the shared screen with its own definition.
class frmSeries : public frmReferenceList {
public:
    explicit frmSeries(QWidget *parent = nullptr);
};
class frmPublisher : public frmReferenceList {
public:
    explicit frmPublisher(QWidget *parent = nullptr);
};
class frmAuthor : public frmReferenceList {
public:
    explicit frmAuthor(QWidget *parent = nullptr);
};
class frmLanguages : public frmReferenceList {
public:
    explicit frmLanguages(QWidget *parent = nullptr);
};
class frmSubjectsList : public frmReferenceList {
public:
    explicit frmSubjectsList(QWidget *parent = nullptr);
};
class frmKeywordList : public frmReferenceList {
public:
    explicit frmKeywordList(QWidget *parent = nullptr);
};
