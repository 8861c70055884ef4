#include "platform/hostctl/HostsTable.h"

#include <strings.h>

#include <vector>

#include "platform/hostctl/TextFields.h"
#include "platform/hostctl/WholeFile.h"

namespace HostCtl::Network {

HostsTable::HostsTable(std::string path) : _path(std::move(path)) {}

std::string HostsTable::RemoveName(const std::string& text, const std::string& name, bool& found) {
    found = false;
    std::string out;
    bool lastHadNewline = !text.empty() && text.back() == '\n';
    for (const std::string& line : HostCtl::Lines(text)) {
        const auto hash = line.find('#');
        const std::vector<std::string> words = HostCtl::Words(line.substr(0, hash));
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

bool HostsTable::RemoveEntryByHostName(const std::string& name) {
    if (name.empty()) return false;
    bool found = false;
    const std::string text = RemoveName(HostCtl::ReadWholeFile(_path), name, found);
    if (found) HostCtl::WriteWholeFile(_path, text);
    return found;
}

}  // namespace HostCtl::Network
