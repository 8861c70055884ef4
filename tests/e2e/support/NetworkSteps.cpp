#include "NetworkSteps.h"

#include <gtest/gtest.h>

namespace KovoE2e {

void Press(HostConsole& host, Key key, int times) {
    for (int i = 0; i < times; ++i) {
        host.Term().Press(key);
        ASSERT_TRUE(host.Term().WaitForQuiet(80ms));
    }
}

bool OpenNetwork(HostConsole& host) {
    return LogIn(host, "", kRootPassword) && OpenFromMenu(host, kNetworkDowns, kWindowMark);
}

void TypeShown(HostConsole& host, const std::string& text) {
    host.Term().Type(text);
    ASSERT_TRUE(Settled(host, text, 80ms)) << host.Term().Dump();
}

void Accept(HostConsole& host, const std::string& mark, int downs) {
    host.Term().Press(Key::Enter);
    ASSERT_TRUE(Closed(host, mark, 200ms)) << host.Term().Dump();
    Press(host, Key::Up, downs);
}

void EditSuffixes(HostConsole& host, const std::string& text) {
    ASSERT_TRUE(OpenFromMenu(host, kSuffixDowns, "Use spaces or commas")) << host.Term().Dump();
    TypeShown(host, text);
    Accept(host, "Use spaces or commas", kSuffixDowns);
}

void EditIpv4Field(HostConsole& host, int fieldDowns, const std::string& text) {
    ASSERT_TRUE(OpenFromMenu(host, kIpv4Downs, kStaticChoice)) << host.Term().Dump();
    Press(host, Key::Down, fieldDowns);
    TypeShown(host, text);
    Accept(host, kStaticChoice, kIpv4Downs);
}

bool OpenTest(HostConsole& host) {
    return LogIn(host, "", kRootPassword) && OpenFromMenu(host, kTestDowns, kTestMark);
}

void Fill(HostConsole& host, std::initializer_list<const char*> texts) {
    for (const char* text : texts) {
        if (text) {
            host.Term().Press(Key::Backspace);
            if (*text) TypeShown(host, text);
        }
        Press(host, Key::Down);
    }
}

bool ShowsMessage(HostConsole& host, const std::string& title, const std::string& text) {
    return host.Term().WaitFor(
        [&](const VirtualTerminal& screen) { return screen.Contains(title) && screen.Contains(text); });
}

void LeaveAnswering(HostConsole& host, const std::string& answer) {
    ASSERT_TRUE(PressFor(host, Key::Escape, kConfirmTitle, 200ms)) << host.Term().Dump();
    host.Term().Type(answer);
}

bool BackInMenu(HostConsole& host) {
    return host.Term().WaitForTextGone(kWindowMark) && host.Term().WaitFor(MenuShown) &&
           host.Term().WaitForQuiet(300ms);
}

nlohmann::json StoreJson(const HostConsole& host, const std::string& pointer) {
    return nlohmann::json::parse(StoreValue(host, pointer), nullptr, false);
}

std::string HostFile(const HostConsole& host, const std::string& path) {
    return ReadFile(host.HostDir() + "/upper" + path);
}

std::unique_ptr<HostConsole> MakeHostWithSilentNameServers() {
    return MakeHost("default",
                    {{"/network/dns/nameServers", R"(["10.20.30.8", "10.20.30.9", "10.20.30.2"])"},
                     {"/simulation/silentNameServers", R"(["10.20.30.8", "10.20.30.9"])"}},
                    Restarting());
}

bool HostHasHostsBackup(const HostConsole& host) {
    return Launcher({"exec", host.HostDir(), "--", "/bin/test", "-e", "/etc/hosts.backup"});
}

bool Answers(const HostConsole& host, const std::string& address) {
    return Launcher({"exec", host.HostDir(), "--", "/bin/zenkping", "-c", "1", "-W", "1", address});
}

bool InOrder(const HostConsole& host, const std::vector<std::string>& texts) {
    const std::string log = host.Syslog();
    size_t at = 0;
    for (const auto& text : texts) {
        at = log.find(text, at);
        if (at == std::string::npos) return false;
    }
    return true;
}

}  // namespace KovoE2e
