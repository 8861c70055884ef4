#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace LinuxHost {

// The host's files as the Linux platform reads them: under "/" on a host, under a prepared tree in tests.
// Paths are absolute host paths ("/proc/meminfo"); nothing here writes.
class HostFiles {
  public:
    explicit HostFiles(std::filesystem::path root = "/");

    // The whole file; nullopt when it does not exist or cannot be read.
    std::optional<std::string> Read(const std::string& path) const;
    // The first line without its line end and trailing blanks; "" when the file cannot be read.
    std::string FirstLine(const std::string& path) const;
    // The names in a directory, sorted; empty when there is no such directory.
    std::vector<std::string> List(const std::string& path) const;
    bool Exists(const std::string& path) const;
    // The last part of where a symbolic link points ("e1000e" for .../driver); "" when it is no link.
    std::string LinkName(const std::string& path) const;
    std::filesystem::path Under(const std::string& path) const;

  private:
    std::filesystem::path _root;
};

// "KEY=value" lines, as in os-release: values may be quoted, comments and blank lines are skipped.
std::optional<std::string> ShellVariable(const std::string& text, const std::string& key);

}  // namespace LinuxHost
