#pragma once

#include "MarcMapping.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmRecordChoice;
}

/// "Records Found": the records the catalogues gave for an ISBN, newest first (source, title,
/// author, publisher, year, edition, ISBN), and the sources that did not answer; Enter or a double
/// click takes the chosen one.
class frmRecordChoice : public QDialog {
    Q_OBJECT
public:
    struct Choice {
        QString source;
        CatalogueRecord record;
    };
    frmRecordChoice(QList<Choice> choices, const QStringList &problems, QWidget *parent = nullptr);
    ~frmRecordChoice() override;

    /// The record taken (after Accepted).
    const CatalogueRecord &chosen() const { return chosen_; }

public Q_SLOTS:
    void cmdTake_Click();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    std::unique_ptr<Ui::frmRecordChoice> ui;
    QList<Choice> choices_;
    CatalogueRecord chosen_;
};
