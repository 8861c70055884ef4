#pragma once

#include "terminal/Session.h"
#include "terminal/Window.h"

namespace Kovo {

class StringFactory;

// A window with a modal key loop, a parent frame and the shared string table. Frames are shown only
// through RunModal(), so dialogs stack exactly as the calls nest.
class Frame : public Window, public Session {
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

    // The frame on top of the modal chain; null while none is shown.
    static Frame* fgFrame;

  private:
    // Gives the screen back to the parent when this frame's loop has ended.
    void Reactivate();

    Frame* _parentFrame;
    StringFactory* _strings;
};

}  // namespace Kovo
