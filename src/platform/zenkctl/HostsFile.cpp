#include "platform/zenkctl/HostsFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <strings.h>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <vector>

#include "platform/hostctl/HostCtlException.h"

using HostCtl::Lib::HostCtlException;

namespace ZenkCtl::Network {

HostsFile::HostsFile(std::string path) : _path(std::move(path)) {}

std::string HostsFile::RemoveName(const std::string& text, const std::string& name, bool& found) {
    found = false;
    std::string out;
    std::istringstream in(text);
    std::string line;
    bool lastHadNewline = !text.empty() && text.back() == '\n';
    while (std::getline(in, line)) {
        const auto hash = line.find('#');
        const std::string body = line.substr(0, hash);
        std::istringstream fields(body);
        std::vector<std::string> words;
        for (std::string w; fields >> w;) words.push_back(w);
        bool hit = false;
        for (size_t i = 1; i < words.size(); ++i) {
            if (strcasecmp(words[i].c_str(), name.c_str()) == 0) hit = true;  // host names ignore case
        }
        if (!hit) {
            out += line + "\n";
            continue;
        }
        found = true;
        std::string kept = words[0];
        size_t names = 0;
        for (size_t i = 1; i < words.size(); ++i) {
            if (strcasecmp(words[i].c_str(), name.c_str()) == 0) continue;
            kept += "\t" + words[i];
            ++names;
        }
        if (names == 0) continue;
        if (hash != std::string::npos) kept += " " + line.substr(hash);
        out += kept + "\n";
    }
    if (!lastHadNewline && !out.empty() && !text.empty()) out.pop_back();
    return out;
}

bool HostsFile::RemoveEntryByHostName(const std::string& name) {
    if (name.empty()) return false;
    std::ifstream in(_path, std::ios::binary);
    if (!in) throw HostCtlException("Cannot read " + _path + ": " + std::strerror(errno));
    std::stringstream buffer;
    buffer << in.rdbuf();
    bool found = false;
    const std::string text = RemoveName(buffer.str(), name, found);
    if (!found) return false;

    const std::string temp = _path + ".kovo-tmp";
    const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) throw HostCtlException("Cannot write " + _path + ": " + std::strerror(errno));
    size_t done = 0;
    bool ok = true;
    while (done < text.size()) {
        const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            ok = false;
            break;
        }
        done += static_cast<size_t>(n);
    }
    struct stat st {};
    if (ok && ::stat(_path.c_str(), &st) == 0) (void)::fchmod(fd, st.st_mode & 07777);
    ok = ok && ::fsync(fd) == 0;
    ok = (::close(fd) == 0) && ok;
    if (ok && ::rename(temp.c_str(), _path.c_str()) != 0 && (errno == EBUSY || errno == EXDEV)) {
        // The hosts file is a mount point (a bind-mounted file cannot be renamed over): write in place.
        ::unlink(temp.c_str());
        std::ofstream inPlace(_path, std::ios::binary | std::ios::trunc);
        inPlace << text;
        inPlace.flush();
        if (!inPlace) throw HostCtlException("Cannot write " + _path + ": " + std::strerror(errno));
        return true;
    }
    if (!ok || ::access(temp.c_str(), F_OK) == 0) {
        const int err = errno;
        ::unlink(temp.c_str());
        throw HostCtlException("Cannot write " + _path + ": " + std::strerror(err));
    }
    return true;
}

}  // namespace ZenkCtl::Network
