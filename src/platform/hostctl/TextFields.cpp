#include "platform/hostctl/TextFields.h"

namespace HostCtl {

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < text.size()) {
        const size_t end = text.find('\n', start);
        if (end == std::string::npos) {
            lines.push_back(text.substr(start));
            break;
        }
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

std::vector<std::string> Words(const std::string& line) {
    static constexpr const char* kBlanks = " \t\r\n\v\f";
    std::vector<std::string> words;
    size_t start = line.find_first_not_of(kBlanks);
    while (start != std::string::npos) {
        const size_t end = line.find_first_of(kBlanks, start);
        words.push_back(line.substr(start, end == std::string::npos ? std::string::npos : end - start));
        start = end == std::string::npos ? end : line.find_first_not_of(kBlanks, end);
    }
    return words;
}

}  // namespace HostCtl
