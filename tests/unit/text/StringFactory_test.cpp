#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/hostctl/HostCtlException.h"
#include "text/HostPlatform.h"
#include "text/StringFactory.h"
#include "text/VersionLine.h"
#include "text/en_US_Factory.h"

namespace Kovo {
namespace {

TEST(StringTable, UnknownIdsYieldTheEmptyString) {
    en_US_Factory factory;
    for (unsigned int id : {en_US_Factory::kLastId + 1, en_US_Factory::kLastId + 2, 1000u, UINT_MAX}) {
        const char* text = factory.GetString(id);
        ASSERT_NE(text, nullptr) << "id " << id;
        EXPECT_STREQ(text, "") << "id " << id;
    }
}

// Runs in a fresh process so no earlier test has created the table yet.
void CheckFactoryLifecycle() {
    const auto fail = [](const char* what) {
        std::fprintf(stderr, "lifecycle: %s\n", what);
        std::exit(1);
    };
    if (GetStringFactory("de_DE") != nullptr) fail("another locale created the table");
    if (GetStringFactory(nullptr) != nullptr) fail("no locale created the table");
    if (GetStringFactory("en_US_extra") != nullptr) fail("a locale merely starting with en_US created it");
    StringFactory* table = GetStringFactory("en_US");
    if (table == nullptr) fail("en_US did not create the table");
    if (GetStringFactory("en_US") != table) fail("a second en_US call made another table");
    if (GetStringFactory("de_DE") != table || GetStringFactory(nullptr) != table) {
        fail("the existing table is not returned for every locale");
    }
    if (dynamic_cast<en_US_Factory*>(table) == nullptr) fail("not the English table");
    std::fprintf(stderr, "lifecycle ok\n");
    std::exit(0);
}

TEST(StringTable, FactoryIsCreatedOnlyForEnglishThenSharedByAll) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(CheckFactoryLifecycle(), ::testing::ExitedWithCode(0), "lifecycle ok");
}

template <std::size_t N>
void Fill(char (&field)[N], const std::string& text) {
    std::memcpy(field, text.data(), std::min(text.size(), N));
}

TEST(VersionLine, IsBuiltFromProductVersionKernelAndBuildFieldsEachReadToItsEnd) {
    HostCtl::Util::SysinfoVersionRecord record{};
    Fill(record.productName, "KOVO Host");
    Fill(record.productVersion, "1.0.0");
    Fill(record.productLine, "embedded");  // not part of the line
    Fill(record.kernelRelease, "6.1.0");
    Fill(record.buildNumberString, "4711");
    record.buildNumber = 99;  // the line shows the build's text field, not this number
    EXPECT_EQ(FormatVersionLine(record, "ZenKernel"), "KOVO Host 1.0.0 (ZenKernel 6.1.0 Build 4711)");

    // Fields filling all their bytes do not run into their neighbours.
    record = {};
    const std::string product(sizeof record.productName, 'P');
    const std::string kernel(sizeof record.kernelRelease, 'K');
    Fill(record.productName, product);
    Fill(record.productVersion, "1.0.0");
    Fill(record.kernelRelease, kernel);
    Fill(record.buildNumberString, std::string(sizeof record.buildNumberString, '7'));
    record.buildNumber = 0x41414141;  // would show as "AAAA" if the build field were over-read
    EXPECT_EQ(FormatVersionLine(record, "ZenKernel"), product + " 1.0.0 (ZenKernel " + kernel + " Build " +
                                                          std::string(sizeof record.buildNumberString, '7') +
                                                          ")");
}

// Read through the installed platform, the line is the welcome screen's first (its end-to-end test).
TEST(VersionLine, WithoutAnInstalledPlatformTheHostsLineFails) {
    InstallTextPlatform(nullptr);
    EXPECT_THROW(ReadHostVersionLine(), HostCtl::Lib::HostCtlException);
}

TEST(VersionLine, IsRetriedWhileTheHostFailsAndKeptOnceRead) {
    int calls = 0;
    bool hostReady = false;
    VersionLine line([&]() -> std::string {
        ++calls;
        if (!hostReady) throw HostCtl::Lib::HostCtlException("version node unavailable");
        return "KOVO Host 1.0.0 (ZenKernel 6.1.0 Build 4711)";
    });

    EXPECT_STREQ(line.Get(), "");
    EXPECT_STREQ(line.Get(), "");
    EXPECT_EQ(calls, 2) << "a failed read must not be cached";

    hostReady = true;
    EXPECT_STREQ(line.Get(), "KOVO Host 1.0.0 (ZenKernel 6.1.0 Build 4711)");

    hostReady = false;  // once read, the line no longer depends on the host
    EXPECT_STREQ(line.Get(), "KOVO Host 1.0.0 (ZenKernel 6.1.0 Build 4711)");
    EXPECT_EQ(calls, 3);
}

}  // namespace
}  // namespace Kovo
