#include "Kestrio/Reports/ReportStore.h"

namespace kestrio {
namespace {

/// A longer range changes little from minute to minute, and costs more to load.
Seconds leastAge(RangeMode mode) {
    return mode == RangeMode::day ? Seconds(0) : Seconds(60);
}

ActivityReport emptyReport(RangeMode mode, Date anchor, const Calendar& calendar) {
    return ActivityReport::empty(interval(mode, anchor, calendar), granularity(mode));
}

std::shared_ptr<const ActivityReport> shared(ActivityReport report) {
    return std::make_shared<const ActivityReport>(std::move(report));
}

/// The present report where the new one equals it. To compare two long ones takes milliseconds: done while loading.
std::shared_ptr<const ActivityReport> presentIfEqual(const std::shared_ptr<const ActivityReport>& made,
                                                     const std::shared_ptr<const ActivityReport>& present) {
    return *made == *present ? present : made;
}

} // namespace

ReportStore::ReportStore(Parts parts, Calendar calendar, RangeMode mode, Follows follows)
    : parts_(std::move(parts)),
      follows_(follows),
      calendar_(std::move(calendar)),
      mode_(mode),
      anchor_(parts_.clock.now()),
      report_(emptyReport(mode, anchor_.value(), calendar_)) {}

ReportStore::~ReportStore() {
    *latestLoad_ = noLoad;
}

void ReportStore::setMode(RangeMode mode) {
    if (mode == mode_.value())
        return;
    mode_.set(mode);
    reload();
}

void ReportStore::setAnchor(Date anchor) {
    const auto before = range();
    anchor_.set(anchor);
    if (range() != before)
        reload();
}

void ReportStore::step(int count) {
    setAnchor(std::min(adding(mode_.value(), count, anchor_.value(), calendar_), parts_.clock.now()));
}

void ReportStore::setCalendar(Calendar calendar) {
    calendar_ = std::move(calendar);
    reload();
}

void ReportStore::reload() {
    if (follows_ == Follows::now && !isCurrent())
        return setAnchor(parts_.clock.now()); // another range, so that it loads
    load();
}

void ReportStore::load() {
    const auto number = ++*latestLoad_;
    retry_.cancel();
    isLoading_.set(true);
    parts_.loadingQueue.async([this, parts = parts_, latest = latestLoad_, number, range = range(),
                               width = granularity(mode_.value()), present = report_.share(),
                               calendar = std::make_shared<const Calendar>(calendar_)] {
        if (*latest != number)
            return; // given up before it began
        auto found = parts.sessions(range);
        auto* const sessions = std::get_if<std::vector<ActivitySession>>(&found);
        const Loaded loaded =
            sessions ? Loaded(presentIfEqual(shared(ReportBuilder::build(std::move(*sessions), range, width, *calendar,
                                                                         parts.classification())),
                                             present))
                     : Loaded(std::get<DatabaseTrouble>(found));
        parts.queue.async([this, latest, number, loaded] {
            if (*latest == number) // and so the store is still there
                accept(loaded);
        });
    });
}

void ReportStore::accept(const Loaded& loaded) {
    // Whoever is told may ask for another load, which then stands as the latest.
    const auto accepted = latestLoad_->load();
    std::visit([this](const auto& what) { take(what); }, loaded);
    if (*latestLoad_ == accepted)
        isLoading_.set(false);
}

void ReportStore::take(const std::shared_ptr<const ActivityReport>& report) {
    lastLoaded_ = parts_.clock.now();
    trouble_.set(std::nullopt);
    show(report);
}

void ReportStore::take(DatabaseTrouble trouble) {
    retry_ = parts_.queue.after(retryInterval, [this] {
        if (isOnScreen_)
            reload();
    });
    if (report_.value().interval != range())
        show(shared(emptyReport(mode_.value(), anchor_.value(), calendar_)));
    trouble_.set(trouble);
}

/// To free a long report takes milliseconds too, so it goes on the loading queue.
void ReportStore::show(std::shared_ptr<const ActivityReport> report) {
    auto left = report_.share();
    report_.set(std::move(report));
    if (left != report_.share())
        parts_.loadingQueue.async([left = std::move(left), freed = parts_.freed]() mutable {
            left.reset();
            freed();
        });
}

void ReportStore::startAutoRefresh(Seconds interval) {
    timer_ = parts_.queue.every({interval, std::nullopt, interval / 5}, [this] { refresh(); });
}

void ReportStore::refresh() {
    const bool canChange = follows_ == Follows::now || isCurrent();
    if (isOnScreen_ && canChange && isDue())
        reload();
}

bool ReportStore::isDue() const {
    if (!lastLoaded_)
        return true;
    const auto age = parts_.clock.now() - *lastLoaded_;
    return age >= leastAge(mode_.value()) || age < Seconds(0); // somebody set the clock back
}

bool ReportStore::isCurrent() const {
    return range().contains(parts_.clock.now());
}

std::string ReportStore::title() const {
    return rangeTitle(mode_.value(), anchor_.value(), parts_.clock.now(), calendar_);
}

std::string ReportStore::subtitle() const {
    return rangeSubtitle(mode_.value(), anchor_.value(), calendar_);
}

} // namespace kestrio
