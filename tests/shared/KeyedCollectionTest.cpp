#include "shared/KeyedCollection.h"
#include "support/Failures.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace fldc {
namespace {

class KeyedCollectionTest : public testing::Test {
protected:
    KeyedCollectionTest()
    {
        items.add(std::make_shared<int>(10), u"First"_s);
        items.add(std::make_shared<int>(20));
        items.add(std::make_shared<int>(30), u"Größe"_s);
        items.add(std::make_shared<int>(40));
    }

    KeyedCollection<int> items;
};

TEST_F(KeyedCollectionTest, FindsByPositionAndByKeyWithoutRegardToCaseAndRefusesTheRest)
{
    EXPECT_EQ(*items.item(1), 10);
    EXPECT_EQ(*items.item(4), 40);
    EXPECT_EQ(*items.item(u"FIRST"_s), 10);
    EXPECT_EQ(*items.item(u"gRÖßE"_s), 30);
    EXPECT_TRUE(items.contains(u"fIRST"_s));
    EXPECT_FALSE(items.contains({}));

    const auto refused = [&](const auto& index) {
        return failureNumber([&] { return items.item(index); }) == 5 &&
               failureNumber([&] { return items.remove(index), 0; }) == 5;
    };
    for (const std::int32_t position : {0, -1, 5})
        EXPECT_TRUE(refused(position)) << position;
    for (const QString& key : {QString(), u"Second"_s, u"1"_s})
        EXPECT_TRUE(refused(key)) << qPrintable(key);
    EXPECT_EQ(failureNumber([&] { return items.add({}, u"fIrSt"_s), 0; }), 457);
    EXPECT_EQ(items.count(), 4);
}

TEST_F(KeyedCollectionTest, RemovingClosesTheGapAndFreesTheKey)
{
    const auto before = items.items();
    items.remove(u"first"_s);
    items.remove(3);
    ASSERT_EQ(items.count(), 2);
    EXPECT_EQ(*items.item(1), 20);
    EXPECT_EQ(*items.item(2), 30);
    items.add(std::make_shared<int>(50), u"FIRST"_s);
    EXPECT_EQ(*items.item(3), 50);
    EXPECT_EQ(before.size(), 4U); // a walk keeps what it began with
    EXPECT_EQ(*before[0], 10);
}

} // namespace
} // namespace fldc
