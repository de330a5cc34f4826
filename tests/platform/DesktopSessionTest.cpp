#include "platform/qt/bus/DesktopSession.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QTemporaryFile>
#include <QTest>

#include <gtest/gtest.h>

namespace fldc {
namespace {

QString busName(const char* name)
{
    return QStringLiteral("org.freedesktop.") + QString::fromLatin1(name);
}

/// All services of a desktop in one: notes what it is asked for.
class StandIn final : public QDBusVirtualObject {
public:
    QStringList calls;
    QTemporaryFile lock;

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override
    {
        const QString interface = message.interface().section(u'.', -1);
        if (interface != u"Test")
            calls.append(interface + u'.' + message.member());
        QVariantList answer;
        if (interface == u"Manager")
            answer = {QVariant::fromValue(QDBusUnixFileDescriptor(lock.handle()))};
        else if (interface == u"ScreenSaver")
            answer = {quint32(7)};
        else if (interface == u"Inhibit")
            answer = {QVariant::fromValue(QDBusObjectPath(QStringLiteral("/request/1")))};
        bus.send(message.createReply(answer));
        return true;
    }
};

class DesktopSessionTest : public testing::Test {
protected:
    DesktopSessionTest()
    {
        m_daemon.setProcessChannelMode(QProcess::SeparateChannels);
        m_daemon.start(QStringLiteral("dbus-daemon"),
                       {QStringLiteral("--session"), QStringLiteral("--nofork"),
                        QStringLiteral("--print-address")});
        QByteArray address;
        while (!address.endsWith('\n') && m_daemon.waitForReadyRead())
            address += m_daemon.readLine();
        m_address = QString::fromLatin1(address.trimmed());
        EXPECT_TRUE(standIn.lock.open());
    }

public:
    ~DesktopSessionTest() override
    {
        for (const char* name : {"services", "program"})
            QDBusConnection::disconnectFromBus(QString::fromLatin1(name));
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

protected:
    QDBusConnection connectAs(const char* name)
    {
        return QDBusConnection::connectToBus(m_address, QString::fromLatin1(name));
    }
    void serve(std::initializer_list<const char*> names)
    {
        QDBusConnection bus = connectAs("services");
        bus.registerVirtualObject(QStringLiteral("/"), &standIn, QDBusConnection::SubPath);
        for (const char* name : names)
            EXPECT_TRUE(bus.registerService(busName(name)));
    }
    bool asked(const char* calls)
    {
        const QString wanted = QString::fromLatin1(calls);
        return QTest::qWaitFor([&] {
            standIn.calls.sort();
            return standIn.calls.join(u' ') == wanted;
        });
    }

    // An answer comes behind those to what was asked before.
    bool answersHaveCome(const QDBusConnection& bus)
    {
        const QDBusPendingCall last = bus.asyncCall(
            QDBusMessage::createMethodCall(connectAs("services").baseService(), QStringLiteral("/"),
                                           busName("Test"), QStringLiteral("Last")));
        return QTest::qWaitFor([&] { return last.isFinished(); });
    }

    StandIn standIn;

private:
    QProcess m_daemon;
    QString m_address;
};

TEST_F(DesktopSessionTest, TheSessionIsKeptAndLetGo)
{
    serve({"login1", "portal.Desktop", "ScreenSaver", "Notifications"});
    const QDBusConnection bus = connectAs("program");
    DesktopSession session(QStringLiteral("Program"), {bus, bus});
    session.preventEnd(QStringLiteral("why"));
    session.preventEnd(QStringLiteral("why"));
    EXPECT_TRUE(asked("Inhibit.Inhibit Manager.Inhibit")) << qPrintable(standIn.calls.join(u' '));
    EXPECT_TRUE(answersHaveCome(bus));
    session.allowEnd();
    session.notify(QStringLiteral("title"), QStringLiteral("text"));
    EXPECT_TRUE(asked("Inhibit.Inhibit Manager.Inhibit Notifications.Notify Request.Close"))
        << qPrintable(standIn.calls.join(u' '));
}

TEST_F(DesktopSessionTest, WithoutAPortalTheScreenSaverIsAsked)
{
    serve({"ScreenSaver"});
    const QDBusConnection bus = connectAs("program");
    DesktopSession session(QStringLiteral("Program"), {bus, bus});
    session.preventEnd(QStringLiteral("why"));
    EXPECT_TRUE(asked("ScreenSaver.Inhibit"));
    EXPECT_TRUE(answersHaveCome(bus));
    session.allowEnd();
    EXPECT_TRUE(asked("ScreenSaver.Inhibit ScreenSaver.UnInhibit"));
}

TEST(DesktopSessionAloneTest, WithoutABusNothingHappens)
{
    const QDBusConnection none =
        QDBusConnection::connectToBus(QStringLiteral("unix:path=/none"), QStringLiteral("none"));
    DesktopSession session(QStringLiteral("Program"), {none, none});
    session.preventEnd(QStringLiteral("why"));
    session.notify(QStringLiteral("title"), QStringLiteral("text"));
    session.allowEnd();
}

} // namespace
} // namespace fldc
