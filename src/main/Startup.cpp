#include "main/Startup.h"

#include <curses.h>
#include <fcntl.h>
#include <linux/kd.h>
#include <linux/vt.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <string>

#include "access/SmartCardLogin.h"
#include "frames/Frame.h"
#include "frames/HostAccess.h"
#include "frames/Log.h"
#include "main/HostPlatformChoice.h"
#include "network/NetworkTest.h"
#include "session/WelcomeWindow.h"
#include "terminal/Colors.h"
#include "terminal/CommandRunner.h"
#include "terminal/KeyReader.h"
#include "text/HostPlatform.h"

namespace Kovo {

namespace {

bool g_paletteReset = false;
// The terminal's attributes as the console found them, given back at an unexpected end.
termios g_found{};
bool g_foundSaved = false;

void EndCurses() {
    endwin();
}

// An exception that leaves a thread, or a noexcept function: the same end as one that leaves main.
[[noreturn]] void EndOnTerminate() {
    std::string reason = "terminated";
    try {
        if (const std::exception_ptr escaped = std::current_exception()) std::rethrow_exception(escaped);
    } catch (const std::exception& e) {
        reason = e.what();
    } catch (...) {
        reason = "an exception of unknown type";
    }
    EndUnexpectedly(reason);
    _exit(1);
}

// Secrets pass through the console's memory: it is never written to a core file, and no process of
// another user may attach to it.
void Harden() {
    prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
}

bool IsLinuxConsole(int fd) {
    char type = 0;
    return ioctl(fd, KDGKBTYPE, &type) == 0;
}

void SwitchConsole(int vt) {
    int fd = open("/dev/console", O_RDWR | O_CLOEXEC);
    if (fd < 0) return;
    if (ioctl(fd, VT_ACTIVATE, vt) != 0) ioctl(fd, VT_WAITACTIVE, vt);
    close(fd);
}

}  // namespace

int ParseVtArgument(const char* arg) {
    int vt = atoi(arg);
    if (vt < 1 || vt > 63) {
        LogError(std::string("Invalid VT specified for KOVO: ") + arg);
        return -1;
    }
    return vt;
}

bool DecideTerminal(bool isLinuxConsole) {
    bool keyboard = false;
    const char* term = getenv("TERM");
    if (isLinuxConsole) {
        keyboard = true;
        setenv("TERM", "linux", 1);
    } else if (term && strcmp(term, "linux") == 0) {
        // A "linux" terminal that is not a local console is driven as a VT102.
        setenv("TERM", "vt102", 1);
    } else if (term && strcmp(term, "xterm") == 0 && !getenv("SSH_CLIENT")) {
        keyboard = true;
    }
    setenv("TERMINFO", "/usr/share/terminfo", 0);
    setenv("TERM", "vt102", 0);
    return keyboard;
}

void GuardPidFile(const char* path) {
    long pid = 0;
    if (FILE* f = fopen(path, "re")) {
        if (fscanf(f, "%ld", &pid) != 1) pid = 0;
        fclose(f);
    }
    if (pid > 0 && pid <= INT32_MAX && kill(static_cast<pid_t>(pid), 0) == 0) {
        LogError(std::string("Attempt to run multiple KOVO instances, not updating ") + path);
        return;
    }
    if (FILE* f = fopen(path, "we")) {
        fprintf(f, "%d", getpid());
        fclose(f);
    }
}

void SendScreensWhole() {
    // curses would stop between the lines of an update to look for typed keys, flushing what it has so
    // far. Keys wait for the whole screen instead.
    typeahead(-1);
    endwin();
    refresh();
}

void InitColors() {
    use_default_colors();
    if (!can_change_color()) {
        bwColor = true;
        return;
    }
    init_color(COLOR_YELLOW, 1000, 800, 0);
    init_color(COLOR_CYAN, 334, 334, 334);
    init_color(COLOR_GREEN, 667, 667, 667);
    init_color(COLOR_WHITE, 1000, 1000, 1000);
    init_color(COLOR_RED, 1000, 0, 0);
    const int colors[] = {kWhite, kBlack, kYellow, kLightGrey, kDarkGrey, kRed};
    for (int background : colors)
        for (int foreground : colors)
            init_pair(static_cast<short>(ColorPairNumber(background, foreground)),
                      static_cast<short>(foreground), static_cast<short>(background));
}

void DefineKeys() {
    struct Binding {
        const char* sequence;
        int key;
    };
    static const Binding bindings[] = {
        {"\033R", KEY_RESIZE},
        {"\033[11~", KEY_F(1)},
        {"\033[12~", KEY_F(2)},
        {"\033[13~", KEY_F(3)},
        {"\033[14~", KEY_F(4)},
        {"\033[15~", KEY_F(5)},
        {"\033[17~", KEY_F(6)},
        {"\033[18~", KEY_F(7)},
        {"\033[19~", KEY_F(8)},
        {"\033[20~", KEY_F(9)},
        {"\033[21~", KEY_F(10)},
        {"\033[23~", KEY_F(11)},
        {"\033[24~", KEY_F(12)},
        // Escape then a digit, for terminals that send no function-key sequences.
        {"\0331", KEY_F(1)},
        {"\0332", KEY_F(2)},
        {"\0333", KEY_F(3)},
        {"\0334", KEY_F(4)},
        {"\0335", KEY_F(5)},
        {"\0336", KEY_F(6)},
        {"\0337", KEY_F(7)},
        {"\0338", KEY_F(8)},
        {"\0339", KEY_F(9)},
        {"\0330", KEY_F(10)},
        {"\033!", KEY_F(11)},
        {"\033@", KEY_F(12)},
        {"\033h", KEY_HOME},
        {"\033k", KEY_END},
        {"\033+", KEY_IC},
        {"\033-", KEY_DC},
        {"\033?", KEY_PPAGE},
        {"\033/", KEY_NPAGE},
        {"\033[M", KEY_F(1)},
        {"\033[N", KEY_F(2)},
        {"\033[O", KEY_F(3)},
        {"\033[P", KEY_F(4)},
        {"\033[Q", KEY_F(5)},
        {"\033[R", KEY_F(6)},
        {"\033[S", KEY_F(7)},
        {"\033[T", KEY_F(8)},
        {"\033[U", KEY_F(9)},
        {"\033[V", KEY_F(10)},
        {"\033[W", KEY_F(11)},
        {"\033[X", KEY_F(12)},
        {"\033OP", KEY_F(1)},
        {"\033OQ", KEY_F(2)},
        {"\033OR", KEY_F(3)},
        {"\033OS", KEY_F(4)},
        {"\033OT", KEY_F(5)},
        {"\033OU", KEY_F(6)},
        {"\033OV", KEY_F(7)},
        {"\033OW", KEY_F(8)},
        {"\033OX", KEY_F(9)},
        {"\033OY", KEY_F(12)},  // there is deliberately no ESC O form for F10 or F11
        {"\033OA", KEY_UP},
        {"\033OB", KEY_DOWN},
        {"\033OC", KEY_RIGHT},
        {"\033OD", KEY_LEFT},
        {"\033[A", KEY_UP},
        {"\033[B", KEY_DOWN},
        {"\033[C", KEY_RIGHT},
        {"\033[D", KEY_LEFT},
        {"\033[2~", KEY_IC},
        {"\033[3~", KEY_DC},
        {"\033[1~", KEY_HOME},
        {"\033[4~", KEY_END},
        {"\033[5~", KEY_PPAGE},
        {"\033[6~", KEY_NPAGE},
        {"\177", KEY_BACKSPACE},
    };
    for (const Binding& b : bindings) define_key(b.sequence, b.key);
}

namespace {

// The Linux console's palette back to its own.
constexpr const char* kPaletteReset = "\033]R";

// What a crash leaves on the terminal: made while the console runs, written from the signal handler,
// which may call nothing but write and tcsetattr.
char g_crashReset[256];
std::size_t g_crashResetLength = 0;

void OnFatalSignal(int signal) {
    if (write(1, g_crashReset, g_crashResetLength) < 0) {
        // nothing left to try
    }
    if (g_foundSaved) tcsetattr(1, TCSANOW, &g_found);
    // The handler was reset as it ran: the signal now ends the process as it would have.
    raise(signal);
}

}  // namespace

void GiveTheTerminalBackOnCrash() {
    std::string reset;
    for (const char* capability : {"sgr0", "cnorm", "rmkx", "rmcup"}) {
        const char* sequence = tigetstr(capability);
        if (sequence != nullptr && sequence != reinterpret_cast<char*>(-1)) reset += sequence;
    }
    reset += kPaletteReset;
    g_crashResetLength = std::min(reset.size(), sizeof g_crashReset);
    std::memcpy(g_crashReset, reset.data(), g_crashResetLength);
    // A stack of its own, so that a stack overflow still reaches the handler.
    static char handlerStack[1 << 16];
    stack_t stack{};
    stack.ss_sp = handlerStack;
    stack.ss_size = sizeof handlerStack;
    sigaltstack(&stack, nullptr);
    struct sigaction action {};
    action.sa_handler = OnFatalSignal;
    action.sa_flags = SA_RESETHAND | SA_NODEFER | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) sigaction(signal, &action, nullptr);
}

