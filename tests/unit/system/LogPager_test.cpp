#include "system/LogPager.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "../platform/TempDir.h"
#include "../support/OffscreenCurses.h"
#include "platform/hostctl/WholeFile.h"
#include "terminal/Session.h"

namespace Kovo {
namespace {

// A stand-in pager that writes down how it was started: its arguments, LESSSECURE and its blocked
// signals, then ends with status 3.
class LogPagerTest : public Testing::OffscreenCurses {
  protected:
    void SetUp() override {
        OffscreenCurses::SetUp();
        // Whatever the terminal of this test run is, the pager hand-over must leave it as it was.
        tcgetattr(STDOUT_FILENO, &orig_termios);
        std::ofstream(_pager) << "#!/bin/sh\n"
                                 "{ for a in \"$@\"; do echo \"arg:$a\"; done\n"
                                 "  echo \"LESSSECURE=${LESSSECURE-unset}\"\n"
                                 // Read by the shell itself: a child would catch the shell mid-fork, with
                                 // everything blocked.
                                 "  while read -r k v; do [ \"$k\" = SigBlk: ] && echo \"SigBlk:$v\"; done"
                                 " < /proc/$$/status; } > '"
                              << _record << "'\nexit 3\n";
        chmod(_pager.c_str(), 0755);
        _hadLessSecure = getenv("LESSSECURE") != nullptr;
        if (_hadLessSecure) _lessSecure = getenv("LESSSECURE");
    }
    void TearDown() override {
        if (_hadLessSecure)
            setenv("LESSSECURE", _lessSecure.c_str(), 1);
        else
            unsetenv("LESSSECURE");
        OffscreenCurses::TearDown();
    }
    std::string Record() const { return HostCtl::ReadWholeFile(_record); }

    TempDir _dir;
    std::string _record = _dir.File("record"), _pager = _dir.File("pager");
    bool _hadLessSecure = false;
    std::string _lessSecure;
};

TEST_F(LogPagerTest, RunsThePagerOnTheLogWithItsPromptAndReturnsItsStatus) {
    EXPECT_EQ(LogPager(_pager).Show("/var/log/zenkernel.log"), 3);
    EXPECT_EQ(Record().substr(0, Record().find("LESSSECURE")),
              "arg:-cfP\narg:<Q> Quit </> RegExp Search <H> Help\narg:/var/log/zenkernel.log\n");
}

TEST_F(LogPagerTest, PagerRunsSecureAndTheVariableIsPutBackAfterwards) {
    unsetenv("LESSSECURE");
    LogPager(_pager).Show("/var/log/syslog.log");
    EXPECT_NE(Record().find("LESSSECURE=1\n"), std::string::npos) << Record();
    EXPECT_EQ(getenv("LESSSECURE"), nullptr);

    setenv("LESSSECURE", "0", 1);
    LogPager(_pager).Show("/var/log/syslog.log");
    EXPECT_NE(Record().find("LESSSECURE=1\n"), std::string::npos) << Record();
    ASSERT_NE(getenv("LESSSECURE"), nullptr);
    EXPECT_STREQ(getenv("LESSSECURE"), "0");
}

TEST_F(LogPagerTest, PagerDoesNotInheritTheConsolesBlockedSignals) {
    // The console blocks these for its signal thread; a pager started with them blocked could not be
    // interrupted or told about a resize.
    sigset_t set, previous;
    sigemptyset(&set);
    for (int s : {SIGINT, SIGWINCH, SIGTERM, SIGUSR1}) sigaddset(&set, s);
    pthread_sigmask(SIG_BLOCK, &set, &previous);
    LogPager(_pager).Show("/var/log/syslog.log");
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, &previous, &after);
    EXPECT_NE(Record().find("SigBlk:0000000000000000"), std::string::npos) << Record();
    // ... while the console's own mask is left as it was.
    EXPECT_TRUE(sigismember(&after, SIGINT));
}

TEST_F(LogPagerTest, MissingPagerFailsCleanlyAndLeavesEverythingAsItWas) {
    unsetenv("LESSSECURE");
    keypad(stdscr, FALSE);
    EXPECT_EQ(LogPager(_dir.File("no-such-pager")).Show("/var/log/syslog.log"), -1);
    EXPECT_EQ(getenv("LESSSECURE"), nullptr);
    // The console's keys come back in its own keypad mode whatever the pager did.
    EXPECT_TRUE(is_keypad(stdscr));
}

}  // namespace
}  // namespace Kovo
