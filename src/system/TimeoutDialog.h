#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "app/Dialog.h"

namespace Kovo {

class ActionHost;
class InputItem;
class ItemList;

// A dialog of time-outs in whole minutes: five-digit fields that take digits and editing keys only,
// Up/Down between fields, Enter applies (result 1), Esc leaves everything as it was (result 0).
class TimeoutDialog : public Dialog {
  public:
    ~TimeoutDialog() override;

    int HandleKey() override;
    InputItem& Field(std::size_t index) const { return *_fields.at(index); }

    // Longest time-out there is, in minutes.
    static constexpr uint32_t kMaxMinutes = 1440;

  protected:
    TimeoutDialog(Frame* parent, int width, int height, int headerHeight, unsigned titleId, unsigned bodyId,
                  ActionHost& host);

    void AddField(unsigned labelId, uint32_t minutes);
    // Acts on the fields after Enter.
    virtual void Apply() = 0;
    // The minutes in a field; nothing when it is empty, or when it is out of range (after telling the
    // operator so).
    std::optional<uint32_t> ReadMinutes(std::size_t index);
    ActionHost& Host() const { return _host; }

  private:
    // Passes an editing key to the selected field; false for keys the fields do not take.
    bool Edit(int key);

    ActionHost& _host;
    unsigned _titleId;
    unsigned _bodyId;
    ItemList* _list;  // owned by the window tree
    std::vector<std::unique_ptr<InputItem>> _fields;
};

}  // namespace Kovo
