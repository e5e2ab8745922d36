#include "Fuzz/Fuzz.h"
#include "Kestrio/Optimizer/HeldProcesses.h"
#include "Kestrio/Platform/Linux/ThreadPriorities.h"

/// What is read from a journal can be written, and is then read as the same; so can the words within. No process is
/// named that cannot be one.
void kestrio::fuzz(std::string_view input) {
    const auto journal = parsedJournal(input);
    require(parsedJournal(journalText(journal)) == journal);
    for (const auto& key : journal.held.frozen)
        require(key.pid > 0);
    for (const auto& process : journal.held.slowed) {
        require(process.key.pid > 0);
        const auto priorities = parsedPriorities(process.before.words);
        require(parsedPriorities(words(priorities)) == priorities);
    }
}
