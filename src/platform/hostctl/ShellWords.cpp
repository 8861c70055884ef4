#include "platform/hostctl/ShellWords.h"

#include <cctype>
#include <cstring>

namespace HostCtl {

namespace {

bool IsPlain(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || (c != '\0' && std::strchr("%+,-./:=@_", c));
}

}  // namespace

std::string QuoteShellWord(std::string_view word) {
    bool plain = !word.empty();
    for (char c : word) plain = plain && IsPlain(c);
    if (plain) return std::string(word);
    std::string quoted = "'";
    for (char c : word) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::optional<std::vector<std::string>> SplitShellWords(std::string_view line) {
    std::vector<std::string> words;
    std::string word;
    bool inWord = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == ' ' || c == '\t') {
            if (inWord) words.push_back(std::move(word));
            word.clear();
            inWord = false;
        } else if (c == '\'') {
            const std::size_t end = line.find('\'', i + 1);
            if (end == std::string_view::npos) return std::nullopt;
            word.append(line.substr(i + 1, end - i - 1));
            inWord = true;
            i = end;
        } else if (c == '\\') {
            if (i + 1 >= line.size() || line[i + 1] == '\n') return std::nullopt;
            word += line[++i];
            inWord = true;
        } else if (IsPlain(c)) {
            word += c;
            inWord = true;
        } else {
            return std::nullopt;
        }
    }
    if (inWord) words.push_back(std::move(word));
    return words;
}

}  // namespace HostCtl
