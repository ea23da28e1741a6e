// Pointers that become null when their object dies.

#include "zelmresult/support/watched.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <random>
#include <vector>

namespace ZelmResult {
namespace {

// With a base in front, so that its address isn't that of what is watched.
struct Named {
    virtual ~Named() = default;
    int name = 7;
};

struct Thing : Named, Watchable {
    // Watches itself from its own destructor on.
    WatchedPointer<Thing>* dying = nullptr;
    bool losesWatchers = false;

    ~Thing() override
    {
        if (losesWatchers) LoseWatchers();
        if (dying != nullptr) *dying = this;
    }
};

TEST(WatchedPointer, EndsWithItsObject)
{
    auto thing = std::make_unique<Thing>();
    const WatchedPointer<Thing> first = thing.get();
    WatchedPointer<Thing> second(first), third;
    EXPECT_EQ(second->name, 7);
    EXPECT_EQ(third, nullptr);
    {
        const WatchedPointer<Thing> fourth = thing.get(); // which dies before the object, from the middle of the chain
        third = fourth;
    }
    second = nullptr;
    EXPECT_FALSE(second.HasDied());
    thing.reset();
    EXPECT_EQ(first, nullptr);
    EXPECT_TRUE(first.HasDied());
    EXPECT_TRUE(third.HasDied());
    EXPECT_FALSE(second.HasDied());
    second = first;
    EXPECT_EQ(second, nullptr);
    Thing other;
    third = &other;
    EXPECT_EQ(third, &other);
}

TEST(WatchedPointer, StaysWithTheObjectThatWasMeant)
{
    std::optional<Thing> original(std::in_place);
    WatchedPointer<Thing> pointer = &*original;
    auto copy = std::make_unique<Thing>(*original);
    auto moved = std::make_unique<Thing>(std::move(*original));
    *copy = *original;
    copy.reset();
    moved.reset();
    EXPECT_EQ(pointer, &*original);
    *original = Thing();
    const WatchedPointer<Thing>& self = pointer;
    pointer = self;
    pointer = pointer.get();
    EXPECT_EQ(pointer, &*original);
    original.reset();
    EXPECT_EQ(pointer, nullptr);
}

TEST(WatchedPointer, HoldsWhileTheObjectDies)
{
    for (const bool losesWatchers : {false, true}) {
        WatchedPointer<Thing> late, early;
        auto thing = std::make_unique<Thing>();
        thing->losesWatchers = losesWatchers;
        thing->dying = &late;
        early = thing.get();
        thing.reset();
        EXPECT_EQ(early, nullptr);
        EXPECT_EQ(late, nullptr) << "although the destructor had begun";
    }
}

// Objects and pointers are made, move and die in any order.
TEST(WatchedPointer, AgreesWithABookOfTheLiving)
{
    std::mt19937 random(1);
    const auto below = [&](std::size_t n) { return random() % n; };
    std::vector<std::unique_ptr<Thing>> things(5);
    std::vector<WatchedPointer<Thing>> pointers;
    std::vector<Thing*> wanted;
    for (int step = 0; step < 20000; ++step) {
        std::unique_ptr<Thing>& thing = things[below(things.size())];
        switch (below(5)) {
        case 0:
            std::replace(wanted.begin(), wanted.end(), thing.get(), static_cast<Thing*>(nullptr));
            thing = below(2) == 0 ? nullptr : std::make_unique<Thing>();
            break;
        case 1:
            pointers.emplace_back(thing.get());
            wanted.push_back(thing.get());
            break;
        case 2:
            if (wanted.size() < 20) break;
            pointers.erase(pointers.begin() + 3);
            wanted.erase(wanted.begin() + 3);
            break;
        default:
            if (wanted.empty()) break;
            const std::size_t to = below(wanted.size()), from = below(wanted.size());
            pointers[to] = pointers[from];
            wanted[to] = wanted[from];
        }
        ASSERT_TRUE(std::equal(pointers.begin(), pointers.end(), wanted.begin(), wanted.end()));
    }
}

} // namespace
} // namespace ZelmResult
