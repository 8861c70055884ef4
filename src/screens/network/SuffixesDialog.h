#pragma once

#include <string>

#include "frames/Dialog.h"

namespace Kovo {

// The DNS search suffixes as one line of domain names apart by blanks or commas. Enter (1) keeps the
// text exactly as typed, Esc (0) keeps the one given.
class SuffixesDialog : public Dialog {
  public:
    SuffixesDialog(Frame* parent, const std::string& suffixes);

    const std::string& Suffixes() const { return _suffixes; }

    int HandleKey() override;

  protected:
    void Apply() override;

  private:
    InputItem& _field;
    std::string _suffixes;
};

}  // namespace Kovo
