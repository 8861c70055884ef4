#include "ProbeHost.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace KovoHostTest {

namespace fs = std::filesystem;

namespace {

std::string Slurp(const fs::path& path) {
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

std::string Quote(const std::string& text) {
    std::string out = "'";
    for (char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

}  // namespace

ProbeHost::ProbeHost(const std::string& scenario)
    : _dir(fs::path(KOVO_HOST_SCRATCH) / ::testing::UnitTest::GetInstance()->current_test_info()->name()),
      _scenario(scenario) {
    fs::remove_all(_dir);
    fs::create_directories(_dir.parent_path());
}

ProbeHost::~ProbeHost() {
    fs::remove_all(_dir);
}

std::string ProbeHost::Probe(const std::string& args) {
    std::string command = std::string(KOVO_LAUNCHER) + " run --dir " + Quote(_dir.string()) + " --scenario " +
                          _scenario + " --once --kovo " + KOVO_HOST_PROBE + " -- " + args +
                          " </dev/null 2>/dev/null";
    std::string out;
    if (FILE* p = popen(command.c_str(), "r")) {
        char buf[512];
        while (fgets(buf, sizeof buf, p)) out += buf;
        pclose(p);
    }
    return out;
}

bool ProbeHost::Set(const std::string& pointer, const std::string& json) {
    if (!fs::exists(_dir)) Probe("nothing");  // the first boot creates the host from its scenario
    std::string command = std::string(KOVO_LAUNCHER) + " set " + Quote(_dir.string()) + " " + Quote(pointer) +
                          " " + Quote(json) + " >/dev/null 2>&1";
    return system(command.c_str()) == 0;
}

int ProbeHost::Exec(const std::string& commandLine) {
    if (!fs::exists(_dir)) Probe("nothing");
    std::string command = std::string(KOVO_LAUNCHER) + " exec " + Quote(_dir.string()) + " -- /bin/sh -c " +
                          Quote(commandLine) + " >/dev/null 2>&1";
    int status = system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string ProbeHost::Commands() const {
    return Slurp(_dir / "upper/var/log/kovo-sim/commands.log");
}
std::string ProbeHost::Syslog() const {
    return Slurp(_dir / "upper/var/log/syslog.log");
}

std::vector<std::string> LinesWith(const std::string& text, const std::string& needle) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        if (line.find(needle) != std::string::npos) lines.push_back(line);
    return lines;
}

}  // namespace KovoHostTest
