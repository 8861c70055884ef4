#pragma once

#include <array>
#include <string>

#include "frames/Dialog.h"
#include "frames/HostAccess.h"

namespace Kovo {

// What "Test Management Network" tests: up to three addresses to ping and a name to resolve; an empty
// text is skipped.
struct TestTargets {
    static constexpr std::size_t kPings = 3;
    std::array<std::string, kPings> pings;
    std::string name;
};

// "Test Management Network": three ping fields and a resolve field, filled from the host's settings.
// Enter checks the addresses and runs the tests (RunTestDialog), then closes (1); Esc closes (0).
class TestDialog : public Dialog {
  public:
    explicit TestDialog(Frame* parent, HostAccess& host);

    // The host's own: the IPv4 default gateway, the IPv4 name servers and, with IPv6 on, the IPv6 default
    // gateway and name servers, in that order, without unset ones ("", 0.0.0.0, ::), as many as there
    // are fields; and the host's fully qualified name ("host.domain", the host name alone without a
    // domain). A setting the host cannot tell is left out and logged.
    static TestTargets Prefill(HostAccess& host);

    TestTargets Targets() const;
    int HandleKey() override;

  protected:
    bool OnKey(int key) override;

  private:
    HostAccess& _host;
    std::array<InputItem*, TestTargets::kPings> _pings{};
    InputItem* _name = nullptr;
};

}  // namespace Kovo
