#pragma once

#include <exception>
#include <string>

namespace HostCtl::Lib {

// Every failure of a host-control operation. Screens catch it, log what() and usually show it.
class HostCtlException : public std::exception {
  public:
    explicit HostCtlException(std::string message) : _message(std::move(message)) {}
    const char* what() const noexcept override { return _message.c_str(); }

  private:
    std::string _message;
};

}  // namespace HostCtl::Lib
