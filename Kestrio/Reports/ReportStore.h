// The report of the range that somebody looks at: decides when to load it, loads it off the main queue, and throws away
// what has become stale meanwhile. One store shows today and follows it over midnight, another goes wherever its person
// goes.
//
// All of it belongs to the main queue. Only the loading runs elsewhere; it takes its range by value and gives the
// report back by value, so that nobody ever sees half a report. Dropping the store calls off everything.
#pragma once

#include "Kestrio/Activity/FoundSessions.h"
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/Observable.h"
#include "Kestrio/Base/Queue.h"
#include "Kestrio/Base/SharedObservable.h"
#include "Kestrio/Reports/RangeMode.h"
#include "Kestrio/Reports/ReportBuilder.h"

#include <atomic>
#include <functional>
#include <memory>

namespace kestrio {

class ReportStore {
public:
    /// The sessions of an interval, those still open among them. Called on the loading queue, where it may wait.
    using Sessions = std::function<FoundSessions(DateInterval)>;

    /// What the person has decided by now. Called on the loading queue.
    using CurrentClassification = std::function<Classification()>;

    /// What a store needs around it. The clock must outlive it, the queues also the loads that it leaves behind.
    struct Parts {
        const Clock& clock;
        Queue& queue;        // the main one
        Queue& loadingQueue; // on which sessions are read and reports built
        Sessions sessions;
        CurrentClassification classification;
        /// Called on the loading queue whenever a report was dropped that is no longer shown.
        std::function<void()> freed = [] {};
    };

    /// How long after sessions could not be read it is tried again, while somebody sees the store.
    static constexpr Seconds retryInterval{3.0};

    /// Whether a store moves on by itself when its range is over.
    enum class Follows { itsPerson, now };

    /// Shows the range around now, empty until something is loaded.
    ReportStore(Parts parts, Calendar calendar, RangeMode mode, Follows follows);
    ~ReportStore();
    ReportStore(const ReportStore&) = delete;
    ReportStore& operator=(const ReportStore&) = delete;

    const Observable<RangeMode>& mode() const { return mode_; }
    /// Any date inside the range that is shown.
    const Observable<Date>& anchor() const { return anchor_; }
    const SharedObservable<ActivityReport>& report() const { return report_; }
    const Observable<bool>& isLoading() const { return isLoading_; }
    /// Why the sessions of the range could not be read at the last load; absent when they could. Meanwhile the report
    /// is what was read of the same range before, or empty.
    const Observable<std::optional<DatabaseTrouble>>& trouble() const { return trouble_; }

    /// Another mode always loads.
    void setMode(RangeMode mode);

    /// Loads when the date lies in another range.
    void setAnchor(Date anchor);

    /// Moves by so many days, weeks or months, back when negative, never into the future.
    void step(int count);

    /// Another zone or locale loads again.
    void setCalendar(Calendar calendar);

    /// Loads the range anew. A load under way is given up; its result is not looked at.
    void reload();

    /// While nobody sees the store, its timer does nothing. It is on the screen unless somebody says otherwise.
    void setOnScreen(bool isOnScreen) { isOnScreen_ = isOnScreen; }

    /// Loads again and again, as long as the range can still change and somebody sees it. Replaces an earlier timer.
    void startAutoRefresh(Seconds interval);

    /// Whether the range contains the present moment.
    bool isCurrent() const;

    /// As in "Today" or "Week of 16 Nov"; and in full, as in "Friday 20 November 2026".
    std::string title() const;
    std::string subtitle() const;

private:
    DateInterval range() const { return interval(mode_.value(), anchor_.value(), calendar_); }
    void load();
    using Loaded = std::variant<std::shared_ptr<const ActivityReport>, DatabaseTrouble>;
    void accept(const Loaded& loaded);
    void take(const std::shared_ptr<const ActivityReport>& report);
    void take(DatabaseTrouble trouble);
    void show(std::shared_ptr<const ActivityReport> report);
    void refresh();
    bool isDue() const;

    const Parts parts_;
    const Follows follows_;
    Calendar calendar_;
    Observable<RangeMode> mode_;
    Observable<Date> anchor_;
    SharedObservable<ActivityReport> report_;
    Observable<bool> isLoading_{false};
    Observable<std::optional<DatabaseTrouble>> trouble_;
    bool isOnScreen_ = true;
    std::optional<Date> lastLoaded_; // when the last report was accepted
    Subscription timer_;
    Subscription retry_;
    static constexpr std::uint64_t noLoad = 0;
    /// The number of the latest load. Loads compare theirs with it on both queues, and may outlive the store: from then
    /// on it is `noLoad`.
    std::shared_ptr<std::atomic<std::uint64_t>> latestLoad_ = std::make_shared<std::atomic<std::uint64_t>>(noLoad);
};

} // namespace kestrio
