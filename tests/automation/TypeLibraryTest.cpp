#include "automation/TypeLibrary.h"
#include "automation/BoundClass.h"
#include "radio/clsFlashBlock.h"

#include <gtest/gtest.h>

namespace fldc {
namespace {

using Block = clsFlashBlock;

TEST(TypeLibrary, RefusesAClassThatIsNotServedAsPublished)
{
    const TypeLibrary library;
    const auto block = [] {
        return BoundClass::of<Block>(QLatin1StringView("clsFlashBlock"),
                                     QStringLiteral("com.kelvane.RV4100_FLDC_EXE._clsFlashBlock"))
            .property("Length", &Block::Length, &Block::setLength)
            .property("StartAddress", &Block::StartAddress, &Block::setStartAddress);
    };
    const auto complete = block().property("ID", &Block::ID, &Block::setID);
    EXPECT_NO_THROW(library.verify(complete));
    for (const BoundClass& wrong :
         {block(), block().property("ID", &Block::ID),
          block().property("ID", &Block::StartAddress, &Block::setStartAddress),
          BoundClass(complete).method("Erase", [](Block&) {})})
        EXPECT_THROW(library.verify(wrong), PlatformFailure);
}

} // namespace
} // namespace fldc
