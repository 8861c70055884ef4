#pragma once

#include "frames/Frame.h"

namespace Kovo {

class ItemList;
class TextArea;

// A full-screen menu: entries on the left, a detail pane on the right that describes the selected
// entry, and a status line at the bottom.
class RootWindow : public Frame {
  public:
    explicit RootWindow(Frame* parent);

    // Rebuilds the right-hand detail pane for the selected entry.
    virtual void UpdateDetails() = 0;

  protected:
    // Up and Down move the selection and rebuild the detail pane; false for any other key.
    bool MoveSelection(int key);
    Window* MainArea() const { return _main; }
    Window* LeftPane() const { return _left; }
    Window* RightPane() const { return _right; }
    TextArea* StatusLine() const { return _status; }
    TextArea* LeftTitle() const { return _leftTitle; }
    ItemList* List() const { return _list; }
    TextArea* LeftFooter() const { return _leftFooter; }
    TextArea* RightTitle() const { return _rightTitle; }
    TextArea* Details() const { return _details; }
    TextArea* RightFooter() const { return _rightFooter; }

  private:
    // All owned by the window tree.
    Window* _main;
    TextArea* _status;
    Window* _left;
    Window* _right;
    TextArea* _leftTitle;
    ItemList* _list;
    TextArea* _leftFooter;
    TextArea* _rightTitle;
    TextArea* _details;
    TextArea* _rightFooter;
};

}  // namespace Kovo
