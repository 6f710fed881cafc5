#pragma once

#include "SearchTerms.h"
#include "TermSearch.h"

#include <memory>

namespace Ui {
class frmKeywordSearch;
}

/// "Keyword Search": up to five keywords (English and Afrikaans); the stock list finds the items
/// linked to any of them.
class frmKeywordSearch : public TermSearch {
    Q_OBJECT
public:
    explicit frmKeywordSearch(ItemSearch search, QWidget *parent = nullptr);
    ~frmKeywordSearch() override;

protected:
    void fillTerms(const QString &text) override;
    QStringList termTexts(int id, const QString &shown) override;
    QString condition(const QVector<int> &ids) const override { return KeywordSearchCondition(ids); }
    QString modeWord() const override { return QStringLiteral("Keyword"); }

private:
    std::unique_ptr<Ui::frmKeywordSearch> ui;
};
