// The desk sets a member's web catalogue PIN from the member panel; only its hash is kept.
#include "MemberPanel.h"
#include "MemberPin.h"
#include "MemberSummary.h"
#include "ScreenDriver.h"
#include "TestDatabases.h"

#include <QPushButton>

namespace {
class MemberPinTest : public DatabaseTest {};
} // namespace

TEST_F(MemberPinTest, TheDeskSetsAMembersWebCataloguePin)
{
    MemberPanel panel;
    EXPECT_FALSE(ScreenDriver::child<QPushButton>(panel, "cmdSetPin")->isEnabled()) << "a PIN for nobody";
    MemberSummary member;
    member.found = true;
    member.kind = "L";
    member.memberID = 7;
    member.name = "Dlamini, Zola";
    panel.showMember(member);
    messages_->queueFileName("12a");
    ScreenDriver::click(panel, "cmdSetPin");
    EXPECT_EQ(messages_->prompts().value(0), "The PIN must be 4 to 8 digits. The PIN was not changed.");
    EXPECT_EQ(libraryValue("select count(*) from tblLibMemberPins"), "0");
    messages_->clear();
    messages_->queueFileName("246810");
    ScreenDriver::click(panel, "cmdSetPin");
    EXPECT_EQ(messages_->prompts().value(0), "Dlamini, Zola can now sign in to the web catalogue with this PIN.");
    EXPECT_TRUE(MemberPin::matches("L", 7, "246810"));
    EXPECT_FALSE(MemberPin::matches("L", 7, "246811"));
    EXPECT_FALSE(MemberPin::matches("E", 7, "246810")) << "another kind of member with the same number";
    EXPECT_TRUE(libraryValue("select PinHash from tblLibMemberPins").startsWith("$argon2id$"));
}
