#pragma once

#include <string>

namespace Kovo {

// Shows a log file in the system pager on the console's own terminal, in a mode that cannot open other
// files, run commands or spawn a shell, and takes the terminal back when the pager ends.
class LogPager {
  public:
    static constexpr const char* kProgram = "/bin/less";
    static constexpr const char* kPrompt = "<Q> Quit </> RegExp Search <H> Help";

    // `program` is the pager to run; hosts have only the one.
    explicit LogPager(std::string program = kProgram) : _program(std::move(program)) {}

    // Hands the terminal to the pager on `file` and waits for it. Returns the pager's exit status, or -1
    // when it could not be started or did not end normally. The terminal, LESSSECURE and the keypad mode
    // are as before whatever happened.
    int Show(const std::string& file) const;

  private:
    std::string _program;
};

}  // namespace Kovo
