#include "platform/linux/HostFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/hostctl/TextFields.h"

namespace LinuxHost {

HostFiles::HostFiles(std::filesystem::path root) : _root(std::move(root)) {}

std::filesystem::path HostFiles::Under(const std::string& path) const {
    return _root / std::filesystem::path(path).relative_path();
}

std::optional<std::string> HostFiles::Read(const std::string& path) const {
    const int fd = ::open(Under(path).c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return std::nullopt;
    std::string text;
    char buffer[4096];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        // Reading a directory opens but fails; an unreadable sysfs attribute fails the same way.
        if (n < 0) {
            ::close(fd);
            return std::nullopt;
        }
        if (n == 0) break;
        text.append(buffer, static_cast<size_t>(n));
    }
    ::close(fd);
    return text;
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
