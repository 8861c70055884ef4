#pragma once

// Runs a network dialog's real key loop over scripted keys and notes what the operator saw on the way.

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "../access/LoginTestScreen.h"
#include "../support/Recording.h"
#include "text/ItemList.h"

namespace Kovo::Testing {

// A dialog that notes, as each key reaches it, the focused item and whether the text cursor shows, and
// keeps the composed screen each time it comes back to the front: a report it opened is still on it then.
template <typename D>
class Watched : public D {
  public:
    using D::D;
    struct Moment {
        int focused;
        bool cursor;
    };
    std::vector<Moment> moments;
    std::string screens;

    void SetActive(bool active) override {
        if (active) screens += ScreenText();
        D::SetActive(active);
    }
    bool Showed(const std::string& text) const { return screens.find(text) != std::string::npos; }

  protected:
    bool OnKey(int key) override {
        moments.push_back({this->Items().GetSelected(), Window::_cursor});
        return D::OnKey(key);
    }
};

// A dialog after its loop, with the frame it ran over; both go before the screen does.
template <typename D>
struct Ran {
    std::unique_ptr<TestRootFrame> root;
    std::unique_ptr<Watched<D>> dialog;
    int result;
    Watched<D>* operator->() const { return dialog.get(); }
};

class NetworkDialogs : public ScriptedScreen {
  protected:
    template <typename D, typename... Args>
    Ran<D> Run(const std::string& keys, Args&&... args) {
        Type(keys);
        Ran<D> ran{std::make_unique<TestRootFrame>(), nullptr, 0};
        ran.dialog = std::make_unique<Watched<D>>(ran.root.get(), std::forward<Args>(args)...);
        ran.result = ran.dialog->RunModal();
        return ran;
    }
};

// Enter on values the dialog refuses, then Enter to close its report. A frame coming to the front
// flushes the keys curses holds, so a key nothing takes goes first.
inline const std::string kRefused = "\n\t\n";

}  // namespace Kovo::Testing
