#pragma once

#include <string_view>

namespace Kovo {

// One brace tag of the markup: "{name:value}". Everything between "{" and the next "}" belongs to the
// tag, so "{" inside a tag is ordinary; the name ends at the first ":".
struct MarkupTag {
    std::string_view whole;
    std::string_view name;
    std::string_view value;

    static MarkupTag Split(std::string_view whole) {
        std::size_t colon = whole.find(':');
        if (colon == std::string_view::npos) return {whole, whole, {}};
        return {whole, whole.substr(0, colon), whole.substr(colon + 1)};
    }
};

// Finds the tag that opens at text[open] (a "{"). Returns false when no "}" follows: the rest of the
// text is an unterminated tag, which both passes drop.
inline bool NextTag(std::string_view text, std::size_t open, MarkupTag& tag, std::size_t& after) {
    std::size_t close = text.find('}', open + 1);
    if (close == std::string_view::npos) return false;
    tag = MarkupTag::Split(text.substr(open + 1, close - open - 1));
    after = close + 1;
    return true;
}

}  // namespace Kovo
