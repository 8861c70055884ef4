#include "HostPrograms.h"

int main(int argc, char** argv) {
    return KovoSim::Host::HostPrograms::Main(argc, argv);
}
