#pragma once

namespace Kovo {

// The id of every text, by name: StringId::ConfigurePasswordTitle is what GetString takes for the title
// of the password dialog. Made from the one string table, text/StringTable.inc.
namespace StringId {
#define KOVO_STRING(id, name, text) inline constexpr unsigned int name = id;
#include "text/StringTable.inc"
#undef KOVO_STRING
}  // namespace StringId

// How many ids the table has: they run from 0 to one less than this.
inline constexpr unsigned int kStringIdCount = 0
#define KOVO_STRING(id, name, text) +1
#include "text/StringTable.inc"
#undef KOVO_STRING
    ;

}  // namespace Kovo