void ResetPalette() {
    if (g_paletteReset) return;
    g_paletteReset = true;
    fputs(kPaletteReset, stdout);
    fflush(stdout);
}

void EndUnexpectedly(const std::string& reason) {
    LogCritical("KOVO ended by an unexpected error: " + reason);
    if (stdscr && !isendwin()) endwin();
    if (g_foundSaved) tcsetattr(1, TCSANOW, &g_found);
    ResetPalette();
}

int RunToTheEnd(const std::function<int()>& console) {
    g_foundSaved = tcgetattr(1, &g_found) == 0;
    try {
        return console();
    } catch (const std::exception& e) {
        EndUnexpectedly(e.what());
    } catch (...) {
        EndUnexpectedly("an exception of unknown type");
    }
    return 1;
}

namespace {

int RunConsole(int argc, char** argv) {
    // Never destroyed: threads nobody joins may still reach the host while the process ends.
    static HostAccess* const host = [] {
        std::unique_ptr<HostCtl::HostFactory> chosen = ChooseHostPlatform();
        chosen->Initialize("KOVO");
        return new HostAccess(std::move(chosen));
    }();
    const HostCtl::HostFactory& platform = host->Platform();
    InstallHostPrograms(&platform.Programs());
    InstallTextPlatform(&platform);

    int vt = -1;
    if (argc > 1) vt = ParseVtArgument(argv[1]);

    BlockSignals();
    // A host notification: the screen on top redraws what it shows of the host, and a smart-card
    // session ends when its card is gone.
    SetNotificationHook([] {
        if (Frame::fgFrame) Frame::fgFrame->Notification();
        CheckSmartCard(*host);
    });
    LoadIdleTimeout([] { return host->Options(); });

    int devnull = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (devnull >= 0) {
        dup2(devnull, 2);  // curses owns the screen: nothing may scribble on it
        close(devnull);
    }

    tcgetattr(1, &orig_termios);
    usingKeyboard = DecideTerminal(IsLinuxConsole(1));

    LogInfo("Starting KOVO");

    GuardPidFile(KOVO_PID_FILE);

    if (vt != -1) {
        SwitchConsole(vt);
        orig_termios.c_cc[VSUSP] = 0;  // Ctrl-Z must not suspend the console
        tcsetattr(1, TCSANOW, &orig_termios);
    }

    setlocale(LC_ALL, "en_US.UTF-8");

    // A terminal that keeps its suspend character (over SSH, without a console number) would stop the
    // console at Ctrl-Z and leave the operator at whatever started it. Ignored before curses starts,
    // curses installs no handler of its own for it.
    signal(SIGTSTP, SIG_IGN);

    // Registered before endwin so that it runs after it: the palette reset follows the restored screen.
    atexit(ResetPalette);
    initscr();
    SendScreensWhole();
    start_color();
    atexit(EndCurses);
    curs_set(0);
    cbreak();
    noecho();
    keypad(stdscr, TRUE);
    set_escdelay(kEscapeDelayMs);  // curses' default of a second makes every Esc lag
    InitColors();
    DefineKeys();
    GiveTheTerminalBackOnCrash();

    refresh();
    {
        auto welcome = std::make_unique<WelcomeWindow>(*host);
        welcome->RunModal();
    }
    erase();
    refresh();
    endwin();
    ResetPalette();
    return 0;
}

}  // namespace

int KovoMain(int argc, char** argv) {
    Harden();
    std::set_terminate(EndOnTerminate);
    openlog("KOVO", LOG_PID, LOG_USER);
    setlogmask(LOG_UPTO(LOG_INFO));
    // A console killed during a resolve test left the host's name out of the hosts file: it goes back
    // before anything else runs.
    NetworkTest::PutBackLeftoverHosts();
    return RunToTheEnd([argc, argv] { return RunConsole(argc, argv); });
}

}  // namespace Kovo
