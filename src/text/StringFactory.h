#pragma once

namespace Kovo {

// Every text the operator reads, by numeric id. Texts carry markup and are constant, NUL-terminated
// UTF-8 that lives as long as the process; callers neither free nor copy-own them.
class StringFactory {
  public:
    virtual ~StringFactory() = default;

    // The text of the id; the empty string for an id that has none, so a screen shows an empty line
    // instead of failing.
    virtual const char* GetString(unsigned int id) const = 0;
};

// The process-wide table. The first call with "en_US" creates it; from then on it is returned whatever
// locale is asked for. Before that, every other locale (or none) yields nullptr.
StringFactory* GetStringFactory(const char* locale);

}  // namespace Kovo
