#pragma once

#include "MarcImport.h"

#include <QDialog>
#include <QStringList>

#include <memory>

namespace Ui {
class frmMarcImport;
}

/// "MARC Records": a supplier's or another library's file of MARC records previewed (what each
/// becomes, titles already held, records that cannot be taken and why), the ticked ones imported
/// in one transaction with the category, loan type and number of copies chosen; and the catalogue
/// exported as MARC 21 or MARCXML.
class frmMarcImport : public QDialog {
    Q_OBJECT
public:
    explicit frmMarcImport(QWidget *parent = nullptr);
    ~frmMarcImport() override;

public Q_SLOTS:
    void cmdChooseFile_Click();
    void cmdImport_Click();
    void cmdExport_Click();

private:
    void Form_Load();
    /// Reads and previews a file (on the worker thread) into the grid.
    void preview(const QString &file);

    std::unique_ptr<Ui::frmMarcImport> ui;
    QList<MarcImport::Row> rows_;
};

/// "Export MARC Records...": asks where (MARC 21 or MARCXML), writes the catalogue (or the copies
/// with these accession numbers) on the task runner and says what was written. The stock list's
/// button and this screen's both use it.
void ExportMarcRecords(QWidget *owner, const QStringList &accessions = {});
