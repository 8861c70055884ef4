#pragma once

#include <string>

#include "frames/Dialog.h"
#include "frames/HostAccess.h"
#include "network/NetworkTest.h"
#include "network/TestDialog.h"

namespace Kovo {

class TextArea;

// "Testing Management Network": runs the tests one after another as soon as it is shown, a line each
// with "OK." or "Failed.", and then waits for Enter (1). Esc ends the run at once (0); a test still
// running finishes on its own thread and nobody waits for it.
class RunTestDialog : public Dialog {
  public:
    RunTestDialog(Frame* parent, TestTargets targets, std::string interface, HostAccess& host);

    int HandleKey() override;

  private:
    // Shows `line` until the test is over, then adds its outcome; false when the operator pressed Esc.
    bool Await(const std::string& line, const TestResult& result);

    TestTargets _targets;
    std::string _interface;
    HostAccess& _host;
    TextArea& _lines;
    std::string _done;
};

}  // namespace Kovo
