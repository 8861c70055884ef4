#include "platform/linux/LinuxOptions.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/WholeFile.h"

namespace LinuxHost {

namespace {

using HostCtl::Lib::HostCtlException;
using nlohmann::json;

struct Known {
    const char* path;
    int64_t min, max, byDefault;
};

// Every option the console reads on a Linux host; seconds, 0 meaning never.
constexpr Known kKnown[] = {
    {"/UserVars/KovoTimeOut", 0, 86400, 0},
    {"/UserVars/QoriShellTimeOut", 0, 86400, 0},
    {"/UserVars/QoriShellInteractiveTimeOut", 0, 86400, 0},
};

json Load(const std::filesystem::path& file) {
    std::string text;
    try {
        text = HostCtl::ReadWholeFile(file.string());
    } catch (const std::system_error& e) {
        if (e.code().value() == ENOENT) return json::object();
        throw HostCtlException("The console's options cannot be read: " + file.string() + ": " +
                               e.code().message());
    }
    try {
        json document = json::parse(text);
        if (document.is_object()) return document;
    } catch (const json::exception&) {
    }
    throw HostCtlException("The console's options are damaged: " + file.string());
}

// Written whole and renamed into place: a crash leaves the old file or the new one, never half of one.
void Save(const std::filesystem::path& file, const json& document) {
    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    try {
        HostCtl::WriteWholeFile(file.string(), document.dump(2) + "\n");
    } catch (const std::system_error& e) {
        throw HostCtlException("The console's options cannot be written: " + e.code().message());
    }
}

class FileOption : public HostCtl::Adv::Option {
  public:
    FileOption(const Known& known, std::filesystem::path file) : _known(known), _file(std::move(file)) {}

    std::string GetPath() const override { return _known.path; }
    bool IsInteger() const override { return true; }
    int64_t GetIntValue() const override {
        const json document = Load(_file);
        const auto it = document.find(_known.path);
        if (it == document.end()) return _known.byDefault;
        if (!it->is_number_integer() || it->get<int64_t>() < _known.min || it->get<int64_t>() > _known.max)
            throw HostCtlException(std::string("The option ") + _known.path + " holds a value out of range");
        return it->get<int64_t>();
    }
    void SetIntValue(int64_t value) override {
        if (value < _known.min || value > _known.max)
            throw HostCtlException(std::string("Value ") + std::to_string(value) + " is out of range for " +
                                   _known.path + " (" + std::to_string(_known.min) + " to " +
                                   std::to_string(_known.max) + ")");
        json document = Load(_file);
        document[_known.path] = value;
        Save(_file, document);
    }
    std::string GetStringValue() const override { return std::to_string(GetIntValue()); }

  private:
    const Known& _known;
    std::filesystem::path _file;
};

}  // namespace

LinuxOptions::LinuxOptions(std::filesystem::path file, bool userNames)
    : _file(std::move(file)), _userNames(userNames) {}

std::unique_ptr<HostCtl::Adv::Option> LinuxOptions::FindOption(const std::string& path) {
    std::string full = path;
    if (_userNames && full.rfind("/UserVars/", 0) != 0)
        full = "/UserVars/" + (full.rfind('/', 0) == 0 ? full.substr(1) : full);
    for (const Known& known : kKnown)
        if (full == known.path) return std::make_unique<FileOption>(known, _file);
    return nullptr;
}

}  // namespace LinuxHost
