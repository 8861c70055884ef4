#pragma once

#include <string>

#include "DatagramSink.h"

namespace KovoSim {

// The host's event daemon or audit daemon: a datagram socket whose records (one text per datagram) are
// appended to a log file, each followed by a newline.
class RecordReceiver : public DatagramSink {
  public:
    static constexpr size_t kMaxRecord = 4096;

    RecordReceiver(std::string socketPath, std::string logPath);
    ~RecordReceiver() override;
    RecordReceiver(const RecordReceiver&) = delete;
    RecordReceiver& operator=(const RecordReceiver&) = delete;

    int Fd() const override { return _socket; }
    int Drain() override;

  private:
    std::string _socketPath;
    int _socket = -1;
    int _log = -1;
};

}  // namespace KovoSim
