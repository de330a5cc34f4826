#include "Helpers.h"

#include "platform/qt/FileService.h"
#include "platform/qt/ProgramInfo.h"
#include "platform/qt/SettingsFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace fldc {
namespace {

class FilesTest : public testing::Test {
protected:
    FilesTest() { EXPECT_EQ(::mkfifo(pipe.toLocal8Bit().constData(), 0600), 0); }

    [[nodiscard]] QString path(const QString& name) const { return folder.filePath(name); }
    static QByteArray onDisk(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }
    static void put(const QString& path, const QByteArray& bytes)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QTemporaryDir folder;
    QString pipe = folder.filePath(u"pipe"_s);
    FileService files;
};

TEST_F(FilesTest, TakesBackslashesBetweenFolders)
{
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"a b/c"_s));
    const QString name = folder.path() + u"\\a b\\c\\0_Download.log"_s;
    const QString old = folder.path() + u"\\a b\\old"_s;
    EXPECT_FALSE(files.exists(name));
    files.openForWriting(name)->write("one");
    EXPECT_EQ(onDisk(path(u"a b/c/0_Download.log"_s)), "one");
    EXPECT_TRUE(files.exists(name));
    EXPECT_FALSE(files.exists(folder.path() + u"\\a b"_s));
    put(path(u"a b/old"_s), "longer than before");
    files.copy(name, old);
    EXPECT_EQ(onDisk(path(u"a b/old"_s)), "one");
    for (const QTime time : {QTime(0, 0, 1), QTime(23, 59, 59)}) { // the local date counts
        QFile stamped(path(u"a b/old"_s));
        ASSERT_TRUE(stamped.open(QIODevice::ReadWrite));
        stamped.setFileTime(QDateTime(QDate(2001, 2, 3), time), QFile::FileModificationTime);
        EXPECT_EQ(files.lastModified(old), QDate(2001, 2, 3));
    }
    files.remove(old);
    EXPECT_FALSE(files.exists(old));
}

TEST_F(FilesTest, AppendsUnbufferedAndHoldsTheFileAsInUse)
{
    const QString name = path(u"log"_s);
    put(name, "old\r\n");
    files.checkWritable(name);
    const auto log = files.openForAppending(name);
    log->write("new\r\n");
    EXPECT_EQ(onDisk(name), "old\r\nnew\r\n");
    EXPECT_EQ(failureNumber([&] { files.checkWritable(name); }), EWOULDBLOCK);
    EXPECT_EQ(failureNumber([&] { static_cast<void>(files.openForAppending(name)); }), EWOULDBLOCK);
    log->close();
    files.openForAppending(name)->write("more");
    EXPECT_EQ(onDisk(name), "old\r\nnew\r\nmore");
}

TEST_F(FilesTest, ReadsWholeContentAndFailsWithTheSystemsNumbers)
{
    const QByteArray content = QByteArray("S0\r\n\0\xff", 6) + QByteArray(200'000, 'z');
    put(path(u"full"_s), content);
    put(path(u"empty"_s), "");
    const auto full = files.read(path(u"full"_s));
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(full->bytes().data()),
                         qsizetype(full->bytes().size())),
              content);
    EXPECT_TRUE(files.read(path(u"empty"_s))->bytes().empty());
    EXPECT_FALSE(files.read(u"/proc/self/stat"_s)->bytes().empty()); // has no size
    // Cut short by another program while it is in use.
    ASSERT_EQ(::truncate(path(u"full"_s).toLocal8Bit().constData(), 0), 0);
    EXPECT_EQ(full->bytes().back(), 'z');

    const QString missing = path(u"missing"_s);
    const std::vector<std::pair<int, std::function<void()>>> cases{
        {ENOENT, [&] { static_cast<void>(files.read(missing)); }},
        {EISDIR, [&] { static_cast<void>(files.read(folder.path())); }},
        {EINVAL, [&] { static_cast<void>(files.read(pipe)); }},
        {EINVAL, [&] { static_cast<void>(files.openForAppending(pipe)); }},
        {EINVAL, [&] { static_cast<void>(files.openForWriting(pipe)); }},
        {EINVAL, [&] { static_cast<void>(files.openForWriting(u"/dev/full"_s)); }},
        {EINVAL, [&] { files.checkWritable(pipe); }},
        {ENOENT, [&] { files.checkWritable(missing); }},
        {ENOENT, [&] { static_cast<void>(files.lastModified(missing)); }},
        {ENOENT, [&] { files.copy(missing, path(u"to"_s)); }},
        {ENOENT, [&] { files.remove(missing); }},
        {EISDIR, [&] { files.remove(folder.path()); }},
    };
    for (std::size_t i = 0; i < cases.size(); ++i)
        EXPECT_EQ(failureNumber(cases[i].second), cases[i].first) << i;
    EXPECT_FALSE(files.exists(missing));
}

