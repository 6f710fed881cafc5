#include "frmSubjectSearch.h"
#include "ui_frmSubjectSearch.h"

#include "SearchTerms.h"
#include "TypedFields.h"

frmSubjectSearch::frmSubjectSearch(ItemSearch search, QWidget *parent) : TermSearch(std::move(search), parent), ui(std::make_unique<Ui::frmSubjectSearch>())
{
    ui->setupUi(this);
    GuardTypedFields(this);
    ui->gridSubjects->defineColumns({{"Subject", 40}});
    wire({ui->optAll, ui->optTerms, ui->txtsubject, ui->cmdFillCombo, ui->cboSubject, ui->gridSubjects, ui->cmdSearch, ui->cmdCancel});
}

frmSubjectSearch::~frmSubjectSearch() = default;

void frmSubjectSearch::fillTerms(const QString &text) { FillSubjectCombo(data_, ui->cboSubject, text); }

QStringList frmSubjectSearch::termTexts(int id, const QString &shown)
{
    Q_UNUSED(id);
    return {shown};
}
