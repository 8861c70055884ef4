// The host-tool wrappers against the simulated host's own hcl-cmd: what ran, as whom, and what the
// console made of it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::string Slurp(const fs::path& path) {
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

std::vector<std::string> LinesWith(const std::string& text, const std::string& needle) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        if (line.find(needle) != std::string::npos) lines.push_back(line);
    return lines;
}

class CommandRunnerOnHost : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::path(KOVO_HOST_SCRATCH) / ::testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::remove_all(dir_);
        fs::create_directories(dir_.parent_path());
    }
    void TearDown() override { fs::remove_all(dir_); }

    // Boots the host once around the probe; returns what the probe printed.
    std::string Probe(const std::string& args) {
        std::string command = std::string(KOVO_LAUNCHER) + " run --dir " + dir_.string() +
                              " --scenario default --once --kovo " + KOVO_RUNNER_PROBE + " -- " + args +
                              " </dev/null 2>/dev/null";
        std::string out;
        if (FILE* p = popen(command.c_str(), "r")) {
            char buf[256];
            while (fgets(buf, sizeof buf, p)) out += buf;
            pclose(p);
        }
        return out;
    }
    void Set(const std::string& pointer, const std::string& value) {
        std::string command =
            std::string(KOVO_LAUNCHER) + " set " + dir_.string() + " " + pointer + " " + value + " >/dev/null 2>&1";
        ASSERT_EQ(system(command.c_str()), 0) << command;
    }
    std::string Commands() { return Slurp(dir_ / "upper/var/log/kovo-sim/commands.log"); }
    std::string Syslog() { return Slurp(dir_ / "upper/var/log/syslog.log"); }

    fs::path dir_;
};

TEST_F(CommandRunnerOnHost, UserTheToolRejectsIsRetriedOnceAsTheConsolesOwnUser) {
    EXPECT_EQ(Probe("hcl viewer internalsvc/refresh"), "status=0\n");
    auto runs = LinesWith(Commands(), "internalsvc/refresh");
    ASSERT_EQ(runs.size(), 2u) << Commands();
    EXPECT_NE(runs[0].find("\"viewer\""), std::string::npos) << runs[0];
    EXPECT_NE(runs[1].find("\"kovo\""), std::string::npos) << runs[1];
    EXPECT_EQ(LinesWith(Syslog(), "user.info KOVO[").size() > 0, true) << Syslog();
    EXPECT_EQ(LinesWith(Syslog(),
                        "Unable to execute command hcl-cmd internalsvc/refresh using user viewer. Using user kovo")
                  .size(),
              1u)
        << Syslog();
}

TEST_F(CommandRunnerOnHost, AcceptedUserRunsOnce) {
    EXPECT_EQ(Probe("hcl root internalsvc/refresh"), "status=0\n");
    EXPECT_EQ(LinesWith(Commands(), "internalsvc/refresh").size(), 1u) << Commands();
    EXPECT_TRUE(LinesWith(Syslog(), "Unable to execute command").empty()) << Syslog();
}

TEST_F(CommandRunnerOnHost, QueryFollowsTheHostsAnswerAndRunsAsTheConsolesUser) {
    EXPECT_EQ(Probe("query hclsvc/auth/lockdown_is_possible"), "true\n");
    Set("/services/lockdown/possible", "false");
    EXPECT_EQ(Probe("query hclsvc/auth/lockdown_is_possible"), "false\n");
    auto runs = LinesWith(Commands(), "lockdown_is_possible");
    ASSERT_EQ(runs.size(), 2u) << Commands();
    for (const auto& run : runs) EXPECT_NE(run.find("\"kovo\""), std::string::npos) << run;
    EXPECT_EQ(LinesWith(Syslog(), "hcl-cmd invocation: get hclsvc/auth/lockdown_is_possible").size(), 2u)
        << Syslog();
}

}  // namespace
