#include "terminal/Log.h"

#include <syslog.h>

#include <cerrno>
#include <cstring>

namespace Kovo {

void LogErrno(const char* what) {
    int err = errno;
    syslog(LOG_ERR, "%s with errno(%d): %s", what, err, strerror(err));
}

}  // namespace Kovo
