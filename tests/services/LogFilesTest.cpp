#include "app/services/LogFiles.h"
#include "support/VirtualPlatform.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace fldc {
namespace {

const QDate yesterday(2026, 11, 21);
const QDate today(2026, 11, 22);
const QDate tomorrow(2026, 11, 23);

class LogFilesTest : public testing::Test {
protected:
    static QString in(const QString& name) { return u"C:\\Tools\\"_s + name; }
    void put(const QString& name, const QDate& changed, const QByteArray& content = "log")
    {
        machine.files.files[in(name)] = {content, changed};
    }
    void hold(const QString& name) { machine.files.inUse.insert(in(name)); }
    [[nodiscard]] QStringList names() const
    {
        QStringList all;
        for (const auto& [path, file] : machine.files.files)
            all.append(path.sliced(9) + u'=' + QString::fromLatin1(file.content));
        return all;
    }
    /// Both paths of the pair chosen must have this number.
    void expectChoice(int number)
    {
        const LogPaths paths = chooseLogPaths(machine.platform);
        EXPECT_EQ(paths.download, in(QString::number(number) + u"_Download.log"_s));
        EXPECT_EQ(paths.configuration, in(QString::number(number) + u"_Config.log"_s));
    }

    VirtualPlatform machine;
};

TEST_F(LogFilesTest, FilesOfAnotherDayAreMovedAsideAndThoseOfTodayStay)
{
    expectChoice(0);
    EXPECT_EQ(names(), QStringList()); // nothing is created
    put(u"0_Download.log"_s, yesterday, "new");
    put(u"old_0_Download.log"_s, yesterday, "older");
    put(u"0_Config.log"_s, today, "today");
    expectChoice(0);
    EXPECT_EQ(names(), (QStringList{u"0_Config.log=today"_s, u"old_0_Download.log=new"_s}));
}

TEST_F(LogFilesTest, APairOfWhichOneFileIsHeldIsPassedOver)
{
    put(u"0_Download.log"_s, today);
    hold(u"0_Download.log"_s);
    put(u"0_Config.log"_s, tomorrow); // looked at all the same, and of another day
    put(u"1_Config.log"_s, yesterday);
    hold(u"1_Config.log"_s);
    put(u"2_Download.log"_s, yesterday);
    machine.files.unwritable.insert(in(u"old_2_Download.log"_s)); // can't be moved aside
    expectChoice(3);
    EXPECT_EQ(names(), (QStringList{u"0_Download.log=log"_s, u"1_Config.log=log"_s,
                                    u"2_Download.log=log"_s, u"old_0_Config.log=log"_s}));
}

TEST_F(LogFilesTest, AFileIsMovedAsideInItsOwnFolder)
{
    for (const QString& folder : {u"/home/me/"_s, u"C:\\a\\"_s, u"/opt/tool\\"_s, u""_s}) {
        machine.files.files = {{folder + u"my.log"_s, {"mine", today}}};
        BackupOldLogFile(machine.platform, folder + u"my.log"_s);
        EXPECT_EQ(machine.files.files.size(), 1U);
        EXPECT_EQ(machine.files.files[folder + u"old_my.log"_s].content, "mine");
    }
}

} // namespace
} // namespace fldc
