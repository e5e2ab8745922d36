// Nothing that this program stopped or slowed stays so after it, however it ends: a journal on the disk names every
// such process before it is touched; a watchdog beside us puts right what the journal names as soon as we are gone; and
// at the next start whatever a watchdog did not come to is put right from the journals that are left.
//
// Belongs to the optimizer's queue. Writing the journal blocks for some milliseconds, until it is on the disk; one that
// would say what the last one said is not written again.
#pragma once

#include "Kestrio/Optimizer/HeldProcesses.h"
#include "Kestrio/Platform/Watchdog.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace kestrio {

class SafetyNet {
public:
    struct Setup {
        /// That of the databases; it must exist before anything is held.
        std::filesystem::path folder;
        ProcessKey own; // of this process
    };

    /// The signals and the watchdog outlive this.
    SafetyNet(Setup setup, ProcessSignals& signals, Watchdog& watchdog);

    /// Says what is held now, all of it. True when the journal says so; after a failure the next call tries again.
    /// With nothing held there is no journal.
    bool record(const std::vector<ProcessKey>& frozen, const std::vector<SlowedProcess>& slowed);

    /// Adds to what is held what is about to be. False when the journal could not be written: then nothing may be done.
    bool intendToFreeze(const std::vector<ProcessKey>& keys);
    bool intendToSlow(const std::vector<SlowedProcess>& processes);

    /// What the journal was last told.
    const HeldProcesses& held() const { return held_; }

    /// From here on there is a watchdog, anew when it dies. Without one, which is logged, the journal and the next
    /// start remain.
    void startWatcher();

    /// Puts right what earlier runs left that are over, and removes their journals. Answers how many processes.
    std::size_t recoverEarlierRuns();

    std::filesystem::path journal() const;

private:
    bool write(HeldProcesses held);
    bool isOver(const std::filesystem::path& journal, const HeldJournal& content) const;

    const Setup setup_;
    ProcessSignals& signals_;
    Watchdog& watchdog_;
    HeldProcesses held_;
    std::string written_; // the journal's text; empty when there is none
    bool wantsWatcher_ = false;
    bool isWatcherMissing_ = false; // and that has been logged
};

} // namespace kestrio
