#include "TermSearch.h"

#include "AppError.h"
#include "SearchTerms.h"
#include "SpreadGrid.h"
#include "ErrorReport.h"
#include "modExtendedMsgBox.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>

TermSearch::TermSearch(ItemSearch search, QWidget *parent) : QDialog(parent), search_(std::move(search)) {}

void TermSearch::wire(const Controls &controls)
{
    c_ = controls;
    connect(c_.fill, &QAbstractButton::clicked, this, &TermSearch::fillCombo);
    connect(c_.startText, &QLineEdit::returnPressed, this, &TermSearch::fillCombo);
    for (QAbstractButton *option : {c_.optAll, c_.optStarting})
        connect(option, &QAbstractButton::clicked, this, &TermSearch::fillCombo);
    connect(c_.terms, &QComboBox::activated, this, &TermSearch::termChosen);
    connect(c_.grid, &SpreadGrid::cellDoubleClicked, this, [this](int, int row) { c_.grid->removeRow(row); });
    connect(c_.search, &QAbstractButton::clicked, this, &TermSearch::cmdSearch_Click);
    connect(c_.cancel, &QAbstractButton::clicked, this, &QDialog::reject);
    fillCombo();
}

void TermSearch::fillCombo()
{
    c_.startText->setEnabled(c_.optStarting->isChecked());
    Trap(objectName(), QStringLiteral("Fillcombo"), [&] {
        fillTerms(c_.optStarting->isChecked() ? c_.startText->text() : QString());
    }, [&] { data_.CloseCompact(); });
}

void TermSearch::termChosen(int index)
{
    if (index < 0)
        return;
    if (c_.grid->maxRows() >= 5) {
        UserMessage(QStringLiteral("You cannot search on more than 5 terms at once"));
        return;
    }
    Trap(objectName(), QStringLiteral("Add Term"), [&] {
        const int id = c_.terms->itemData(index).toInt();
        AddSearchTerm(*c_.grid, id, termTexts(id, c_.terms->itemText(index)));
    }, [&] { data_.CloseCompact(); });
}

void TermSearch::cmdSearch_Click()
{
    if (search_(condition(TermIds(*c_.grid)), modeWord()))
        accept();
}
