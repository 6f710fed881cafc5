#pragma once

#include "MarcMapping.h"
#include "clsTSQL.h"

#include <QPoint>
#include <QString>
#include <QStringList>
#include <QVector>

#include <vector>

class Recordset;
class SpreadGrid;
class clsDataObject;

/// The names a combo cell offers and the ids they stand for, as loaded with the sheet.
struct NameList {
    QStringList names;
    QVector<int> ids;
    /// The id of a name as shown, or -1 when the list does not hold it.
    int idOf(const QString &name) const;
};

/// The item editor's catalogue details sheet: labels in columns 1 and 4, values in columns 2 and
/// 5, the twenty accession cells in rows 13 to 22. It lays the sheet out, loads the pick lists of
/// its combo cells, writes an item's details into it and reads them back validated.
class ItemSheet {
public:
    static constexpr int FirstAccessionRow = 13, LastAccessionRow = 22;

    explicit ItemSheet(SpreadGrid &grid) : grid_(grid) {}

    /// Labels, cell kinds and widths.
    void layOut();
    /// The pick lists of the category, author, publisher, series and language cells.
    void LoadCombos(clsDataObject &data);
    /// Re-reads the sub-categories of the category named in row 2.
    void loadSubCategories(clsDataObject &data);
    /// Writes an item read with spItemsGetRecord into the value cells (the accession number only when asked).
    void show(const Recordset &item, bool withAccession);
    /// Empties every value cell (the reference cell becomes "0").
    void clearValues();
    /// Locks every accession cell but the first (editing one copy).
    void useFirstAccessionOnly();

    /// Reads and checks the sheet. When something is missing the whole message is shown and false
    /// returned. Unconvertible Edition or purchase dates reach the caller as AppError.
    bool ValidateData(ItemDetails *item) const;
    /// The accession cells holding a number, in cell order (column 2 then 5, rows 13 to 22).
    std::vector<QPoint> filledAccessionCells() const;

    QString value(int col, int row) const;
    void setValue(int col, int row, const QString &text);

    /// The author, publisher and series names of a found record that their lists lack.
    QStringList namesMissing(const CatalogueRecord &found) const;
    /// Fills the value cells from a found record for the librarian to check. Names the lists lack
    /// are shown when addMissing, and written to their lists only when the item is saved
    /// (writeProposedNames); otherwise their cells stay empty. Accession cells are left alone.
    void showFound(const CatalogueRecord &found, bool addMissing);
    /// Writes the proposed names the sheet still shows into their lists and gives the item their ids.
    void writeProposedNames(clsDataObject &data, ItemDetails *item);

private:
    int shownIndex(const NameList &list, const QString &name) const;
    SpreadGrid &grid_;
    NameList categories_, subCategories_, authors_, publishers_, series_, languages_;
    QStringList proposedAuthors_, proposedPublishers_, proposedSeries_; // shown, not yet in their tables
};

/// The accession number proposed after last (the accession rule): the digits at its end
/// incremented as a 16-bit number with their leading zeros kept, or "1" appended when it ends in
/// none. Throws AppError Overflow when the digits are worth 32767 or more. An import numbers copies
/// by the same rule with runs of up to 15 digits, so a large library's numbers go on.
enum class AccessionRange { SixteenBit, Wide };
QString NextAccessionAfter(const QString &last, AccessionRange range = AccessionRange::SixteenBit);
