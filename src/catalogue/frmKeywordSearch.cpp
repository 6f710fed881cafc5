#include "frmKeywordSearch.h"
#include "ui_frmKeywordSearch.h"

#include "SearchTerms.h"
#include "TypedFields.h"

frmKeywordSearch::frmKeywordSearch(ItemSearch search, QWidget *parent) : TermSearch(std::move(search), parent), ui(std::make_unique<Ui::frmKeywordSearch>())
{
    ui->setupUi(this);
    GuardTypedFields(this);
    ui->gridKeywords->defineColumns({{"English Keyword", 20}, {"Afrikaans Keyword", 20}});
    wire({ui->optAll, ui->optStarting, ui->txtStarting, ui->cmdGO, ui->cboKeywords, ui->gridKeywords, ui->cmdSearch, ui->cmdCancel});
}

frmKeywordSearch::~frmKeywordSearch() = default;

void frmKeywordSearch::fillTerms(const QString &text) { FillKeywordCombo(data_, ui->cboKeywords, text); }

QStringList frmKeywordSearch::termTexts(int id, const QString &shown)
{
    Q_UNUSED(shown);
    return KeywordTexts(data_, id);
}
