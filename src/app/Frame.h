#pragma once

#include <signal.h>

#include <cstdint>
#include <string>

#include "app/Window.h"

namespace Kovo {

class StringFactory;

// A window with a modal key loop, a parent frame and the shared string table. Frames are shown only
// through RunModal(), so dialogs stack exactly as the calls nest.
class Frame : public Window {
public:
    Frame(Frame* parent, int x, int y, int width, int height, int background, int foreground);
    ~Frame() override;

    // The frame's modal loop: reads keys with GetKey and returns the frame's result.
    virtual int HandleKey() = 0;
    // Called on the foreground frame when the host signals a change; frames showing live host state
    // override it to redraw.
    virtual void Notification();

    int RunModal();

    Frame* ParentFrame() const { return _parentFrame; }
    StringFactory* Strings() const { return _strings; }

    // Process-wide session and key-reader state.
    static Frame* fgFrame;
    static uint32_t _idleTimeout;
    static bool _loggedIn;
    static bool _markForRestart;
    static sigset_t _signalSet;
    static int _signalPipe[2];
    static std::string _loginName;
    static bool _isLoggedWithSmartCard;
    static std::string _smartCardLoginId;
    static bool _isUserPasswordEmpty;
    static std::string _cardInfo;

    // The signal thread's body: turns signals into single bytes on _signalPipe.
    static void* SignalHandler(void*);

private:
    Frame* _parentFrame;
    StringFactory* _strings;
};

}  // namespace Kovo
