#include "Helpers.h"
#include "PseudoTerminal.h"

#include "platform/qt/SignalWatch.h"
#include "platform/qt/TerminalMessages.h"

#include <csignal>
#include <thread>

#include <gtest/gtest.h>

namespace fldc {
namespace {

const QByteArray prompt("Go on? [y/N] ");

TEST(TerminalMessages, OnlyAYesTypedAtTheQuestionIsYes)
{
    const PseudoTerminal user;
    const FileDescriptor terminal = user.openNearEnd();
    TerminalMessages messages(terminal.get(), terminal.get(), terminal.get());
    const SignalWatch watch([&] { messages.dismiss(); });
    const pthread_t asker = ::pthread_self();
    for (const auto& [typed, expected] : {std::pair("y\n", true),
                                          {" Yes \n", true},
                                          {"n\n", false},
                                          {"\n", false},
                                          {"yellow\n", false},
                                          {"y\x04\x04", false},
                                          {"\x04", false},
                                          {"signal", false}}) {
        user.write("y\n"); // typed before the question
        EXPECT_EQ(user.read(3), "y\r\n");
        std::thread person([&, keys = QByteArray(typed)] {
            EXPECT_EQ(user.read(prompt.size()), prompt);
            std::this_thread::sleep_for(10ms);
            if (keys == "signal")
                ::pthread_kill(asker, SIGINT);
            else
                user.write(keys);
        });
        EXPECT_EQ(messages.askYesNo(u"Go on?"_s), expected) << typed;
        person.join();
        while (!user.read(1, 10).isEmpty()) {
        }
    }
}

TEST(TerminalMessages, NobodyToAskIsNoAndTextsGoToTheirOutputs)
{
    int input[2] = {}, output[2] = {}, error[2] = {};
    for (int* ends : {input, output, error})
        ASSERT_EQ(::pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
    const auto content = [](int descriptor) {
        char bytes[200] = {};
        [[maybe_unused]] const auto count = ::read(descriptor, bytes, sizeof bytes - 1);
        return QByteArray(bytes);
    };
    ASSERT_EQ(::write(input[1], "y\n", 2), 2);
    TerminalMessages messages(input[0], output[1], error[1]);
    messages.show(u"usage\r\n\r\n  /?"_s, MessageKind::Information);
    messages.show(u"Error 5 x"_s, MessageKind::Error);
    EXPECT_EQ(content(output[0]), "usage\n\n  /?\n");
    EXPECT_EQ(content(error[0]), "Error 5 x\n");
    EXPECT_FALSE(messages.askYesNo(u"Go on?"_s));
    EXPECT_EQ(content(error[0]), prompt + "No\n");

    // A question that nobody sees must not wait for an answer either.
    const PseudoTerminal user;
    const FileDescriptor terminal = user.openNearEnd();
    EXPECT_FALSE(TerminalMessages(terminal.get(), output[1], error[1]).askYesNo(u"Go on?"_s));
}

} // namespace
} // namespace fldc
