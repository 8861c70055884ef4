#include "platform/linux/HostFiles.h"

#include <algorithm>
#include <system_error>

#include "platform/hostctl/TextFields.h"
#include "platform/hostctl/WholeFile.h"

namespace LinuxHost {

HostFiles::HostFiles(std::filesystem::path root) : _root(std::move(root)) {}

std::filesystem::path HostFiles::Under(const std::string& path) const {
    return _root / std::filesystem::path(path).relative_path();
}

std::optional<std::string> HostFiles::Read(const std::string& path) const {
    try {
        return HostCtl::ReadWholeFile(Under(path).string());
    } catch (const std::system_error&) {
        // Missing or unreadable; reading a directory, or an unreadable sysfs attribute, fails the same way.
        return std::nullopt;
    }
}

std::string HostFiles::FirstLine(const std::string& path) const {
    const std::optional<std::string> text = Read(path);
    if (!text) return {};
    std::string line = text->substr(0, text->find('\n'));
    while (!line.empty() && (line.back() == ' ' || line.back() == '\t' || line.back() == '\r'))
        line.pop_back();
    return line;
}

std::vector<std::string> HostFiles::List(const std::string& path) const {
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator it(Under(path), error), end; !error && it != end;
         it.increment(error))
        names.push_back(it->path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

bool HostFiles::Exists(const std::string& path) const {
    std::error_code error;
    return std::filesystem::exists(Under(path), error);
}

std::string HostFiles::LinkName(const std::string& path) const {
    std::error_code error;
    const std::filesystem::path target = std::filesystem::read_symlink(Under(path), error);
    return error ? std::string() : target.filename().string();
}

std::optional<std::string> ShellVariable(const std::string& text, const std::string& key) {
    for (const std::string& line : HostCtl::Lines(text)) {
        if (line.rfind(key + "=", 0) != 0) continue;
        std::string value = line.substr(key.size() + 1);
        while (!value.empty() && (value.back() == '\r' || value.back() == ' ')) value.pop_back();
        if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
            value.back() == value.front())
            value = value.substr(1, value.size() - 2);
        return value;
    }
    return std::nullopt;
}

}  // namespace LinuxHost
