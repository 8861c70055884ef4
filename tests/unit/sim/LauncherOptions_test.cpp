#include "launcher/LauncherOptions.h"

#include <gtest/gtest.h>

using KovoSim::LauncherOptions;
using Command = LauncherOptions::Command;

namespace {

LauncherOptions Parse(std::vector<std::string> argv) {
    return LauncherOptions::Parse(argv);
}

std::string ErrorOf(std::vector<std::string> argv) {
    try {
        LauncherOptions::Parse(argv);
    } catch (const LauncherOptions::Error& e) {
        return e.what();
    }
    return "(accepted)";
}

TEST(LauncherOptionsTest, RunWithDefaultsAndWithEveryOption) {
    const auto plain = Parse({});
    EXPECT_EQ(plain.command, Command::Run);
    EXPECT_EQ(plain.dir, "sim-host");
    EXPECT_EQ(plain.scenario, "default");
    EXPECT_FALSE(plain.once);
    EXPECT_TRUE(plain.kovo.empty());
    EXPECT_TRUE(plain.args.empty());

    for (const auto& argv : {std::vector<std::string>{"run", "--dir", "/h", "--scenario", "dvs", "--once",
                                                      "--kovo", "/k", "--", "2", "--dir", "x"},
                             std::vector<std::string>{"--once", "--scenario", "dvs", "--dir", "/h", "--kovo",
                                                      "/k", "--", "2", "--dir", "x"}}) {
        const auto options = Parse(argv);
        EXPECT_EQ(options.command, Command::Run);
        EXPECT_EQ(options.dir, "/h");
        EXPECT_EQ(options.scenario, "dvs");
        EXPECT_TRUE(options.scenarioGiven);
        EXPECT_TRUE(options.once);
        EXPECT_EQ(options.kovo, "/k");
        // Everything after "--" belongs to the console, options included.
        EXPECT_EQ(options.args, (std::vector<std::string>{"2", "--dir", "x"}));
    }
    EXPECT_TRUE(Parse({"run", "--"}).args.empty());
    EXPECT_EQ(Parse({"--help"}).command, Command::Help);
    EXPECT_EQ(Parse({"help"}).command, Command::Help);
}

TEST(LauncherOptionsTest, RunRejectsWhatItDoesNotKnow) {
    EXPECT_NE(ErrorOf({"--dir"}).find("--dir needs a value"), std::string::npos);
    EXPECT_NE(ErrorOf({"--dir", ""}).find("--dir needs a directory"), std::string::npos);
    EXPECT_NE(ErrorOf({"--scenario", ""}).find("--scenario"), std::string::npos);
    EXPECT_NE(ErrorOf({"--bogus"}).find("unknown option \"--bogus\""), std::string::npos);
    EXPECT_NE(ErrorOf({"run", "2"}).find("after \"--\""), std::string::npos);
    EXPECT_NE(ErrorOf({"2"}).find("unknown command \"2\""), std::string::npos);
}

TEST(LauncherOptionsTest, SubcommandsTakeTheHostDirectoryAndTheirArguments) {
    const auto get = Parse({"get", "/h", "/network/dns/0"});
    EXPECT_EQ(get.command, Command::Get);
    EXPECT_EQ(get.dir, "/h");
    EXPECT_EQ(get.pointer, "/network/dns/0");
    EXPECT_EQ(Parse({"get", "/h", ""}).pointer, "");  // the whole document

    const auto set = Parse({"set", "/h", "/a/b", "{\"x\": 1}"});
    EXPECT_EQ(set.command, Command::Set);
    EXPECT_EQ(set.value, "{\"x\": 1}");

    const auto exec = Parse({"exec", "/h", "--", "sh", "-c", "echo --"});
    EXPECT_EQ(exec.command, Command::Exec);
    EXPECT_EQ(exec.dir, "/h");
    EXPECT_EQ(exec.args, (std::vector<std::string>{"sh", "-c", "echo --"}));

    EXPECT_EQ(Parse({"paths", "/h"}).command, Command::Paths);
}

TEST(LauncherOptionsTest, SubcommandsRejectMissingOrExtraArguments) {
    EXPECT_NE(ErrorOf({"get"}).find("needs the host's directory"), std::string::npos);
    EXPECT_NE(ErrorOf({"get", "/h"}).find("takes 2 arguments, got 1"), std::string::npos);
    EXPECT_NE(ErrorOf({"get", "/h", "no-slash"}).find("JSON pointer"), std::string::npos);
    EXPECT_NE(ErrorOf({"set", "/h", "/a"}).find("takes 3 arguments"), std::string::npos);
    EXPECT_NE(ErrorOf({"set", "/h", "/a", "1", "2"}).find("takes 3 arguments"), std::string::npos);
    EXPECT_NE(ErrorOf({"paths"}).find("needs the host's directory"), std::string::npos);
    EXPECT_NE(ErrorOf({"paths", "/h", "x"}).find("takes 1 argument,"), std::string::npos);
    EXPECT_NE(ErrorOf({"exec", "/h"}).find("usage: exec DIR --"), std::string::npos);
    EXPECT_NE(ErrorOf({"exec", "/h", "--"}).find("usage: exec DIR --"), std::string::npos);
    EXPECT_NE(ErrorOf({"exec", "/h", "sh"}).find("usage: exec DIR --"), std::string::npos);
    EXPECT_NE(ErrorOf({"exec", "--", "sh"}).find("needs the host's directory"), std::string::npos);
    EXPECT_NE(ErrorOf({"in-host-set", "/a"}).find("wrong number"), std::string::npos);
}

}  // namespace
