#include "network/VlanDialog.h"

#include <gtest/gtest.h>

#include "WatchedDialog.h"

namespace Kovo {
namespace {

using namespace Testing;

TEST(CheckVlan, ReadsAnyDigitStringAsADecimalId) {
    struct Case {
        const char* text;
        VlanCheck check;
        int id;
    };
    const Case cases[] = {
        {"", VlanCheck::Accepted, 0},
        {"1", VlanCheck::Accepted, 1},
        {"4094", VlanCheck::Accepted, 4094},
        {"4095", VlanCheck::NeedsWarning, 4095},
        {"0", VlanCheck::Invalid, 0},
        {"4096", VlanCheck::Invalid, 0},
        {"0012", VlanCheck::Accepted, 12},
        {"9999", VlanCheck::Invalid, 0},
        {"99999999999999999999", VlanCheck::Invalid, 0},  // would overflow an int read whole
    };
    for (const Case& c : cases) {
        int id = -1;
        EXPECT_EQ(CheckVlan(c.text, id), c.check) << '"' << c.text << '"';
        EXPECT_EQ(id, c.id) << '"' << c.text << '"';
    }
}

class Vlan : public NetworkDialogs {};

TEST_F(Vlan, EnterTakesTheFieldAndEscKeepsTheGivenId) {
    struct Case {
        int given;
        std::string keys;
        int result, vlan;
    };
    const Case cases[] = {
        {0, "\n", 1, 0},  // no VLAN shows as an empty field
        {100, "\n", 1, 100},
        {100, "12" + Keys::kEsc, 0, 100},
    };
    for (const Case& c : cases) {
        auto d = Run<VlanDialog>(c.keys, c.given);
        EXPECT_EQ(d.result, c.result) << c.keys;
        EXPECT_EQ(d->Vlan(), c.vlan) << c.keys;
    }
}

TEST_F(Vlan, AllVlansAreTakenOnceTheWarningIsAcknowledged) {
    auto d = Run<VlanDialog>("4095" + kRefused, 12);
    EXPECT_EQ(d.result, 1);
    EXPECT_EQ(d->Vlan(), 4095);
    // The whole warning, its closing advice too.
    EXPECT_TRUE(d->Showed("You entered a VLAN ID of 4095."));
    EXPECT_TRUE(d->Showed("configure a VLAN ID of 4095."));
    EXPECT_FALSE(d->Showed("Invalid VLAN ID"));
}

TEST_F(Vlan, ZeroAndIdsAboveAllVlansAreRefusedAndTheDialogStaysOpen) {
    for (const std::string refused : {"0", "4096"}) {
        // After the report the field is focused anew, so the digits replace the refused value.
        auto d = Run<VlanDialog>(refused + kRefused + "4094\n", 12);
        EXPECT_EQ(d.result, 1) << refused;
        EXPECT_EQ(d->Vlan(), 4094) << refused;
        EXPECT_TRUE(d->Showed("Invalid VLAN ID")) << refused;
    }
}

}  // namespace
}  // namespace Kovo
