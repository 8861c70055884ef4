#include "platform/linux/InterfacesFile.h"

#include <vector>

#include "platform/hostctl/TextFields.h"

namespace LinuxHost::InterfacesFile {

namespace {

// One logical line: the physical lines it spans (each with its line end) and its words, continuations
// joined.
struct Line {
    std::string text;
    std::vector<std::string> words;
};

std::vector<Line> Lines(const std::string& text) {
    std::vector<Line> lines;
    std::string logical;
    std::string physical;
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t end = text.find('\n', at);
        end = end == std::string::npos ? text.size() : end + 1;
        const std::string piece = text.substr(at, end - at);
        at = end;
        physical += piece;
        std::string content = piece;
        while (!content.empty() && (content.back() == '\n' || content.back() == '\r')) content.pop_back();
        const bool continued = !content.empty() && content.back() == '\\' &&
                               content.find_first_not_of(" \t") != std::string::npos &&
                               content[content.find_first_not_of(" \t")] != '#';
        if (continued) {
            content.pop_back();
            logical += content + " ";
            if (at < text.size()) continue;
        } else {
            logical += content;
        }
        Line line{physical, {}};
        const std::size_t first = logical.find_first_not_of(" \t");
        if (first != std::string::npos && logical[first] != '#') line.words = HostCtl::Words(logical);
        lines.push_back(std::move(line));
        logical.clear();
        physical.clear();
    }
    return lines;
}

bool Starts(const std::string& word) {
    return word == "iface" || word == "mapping" || word == "auto" || word.rfind("allow-", 0) == 0 ||
           word == "source" || word == "source-directory" || word == "source-dir" || word == "no-auto-down" ||
           word == "no-scripts" || word == "rename";
}

bool Lists(const std::string& word) {
    return word == "auto" || word.rfind("allow-", 0) == 0 || word == "no-auto-down" || word == "no-scripts";
}

}  // namespace

bool Configures(const std::string& text, const std::set<std::string>& names) {
    for (const Line& line : Lines(text)) {
        if (line.words.size() < 2) continue;
        const std::string& keyword = line.words[0];
        if (keyword == "iface" && names.count(line.words[1])) return true;
    }
    return false;
}

std::string Without(const std::string& text, const std::set<std::string>& names) {
    std::string kept;
    bool inTakenStanza = false;
    for (const Line& line : Lines(text)) {
        if (line.words.empty()) {
            // Comments and blank lines stay, even inside a stanza that goes: they may describe the rest.
            kept += line.text;
            continue;
        }
        const std::string& keyword = line.words[0];
        if (Starts(keyword))
            inTakenStanza = keyword == "iface" && line.words.size() > 1 && names.count(line.words[1]);
        if (inTakenStanza) continue;
        if (!Lists(keyword)) {
            kept += line.text;
            continue;
        }
        std::vector<std::string> left;
        for (std::size_t i = 1; i < line.words.size(); ++i)
            if (!names.count(line.words[i])) left.push_back(line.words[i]);
        if (left.size() == line.words.size() - 1) {
            kept += line.text;
        } else if (!left.empty()) {
            // Rewritten as one line in the file's own indentation.
            std::string rewritten = line.text.substr(0, line.text.find_first_not_of(" \t")) + keyword;
            for (const std::string& name : left) rewritten += " " + name;
            kept += rewritten + "\n";
        }
    }
    return kept;
}

}  // namespace LinuxHost::InterfacesFile
