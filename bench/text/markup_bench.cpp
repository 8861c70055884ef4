// Cost of one render of a full 80x25 detail pane (layout and draw), and of the layout alone.
#include <benchmark/benchmark.h>
#include <curses.h>

#include <clocale>
#include <cstdio>
#include <memory>
#include <string>

#include "terminal/Colors.h"
#include "text/MarkupLayout.h"
#include "text/TextArea.h"

namespace {

// A pane of the kind the menu windows show: headings, padded labels with values, wrapped prose, a
// right-aligned key line, and variables. Only variables that read nothing from the host are named, so
// the figure is the renderer's own.
std::string DetailPane() {
    std::string text =
        "{color:white}Configure Management Network{/color}\n\n"
        "{align:padding:24}Hostname:{/align}{color:white}node01.example{/color}\n"
        "{align:padding:24}IPv4 Address:{/align}{color:white}10.20.30.40{/color}\n"
        "{align:padding:24}Support:{/align}{color:white}{supportstart} / {supportperiod}{/color}\n\n";
    for (int i = 0; i < 6; ++i) {
        text +=
            "The management network carries the traffic of the host's own services. Changes take effect "
            "when you leave this window and confirm them; the {color:yellow}network is restarted{/color} "
            "and connections to the host may drop for a moment.\n";
    }
    text += "\n{align:padding:24}CPLD:{/align}{CPLDversion}\n";
    text +=
        "{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}  "
        "{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
    return text;
}

class Screen {
  public:
    Screen() {
        std::setlocale(LC_ALL, "C.UTF-8");
        _out = std::fopen("/dev/null", "w");
        _in = std::fopen("/dev/null", "r");
        _screen = newterm("xterm", _out, _in);
        set_term(_screen);
        resizeterm(25, 80);
        start_color();
        const int colours[] = {7, 0, 3, 2, 6, 1};
        for (int bg : colours)
            for (int fg : colours)
                if (Kovo::ColorPairNumber(bg, fg) < COLOR_PAIRS)
                    init_pair(Kovo::ColorPairNumber(bg, fg), fg, bg);
    }
    ~Screen() {
        endwin();
        delscreen(_screen);
        std::fclose(_out);
        std::fclose(_in);
    }

  private:
    FILE* _out;
    FILE* _in;
    SCREEN* _screen;
};

void BM_RenderDetailPane(benchmark::State& state) {
    Screen screen;
    {
        Kovo::Window root(0, 0, 80, 25, Kovo::kYellow, Kovo::kBlack);
        auto* pane = new Kovo::TextArea(&root, 0, 0, 80, 25);
        const std::string text = DetailPane();
        for (auto _ : state) pane->SetText(text);
        if (pane->Text().empty()) state.SkipWithError("no text");
    }
}
BENCHMARK(BM_RenderDetailPane)->Unit(benchmark::kMicrosecond);

void BM_LayoutDetailPane(benchmark::State& state) {
    Screen screen;
    {
        Kovo::Window root(0, 0, 80, 25, Kovo::kYellow, Kovo::kBlack);
        auto* pane = new Kovo::TextArea(&root, 0, 0, 80, 25);
        const std::string text = DetailPane();
        for (auto _ : state) benchmark::DoNotOptimize(Kovo::LayoutMarkup(text, 80, pane->Variables()));
    }
}
BENCHMARK(BM_LayoutDetailPane)->Unit(benchmark::kMicrosecond);

}  // namespace
