#pragma once

#include "clsDataObject.h"

#include <QDialog>
#include <QStringList>
#include <QVector>

#include <functional>

class QAbstractButton;
class QComboBox;
class QLineEdit;
class SpreadGrid;

/// The stock list's search routine as the term searches call it: a condition and the mode word
/// ("Subject", "Keyword"); true when items were found.
using ItemSearch = std::function<bool(const QString &condition, const QString &mode)>;

/// What the subject and keyword searches share: a combo of terms (all, or starting with a text),
/// up to five chosen terms in a grid (double click removes one), and the search handed to the
/// stock list. The screen closes once the stock list has found items.
class TermSearch : public QDialog {
    Q_OBJECT
public:
    /// The widgets of one screen's layout.
    struct Controls {
        QAbstractButton *optAll;
        QAbstractButton *optStarting;
        QLineEdit *startText;
        QAbstractButton *fill;
        QComboBox *terms;
        SpreadGrid *grid;
        QAbstractButton *search;
        QAbstractButton *cancel;
    };

protected:
    TermSearch(ItemSearch search, QWidget *parent);
    /// Connects the controls and fills the combo with every term.
    void wire(const Controls &controls);

    /// Refills the combo with the terms starting with text (all for empty).
    virtual void fillTerms(const QString &text) = 0;
    /// The texts of a chosen term as the grid shows them.
    virtual QStringList termTexts(int id, const QString &shown) = 0;
    virtual QString condition(const QVector<int> &ids) const = 0;
    virtual QString modeWord() const = 0;

    clsDataObject data_;

public Q_SLOTS:
    void fillCombo();
    void termChosen(int index);
    void cmdSearch_Click();

private:
    ItemSearch search_;
    Controls c_{};
};
