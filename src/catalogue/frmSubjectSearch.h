#pragma once

#include "SearchTerms.h"
#include "TermSearch.h"

#include <memory>

namespace Ui {
class frmSubjectSearch;
}

/// "Subject Search": up to five subject terms; the stock list finds the items whose main
/// classification or linked subjects match any of them.
class frmSubjectSearch : public TermSearch {
    Q_OBJECT
public:
    explicit frmSubjectSearch(ItemSearch search, QWidget *parent = nullptr);
    ~frmSubjectSearch() override;

protected:
    void fillTerms(const QString &text) override;
    QStringList termTexts(int id, const QString &shown) override;
    QString condition(const QVector<int> &ids) const override { return SubjectSearchCondition(ids); }
    QString modeWord() const override { return QStringLiteral("Subject"); }

private:
    std::unique_ptr<Ui::frmSubjectSearch> ui;
};
