#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace Kovo {

// Variable name to the function that yields its current value; called anew on every layout.
using MarkupVariables = std::map<std::string, std::function<std::string()>, std::less<>>;

// The layout pass: expands variables, wraps words to `width` columns, applies the align tags, and
// copies every other tag through for the draw pass. Returns lines separated by "\n".
// Widths count bytes; the interface texts are plain ASCII.
std::string LayoutMarkup(std::string_view text, int width, const MarkupVariables& variables);

// A host's own words as they must stand inside markup, which has no escape: braces become parentheses,
// so none of them is read as a tag.
std::string MarkupSafe(std::string_view text);

}  // namespace Kovo
