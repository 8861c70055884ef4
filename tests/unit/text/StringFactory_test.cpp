#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "../platform/TempDir.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/HalvorHostFactory.h"
#include "text/HostPlatform.h"
#include "text/StringFactory.h"
#include "text/VersionLine.h"
#include "text/en_US_Factory.h"

namespace Kovo {
namespace {

// Expected texts, one record a line: the id, a blank, the text as a JSON string (so markup, quotes,
// trailing blanks and line breaks are unambiguous).
std::map<unsigned int, std::string> LoadExpectedTexts() {
    std::map<unsigned int, std::string> texts;
    std::ifstream in(std::string(KOVO_FIXTURES) + "/strings_en_US.txt");
    EXPECT_TRUE(in) << "fixture missing";
    std::string line;
    while (std::getline(in, line)) {
        const auto blank = line.find(' ');
        EXPECT_NE(blank, std::string::npos) << "malformed record: " << line;
        if (blank == std::string::npos) continue;
        const unsigned int id = static_cast<unsigned int>(std::stoul(line.substr(0, blank)));
        const bool inserted = texts.emplace(id, nlohmann::json::parse(line.substr(blank + 1))).second;
        EXPECT_TRUE(inserted) << "id " << id << " appears twice";
    }
    return texts;
}

TEST(StringTable, EveryIdHasItsExactText) {
    const auto expected = LoadExpectedTexts();
    // Every id but the computed version line is in the fixture, so a text shifted by one id shows up.
    ASSERT_EQ(expected.size(), en_US_Factory::kLastId);
    ASSERT_EQ(expected.count(en_US_Factory::kVersionLineId), 0u);

    en_US_Factory table;
    const StringFactory& factory = table;
    for (const auto& [id, text] : expected) {
        const char* actual = factory.GetString(id);
        ASSERT_NE(actual, nullptr) << "id " << id;
        EXPECT_EQ(std::string(actual), text) << "id " << id;
        // A leftover escape would mean a line break was transcribed as the two characters \ and n.
        EXPECT_EQ(std::strchr(actual, '\\'), nullptr) << "id " << id;
    }
}

TEST(StringTable, IdsWithoutTextYieldTheEmptyString) {
    en_US_Factory factory;
    for (unsigned int id : {3u, en_US_Factory::kLastId + 1, en_US_Factory::kLastId + 2, 1000u, UINT_MAX}) {
        const char* text = factory.GetString(id);
        ASSERT_NE(text, nullptr) << "id " << id;
        EXPECT_STREQ(text, "") << "id " << id;
    }
    EXPECT_STREQ(factory.GetString(en_US_Factory::kLastId), "Interfaces put back:");
}

TEST(StringTable, MenuEntriesAndTheTitlesTheyOpenShareTheirText) {
    // A menu entry, then the title of the screen it opens.
    const unsigned int pairs[15][2] = {{1, 161}, {5, 149},  {6, 245},  {7, 44},   {8, 125},
                                       {9, 208}, {10, 62},  {14, 173}, {45, 69},  {47, 93},
                                       {48, 98}, {51, 116}, {63, 200}, {64, 130}, {65, 188}};
    en_US_Factory factory;
    for (const auto& [entry, title] : pairs) {
        EXPECT_STRNE(factory.GetString(entry), "") << entry;
        EXPECT_STREQ(factory.GetString(entry), factory.GetString(title)) << entry << " = " << title;
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
    if (std::strcmp(table->GetString(0), "Customize System/View Logs") != 0) fail("wrong table");
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

TEST(VersionLine, IsBuiltFromProductVersionKernelAndBuildFields) {
    HostCtl::Util::SysinfoVersionRecord record{};
    Fill(record.productName, "KOVO Host");
    Fill(record.productVersion, "1.0.0");
    Fill(record.productLine, "embedded");  // not part of the line
    Fill(record.kernelRelease, "6.1.0");
    Fill(record.buildNumberString, "4711");
    record.buildNumber = 99;  // the line shows the build's text field, not this number
    EXPECT_EQ(FormatVersionLine(record, "ZenKernel"), "KOVO Host 1.0.0 (ZenKernel 6.1.0 Build 4711)");
}

TEST(VersionLine, FieldsFillingAllTheirBytesDoNotRunIntoTheirNeighbours) {
    HostCtl::Util::SysinfoVersionRecord record{};
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

TEST(VersionLine, TheHostsLineIsReadThroughTheInstalledPlatformAndWithoutOneItFails) {
    InstallTextPlatform(nullptr);
    EXPECT_THROW(ReadHostVersionLine(), HostCtl::Lib::HostCtlException);
    TempDir dir;
    auto store = std::make_shared<ZenkCtl::Store::HostStore>(dir.File("host.json"));
    store->Replace(nlohmann::json::parse(R"({"system": {"version": {"productName": "Lab Host",
        "productVersion": "2.0", "kernelRelease": "6.1.0", "buildNumber": 42}}})"));
    const ZenkCtl::HalvorHostFactory platform(store);
    InstallTextPlatform(&platform);
    EXPECT_EQ(ReadHostVersionLine(), "Lab Host 2.0 (ZenKernel 6.1.0 Build 42)");
    InstallTextPlatform(nullptr);
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
