#include "Launcher.h"

int main(int argc, char** argv) {
    return KovoSim::Launcher::Main(argc, argv);
}
