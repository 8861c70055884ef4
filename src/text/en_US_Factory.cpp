#include "text/en_US_Factory.h"

#include <cstddef>
#include <iterator>

#include "text/HostPlatform.h"
#include "text/VersionLine.h"

namespace Kovo {

namespace {

// Indexed by id.
constexpr const char* kTexts[] = {
#define KOVO_STRING(id, name, text) text,
#include "text/StringTable.inc"
#undef KOVO_STRING
};

// The table's ids as written, in its order.
constexpr unsigned int kIds[] = {
#define KOVO_STRING(id, name, text) id,
#include "text/StringTable.inc"
#undef KOVO_STRING
};

constexpr bool IdsRunFromZeroWithoutGaps() {
    for (std::size_t index = 0; index < std::size(kIds); ++index) {
        if (kIds[index] != index) return false;
    }
    return true;
}

// A text is served by its place in the table, so each line's id must be its place: a line inserted,
// dropped or moved would otherwise hand every later id another text.
static_assert(IdsRunFromZeroWithoutGaps(), "the string table's ids run 0, 1, 2, ... in table order");
static_assert(std::size(kTexts) == kStringIdCount, "one text per id, 0 to the last id");

}  // namespace

const char* en_US_Factory::GetString(unsigned int id) const {
    if (id == StringId::HostVersionLine) {
        static VersionLine versionLine([] { return ReadHostVersionLine(); });
        return versionLine.Get();
    }
    if (id >= std::size(kTexts)) return "";
    return kTexts[id];
}

}  // namespace Kovo
