// SPDX-License-Identifier: MIT
// THandle: counts, assignment, destruction through a base, casts, comparison, null.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

#include "support/THandle.hpp"

namespace {

struct Base {
    explicit Base(int* destroyed) : destroyed_(destroyed) {}
    virtual ~Base() { ++*destroyed_; }
    int* destroyed_;
};

struct Derived : Base {
    using Base::Base;
    ~Derived() override { ++derived_destroyed; }
    static int derived_destroyed;
};
int Derived::derived_destroyed = 0;

TEST(THandle, CountsFollowCopiesAndAssignments) {
    int destroyed = 0;
    THandle<Base> a(new Base(&destroyed));
    EXPECT_EQ(a.use_count(), 1);
    {
        THandle<Base> b(a);
        EXPECT_EQ(a.use_count(), 2);
        THandle<Base> c;
        c = b;
        EXPECT_EQ(a.use_count(), 3);
        EXPECT_TRUE(c == a);
    }
    EXPECT_EQ(a.use_count(), 1);
    EXPECT_EQ(destroyed, 0);
}

TEST(THandle, AssignmentReleasesTheOldTargetFirst) {
    int first = 0, second = 0;
    THandle<Base> a(new Base(&first));
    THandle<Base> b(new Base(&second));
    a = b;
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);
    EXPECT_EQ(b.use_count(), 2);
}

TEST(THandle, SelfAssignmentKeepsTheObject) {
    int destroyed = 0;
    THandle<Base> a(new Base(&destroyed));
    THandle<Base>& alias = a;
    a = alias;
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(a.use_count(), 1);
    EXPECT_FALSE(a.is_null());
}

TEST(THandle, DestroysExactlyOnceThroughABaseHandle) {
    int destroyed = 0;
    Derived::derived_destroyed = 0;
    {
        THandle<Derived> derived(new Derived(&destroyed));
        THandle<Base> base(derived);
        EXPECT_EQ(derived.use_count(), 2);
        derived = THandle<Derived>();
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(Derived::derived_destroyed, 1);
}

TEST(THandle, CastSharesTheCountOrGivesNull) {
    int destroyed = 0;
    THandle<Base> base(new Derived(&destroyed));
    THandle<Derived> derived = base.cast<Derived>();
    ASSERT_FALSE(derived.is_null());
    EXPECT_EQ(base.use_count(), 2);
    THandle<Base> plain(new Base(&destroyed));
    EXPECT_TRUE(plain.cast<Derived>().is_null());
}

TEST(THandle, ComparesByIdentityAndWorksWithStandardAlgorithms) {
    int destroyed = 0;
    THandle<Base> a(new Base(&destroyed));
    THandle<Base> b(new Base(&destroyed));
    THandle<Base> a2 = a;
    EXPECT_TRUE(a == a2);
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(std::equal_to<THandle<Base>>()(a, a2));
    std::vector<THandle<Base>> handles{b, a};
    EXPECT_EQ(std::find(handles.begin(), handles.end(), a2) - handles.begin(), 1);
    THandle<Base> other(new Base(&destroyed));
    EXPECT_EQ(std::find(handles.begin(), handles.end(), other), handles.end());
    EXPECT_TRUE(THandle<Base>() == THandle<Base>(nullptr));
}

TEST(THandleDeathTest, DereferencingNullIsFatalAndNamesTheType) {
    THandle<Base> empty;
    EXPECT_DEATH({ (void)empty->destroyed_; }, "null THandle<.*Base>");
    EXPECT_DEATH({ (void)*empty; }, "null THandle");
}

TEST(THandle, ACountWithAReleaseOfItsOwnIsGivenBackInsteadOfDeleted) {
    // An object in storage its owner keeps: the handles share the owner's
    // count, and the owner's release runs once, when the last handle goes.
    static int released = 0;
    std::unique_ptr<THandleCount> count(new THandleCount{0, [](THandleCount*) { ++released; }});
    int destroyed = 0;
    auto object = std::make_unique<Derived>(&destroyed);
    {
        THandle<Derived> first = THandle<Derived>::shared(object.get(), count.get());
        THandle<Base> second = first;
        THandle<Derived> third = second.cast<Derived>();
        EXPECT_EQ(first.use_count(), 3);
        first = THandle<Derived>();
        second = THandle<Base>();
        EXPECT_EQ(released, 0);
        EXPECT_EQ(third.get(), object.get());
    }
    EXPECT_EQ(released, 1);
    EXPECT_EQ(destroyed, 0);  // the owner destroys it in its own time
    EXPECT_EQ(THandle<Base>().use_count(), 0);
}

}  // namespace
