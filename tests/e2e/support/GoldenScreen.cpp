#include "GoldenScreen.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <tuple>
#include <vector>

namespace KovoE2e {

namespace {

std::string Path(const std::string& name) {
    return std::string(KOVO_E2E_GOLDEN) + "/" + name + ".txt";
}

std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

}  // namespace

std::string GoldenText(const KovoTerm::VirtualTerminal& screen) {
    // Letters in the order the styles first appear, reading the screen as text is read.
    std::map<std::string, char> letters;
    std::vector<std::string> legend;
    std::string rows;
    for (int row = 0; row < screen.Rows(); ++row) {
        std::string text, styles;
        for (int column = 0; column < screen.Columns(); ++column) {
            const KovoTerm::Cell cell = screen.CellAt(row, column);
            text += cell.text.empty() ? " " : cell.text;
            const std::string style = "fg " + cell.fg.Describe() + " bg " + cell.bg.Describe() +
                                      (cell.bold ? " bold" : "") + (cell.reverse ? " reverse" : "");
            auto [at, added] = letters.emplace(style, static_cast<char>('a' + letters.size()));
            if (added) legend.push_back(std::string(1, at->second) + ": " + style);
            styles += at->second;
        }
        rows += text + "\n" + styles + "\n";
    }
    std::string out =
        "screen " + std::to_string(screen.Columns()) + "x" + std::to_string(screen.Rows()) + "\n";
    for (const std::string& line : legend) out += line + "\n";
    return out + "--\n" + rows;
}

std::string CompareWithGolden(const KovoTerm::VirtualTerminal& screen, const std::string& name) {
    const std::string seen = GoldenText(screen);
    if (std::getenv("KOVO_GOLDEN_UPDATE")) {
        std::ofstream(Path(name)) << seen;
        return "";
    }
    std::ifstream in(Path(name));
    if (!in) return "no golden screen " + Path(name) + " (KOVO_GOLDEN_UPDATE=1 writes it)\n" + seen;
    const std::string golden((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (golden == seen) return "";
    const std::vector<std::string> want = SplitLines(golden), got = SplitLines(seen);
    std::string diff = "differs from " + Path(name) + ":\n";
    for (std::size_t i = 0; i < std::max(want.size(), got.size()); ++i) {
        const std::string a = i < want.size() ? want[i] : "<none>", b = i < got.size() ? got[i] : "<none>";
        if (a == b) continue;
        diff += "line " + std::to_string(i + 1) + "\n  golden: " + a + "\n  seen:   " + b + "\n";
    }
    return diff;
}

}  // namespace KovoE2e
