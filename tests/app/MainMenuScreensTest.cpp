// Every button of the main menu opens a screen that is registered: a dropped registration would
// otherwise fall back to "not part of this version" without anybody noticing.
#include "ScreenDriver.h"
#include "CatalogueScreens.h"
#include "CirculationScreens.h"
#include "MemberScreens.h"
#include "ReportScreens.h"
#include "ScreenRegistry.h"
#include "SettingsStore.h"
#include "TestDatabases.h"
#include "frmMainMenu.h"

#include <QDialog>
#include <QGroupBox>
#include <QPushButton>

class MainMenuScreens : public DatabaseTest {};

TEST_F(MainMenuScreens, EveryMenuButtonOpensARegisteredScreen)
{
    library("Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUserRes)"
            "VALUES('N','L',14,0.5,7,2,7,2,1,2)");
    SettingsStore settings(path("shelvora.ini"));
    settings.setValue("LibraryDatabase", libraryPath_);
    settings.setValue("Database", centralPath_);
    ScreenRegistry screens;
    registerCirculationScreens(screens);
    registerCatalogueScreens(screens, settings);
    registerMemberScreens(screens);
    registerReportScreens(screens);
    frmMainMenu menu(settings, screens);
    menu.Form_Load();
    messages_->clear();

    int buttons = 0;
    for (const char *frame : {"Frame3", "Frame7", "Frame2", "Frame5", "Frame6"}) {
        auto *box = menu.findChild<QGroupBox *>(QLatin1String(frame));
        ASSERT_NE(box, nullptr) << frame;
        for (QPushButton *button : box->findChildren<QPushButton *>()) {
            ++buttons;
            QString opened;
            const auto watch = ScreenDriver::whenModal<QDialog>([&](QDialog *modal) {
                opened = QString::fromLatin1(modal->metaObject()->className());
                modal->close();
            });
            button->click();
            EXPECT_TRUE(opened.startsWith("frm") || opened.startsWith("Frm")) << button->text().toStdString() << " opened " << opened.toStdString();
        }
    }
    EXPECT_GE(buttons, 12);
    for (const QString &prompt : messages_->prompts())
        EXPECT_FALSE(prompt.contains("is not part of this version")) << prompt.toStdString();
}
