#include "automation/TypeLibrary.h"
#include "automation/BoundClass.h"
#include "automation/PublishedClasses.h"
#include "radio/clsFlashBlock.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace fldc {
namespace {

// Gives every object a path that tells its turn.
class Paths final : public IObjectPaths {
public:
    QString pathOf(const AnyObject& object, const QString&) override
    {
        objects.push_back(object);
        return QStringLiteral("/object/%1").arg(objects.size());
    }
    std::shared_ptr<void> objectAt(const QString&, std::type_index) override { return nullptr; }

    std::vector<AnyObject> objects;
};

BoundClass flashBlock()
{
    return BoundClass::of<clsFlashBlock>(
        QLatin1StringView("clsFlashBlock"),
        QStringLiteral("com.kelvane.RV4100_FLDC_EXE._clsFlashBlock"));
}

TEST(TypeLibrary, RefusesAClassThatIsNotServedAsPublished)
{
    const TypeLibrary library;
    const auto complete = [] {
        return flashBlock()
            .property("Length", &clsFlashBlock::Length, &clsFlashBlock::setLength)
            .property("StartAddress", &clsFlashBlock::StartAddress,
                      &clsFlashBlock::setStartAddress);
    };
    EXPECT_NO_THROW(
        library.verify(complete().property("ID", &clsFlashBlock::ID, &clsFlashBlock::setID)));
    EXPECT_THROW(library.verify(complete()), PlatformFailure) << "a property is missing";
    EXPECT_THROW(library.verify(complete().property("ID", &clsFlashBlock::ID)), PlatformFailure)
        << "it can't be written";
    EXPECT_THROW(library.verify(complete().property("ID", &clsFlashBlock::StartAddress,
                                                    &clsFlashBlock::setStartAddress)),
                 PlatformFailure)
        << "it is a Long";
    EXPECT_THROW(library.verify(complete()
                                    .property("ID", &clsFlashBlock::ID, &clsFlashBlock::setID)
                                    .method("Erase", [](clsFlashBlock&) {})),
                 PlatformFailure)
        << "a method is not published";
}

// No client can reach definition tables, so their members are called here without a bus.
TEST(PublishedClasses, DefinitionTables)
{
    const auto classes = supportingClasses();
    const auto bound =
        std::ranges::find(classes, QStringLiteral("com.kelvane.RV4100_FLDC_EXE._colDefTables"),
                          &BoundClass::interface);
    ASSERT_NE(bound, classes.end());
    colDefTables tables;
    Paths paths;
    const auto call = [&](const char* method, const QVariantList& arguments) {
        return bound->methods()[QString::fromLatin1(method)].invoke(&tables, {paths, {}},
                                                                    arguments);
    };

    EXPECT_EQ(call("Add", {4096}), QVariantList{0});
    call("SetLength", {16});
    EXPECT_EQ(call("Address", {0}), QVariantList{QStringLiteral("4096")});
    EXPECT_EQ(call("Length", {0}), QVariantList{16});
    const auto record = call("Item", {0}).value(0).value<DefinitionRecord>();
    EXPECT_EQ(record.address, QStringLiteral("4096"));
    EXPECT_EQ(record.length, 16);
    EXPECT_EQ(record.datablocks.path(), QStringLiteral("/object/1"));
    call("Datablocks", {0});
    ASSERT_EQ(paths.objects.size(), 2U);
    EXPECT_EQ(paths.objects[0].object, paths.objects[1].object) << "shared, not copied";
    EXPECT_THROW(call("Address", {1}), PlatformFailure);
}

} // namespace
} // namespace fldc
