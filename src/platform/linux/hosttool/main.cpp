#include "platform/linux/hosttool/HostTool.h"

int main(int argc, char** argv) {
    return LinuxHost::HostTool(LinuxHost::HostFiles("/")).Run({argv + 1, argv + argc});
}
