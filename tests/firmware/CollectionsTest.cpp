#include "FirmwareReading.h"
#include "support/Failures.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace fldc::test {

namespace {

std::string targetsOf(const clsFile& file)
{
    std::string text;
    for (std::int32_t i = 0; i < file.CountTargets(); ++i)
        text += file.Hardware(i).toStdString() + '=' + std::to_string(file.DeviceID(i)) + ' ';
    return text;
}

} // namespace

TEST(FirmwareFile, HoldsTargets)
{
    clsFile file;
    struct Case {
        QString hardwares;
        QString devices;
        std::string targets;
    };
    for (const Case& one :
         {Case{u"RVKB1|RVKC4"_s, u" 2 |x"_s, "RVKB1=2 RVKC4=0 "}, Case{u"A|"_s, u"1|"_s, "A=1 =0 "},
          Case{u"|"_s, u"70000|-3|8"_s, "=70000 =-3 "}}) {
        file.AddTargets(one.hardwares, one.devices);
        EXPECT_EQ(targetsOf(file), one.targets);
        file.AddTarget(u"Z"_s, 26);
        EXPECT_EQ(targetsOf(file), one.targets + "Z=26 ");
    }
    EXPECT_EQ(file.Hardware(3), QString());
    EXPECT_EQ(failureNumber([&] { return file.Hardware(-1); }), 9);
    EXPECT_EQ(failureNumber([&] { file.AddTargets(QString(), QString()); }), 9);
    EXPECT_EQ(failureNumber([&] { file.AddTargets(u"A|B"_s, u"1"_s); }), 9);
}

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
