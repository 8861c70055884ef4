#pragma once

// Golden screens: a whole screen as reviewed text, compared with what the console shows. Each row's text
// is followed by a row of style letters, one per cell, and a legend says what each letter is (colours,
// bold, reverse), so a selection that moved or a parent window that was not greyed shows in the diff as
// surely as a cut text. The files live in tests/e2e/golden; with KOVO_GOLDEN_UPDATE=1 a test writes what
// it saw there instead, for review with git diff.

#include <string>

#include "VirtualTerminal.h"

namespace KovoE2e {

// The screen as a golden file holds it.
std::string GoldenText(const KovoTerm::VirtualTerminal& screen);

// "" when the screen matches the golden file `name`; otherwise the differing lines, numbered. Writes the
// file instead when KOVO_GOLDEN_UPDATE is set (and answers "").
std::string CompareWithGolden(const KovoTerm::VirtualTerminal& screen, const std::string& name);

}  // namespace KovoE2e
