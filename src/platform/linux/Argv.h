#pragma once

#include <string>
#include <vector>

namespace LinuxHost {

// An argument vector for exec and spawn, over words that outlive it, ended by the null pointer.
class Argv {
  public:
    explicit Argv(const std::vector<std::string>& words) {
        for (const std::string& word : words) _pointers.push_back(const_cast<char*>(word.c_str()));
        _pointers.push_back(nullptr);
    }
    char* const* data() { return _pointers.data(); }

  private:
    std::vector<char*> _pointers;
};

}  // namespace LinuxHost
