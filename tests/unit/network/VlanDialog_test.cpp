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

// After a refusal's report the field is focused anew, so the digits typed then replace the refused value.
TEST_F(Vlan, EnterTakesTheFieldEscKeepsTheGivenIdAndRefusalsKeepTheDialogOpen) {
    enum Report { kNone, kWarning, kInvalid };
    struct Case {
        int given;
        std::string keys;
        int result, vlan;
        Report report;  // shown on the way
    };
    const Case cases[] = {
        {0, "\n", 1, 0, kNone},  // no VLAN shows as an empty field
        {100, "\n", 1, 100, kNone},
        {100, "12" + Keys::kEsc, 0, 100, kNone},
        {12, "4095" + kRefused, 1, 4095, kWarning},  // all VLANs, taken once the warning is acknowledged
        {12, "0" + kRefused + "4094\n", 1, 4094, kInvalid},
        {12, "4096" + kRefused + "4094\n", 1, 4094, kInvalid},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.keys);
        auto d = Run<VlanDialog>(c.keys, c.given);
        EXPECT_EQ(d.result, c.result);
        EXPECT_EQ(d->Vlan(), c.vlan);
        // The whole warning, its closing advice too.
        EXPECT_EQ(d->Showed("You entered a VLAN ID of 4095."), c.report == kWarning);
        EXPECT_EQ(d->Showed("configure a VLAN ID of 4095."), c.report == kWarning);
        EXPECT_EQ(d->Showed("Invalid VLAN ID"), c.report == kInvalid);
    }
}

}  // namespace
}  // namespace Kovo
