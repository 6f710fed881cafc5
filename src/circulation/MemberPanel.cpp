#include "MemberPanel.h"
#include "ui_MemberPanel.h"

#include "AppError.h"
#include "MemberPin.h"
#include "MemberSummary.h"
#include "modExtendedMsgBox.h"

#include <QPixmap>

MemberPanel::MemberPanel(QWidget *parent) : QGroupBox(parent), ui(std::make_unique<Ui::MemberPanel>())
{
    ui->setupUi(this);
    connect(ui->cmdSetPin, &QPushButton::clicked, this, &MemberPanel::cmdSetPin_Click);
    clearMember();
}

MemberPanel::~MemberPanel() = default;

void MemberPanel::mark(QWidget *label, bool attention)
{
    label->setProperty("attention", attention);
    label->setStyleSheet(attention ? QStringLiteral("color: #a00000; background: #ffe08a; font-weight: bold;") : QString());
}

void MemberPanel::clearMember()
{
    ui->lblMemberName->setText(QStringLiteral("No member chosen"));
    for (QLabel *label : {ui->lblMemberStanding, ui->lblItemsOut, ui->lblOverdue, ui->lblFines, ui->lblReservations}) {
        label->clear();
        mark(label, false);
    }
    ui->imgMemberPhoto->clear();
    memberID_ = 0;
    ui->cmdSetPin->setEnabled(false);
}

void MemberPanel::showUnknown(const QString &number)
{
    clearMember();
    ui->lblMemberName->setText(QStringLiteral("No member with number ") + number);
    mark(ui->lblMemberName, true);
}

void MemberPanel::showMember(const MemberSummary &m)
{
    if (!m.found) {
        clearMember();
        return;
    }
    mark(ui->lblMemberName, false);
    kind_ = m.kind;
    memberID_ = m.memberID;
    name_ = m.name;
    ui->cmdSetPin->setEnabled(true);
    ui->lblMemberName->setStyleSheet(QStringLiteral("font-weight: bold;"));
    ui->lblMemberName->setText(m.name);
    ui->lblMemberStanding->setText(m.standing());
    ui->lblItemsOut->setText(QStringLiteral("Items out: %1").arg(m.itemsOut));
    ui->lblOverdue->setText(QStringLiteral("Overdue: %1").arg(m.overdue));
    mark(ui->lblOverdue, m.overdue > 0);
    ui->lblFines->setText(QStringLiteral("Open fines: %1 (%2)").arg(m.openFines).arg(m.finesTotal.toDisplayText()));
    mark(ui->lblFines, m.openFines > 0);
    ui->lblReservations->setText(m.readyToCollect > 0 ? QStringLiteral("Reservations: %1, %2 ready to collect").arg(m.reservations).arg(m.readyToCollect)
                                                      : QStringLiteral("Reservations: %1").arg(m.reservations));
    mark(ui->lblReservations, m.readyToCollect > 0);
    const QPixmap photo = m.photoFile.isEmpty() ? QPixmap() : QPixmap(m.photoFile);
    if (photo.isNull())
        ui->imgMemberPhoto->clear();
    else
        ui->imgMemberPhoto->setPixmap(photo.scaled(ui->imgMemberPhoto->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

void MemberPanel::cmdSetPin_Click()
{
    if (memberID_ == 0)
        return;
    const QString pin = ShowTextInputDialog(this, QStringLiteral("Web Catalogue PIN"),
                                            QStringLiteral("The new PIN of %1 (4 to 8 digits):").arg(name_), QString());
    if (pin.isEmpty())
        return;
    if (const QString why = MemberPin::refusal(pin); !why.isEmpty()) {
        UserMessage(why + QStringLiteral(" The PIN was not changed."));
        return;
    }
    try {
        MemberPin::set(kind_, memberID_, pin);
        UserMessage(QStringLiteral("%1 can now sign in to the web catalogue with this PIN.").arg(name_));
    } catch (const AppError &e) {
        UserMessage(QStringLiteral("The PIN was not changed: ") + e.description());
    }
}
