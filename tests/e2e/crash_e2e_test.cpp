// Secrets pass through the console's memory: whatever ends it, no core file holds them.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "HostSteps.h"

using namespace KovoE2e;

namespace {

TEST(ConsoleProcess, NeverLeavesACoreFile) {
    auto host = MakeHost("default");
    ASSERT_TRUE(host->WaitForFirstPaint()) << host->Term().Dump();
    const pid_t console = host->WaitForConsole();
    std::ifstream limits("/proc/" + std::to_string(console) + "/limits");
    std::string line;
    while (std::getline(limits, line) && line.rfind("Max core file size", 0) != 0) {
    }
    // Soft and hard limit both none, so not even the console itself could raise it again.
    EXPECT_NE(line.find("Max core file size        0                    0"), std::string::npos) << line;
}

}  // namespace
