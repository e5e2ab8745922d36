#include "Kestrio/Base/Observable.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace kestrio {
namespace {

TEST(Observable, tellsOnlyChanges) {
    Observable<int> value(1);
    std::vector<int> heard;
    const auto token = value.observe([&](int now) { heard.push_back(now); });
    value.set(1);
    value.set(2);
    value.set(2);
    value.set(1);
    EXPECT_EQ(heard, (std::vector<int>{2, 1}));
}

TEST(Observable, aDroppedTokenHearsNothingMore) {
    Observable<int> value(0);
    int heard = 0;
    auto token = value.observe([&](int) { ++heard; });
    value.set(1);
    token.cancel();
    value.set(2);
    EXPECT_EQ(heard, 1);
    EXPECT_FALSE(token.isActive());
}

TEST(Signal, receiversMayComeAndGoDuringACall) {
    Signal<> signal;
    std::string heard;
    Subscription a;
    Subscription b;
    Subscription late;
    a = signal.subscribe([&] {
        heard += 'a';
        a.cancel();
        b.cancel();
        late = signal.subscribe([&] { heard += 'l'; });
    });
    b = signal.subscribe([&] { heard += 'b'; });
    signal.emit();
    EXPECT_EQ(heard, "a");
    signal.emit();
    EXPECT_EQ(heard, "al");
}

TEST(Signal, aTokenMayOutliveTheSignal) {
    Subscription token;
    {
        Signal<int> signal;
        token = signal.subscribe([](int) {});
        EXPECT_TRUE(signal.hasReceivers());
    }
    token.cancel();
}

TEST(Subscription, movingOverOneEndsIt) {
    int ended = 0;
    Subscription first([&] { ++ended; });
    Subscription second([&] { ended += 10; });
    first = std::move(second);
    EXPECT_EQ(ended, 1);
    { const Subscription moved(std::move(first)); }
    EXPECT_EQ(ended, 11);
}

} // namespace
} // namespace kestrio
