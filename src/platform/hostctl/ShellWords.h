#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace HostCtl {

// Command lines (HostFactory::Exec) are read by a shell on some hosts. Every word that comes from the
// host or the operator goes into one through QuoteShellWord, so it stays one word whatever it holds.

// `word` as one shell word: unchanged when it holds only characters no shell treats specially (letters,
// digits and "%+,-./:=@_"), otherwise in single quotes.
std::string QuoteShellWord(std::string_view word);

// The words of a command line written with QuoteShellWord: split at blanks, single quotes and backslash
// escapes undone. Nothing for a line with anything else a shell would act on (an unclosed quote, double
// quotes, $, `, ;, |, &, <, >, parentheses, a glob, a new line), which a platform that runs command lines
// without a shell refuses.
std::optional<std::vector<std::string>> SplitShellWords(std::string_view line);

}  // namespace HostCtl
