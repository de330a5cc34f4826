#include "port/PortEnumeration.h"
#include "support/Failures.h"
#include "support/VirtualPlatform.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace fldc {
namespace {

TEST(PortEnumeration, ListsTheComPortsInTheMachinesOrder)
{
    FakePorts ports;
    ports.names = {u"LPT1:"_s, u"COM12:"_s, u"COM3: "_s, u"com4:"_s, u"FILE:"_s, u"COM1:"_s};
    ports.unavailable = {u"COM3: "_s};
    QStringList entries{u"left over"_s};
    EXPECT_EQ(GetSerialPorts(ports, entries), 3);
    EXPECT_EQ(entries, (QStringList{u"COM12:"_s, u"COM3: (unavailable)"_s, u"COM1:"_s}));
    EXPECT_TRUE(PortAvailable(ports, u"COM1:"_s));
    EXPECT_FALSE(PortAvailable(ports, u"COM3: "_s));

    const QStringList none{u"No available ports"_s};
    ports.names = {u"LPT1:"_s, u"FILE:"_s};
    EXPECT_EQ(GetSerialPorts(ports, entries), 0);
    EXPECT_EQ(entries, none);
    ports.names = {u"COM1:"_s};
    ports.broken = true;
    EXPECT_EQ(GetSerialPorts(ports, entries), 0);
    EXPECT_EQ(entries, none);
}

TEST(PortEnumeration, ReadsThePortNumber)
{
    const std::pair<QString, int> cases[]{
        {u" 16 "_s, 16},   {u"COM12:"_s, 12}, {u"COM1: (unavailable)"_s, 1},
        {u"COM5:6:"_s, 5}, {u"COMx:"_s, 0},   {u"COM:"_s, 0}};
    for (const auto& [text, number] : cases)
        EXPECT_EQ(PortNumber(text), number) << qPrintable(text);
    for (const QString& text :
         {u"No available COM ports"_s, u"COM1"_s, u"C1:"_s, u":COM1"_s, u""_s})
        EXPECT_EQ(failureNumber([&] { return PortNumber(text); }), 5) << qPrintable(text);
}

} // namespace
} // namespace fldc
