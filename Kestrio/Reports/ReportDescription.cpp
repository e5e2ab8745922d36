#include "Kestrio/Reports/ReportDescription.h"

#include "Kestrio/Reports/ReportFields.h"

#include <cmath>
#include <fmt/format.h>

namespace kestrio {
namespace {

class Description {
public:
    explicit Description(const Calendar& calendar) : calendar_(calendar) {}

    /// The report's own fields stand in lines of their own.
    std::string text(const ActivityReport& report) {
        visitFields(report, [&](const char* name, const auto& value) { addField(name, value); });
        return std::move(text_);
    }

private:
    template <class Record>
    void addField(const char* name, const std::vector<Record>& records) {
        addList(name, records, 0);
    }

    void addField(const char* name, const auto& value) {
        if (const auto shown = word(value))
            text_ += fmt::format("{}: {}\n", name, *shown);
    }

    template <class Record>
    void addList(const char* name, const std::vector<Record>& records, std::size_t depth) {
        if (records.empty())
            return;
        text_ += fmt::format("{:{}}{}:\n", "", 2 * depth, name);
        for (const auto& record : records)
            addRecord(record, depth + 1);
    }

    /// First the line, then the lists.
    template <ReportRecord Record>
    void addRecord(const Record& record, std::size_t depth) {
        text_ += std::string(2 * depth, ' ') + "-";
        visitFields(record, [&](const char* name, const auto& value) { addWord(name, value); });
        text_ += '\n';
        visitFields(record, [&](const char* name, const auto& value) { addListOf(name, value, depth + 1); });
    }

    template <class Record>
    void addWord(const char*, const std::vector<Record>&) {}
    void addWord(const char* name, const auto& value) {
        if (const auto shown = word(value))
            text_ += fmt::format(" {} {}", name, *shown);
    }

    template <class Record>
    void addListOf(const char* name, const std::vector<Record>& records, std::size_t depth) {
        addList(name, records, depth);
    }
    void addListOf(const char*, const auto&, std::size_t) {}

    static std::optional<std::string> word(const std::string& text) {
        return text.empty() ? std::nullopt : std::optional("\"" + text + "\"");
    }
    static std::optional<std::string> word(std::int64_t number) {
        return number == 0 ? std::nullopt : std::optional(std::to_string(number));
    }
    static std::optional<std::string> word(bool truth) { return truth ? std::optional("yes") : std::nullopt; }
    static std::optional<std::string> word(Seconds seconds) {
        return seconds == Seconds(0) ? std::nullopt : std::optional(inMilliseconds(seconds));
    }
    std::optional<std::string> word(Date date) const {
        const auto fraction = date.seconds() - std::floor(date.seconds());
        return calendar_.formatted(date, fraction == 0 ? "yyyy-MM-dd HH:mm:ss" : "yyyy-MM-dd HH:mm:ss.SSS");
    }
    std::optional<std::string> word(const DateInterval& interval) const {
        return *word(interval.start) + " to " + *word(interval.end);
    }
    template <class Case>
    requires std::is_enum_v<Case>
    static std::optional<std::string> word(Case one) { return fmt::format("{}", rawValue(one)); }
    template <class Value>
    std::optional<std::string> word(const std::optional<Value>& value) const {
        return value ? word(*value) : std::nullopt;
    }
    template <class Case, std::size_t count>
    static std::optional<std::string> word(const TimeBy<Case, count>& times) {
        std::string text;
        times.forEach([&](Case one, Seconds time) {
            text += fmt::format("{}{} {}", text.empty() ? "" : ", ", rawValue(one), inMilliseconds(time));
        });
        return text.empty() ? std::nullopt : std::optional("(" + text + ")");
    }

    /// Sums of fractions come out a little differently in another order.
    static std::string inMilliseconds(Seconds seconds) {
        return fmt::format("{}", std::round(seconds.count() * 1000) / 1000);
    }

    const Calendar& calendar_;
    std::string text_;
};

} // namespace

std::string described(const ActivityReport& report, const Calendar& calendar) {
    return Description(calendar).text(report);
}

} // namespace kestrio
