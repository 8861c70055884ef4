#include "launcher/LauncherOptions.h"

#include <gtest/gtest.h>

using KovoSim::LauncherOptions;
using Command = LauncherOptions::Command;
using Strings = std::vector<std::string>;

namespace {

LauncherOptions Parse(std::vector<std::string> argv) {
    return LauncherOptions::Parse(argv);
}

TEST(LauncherOptionsTest, RunWithDefaultsAndWithEveryOption) {
    const auto plain = Parse({});
    EXPECT_EQ(plain.command, Command::Run);
    EXPECT_EQ(plain.dir, "sim-host");
    EXPECT_EQ(plain.scenario, "default");
    EXPECT_FALSE(plain.once);
    EXPECT_TRUE(plain.kovo.empty());
    EXPECT_TRUE(plain.args.empty());

    for (const auto& argv :
         {Strings{"run", "--dir", "/h", "--scenario", "dvs", "--once", "--kovo", "/k", "--", "2", "--dir",
                  "x"},
          Strings{"--once", "--scenario", "dvs", "--dir", "/h", "--kovo", "/k", "--", "2", "--dir", "x"}}) {
        const auto options = Parse(argv);
        EXPECT_EQ(options.command, Command::Run);
        EXPECT_EQ(options.dir, "/h");
        EXPECT_EQ(options.scenario, "dvs");
        EXPECT_TRUE(options.scenarioGiven);
        EXPECT_TRUE(options.once);
        EXPECT_EQ(options.kovo, "/k");
        // Everything after "--" belongs to the console, options included.
        EXPECT_EQ(options.args, (Strings{"2", "--dir", "x"}));
    }
    EXPECT_TRUE(Parse({"run", "--"}).args.empty());
    EXPECT_EQ(Parse({"--help"}).command, Command::Help);
    EXPECT_EQ(Parse({"help"}).command, Command::Help);
}

// get, set and exec on a host's directory are how every end-to-end test reaches its host; what they do
// not use is here.
TEST(LauncherOptionsTest, AnEmptyPointerIsTheWholeDocumentAndExecKeepsALaterDoubleDash) {
    EXPECT_EQ(Parse({"get", "/h", ""}).pointer, "");
    const auto exec = Parse({"exec", "/h", "--", "sh", "-c", "echo --"});
    EXPECT_EQ(exec.command, Command::Exec);
    EXPECT_EQ(exec.args, (Strings{"sh", "-c", "echo --"}));
    EXPECT_EQ(Parse({"paths", "/h"}).command, Command::Paths);
}

TEST(LauncherOptionsTest, WhatItDoesNotKnowIsRefusedWithItsReason) {
    const std::pair<Strings, const char*> refused[] = {
        {{"--dir"}, "--dir needs a value"},
        {{"--dir", ""}, "--dir needs a directory"},
        {{"--scenario", ""}, "--scenario"},
        {{"--bogus"}, "unknown option \"--bogus\""},
        {{"run", "2"}, "after \"--\""},
        {{"2"}, "unknown command \"2\""},
        {{"get"}, "needs the host's directory"},
        {{"get", "/h"}, "takes 2 arguments, got 1"},
        {{"get", "/h", "no-slash"}, "JSON pointer"},
        {{"set", "/h", "/a"}, "takes 3 arguments"},
        {{"set", "/h", "/a", "1", "2"}, "takes 3 arguments"},
        {{"paths"}, "needs the host's directory"},
        {{"paths", "/h", "x"}, "takes 1 argument,"},
        {{"exec", "/h"}, "usage: exec DIR --"},
        {{"exec", "/h", "--"}, "usage: exec DIR --"},
        {{"exec", "/h", "sh"}, "usage: exec DIR --"},
        {{"exec", "--", "sh"}, "needs the host's directory"},
        {{"in-host-set", "/a"}, "wrong number"},
    };
    for (const auto& [argv, reason] : refused) {
        try {
            LauncherOptions::Parse(argv);
            ADD_FAILURE() << reason << ": accepted";
        } catch (const LauncherOptions::Error& e) {
            EXPECT_NE(std::string(e.what()).find(reason), std::string::npos) << e.what();
        }
    }
}

}  // namespace
