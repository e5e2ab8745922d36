#include "Fuzz/Fuzz.h"
#include "Programs/CommandLine/Moments.h"

/// Whatever somebody types is a moment or a length within bounds, or none.
void kestrio::fuzz(std::string_view input) {
    static const Calendar calendar("en_GB", "Europe/Berlin");
    const Date now(1'700'000'000);
    const auto moment = parseMoment(input, now, calendar);
    require(!moment || (*moment >= distantPast && *moment <= distantFuture));
    const auto length = parseLength(input);
    require(!length || (*length > Seconds(0) && *length < Seconds(1e11)));
}
