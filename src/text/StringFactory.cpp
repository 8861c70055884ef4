#include "text/StringFactory.h"

#include <cstring>

#include "text/en_US_Factory.h"

namespace Kovo {

StringFactory* GetStringFactory(const char* locale) {
    // Deliberately never destroyed: frames and anything running during exit may still ask for texts.
    static StringFactory* instance = nullptr;
    if (instance == nullptr && locale != nullptr && std::strcmp(locale, "en_US") == 0) {
        instance = new en_US_Factory();
    }
    return instance;
}

}  // namespace Kovo
