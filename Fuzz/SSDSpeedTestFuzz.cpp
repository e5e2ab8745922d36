#include "Fuzz/Fuzz.h"
#include "Kestrio/Resources/SSDSpeedTest.h"

/// What is read can be written and read again.
void kestrio::fuzz(std::string_view input) {
    if (const auto result = SSDSpeedTest::decoded(input))
        require(SSDSpeedTest::decoded(SSDSpeedTest::encoded(*result)).has_value());
}
