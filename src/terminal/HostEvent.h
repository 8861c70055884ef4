#pragma once

#include <string>

namespace Kovo {

// Host events raised by the operator's actions. Each posting opens the event library, hands over the one
// event and closes it again; when the library cannot be opened the failure is logged and the action goes
// on without its event.
class HostEvent {
  public:
    // The text the host expects: "@&!*@*@(" + id + ")" + message.
    static std::string Text(const std::string& id, const std::string& message);
    // Returns false when the event could not be handed over.
    static bool Post(const std::string& text);
};

}  // namespace Kovo
