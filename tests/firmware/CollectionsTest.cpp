#include "FirmwareReading.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace fldc::test {

TEST(FirmwareFiles, ReplacesUnderTheSameKeyAndMovesItToTheEnd)
{
    colFiles files;
    const auto second = std::make_shared<clsFile>();
    const auto third = std::make_shared<clsFile>();
    files.Add(std::make_shared<clsFile>(), u"C:\\A.srec"_s);
    files.Add(second, u"C:\\b.srec"_s);
    files.Add(third, u"c:\\a.SREC"_s);
    EXPECT_EQ(files.Count(), 2);
    EXPECT_EQ(files.Item(1), second);
    EXPECT_EQ(files.Item(2), third);
    EXPECT_EQ(files.Item(u"C:\\a.srec"_s), third);
    EXPECT_EQ(third->Name(), u"c:\\a.SREC"_s);
}

} // namespace fldc::test
