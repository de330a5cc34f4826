#include "shared/KeyedCollection.h"
#include "support/Failures.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace fldc {
namespace {

TEST(KeyedCollection, FindsByPositionAndByKeyWithoutRegardToCaseAndRefusesTheRest)
{
    KeyedCollection<int> items;
    items.add(std::make_shared<int>(10), u"First"_s);
    items.add(std::make_shared<int>(20));
    items.add(std::make_shared<int>(30), u"Größe"_s);
    EXPECT_EQ(*items.item(1), 10);
    EXPECT_EQ(*items.item(3), 30);
    EXPECT_EQ(*items.item(u"FIRST"_s), 10);
    EXPECT_EQ(*items.item(u"gRÖßE"_s), 30);
    EXPECT_FALSE(items.contains({}));

    const auto refused = [&](const auto& index) {
        return failureNumber([&] { return items.item(index); }) == 5 &&
               failureNumber([&] { items.remove(index); }) == 5;
    };
    for (const std::int32_t position : {0, -1, 4})
        EXPECT_TRUE(refused(position)) << position;
    for (const QString& key : {QString(), u"Second"_s, u"1"_s})
        EXPECT_TRUE(refused(key)) << qPrintable(key);
    EXPECT_EQ(failureNumber([&] { items.add({}, u"fIrSt"_s); }), 457);

    const auto before = items.items();
    items.remove(u"first"_s); // closes the gap and frees the key
    items.add(std::make_shared<int>(50), u"FIRST"_s);
    EXPECT_EQ(*items.item(1), 20);
    EXPECT_EQ(*items.item(3), 50);
    EXPECT_EQ(*before[0], 10); // a walk keeps what it began with
}

} // namespace
} // namespace fldc
