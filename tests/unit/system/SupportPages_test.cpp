#include "system/SupportPages.h"

#include <gtest/gtest.h>

#include "platform/hostctl/HostCtlException.h"
#include "text/StringFactory.h"

namespace Kovo {
namespace {

TEST(SupportPages, ValuesTheHostCannotTellShowUnknownAndTheRestOfThePageStays) {
    SupportPages pages(
        {{{"Serial Number", []() -> std::string { throw HostCtl::Lib::HostCtlException("gone"); }},
          {"SSL Thumbprint (SHA1)", [] { return std::string(); }},
          {"Asset Tag", [] { return std::string("IT-0451"); }}}});
    EXPECT_EQ(pages.Compose(0, *GetStringFactory("en_US")),
              "{color:white}Serial Number:{/color}\n  Unknown\n\n"
              "{color:white}SSL Thumbprint (SHA1):{/color}\n  Unknown\n\n"
              "{color:white}Asset Tag:{/color}\n  IT-0451");
    EXPECT_EQ(pages.Compose(1, *GetStringFactory("en_US")), "");
}

}  // namespace
}  // namespace Kovo
