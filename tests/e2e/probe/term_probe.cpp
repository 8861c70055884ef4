// A tiny full-screen program that exercises what the terminal harness must observe: colours (plain and
// redefined), bold and standout cells, keys as curses decodes them, resize, and an exit sequence.
#include <curses.h>
#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

int keysSeen = 0;

void Draw(const char* lastKey) {
    erase();
    mvprintw(0, 0, "PROBE READY %dx%d", COLS, LINES);
    attron(COLOR_PAIR(1) | A_BOLD);
    mvprintw(1, 0, "RED");
    attroff(COLOR_PAIR(1) | A_BOLD);
    attron(COLOR_PAIR(2));
    mvprintw(2, 0, "AMBER");
    attroff(COLOR_PAIR(2));
    attron(A_STANDOUT);
    mvprintw(3, 0, "STANDOUT");
    attroff(A_STANDOUT);
    const char* mark = std::getenv("PROBE_MARK");
    mvprintw(4, 0, "MARK=%s", mark ? mark : "(unset)");
    mvprintw(5, 0, "KEY %d: %s", keysSeen, lastKey);
    // Bottom-right corner, so a test can see the last row and column are in use.
    mvaddch(LINES - 1, COLS - 2, 'Z');
    refresh();
}

}  // namespace

int main() {
    std::setlocale(LC_ALL, "");
    if (!initscr()) return 2;
    set_escdelay(50);
    start_color();
    use_default_colors();
    cbreak();
    noecho();
    keypad(stdscr, TRUE);
    curs_set(0);
    // A resize that lands between the last refresh and the blocking read would otherwise wait for the
    // next key; waking up now and then lets curses notice it.
    timeout(100);
    // Extra sequences, as a console would register for terminals without function keys.
    define_key(
        "\x1b"
        "1",
        KEY_F(1));
    define_key("\x1b!", KEY_F(11));
    if (can_change_color()) init_color(COLOR_YELLOW, 1000, 800, 0);
    init_pair(1, COLOR_WHITE, COLOR_RED);
    init_pair(2, COLOR_YELLOW, COLOR_BLACK);

    Draw("none");
    while (true) {
        int key = getch();
        if (key == ERR) continue;
        if (key == 'q') break;
        ++keysSeen;
        char name[64];
        std::snprintf(name, sizeof name, "%s", key == KEY_RESIZE ? "RESIZE" : keyname(key));
        Draw(name);
    }
    endwin();
    std::fputs("\x1b]R", stdout);
    std::fflush(stdout);
    return 3;
}
