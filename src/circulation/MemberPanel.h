#pragma once

#include <QGroupBox>

#include <memory>

struct MemberSummary;

namespace Ui {
class MemberPanel;
}

/// The member in view at the desk and in the loan history: who it is (name, class or kind, photo)
/// and what they have out, overdue, owe and have reserved. Counts that need attention are drawn
/// in colour, not only in words.
class MemberPanel : public QGroupBox {
    Q_OBJECT
public:
    explicit MemberPanel(QWidget *parent = nullptr);
    ~MemberPanel() override;

    void showMember(const MemberSummary &member);
    /// A member number that names nobody.
    void showUnknown(const QString &number);
    void clearMember();

public Q_SLOTS:
    /// "Set Web Catalogue PIN...": asks for the member's new PIN and keeps its hash.
    void cmdSetPin_Click();

private:
    void mark(QWidget *label, bool attention);

    std::unique_ptr<Ui::MemberPanel> ui;
    QString kind_, name_; // the member shown, for the PIN
    int memberID_ = 0;
};
