#include "text/MarkupLayout.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Kovo {
namespace {

struct Case {
    const char* what;
    const char* text;
    int width;
    const char* expected;
};

MarkupVariables TestVariables() {
    return {
        {"ip", [] { return std::string("10.0.0.1"); }},
        {"hostname", [] { return std::string("averylonghostname"); }},
        {"short", [] { return std::string("ab"); }},
        {"spaced", [] { return std::string("a b c d e f"); }},
        {"twolines", [] { return std::string("one\ntwo"); }},
    };
}

void ExpectLayouts(const std::vector<Case>& cases) {
    MarkupVariables variables = TestVariables();
    for (const Case& c : cases) EXPECT_EQ(LayoutMarkup(c.text, c.width, variables), c.expected) << c.what;
}

TEST(MarkupLayout, WrapsWordsAndBreaksLongOnes) {
    ExpectLayouts({
        {"empty text", "", 10, ""},
        {"fits", "hello", 10, "hello"},
        {"blank at the line end vanishes", "the quick brown fox", 10, "the quick\nbrown fox"},
        {"word moves down", "aaaa bbbbbbb", 10, "aaaa\nbbbbbbb"},
        {"long word broken at width", "abcdefghijklmno", 10, "abcdefghij\nklmno"},
        {"blank on a full line dropped", "abcdefghij klm", 10, "abcdefghij\nklm"},
        {"newline on a full line is one break", "abcdefghij\nxyz", 10, "abcdefghij\nxyz"},
        {"newline restarts the count", "abcde\nabcdefghij", 10, "abcde\nabcdefghij"},
        {"several wraps", "aa bb cc dd ee", 5, "aa bb\ncc dd\nee"},
        {"tab is a blank", "abcd\tefgh", 6, "abcd\nefgh"},
    });
}

TEST(MarkupLayout, AlignsRightCentreAndPadsAndRealignsWrappedLines) {
    ExpectLayouts({
        {"right", "{align:right}abc{/align}", 10, "       abc"},
        {"next character starts a new line", "{align:right}abc{/align}d", 10, "       abc\nd"},
        {"blank after alignment dropped", "{align:right}abc{/align} d", 10, "       abc\nd"},
        {"newline right after alignment", "{align:right}OK{/align}\nnext", 10, "        OK\nnext"},
        {"right after a prefix", "Key:{align:right}OK{/align}", 10, "Key:    OK"},
        {"centre rounds down", "{align:center}abc{/align}x", 10, "   abc\nx"},
        {"left opens nothing", "{align:left}abc{/align}d", 10, "abcd"},
        {"inner alignment ignored", "{align:right}ab{align:center}cd{/align}ef{/align}", 10,
         "      abcd\nef"},
        {"padding fills", "{align:padding:13}Label{/align}value", 40, "Label        value"},
        {"padding cuts", "{align:padding:13}ABCDEFGHIJKLMNOP{/align}x", 40, "ABCDEFGHIJKLMx"},
        {"padding exact", "{align:padding:3}abc{/align}d", 40, "abcd"},
        {"padding of garbage is empty", "{align:padding:x}abc{/align}d", 40, "d"},
        {"negative padding is empty", "{align:padding:-3}abc{/align}d", 40, "d"},
        {"padding wider than the room left", "abcde{align:padding:8}xy{/align}z", 10, "abcdexy   \nz"},
        {"padding drops newlines of a full field", "{align:padding:2}ab\ncd{/align}e", 10, "abe"},
        {"close without open does nothing", "ab{/align}cd", 10, "abcd"},
        // A stretch or a line that wraps keeps its alignment: the shortened line still ends at the right
        // edge.
        {"open right stretch wraps", "{align:right}hello world{/align}", 10, "     hello\n     world"},
        {"word after a right stretch", "{align:right}ab cd{/align}x", 10, "        ab\ncdx"},
        {"open centre stretch wraps", "{align:center}hello world{/align}", 10, "  hello\n  world"},
    });
}

TEST(MarkupLayout, ExpandsVariablesHardWrapped) {
    ExpectLayouts({
        {"value", "IP: {ip}", 40, "IP: 10.0.0.1"},
        {"value hard-wrapped", "Host: {hostname}", 10, "Host: aver\nylonghostn\name"},
        {"blanks of a value are no word breaks", "xxxxxx{spaced}", 10, "xxxxxxa b \nc d e f"},
        {"newline inside a value", "{twolines}x", 10, "one\ntwox"},
        {"value after a full line", "{align:right}ab{/align}{ip}", 10, "        ab\n10.0.0.1"},
        {"padding holds a short value", "{align:padding:6}{short}{/align}|", 40, "ab    |"},
        {"padding cuts a long value", "{align:padding:6}{hostname}{/align}|", 40, "averyl|"},
        {"names are case-sensitive", "{IP}", 40, "{IP}"},
        {"name and value looked up whole", "{ip:x}", 40, "{ip:x}"},
    });
}

TEST(MarkupLayout, CarriesOtherTagsToTheDrawPass) {
    ExpectLayouts({
        {"colour tags take no columns", "{color:red}abcdefghij{/color}", 10, "{color:red}abcdefghij{/color}"},
        {"tag at a line end", "abcdefghij{color:red}k", 10, "abcdefghij{color:red}\nk"},
        {"tag before a newline", "abcdefghij{color:red}\nxyz", 10, "abcdefghij{color:red}\nxyz"},
        {"tag inside a moved word", "aaaa {color:red}bbbbbbb{/color}", 10,
         "aaaa\n{color:red}bbbbbbb{/color}"},
        {"tags inside padding are kept", "{align:padding:4}{color:red}abcdef{/color}{/align}!", 40,
         "{color:red}abcd{/color}!"},
        {"unknown tag", "a{nosuch}b", 40, "a{nosuch}b"},
        {"empty tag dropped", "a{}b", 40, "ab"},
        {"unterminated tag dropped", "abc{color:red", 40, "abc"},
        {"closing brace outside a tag", "a}b", 40, "a}b"},
        {"opening brace inside a tag", "{a{b}c", 40, "{a{b}c"},
    });
}

TEST(MarkupLayout, CallsEachVariableOncePerAppearance) {
    int calls = 0;
    MarkupVariables variables = {{"n", [&calls] { return std::to_string(++calls); }}};
    EXPECT_EQ(LayoutMarkup("{n} {n} {nn}", 40, variables), "1 2 {nn}");
    EXPECT_EQ(LayoutMarkup("{n}", 40, variables), "3");
    EXPECT_EQ(calls, 3);
}

}  // namespace
}  // namespace Kovo
