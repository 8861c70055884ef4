#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "frames/Dialog.h"

namespace Kovo {

class HostAccess;

// A dialog of time-outs in whole minutes: five-digit fields that take digits and editing keys only,
// Up/Down between fields, Enter applies (result 1), Esc leaves everything as it was (result 0).
class TimeoutDialog : public Dialog {
  public:
    InputItem& Field(std::size_t index) const { return *_fields.at(index); }

    // Longest time-out there is, in minutes.
    static constexpr uint32_t kMaxMinutes = 1440;

  protected:
    TimeoutDialog(Frame* parent, const DialogLayout& layout, HostAccess& host);

    void AddMinutesField(unsigned labelId, uint32_t minutes);
    // Acts on the fields after Enter.
    void Apply() override = 0;
    // The minutes in a field; nothing when it is empty, or when it is out of range (after telling the
    // operator so).
    std::optional<uint32_t> ReadMinutes(std::size_t index);
    HostAccess& Host() const { return _host; }

  private:
    HostAccess& _host;
    std::vector<InputItem*> _fields;  // owned by the dialog's items
};

}  // namespace Kovo
