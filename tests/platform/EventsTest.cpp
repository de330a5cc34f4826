#include "Helpers.h"

#include "platform/IMessageBox.h"
#include "platform/ShowError.h"
#include "platform/qt/SignalWatch.h"

#include <QStringList>

#include <csignal>

#include <gtest/gtest.h>

namespace fldc {
namespace {

TEST(QtTimers, FireInOrderAndCanBeStoppedFromCallbacks)
{
    QtTimers timers;
    QString order;
    int late = 0;
    int early = 0;
    const int never = timers.start(45ms, [&] { order += u'!'; });
    late = timers.start(40ms, [&] {
        order += u'L';
        timers.stop(late);
    });
    early = timers.start(5ms, [&] {
        order += u'E';
        timers.stop(early);
        timers.stop(never);
    });
    ASSERT_TRUE(waitUntil([&] { return order.endsWith(u'L'); }));
    EXPECT_EQ(order, u"EL"_s);

    int count = 0;
    const int repeating = timers.start(2ms, [&] { ++count; });
    for (const int gone : {early, late, never, 0})
        timers.stop(gone);
    ASSERT_TRUE(waitUntil([&] { return count >= 3; }));
    timers.stop(repeating);
    count = 0;
    const auto start = std::chrono::steady_clock::now();
    QtEvents().pause(30ms);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 29ms);
    EXPECT_EQ(count, 0);
}

TEST(QtTimers, CallbackThatThrowsIsShownAndNothingEscapes)
{
    struct Box final : IMessageBox {
        void show(const QString& text, MessageKind) override { shown.append(text); }
        bool askYesNo(const QString&) override { return false; }
        QStringList shown;
    } box;
    const ErrorBoxScope scope(box);
    QtTimers timers;
    ASSERT_NE(timers.start(1ms, [] { throw PlatformFailure(9, u"out"_s); }), 0);
    ASSERT_TRUE(waitUntil([&] { return box.shown.size() >= 2; }));
    EXPECT_EQ(box.shown.first(), u"Error 9 out"_s);
}

TEST(SignalWatch, CallsInsideTheEventLoopAndRestoresWhatWas)
{
    struct sigaction before {};
    struct sigaction after {};
    ::sigaction(SIGTERM, nullptr, &before);
    int calls = 0;
    {
        const SignalWatch watch([&] { ++calls; });
        for (const int signal : {SIGTERM, SIGINT}) {
            const int callsBefore = calls;
            ::raise(signal);
            EXPECT_EQ(calls, callsBefore);
            QtEvents().waitForEvents();
            EXPECT_EQ(calls, callsBefore + 1) << signal;
        }
        ::raise(SIGPIPE); // survived
    }
    ::sigaction(SIGTERM, nullptr, &after);
    EXPECT_EQ(after.sa_handler, before.sa_handler);
}

} // namespace
} // namespace fldc
