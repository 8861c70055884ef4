#pragma once

#include <set>
#include <string>

namespace LinuxHost {

// ifupdown's /etc/network/interfaces, as text: what configures a set of interfaces, and the file without
// it. A first change of the management network takes such interfaces over from ifupdown, so that the
// network service may manage them; everything else in the file stays as the operator wrote it.
namespace InterfacesFile {

// Whether `text` has an iface stanza for any of `names` (a name on an auto or allow- line alone, its
// stanza in another file, is not configured here).
bool Configures(const std::string& text, const std::set<std::string>& names);

// `text` without what configures `names`: their iface stanzas with every option line, and their names on
// auto, allow-, no-auto-down and no-scripts lines (a line left naming nothing goes). Comments, blank lines
// and the rest stay byte for byte, continued lines (ending in a backslash) included.
std::string Without(const std::string& text, const std::set<std::string>& names);

}  // namespace InterfacesFile

}  // namespace LinuxHost
