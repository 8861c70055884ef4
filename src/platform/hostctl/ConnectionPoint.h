#pragma once

#include <string>

namespace HostCtl::Network {

// Where a kernel network interface is plugged in.
enum ConnecteeType : int {
    CONNECTEE_PORTGROUP = 0,  // a port group of a standard switch
    CONNECTEE_OPAQUE = 1,     // an opaque network managed outside the host
    CONNECTEE_DVPORT = 2,     // a port of a distributed switch
    CONNECTEE_UNKNOWN = 3,
};

struct ConnectionPoint {
    int connecteeType = CONNECTEE_UNKNOWN;
    std::string portGroup;  // port group name (CONNECTEE_PORTGROUP)
    std::string dvsName;    // distributed switch name (CONNECTEE_DVPORT)
    std::string portKey;    // distributed port key (CONNECTEE_DVPORT)
    std::string networkId;  // opaque network id (CONNECTEE_OPAQUE)
};

}  // namespace HostCtl::Network
