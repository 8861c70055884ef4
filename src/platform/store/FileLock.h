#pragma once

#include <string>

namespace ZenkCtl::Store {

// An flock() on a lock file, held for the lifetime of the object. Shared for readers, exclusive for
// writers. The lock file is created when missing.
class FileLock {
  public:
    enum class Mode { Shared, Exclusive };

    FileLock(const std::string& path, Mode mode);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

  private:
    int _fd = -1;
};

}  // namespace ZenkCtl::Store
