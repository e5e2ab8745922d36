#include "Kestrio/Resources/PeriodSeries.h"

#include "Kestrio/Resources/StoredValues.h"

namespace kestrio {
namespace {

using namespace storedValues;

constexpr std::int64_t pressureWarning = 2; // the code from which on a minute counts as one under pressure

} // namespace

void add(SystemBucket& bucket, sqlite::RowValues row) {
    ++bucket.minutes;
    bucket.cpu += row.real();
    bucket.cpuPeak = std::max(bucket.cpuPeak, row.real());
    bucket.cpuPerformance += row.real();
    bucket.cpuEfficiency += row.real();
    bucket.memoryUsed += row.natural();
    bucket.swapUsed = std::max(bucket.swapUsed, row.natural());
    bucket.swapIn += row.natural();
    bucket.swapOut += row.natural();
    const auto pressure = row.integer();
    bucket.pressure = std::max(bucket.pressure, pressure);
    bucket.pressureMinutes += pressure >= pressureWarning;
    bucket.lagMilliseconds = std::max(bucket.lagMilliseconds, row.integer());
    bucket.ramRead += row.real();
    bucket.ramWrite += row.real();
    bucket.ramPeak = std::max(bucket.ramPeak, row.real());
    bucket.ssdRead += row.real();
    bucket.ssdWrite += row.real();
    bucket.ssdPeak = std::max(bucket.ssdPeak, row.real());
    bucket.activeSeconds += row.integer();
    bucket.idleSeconds += row.integer();
    bucket.awaySeconds += row.integer();
    bucket.switches += row.integer();
}

void add(SystemBucket& bucket, const SystemBucket& sums) {
    bucket.minutes += sums.minutes;
    bucket.cpu += sums.cpu;
    bucket.cpuPeak = std::max(bucket.cpuPeak, sums.cpuPeak);
    bucket.cpuPerformance += sums.cpuPerformance;
    bucket.cpuEfficiency += sums.cpuEfficiency;
    bucket.memoryUsed += sums.memoryUsed;
    bucket.swapUsed = std::max(bucket.swapUsed, sums.swapUsed);
    bucket.swapIn += sums.swapIn;
    bucket.swapOut += sums.swapOut;
    bucket.pressure = std::max(bucket.pressure, sums.pressure);
    bucket.pressureMinutes += sums.pressureMinutes;
    bucket.lagMilliseconds = std::max(bucket.lagMilliseconds, sums.lagMilliseconds);
    bucket.ramRead += sums.ramRead;
    bucket.ramWrite += sums.ramWrite;
    bucket.ramPeak = std::max(bucket.ramPeak, sums.ramPeak);
    bucket.ssdRead += sums.ssdRead;
    bucket.ssdWrite += sums.ssdWrite;
    bucket.ssdPeak = std::max(bucket.ssdPeak, sums.ssdPeak);
    bucket.activeSeconds += sums.activeSeconds;
    bucket.idleSeconds += sums.idleSeconds;
    bucket.awaySeconds += sums.awaySeconds;
    bucket.switches += sums.switches;
}

void finish(SystemBucket& bucket, double rows) {
    bucket.memoryUsed = averageCount(static_cast<double>(bucket.memoryUsed) / rows);
    for (auto* sum : {&bucket.cpu, &bucket.cpuPerformance, &bucket.cpuEfficiency, &bucket.ramRead, &bucket.ramWrite,
                      &bucket.ssdRead, &bucket.ssdWrite})
        *sum /= rows;
}

void add(SecondBucket& bucket, sqlite::RowValues row) {
    const auto cpu = row.real();
    bucket.cpu += cpu;
    bucket.cpuPeak = std::max(bucket.cpuPeak, cpu);
    const auto ramRead = row.real();
    const auto ramWrite = row.real();
    bucket.ramRead += ramRead;
    bucket.ramWrite += ramWrite;
    bucket.ramPeak = std::max(bucket.ramPeak, ramRead + ramWrite);
    const auto ssdRead = row.real();
    const auto ssdWrite = row.real();
    bucket.ssdRead += ssdRead;
    bucket.ssdWrite += ssdWrite;
    bucket.ssdPeak = std::max(bucket.ssdPeak, ssdRead + ssdWrite);
    bucket.swapUsed = std::max(bucket.swapUsed, row.natural());
    bucket.pressure = std::max(bucket.pressure, row.integer());
    bucket.lagMilliseconds = std::max(bucket.lagMilliseconds, row.integer());
}

void finish(SecondBucket& bucket, double rows) {
    bucket.cpu = bucket.cpu / rows / 1000;
    bucket.cpuPeak /= 1000;
    bucket.swapUsed = fromMebibytes(bucket.swapUsed);
    for (auto* sum : {&bucket.ramRead, &bucket.ramWrite, &bucket.ssdRead, &bucket.ssdWrite})
        *sum /= rows;
}

} // namespace kestrio
