#include "FirmwareReading.h"

#include "shared/LastError.h"

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
    EXPECT_EQ(file.Hardware(0), QString());
    for (int i = 0; i < 11; ++i)
        file.AddTarget(QString(QChar(u'A' + i)), i * 100);
    EXPECT_EQ(targetsOf(file), "A=0 B=100 C=200 D=300 E=400 F=500 G=600 H=700 I=800 J=900 K=1000 ");
    EXPECT_EQ(file.Hardware(11), QString());
    EXPECT_EQ(file.DeviceID(11), 0);
    EXPECT_EQ(failureOf([&] { (void)file.Hardware(-1); }), 9);

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
    EXPECT_EQ(failureOf([&] { file.AddTargets(QString(), QString()); }), 9);
    EXPECT_EQ(failureOf([&] { file.AddTargets(u"A|B"_s, u"1"_s); }), 9);

    // The count alone stores no entries.
    clsFile counted;
    counted.setCountTargets(3);
    EXPECT_EQ(failureOf([&] { (void)counted.DeviceID(2); }), 9);
    EXPECT_EQ(counted.DeviceID(3), 0);
}

TEST(FirmwareFile, RecordsAWidthThatIsNone)
{
    clsFile file;
    lastError().clear();
    file.setIntNumberOfBits(16);
    EXPECT_EQ(lastError().number(), 0);
    file.setIntNumberOfBits(12);
    EXPECT_EQ(lastError().number(), 34);
    EXPECT_EQ(file.intNumberOfBits(), 12);
}

TEST(FirmwareFiles, ReplacesUnderTheSameKeyAndMovesItToTheEnd)
{
    colFiles files;
    const auto first = std::make_shared<clsFile>();
    const auto second = std::make_shared<clsFile>();
    const auto third = std::make_shared<clsFile>();
    files.Add(first, u"C:\\A.srec"_s);
    files.Add(second, u"C:\\b.srec"_s);
    files.Add(third, u"c:\\a.SREC"_s);
    EXPECT_EQ(files.Count(), 2);
    EXPECT_EQ(files.Item(1), second);
    EXPECT_EQ(files.Item(2), third);
    EXPECT_EQ(files.Item(u"C:\\a.srec"_s), third);
    EXPECT_EQ(third->Name(), u"c:\\a.SREC"_s);
    EXPECT_TRUE(files.Exists(u"C:\\B.SREC"_s));
    EXPECT_FALSE(files.Exists(u"C:\\c.srec"_s));
    EXPECT_FALSE(files.Exists(QString()));

    for (const std::int32_t position : {0, 3, -1}) {
        EXPECT_EQ(failureOf([&] { (void)files.Item(position); }), 5);
        EXPECT_EQ(failureOf([&] { files.Remove(position); }), 5);
    }
    EXPECT_EQ(failureOf([&] { files.Remove(u"none"_s); }), 5);
    files.Remove(1);
    files.Remove(u"C:\\A.SREC"_s);
    EXPECT_EQ(files.Count(), 0);
}

TEST(DefinitionTables, HoldRunsByIndex)
{
    colDefTables tables;
    EXPECT_EQ(failureOf([&] { tables.SetLength(1); }), 9);
    for (std::int32_t i = 0; i < 401; ++i) {
        EXPECT_EQ(tables.Add(i * 4096 - 8192), 0);
        if (i % 2 == 0)
            tables.SetLength(i);
    }
    EXPECT_EQ(tables.Count(), 401);
    EXPECT_EQ(tables.Address(0), u"-8192"_s);
    EXPECT_EQ(tables.Address(400), u"1630208"_s);
    EXPECT_EQ(tables.Length(398), 398);
    EXPECT_EQ(tables.Length(399), 0);
    const DataDefinition record = tables.Item(3);
    EXPECT_EQ(record.Address, u"4096"_s);
    record.Datablocks->Add(u"0102");
    EXPECT_EQ(tables.Datablocks(3)->Count(), 2);
    EXPECT_EQ(tables.Datablocks(4)->Count(), 0);
    for (const std::int32_t index : {-1, 401}) {
        EXPECT_EQ(failureOf([&] { (void)tables.Item(index); }), 5);
        EXPECT_EQ(failureOf([&] { (void)tables.Datablocks(index); }), 5);
        EXPECT_EQ(failureOf([&] { (void)tables.Address(index); }), 5);
        EXPECT_EQ(failureOf([&] { (void)tables.Length(index); }), 5);
    }
}

} // namespace fldc::test
