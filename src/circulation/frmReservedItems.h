#pragma once

#include "clsDataObject.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmReservedItems;
}

/// "View Reserved Items": live reservations over a date range, narrowed by item and member,
/// cancelled singly or all at once.
class frmReservedItems : public QDialog {
    Q_OBJECT
public:
    explicit frmReservedItems(QWidget *parent = nullptr);
    ~frmReservedItems() override;

public Q_SLOTS:
    void cmdFind_Click();
    void cmdFindAll_Click();
    void chCancelAll_Click();
    void cmdProceessCancelation_Click();
    void cmdPrint_Click();

public:
    void FindReservedItems(const QString &sql);

private:
    void PopulateSpread(const QString &reserveID, const QString &accession, const QString &title, const QString &date,
                        const QString &name, const QString &type);
    void markPending(bool pending);

    std::unique_ptr<Ui::frmReservedItems> ui;
    clsDataObject data_;
    class MemberPicker *members_;
};
