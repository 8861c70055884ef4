#include "HostLayout.h"

#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace KovoSim {
namespace fs = std::filesystem;
namespace {

bool IsWithin(const fs::path& inner, const fs::path& outer) {
    auto i = inner.begin();
    for (auto o = outer.begin(); o != outer.end(); ++o, ++i) {
        if (o->empty()) continue;  // trailing separator
        if (i == inner.end() || *i != *o) return false;
    }
    return true;
}

}  // namespace

HostLayout::HostLayout(const std::string& dir) {
    if (dir.empty()) throw std::invalid_argument("the host's directory is empty");
    std::error_code error;
    fs::path path = fs::weakly_canonical(fs::absolute(dir, error), error);
    if (error)
        throw std::invalid_argument("cannot resolve the host's directory " + dir + ": " + error.message());
    _dir = path.lexically_normal().string();
    while (_dir.size() > 1 && _dir.back() == '/') _dir.pop_back();
    // The overlay mount options separate fields with these characters.
    if (_dir.find_first_of(",:\\\n") != std::string::npos)
        throw std::invalid_argument("the host's directory may not contain ',', ':', '\\' or a newline: " +
                                    _dir);
    if (_dir == "/") throw std::invalid_argument("the host's directory cannot be /");
    for (const char* overlay : kOverlays) {
        if (IsWithin(_dir, overlay) || IsWithin(overlay, _dir))
            throw std::invalid_argument("the host's directory " + _dir + " overlaps the host's " + overlay);
    }
}

const std::vector<std::pair<std::string, std::string>>& HostLayout::Logs() {
    static const std::vector<std::pair<std::string, std::string>> logs = {
        {"syslog", "/var/log/syslog.log"},
        {"events", "/var/log/kovo-sim/events.log"},
        {"audit", "/var/log/kovo-sim/audit.log"},
        {"commands", "/var/log/kovo-sim/commands.log"},
    };
    return logs;
}

void HostLayout::Prepare() const {
    std::error_code error;
    for (const char* overlay : kOverlays) {
        for (const std::string& path : {Upper(overlay), Work(overlay)}) {
            fs::create_directories(path, error);
            if (error) throw std::runtime_error("cannot create " + path + ": " + error.message());
        }
    }
    // Directories the host writes into exist in its upper layers, so they are the host's own even for an
    // unprivileged user, to whom the machine's directories below are read-only.
    for (const char* dir : kOwnDirectories) {
        fs::create_directories(Upper(dir), error);
        if (error) throw std::runtime_error("cannot create " + Upper(dir) + ": " + error.message());
    }
    fs::create_directories(_dir + "/state", error);
    if (error) throw std::runtime_error("cannot create " + _dir + "/state: " + error.message());
}

bool HostLayout::Prepared() const {
    std::error_code error;
    if (!fs::is_directory(_dir + "/state", error)) return false;
    for (const char* overlay : kOverlays) {
        if (!fs::is_directory(Upper(overlay), error) || !fs::is_directory(Work(overlay), error)) return false;
    }
    return true;
}

}  // namespace KovoSim
