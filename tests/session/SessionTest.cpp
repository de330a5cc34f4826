#include "session/LooksLike.h"
#include "session/RadioState.h"
#include "session/Rate.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace fldc::session {
namespace {

// Events by name. A step is a letter (r reset, u unlock, e erase, d data, l lock, R restart) and
// what came of it: "e" done, "e>" sent only, "e!" refused, "e?" unanswered.
Radio after(const QString& names)
{
    Radio radio;
    for (const QString& name : names.split(u' ')) {
        const auto take = [&radio](const Event& event) { radio = fold(radio, event); };
        if (name == u"logon")
            take(LoggedOn{QStringLiteral("V*"), false});
        else if (name == u"bare")
            take(LoggedOn{QStringLiteral("V*"), true});
        else if (name == u"boot")
            take(BootApplicationSent{{}, 2});
        else if (name == u"all")
            take(TargetWritten{});
        else if (name == u"end")
            take(OperationEnded{42, {}});
        else if (name == u"start")
            take(OperationStarted{Operation::Download});
        else {
            const auto step = static_cast<Step>(QStringView(u"ruedlR").indexOf(name.front()));
            take(StepTaken{step, Outcome::Sent});
            if (name.endsWith(u'!'))
                take(StepTaken{step, Outcome::Refused, Code::Checksum});
            else if (name.endsWith(u'?'))
                take(StepTaken{step, Outcome::Unanswered, Code::NoResponse});
            else if (!name.endsWith(u'>'))
                take(StepTaken{step, Outcome::Done});
        }
    }
    return radio;
}

TEST(RadioState, FollowsFromWhatHappened)
{
    const std::pair<const char*, const char*> cases[]{
        {"start", "untouched"},
        {"start end", "untouched"},
        // Before the first erase.
        {"r?", "reset"},
        {"r? r>", "reset"},
        {"r bare", "reset"},
        {"r bare boot", "upgrade-mode"},
        {"r? logon", "upgrade-mode"},
        {"logon u!", "upgrade-mode"},
        {"r logon u?", "unlocked"},
        {"r logon u>", "unlocked"},
        {"r logon u e!", "unlocked"},
        {"r logon u e! l", "upgrade-mode"},
        // Reports, restarts, losses of the radio.
        {"r logon R", "restarted"},
        {"r R", "restarted"},
        {"r logon R?", "upgrade-mode"},
        {"r logon R>", "upgrade-mode"},
        {"R?", "reset"},
        {"R", "restarted"},
        {"r logon u e! R", "restarted"},
        {"r logon u e! r", "reset"},
        // Erasing: a fault list is an attempt without an answer, and a refusal of the repeat does
        // not undo it.
        {"logon u e>", "erased"},
        {"logon u e? e!", "erased"},
        {"logon u e l R", "erased"},
        {"logon u e l u e! R", "erased"},
        {"logon u e l u! R", "erased"},
        {"logon u e? R? r? end", "erased"},
        {"logon u e d! e d!", "erased"},
        // Writing.
        {"logon u e d?", "partly-written"},
        {"logon u e d d! l R", "partly-written"},
        {"logon u e d d! e", "erased"},
        {"logon u e d d! e!", "partly-written"},
        {"logon u e d d! e? d", "partly-written"},
        {"logon u e d all", "written"},
        {"logon u e d all l?", "written"},
        {"logon u e d all l! l!", "written"},
        {"logon u e d all l> R", "written"},
        {"logon u e d all l", "locked"},
        {"logon u e d all l R", "restarted"},
        {"logon u e d all l R?", "locked"},
        {"logon u e d all l r?", "locked"},
        // A further target: refused before it began, then in its middle, then done too.
        {"logon u e d all l u!", "locked"},
        {"logon u e d all l u?", "partly-written"},
        {"logon u e d all l u e! R", "partly-written"},
        {"logon u e d all l u e l R", "partly-written"},
        {"logon u e d all l u e d d! e", "partly-written"},
        {"logon u e d all l u e d all", "written"},
        {"logon u e d all l u e d all l R", "restarted"},
        // The next run.
        {"logon u e d all start", "untouched"},
        {"logon u e d all l R start r logon", "upgrade-mode"},
    };
    for (const auto& [events, state] : cases)
        EXPECT_EQ(textOf(stateOf(after(QString::fromLatin1(events)))).name,
                  QString::fromLatin1(state))
            << events;
}

TEST(RadioState, FlashThatIsNotWholeStaysSoWhateverElseHappens)
{
    const Event others[]{LineOpened{},       PowerCycleRequired{},  LoggedOn{},
                         LoggedOn{{}, true}, SpeedAgreed{},         ConfigurationsRead{},
                         TargetBegun{},      BlocksDone{},          TableBegun{},
                         DataProgress{},     CommandRepeated{},     UnexpectedBytes{},
                         LinkMeasured{},     BootApplicationSent{}, OperationEnded{}};
    for (const char* events : {"u e", "u e d", "u e d all", "u e d all l", "u e d all l u e"}) {
        const Radio radio = after(QString::fromLatin1(events));
        for (const Event& event : others)
            EXPECT_EQ(fold(radio, event).now, radio.now) << events << ' ' << event.index();
    }
}

TEST(UnexpectedBytes, AreEchoTextOrOther)
{
    const std::tuple<const char*, const char*, LooksLike> cases[]{
        {"5E", "5E", LooksLike::OwnEcho},
        {"5E76", "5E", LooksLike::OwnEcho},
        {"3800C7FFAFAF", "3800C7FF", LooksLike::OwnEcho},
        {"3800C7", "3800C7FF", LooksLike::OwnEcho},
        {"C7FF", "3800C7FF", LooksLike::OwnEcho},
        {"FF", "3800C7FF", LooksLike::Other},
        {"41", "", LooksLike::Other},
        {"41540D", "3800C7FF", LooksLike::Text},
        {"4154000D", "3800C7FF", LooksLike::Other},
        {"4FE4", "3800C7FF", LooksLike::Other},
        {"AFAF", "", LooksLike::Other},
    };
    for (const auto& [bytes, sent, like] : cases)
        EXPECT_EQ(looksLike(QByteArray::fromHex(bytes), QByteArray::fromHex(sent)), like) << bytes;
    EXPECT_EQ(unexpected(QByteArray(65, 'x'), {}).bytes, QByteArray(64, 'x'));
}

TEST(Rate, LooksAtTheLastSecondsOnly)
{
    using std::chrono::milliseconds;
    Rate rate;
    const auto at = [](int ms) { return milliseconds(ms); };
    EXPECT_EQ(rate.bytesPerSecond(at(0)), 0);
    EXPECT_EQ(rate.secondsLeft(at(0), 100), std::nullopt);
    rate.add(at(1000), 0);
    EXPECT_EQ(rate.bytesPerSecond(at(1000)), 0);
    for (int i = 1; i <= 10'000; ++i) // 10 s of one byte a millisecond
        rate.add(at(1000 + i), i);
    EXPECT_DOUBLE_EQ(rate.bytesPerSecond(at(11'000)), 1000);
    EXPECT_DOUBLE_EQ(rate.secondsLeft(at(11'000), 12'000).value(), 2);
    rate.add(at(13'500), 60'000); // much faster for half a window
    EXPECT_DOUBLE_EQ(rate.bytesPerSecond(at(13'500)), (60'000 - 7500) / 5.0);
    EXPECT_DOUBLE_EQ(rate.bytesPerSecond(at(16'000)), 10'000) << "and then nothing";
    EXPECT_EQ(rate.bytesPerSecond(at(18'500)), 0);
    EXPECT_EQ(rate.secondsLeft(at(18'500), 70'000), std::nullopt);
    rate.add(at(20'000), 500); // the next target
    rate.add(at(21'000), 1000);
    EXPECT_DOUBLE_EQ(rate.bytesPerSecond(at(21'000)), 500);
    EXPECT_DOUBLE_EQ(rate.secondsLeft(at(21'000), 900).value(), 0);
}

} // namespace
} // namespace fldc::session
