#pragma once

#include <string>
#include <vector>

// Lines and words of the host's text files, without C++ streams: the console does not carry the stream
// and locale machinery for this.
namespace HostCtl {

// The lines of `text` without their line ends; a last line without one counts too.
std::vector<std::string> Lines(const std::string& text);
// The words of `line`, as blanks (spaces, tabs, line ends) separate them.
std::vector<std::string> Words(const std::string& line);

}  // namespace HostCtl
