#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

class QComboBox;
class SpreadGrid;
class clsDataObject;

// The subject and keyword term lists shared by the item editor and the two term searches:
// combos of terms to choose from, and small grids holding the chosen terms (the term's id in
// column 0, its text or texts from column 1).

/// Item data role of a subject combo entry that holds the subject's classification number.
constexpr int ClassificationRole = 0x0101; // Qt::UserRole + 1

/// Fills a combo with the subject terms (all of them, or those starting with startText):
/// text SubjectDescription, item data Id, ClassificationRole ClassificationNo.
void FillSubjectCombo(clsDataObject &data, QComboBox *combo, const QString &startText);
/// Fills a combo with the English and Afrikaans keywords starting with startText (all for empty).
void FillKeywordCombo(clsDataObject &data, QComboBox *combo, const QString &startText);
/// A keyword's English and Afrikaans texts.
QStringList KeywordTexts(clsDataObject &data, int keyID);

/// Appends a term unless a row already holds its id; then " '<texts joined by " - ">' search term
/// is already in the list." is shown and false returned.
bool AddSearchTerm(SpreadGrid &grid, int id, const QStringList &texts);
/// Removes the row whose number is typed in line ("Please enter a grid line number to remove data." when empty).
void RemoveTermLine(SpreadGrid &grid, const QString &line);
/// The ids of the grid's rows, in row order.
QVector<int> TermIds(const SpreadGrid &grid);

/// The subject search's condition for the stock list: one HAVING term per subject id (0 skipped)
/// matching the item's main classification or a linked subject, then "AND (i.Phasedout = False)".
QString SubjectSearchCondition(const QVector<int> &subjectIDs);
/// The keyword search's condition: the keyword links joined with Or, then ") AND (i.Phasedout = False)".
QString KeywordSearchCondition(const QVector<int> &keyIDs);
