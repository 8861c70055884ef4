#pragma once

#include <string>

namespace ZenkCtl::Events {

// A connected Unix datagram socket to one of the host's daemons; one record per datagram.
class DatagramChannel {
  public:
    DatagramChannel() = default;
    ~DatagramChannel();
    DatagramChannel(const DatagramChannel&) = delete;
    DatagramChannel& operator=(const DatagramChannel&) = delete;

    // 0 on success, otherwise the errno value of the failed step.
    int Connect(const std::string& socketPath);
    int Send(const std::string& record);
    void Close();
    bool IsOpen() const { return _fd >= 0; }

    // The longest record a daemon accepts; longer records are cut to this length.
    static constexpr size_t kMaxRecord = 4096;

  private:
    int _fd = -1;
};

}  // namespace ZenkCtl::Events
