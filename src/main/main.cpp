#include "main/Startup.h"

int main(int argc, char** argv) {
    return Kovo::KovoMain(argc, argv);
}
