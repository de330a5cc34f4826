#include "app/CommandLine.h"

#include "platform/PlatformFailure.h"

#include <gtest/gtest.h>

namespace fldc {
namespace {

struct Case {
    const char* text;
    SwitchTable expected;
};

TEST(CommandLine, SplitsAtEverySlash)
{
    const Case cases[]{
        {"", {}},
        {"/?", {{u'?', QStringLiteral("?")}}},
        {"/? /f a.srec /f b.srec", {{u'?', QStringLiteral("?")}}},
        {"/f a.srec /?", {{u'f', QStringLiteral("a.srec")}, {u'?', QStringLiteral("?")}}},
        {"/p 1 /r 2 /f  a b.srec ",
         {{u'p', QStringLiteral("1")},
          {u'r', QStringLiteral("2")},
          {u'f', QStringLiteral("a b.srec")}}},
        {"/f \"C:\\my fw\",\"a.srec\"", {{u'f', QStringLiteral("C:\\my fw,a.srec")}}},
        {"/g anything", {{u'g', QStringLiteral("g")}}},
        {"/F a.srec", {}},
        {"/x 1 /f a", {{u'f', QStringLiteral("a")}}},
        {"f a.srec", {{u'f', QStringLiteral("a.srec")}}}, // the text before the first slash counts
        {"/f /home/me/a.srec", {{u'f', QString()}}},      // slashes can't be part of a path
        {"/p", {{u'p', QString()}}},
    };
    for (const Case& each : cases)
        EXPECT_EQ(ParseCommandLine(QString::fromUtf8(each.text)), each.expected) << each.text;
}

TEST(CommandLine, RefusesASwitchGivenTwice)
{
    for (const char* text : {"/f a /f b", "/g /g", "/p 1 /r 1 /p"})
        EXPECT_THROW((void)ParseCommandLine(QString::fromUtf8(text)), PlatformFailure) << text;
}

} // namespace
} // namespace fldc
