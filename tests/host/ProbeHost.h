#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace KovoHostTest {

// A simulated host in a fresh directory of its own, booted once per probe run.
class ProbeHost {
  public:
    explicit ProbeHost(const std::string& scenario = "default");
    ~ProbeHost();

    // Boots the host around the probe with these arguments; returns what the probe printed.
    std::string Probe(const std::string& args);
    // Changes the host's store at a JSON pointer (value in JSON).
    bool Set(const std::string& pointer, const std::string& json);
    // Runs a shell command line inside the host; returns its exit status.
    int Exec(const std::string& commandLine);

    std::string Commands() const;
    std::string Syslog() const;

  private:
    std::filesystem::path _dir;
    std::string _scenario;
};

std::vector<std::string> LinesWith(const std::string& text, const std::string& needle);

}  // namespace KovoHostTest
