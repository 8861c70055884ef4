#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

// A scratch directory removed with everything in it when the test ends.
class TempDir {
  public:
    TempDir() {
        std::string templ = (std::filesystem::temp_directory_path() / "kovo-platform-XXXXXX").string();
        if (mkdtemp(templ.data()) == nullptr) std::abort();
        _path = templ;
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    std::string File(const std::string& name) const { return (_path / name).string(); }
    const std::filesystem::path& Path() const { return _path; }

  private:
    std::filesystem::path _path;
};
