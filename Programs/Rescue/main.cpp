// Puts right what a journal of the optimizer's names, and removes it. The watchdog hands over to it when its owner has
// died; it can be run by hand as well, and again. Whether the owner lives it does not ask: one who is dying still seems
// to.
#include "Kestrio/Optimizer/HeldProcesses.h"
#include "Kestrio/Platform/Linux/LinuxProcessSignals.h"

#include <cstdlib>

int main(int argc, char** argv) {
    if (argc != 2)
        return EXIT_FAILURE;
    kestrio::LinuxProcessSignals signals({});
    const auto journal = kestrio::readJournal(argv[1]);
    kestrio::putRight(journal.held, signals);
    std::error_code ignored;
    std::filesystem::remove(argv[1], ignored);
    return EXIT_SUCCESS;
}
