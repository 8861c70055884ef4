#include "access/SmartCardLogin.h"

#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "../platform/TempDir.h"
#include "LoginTestScreen.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/SmartCardInfoImpl.h"

namespace Kovo {
namespace {

using nlohmann::json;

json Slot(int id, json token) {
    return {{"id", id}, {"description", "Reader " + std::to_string(id)}, {"token", token}};
}
json Card(json userIds) {
    return {{"label", "Card"}, {"serialNumber", "1"}, {"userIds", userIds}};
}

class SmartCardTest : public ::testing::Test {
  protected:
    void SetUp() override { Testing::ResetSession(); }
    void TearDown() override { Testing::ResetSession(); }
    void Slots(json slots) { store_->Replace({{"hardware", {{"smartCards", {{"slots", slots}}}}}}); }

    TempDir dir_;
    std::shared_ptr<ZenkCtl::Store::HostStore> store_ =
        std::make_shared<ZenkCtl::Store::HostStore>(dir_.File("host.json"));
    std::unique_ptr<ZenkCtl::Hardware::SmartCardInfoImpl> cards_ =
        std::make_unique<ZenkCtl::Hardware::SmartCardInfoImpl>(store_);
};

TEST_F(SmartCardTest, FirstNonEmptyIdOfTheFirstCardThatHasOneIsOffered) {
    Slots(json::array({Slot(1, nullptr), Slot(2, Card(json::array({"", ""}))),
                       Slot(3, Card({"", "ops", "root"})), Slot(4, Card({"admin"}))}));
    EXPECT_EQ(FindSmartCardUser(*cards_), "ops");
    EXPECT_TRUE(HasSmartCardForUser(*cards_, "root"));
    EXPECT_TRUE(HasSmartCardForUser(*cards_, "admin"));
    EXPECT_FALSE(HasSmartCardForUser(*cards_, "Ops")) << "user ids compare exactly";
    EXPECT_FALSE(HasSmartCardForUser(*cards_, "op"));
}

TEST_F(SmartCardTest, NoCardOrAnUnreadableReaderMeansNoUser) {
    // No store at all: the lookup fails inside the platform and is treated as an empty reader.
    EXPECT_EQ(FindSmartCardUser(*cards_), "");
    EXPECT_FALSE(HasSmartCardForUser(*cards_, "root"));
    Slots(json::array({Slot(1, nullptr)}));
    EXPECT_EQ(FindSmartCardUser(*cards_), "");
    EXPECT_FALSE(HasSmartCardForUser(*cards_, ""));
    Slots(json::array());
    EXPECT_EQ(FindSmartCardUser(*cards_), "");
}

TEST_F(SmartCardTest, BeforeLoginTheCardIdIsRememberedAndForgottenWithTheCard) {
    Slots(json::array({Slot(1, Card({"ops"}))}));
    EXPECT_FALSE(CheckSmartCard(*cards_));
    EXPECT_EQ(Frame::_smartCardLoginId, "ops");
    Slots(json::array({Slot(1, nullptr)}));
    EXPECT_FALSE(CheckSmartCard(*cards_));
    EXPECT_EQ(Frame::_smartCardLoginId, "");
}

TEST_F(SmartCardTest, RemovingTheCardEndsOnlyASmartCardSession) {
    Frame::_loggedIn = true;
    Frame::_loginName = "ops";
    Slots(json::array({Slot(1, Card({"ops"}))}));

    Frame::_isLoggedWithSmartCard = true;
    EXPECT_FALSE(CheckSmartCard(*cards_)) << "the card is still there";
    Slots(json::array({Slot(1, Card({"admin"}))}));
    EXPECT_TRUE(CheckSmartCard(*cards_)) << "another user's card does not keep the session";
    Slots(json::array({Slot(1, nullptr)}));
    EXPECT_TRUE(CheckSmartCard(*cards_));

    Frame::_isLoggedWithSmartCard = false;
    EXPECT_FALSE(CheckSmartCard(*cards_)) << "a password session ignores the readers";
    // Inserting a card while logged in changes nothing either.
    Slots(json::array({Slot(1, Card({"root"}))}));
    EXPECT_FALSE(CheckSmartCard(*cards_));
    EXPECT_EQ(Frame::_smartCardLoginId, "");
}

}  // namespace
}  // namespace Kovo
