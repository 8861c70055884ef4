#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace KovoTerm {

// What to run in the pseudo-terminal and how. The child gets exactly `environment` plus TERM (when
// `term` is set); nothing of the test's own environment leaks in unless `inheritEnvironment` is true.
struct SpawnOptions {
    std::vector<std::string> argv;
    int columns = 80;
    int rows = 25;
    std::optional<std::string> term = std::string("xterm-256color");
    std::map<std::string, std::string> environment;
    bool inheritEnvironment = false;
    std::string workingDirectory;  // empty: keep the test's own
};

}  // namespace KovoTerm