TEST_F(FilesTest, SettingsReadPlainTextOnly)
{
    const QString name = path(u"s.conf"_s);
    EXPECT_EQ(SettingsFile(name).readText(u"Debug"_s), std::nullopt);
    put(name,
        "[General]\nDebug=True\nNumber=17\nEmpty=\nList=/a,b\nQuoted=\"/a,b\"\n"
        "Typed=@Variant(\\0\\0\\0\\x2\\0\\0\\0\\x7)\nRect=@Rect(1 2 3 4)\n[Other]\nHidden=1\n");
    for (const auto& [key, value] :
         {std::pair("Debug", "True"), {"Number", "17"}, {"Empty", ""}, {"Quoted", "/a,b"}})
        EXPECT_EQ(SettingsFile(name).readText(QString::fromLatin1(key)),
                  QString::fromLatin1(value));
    for (const char* key : {"List", "Typed", "Rect", "Hidden"})
        EXPECT_EQ(SettingsFile(name).readText(QString::fromLatin1(key)), std::nullopt) << key;
    for (const auto& place : {folder.path(), pipe})
        EXPECT_EQ(SettingsFile(place).readText(u"Debug"_s), std::nullopt);
}

TEST_F(FilesTest, SettingsChangeOneLineAndKeepTheRest)
{
    const QString name = path(u"s.conf"_s);
    const QByteArray ports = "; pinned\n[Ports]\nCOM3=/dev/x ; the lab\nLastFile=not this\n";
    const struct {
        QByteArray before, after;
    } cases[]{
        {"", "[General]\nLastFile=\"n\"\n"},
        {"; mine\n[General] ; all\n# Debug=1\nDebug=True\n\n" + ports,
         "; mine\n[General] ; all\nLastFile=\"n\"\n# Debug=1\nDebug=True\n\n" + ports},
        {"[general]\r\nLastFile = a ; was\r\nDebug=\"x;\nLastFile=y\"\r\n" + ports,
         "[general]\r\nLastFile =\"n\"; was\r\nDebug=\"x;\nLastFile=y\"\r\n" + ports},
        {"LastFile=first\n" + ports + "[General]\nLastFile=a\\\n b",
         "LastFile=first\n" + ports + "[General]\nLastFile=\"n\""},
        {ports + "x", ports + "x\n\n[General]\nLastFile=\"n\"\n"},
        {"[General]", "[General]\nLastFile=\"n\"\n"},
        {"[General]\"x\n", "[General]\nLastFile=\"n\"\n\n[General]\"x\n"},
        {"[Ports]\nCOM3=\"/dev/x", "[General]\nLastFile=\"n\"\n\n[Ports]\nCOM3=\"/dev/x"},
    };
    for (const auto& each : cases) {
        put(name, each.before);
        SettingsFile(name).writeText(u"LastFile"_s, u"n"_s);
        EXPECT_EQ(onDisk(name), each.after);
        EXPECT_EQ(SettingsFile(name).readText(u"LastFile"_s), u"n"_s);
    }
    for (const auto& text : {u"o"_s, u"p"_s, u"q"_s}) { // of one size, within one tick of the clock
        SettingsFile(name).writeText(u"LastFile"_s, text);
        EXPECT_EQ(SettingsFile(name).readText(u"LastFile"_s), text);
    }
}

TEST_F(FilesTest, SettingsAreStoredOrTheFailureIsTold)
{
    const QString name = path(u"new/folder/s.conf"_s);
    for (const auto& text :
         {u"C:\\fw\\a,b.srec"_s, u"@home \u00fc;#=\"\u20ac\n\tface"_s, u""_s, u"before"_s}) {
        SettingsFile(name).writeText(u"LastFile"_s, text);
        EXPECT_EQ(SettingsFile(name).readText(u"LastFile"_s), text);
    }
    put(path(u"plain"_s), "");
    for (const auto& place : {path(u"plain/s.conf"_s), u"/proc/kelvane/s.conf"_s, pipe}) {
        SettingsFile settings(place);
        EXPECT_NE(failureNumber([&] { settings.writeText(u"LastFile"_s, u"x"_s); }), 0)
            << qPrintable(place);
        EXPECT_EQ(settings.readText(u"LastFile"_s), std::nullopt) << qPrintable(place);
    }

    rlimit limit{}; // a full disk, as far as this process can tell
    ::getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit none{0, limit.rlim_max};
    ::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &none);
    EXPECT_NE(failureNumber([&] { SettingsFile(name).writeText(u"LastFile"_s, u"after"_s); }), 0);
    EXPECT_EQ(failureNumber([&] { files.openForWriting(path(u"log"_s))->write("x"); }), EFBIG);
    EXPECT_EQ(SettingsFile(name).readText(u"LastFile"_s), u"before"_s);
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

TEST_F(FilesTest, EnvironmentOverridesFolderAndPowerCycleLimit)
{
    const ProgramInfo program;
    qputenv("RV4100_FLDC_HOME", folder.path().toLocal8Bit() + "/");
    EXPECT_EQ(program.folder(), folder.path());
    qunsetenv("RV4100_FLDC_POWER_CYCLE_S");
    EXPECT_EQ(program.powerCycleLimit(), 5min);
    for (const auto& [text, limit] : {std::pair("3", 3s), {"0", 0s}, {"-1", 300s}, {"x", 300s}}) {
        qputenv("RV4100_FLDC_POWER_CYCLE_S", text);
        EXPECT_EQ(program.powerCycleLimit(), limit) << text;
    }
    qunsetenv("RV4100_FLDC_HOME");
    qunsetenv("RV4100_FLDC_POWER_CYCLE_S");
}

} // namespace
} // namespace fldc
