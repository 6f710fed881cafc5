#pragma once

#include "clsDataObject.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmReserves;
}

/// "Reserve an Item": finds items by accession number or title (never reference or restricted
/// stock), reserves one that is out on loan for a member, and cancels live reservations.
class frmReserves : public QDialog {
    Q_OBJECT
public:
    explicit frmReserves(QWidget *parent = nullptr);
    ~frmReserves() override;

public Q_SLOTS:
    void cmdFind_Click();
    void fpSpreadSearch_ButtonClicked(int col, int row);
    void cmdProceessCancelation_Click();
    void cmdPrint_Click();

public:
    void LoadReservationLimits();
    void ClearGrids();
    /// The field check: "Item was not found" or "Member not found"; true when both are found.
    bool Validate();

private:
    void reserveFoundRow(int row);
    QVariant memberByNumber();

    std::unique_ptr<Ui::frmReserves> ui;
    clsDataObject data_;
    class MemberPicker *members_;
    QString kind_ = QStringLiteral("L");
    qint16 maxItemReservations_ = 0;
    qint16 maxMemberReservations_ = 0;
    QString sql_;
};
