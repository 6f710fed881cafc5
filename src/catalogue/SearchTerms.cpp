#include "mCombo.h"
#include "SearchTerms.h"

#include "SpreadGrid.h"
#include "SqlText.h"
#include "clsDataObject.h"
#include "clsTSQL.h"
#include "modExtendedMsgBox.h"

#include <QComboBox>

void FillSubjectCombo(clsDataObject &data, QComboBox *combo, const QString &startText)
{
    const QString sql = startText.isEmpty()
                            ? clsTSQL().spSubjectsList()
                            : QStringLiteral("Select Id, SubjectDescription,ClassificationNo from tblLibSubjectCodes where phasedout = false and "
                                             "subjectdescription Like '")
                                  + Safesql(startText) + QStringLiteral("%'  order by SubjectDescription");
    combo->clear();
    data.GetData(sql);
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext()) {
        combo->addItem(rs.field(1).toString(), rs.field(0).toInt());
        combo->setItemData(combo->count() - 1, rs.field(2).toString(), ClassificationRole);
    }
    data.CloseCompact();
    combo->setCurrentIndex(-1);
}

void FillKeywordCombo(clsDataObject &data, QComboBox *combo, const QString &startText)
{
    combo->clear();
    Fillcombo(data, combo, clsTSQL().spKeywordList(Safesql(startText)), 0, 1);
    combo->setCurrentIndex(-1);
}

QStringList KeywordTexts(clsDataObject &data, int keyID)
{
    const QString sql = clsTSQL().spKeywords(clsTSQL::KeywordById, QString::number(keyID));
    const QString english = data.GetKeyword(sql, true).toString();
    return {english, data.GetKeyword(sql, false).toString()};
}

bool AddSearchTerm(SpreadGrid &grid, int id, const QStringList &texts)
{
    for (int row = 1; row <= grid.maxRows(); ++row) {
        if (grid.cellText(0, row).toInt() == id) {
            UserMessage(QStringLiteral(" '") + texts.join(QStringLiteral(" - ")) + QStringLiteral("' search term is already in the list."));
            return false;
        }
    }
    const int row = grid.maxRows() + 1;
    grid.setMaxRows(row);
    grid.setCellText(0, row, QString::number(id));
    for (int col = 1; col <= texts.size() && col <= grid.maxCols(); ++col)
        grid.setCellText(col, row, texts[col - 1]);
    return true;
}

void RemoveTermLine(SpreadGrid &grid, const QString &line)
{
    if (line.trimmed().isEmpty()) {
        UserMessage(QStringLiteral("Please enter a grid line number to remove data."));
        return;
    }
    grid.removeRow(line.trimmed().toInt()); // a number that is no line removes nothing
}

QVector<int> TermIds(const SpreadGrid &grid)
{
    QVector<int> ids;
    for (int row = 1; row <= grid.maxRows(); ++row)
        ids << grid.cellText(0, row).toInt();
    return ids;
}

QString SubjectSearchCondition(const QVector<int> &subjectIDs)
{
    QString condition;
    for (int id : subjectIDs) {
        if (id == 0)
            continue;
        const QString n = QString::number(id);
        condition += (condition.isEmpty() ? QStringLiteral(" HAVING ((((tblLibSubjectCodes.ID)=") : QStringLiteral(" OR ((((tblLibSubjectCodes.ID)="))
                     + n + QStringLiteral(")) OR (((tblLibSubjectCodeItem.ID)=") + n + QStringLiteral(")))");
    }
    return condition.isEmpty() ? condition : condition + QStringLiteral("AND (i.Phasedout = False)");
}

QString KeywordSearchCondition(const QVector<int> &keyIDs)
{
    QString condition;
    for (int id : keyIDs) {
        if (id == 0)
            continue;
        condition += (condition.isEmpty() ? QStringLiteral(" Where (tblLibItemKeywords.KeyID = ") : QStringLiteral(" Or tblLibItemKeywords.KeyID = "))
                     + QString::number(id);
    }
    return condition.isEmpty() ? condition : condition + QStringLiteral(") AND (i.Phasedout = False)");
}
