#pragma once

namespace KovoSim {

// A daemon of the host that reads datagrams from a socket; PID 1 polls Fd() and calls Drain().
class DatagramSink {
  public:
    virtual ~DatagramSink() = default;
    virtual int Fd() const = 0;
    // Handles every datagram waiting; returns how many.
    virtual int Drain() = 0;
};

}  // namespace KovoSim
