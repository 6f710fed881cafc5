#pragma once

#include "ItemSheet.h"
#include "clsDataObject.h"

#include "ScreenRegistry.h"

#include <QDialog>
#include <QVector>

#include <memory>

namespace Ui {
class frmItemAddModify;
}

/// "Maintain Catalogue": adds a new title with up to twenty copies (mode 0), more copies of a title
/// already held (mode 1), or edits, reinstates and phases out one copy (mode 2), as the options it
/// is opened with say; then links subject and keyword search terms to what was
/// saved.
class frmItemAddModify : public QDialog {
    Q_OBJECT
public:
    /// The registry opens the subject and keyword lists; options give the mode and the item.
    explicit frmItemAddModify(const ScreenRegistry &screens, const ScreenOptions &options = {}, QWidget *parent = nullptr);
    ~frmItemAddModify() override;

    /// The ItemIDs written by the last save, in cell order.
    const QVector<int> &savedItems() const { return savedItems_; }
    /// The proposal of the accession rule from the newest item.
    QString NextAccessionNumber();

public Q_SLOTS:
    void cmdSave_Click();
    void cmdNext_Click();
    void cmdPrint_Click();
    void cmdFillcombo_Click();
    void cmdGo_Click();
    void cmdGoK_Click();
    void cboSubjectClass_Click(int index);
    void cboSearch_Click(int index);
    void cboSearchKeywords_Click(int index);
    void cmdRemove_Click();
    void cmdKRemove_Click();
    void cmdSaveterms_Click();
    void cmdSaveKterms_Click();
    void griditems_Change(int col, int row);
    /// "Find by ISBN...": the record of the scanned ISBN from the record sources, onto the sheet.
    void cmdFindIsbn_Click();

private:
    void Form_Load();
    void PopulateCombo();
    void PopulateData();
    void refreshSubCategories();
    void addItems();
    void editItem();
    void phaseOut(const QString &holderType, int holderID);
    bool AccessionExists(const QString &accession);
    bool AccessionExistsForOther(const QString &accession, const QString &ownAccession);
    void SaveLinks(bool subjects);
    void showSaved(bool saved);
    void openList(const char *screen, const QString &caption);

    std::unique_ptr<Ui::frmItemAddModify> ui;
    const ScreenRegistry &screens_;
    clsDataObject data_;
    std::unique_ptr<ItemSheet> sheet_;
    int mode_;
    int itemID_;              // the item copied or edited (modes 1 and 2); 0 when adding new ones
    QString ownAccession_;    // the edited item's accession number as loaded
    QVector<int> savedItems_;
};
