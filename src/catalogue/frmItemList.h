#pragma once

#include "ItemCriteria.h"
#include "clsDataObject.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmItemList;
}
class ScreenRegistry;

/// "Library Catalogue", the stock list: searches the copies of the catalogue (or lists the
/// phased-out ones), shows them with their totals, takes restricted and loan-type marks edited in
/// the grid and writes them back, prints, and hands the selected item to the item editor.
class frmItemList : public QDialog {
    Q_OBJECT
public:
    /// The registry opens the item editor and the subject and keyword searches.
    explicit frmItemList(const ScreenRegistry &screens, QWidget *parent = nullptr);
    ~frmItemList() override;

    /// The search routine of the subject and keyword searches: runs their condition in the
    /// statement of that mode ("Subject", "Keyword"); true when items were found.
    bool SearchItems(const QString &condition, const QString &mode);
    /// The statement of the last list, without its order.
    const QString &listStatement() const { return listStatement_; }

public Q_SLOTS:
    void cmdSearch_Click();
    void cmdAll_Click();
    void cmdSubjectSearch_Click();
    void cmdKeywordSearch_Click();
    void cmbCategory_Click();
    void flagTicked(QObject *box);
    void OrderItems(int column);
    void chRestrictAll_Click();
    void cmdprocess_Click();
    void cmdNew_Click();
    void cmdAddExisting_Click();
    void cmdEdit_Click();
    void cmdPrint_Click();
    /// "Export MARC Records...": the items listed, as MARC 21 or MARCXML.
    void cmdExportMarc_Click();

private:
    void fill(const QString &sql);
    int currentItemID_ = 0; // the item last clicked in the list, handed to the editor
    void defineGrid(bool removed);
    void openEditor(int mode);

    std::unique_ptr<Ui::frmItemList> ui;
    const ScreenRegistry &screens_;
    clsDataObject data_;
    QString mode_; // "All", "Search", "Subject" or "Keyword": what a refresh re-runs
    QString listStatement_;
    ItemCriteria criteria_;
    ItemListOrder order_;
    // The marks each listed row had when it was read: Process writes only the rows changed since.
    struct Marks {
        int itemID;
        bool restricted;
        QString loanType;
    };
    std::vector<Marks> shown_;
};
