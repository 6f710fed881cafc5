#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class frmLibraryUsers;
}
class SpreadGrid;

/// "Library Users": the school's learners, educators and staff members as the school
/// administration database holds them, current or archived, with grade, class and letter
/// filters, totals, printing, spreadsheet export, and a member's loan record on a double click.
/// It writes nothing to either database.
class frmLibraryUsers : public QDialog {
    Q_OBJECT
public:
    explicit frmLibraryUsers(QWidget *parent = nullptr);
    ~frmLibraryUsers() override;

    /// Where the export log is written: "C:\LOGFILE.TXT" on Windows, the user's data folder elsewhere.
    static QString ExportLogFile();

public Q_SLOTS:
    void cmdShowAllLearners_Click();
    void cmdShowAllArchivedLearners_Click();
    void cboGrade_Click();
    void cboClass_Click();
    void cmdShowAllEducators_Click();
    void cmdShowAllArchivedEducators_Click();
    void cboFilter_Click();
    void cmdStaff_Click();
    void cmdArchivedStaff_Click();
    void openLoanRecord(SpreadGrid *grid, const QString &memberType, int row);

private:
    void LoadLearners(const QString &sql);
    void LoadEducators(const QString &sql);
    void LoadStaff(const QString &sql);
    /// Fills a list from the school's members; with a fine column, each member's open fines added up.
    void load(SpreadGrid *grid, class QLineEdit *total, const QString &sql, const std::vector<std::pair<int, const char *>> &fields,
              const QString &memberType, int fineColumn);
    void exportGrid(SpreadGrid *grid, const QString &sheetName);
    void printGrid(SpreadGrid *grid, const QString &heading, const QString &location);
    void showList(class QGroupBox *frame, const QString &caption, bool educators, const QString &sql, const QString &location,
                  const QString &procedure);
    void learnerList(const QString &caption, const QString &totalLabel, const QString &sql, const QString &procedure, const QString &location);

    std::unique_ptr<Ui::frmLibraryUsers> ui;
};
