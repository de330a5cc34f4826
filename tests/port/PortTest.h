#pragma once

#include "port/Cancellation.h"
#include "port/clsSerial.h"
#include "shared/LastError.h"
#include "support/VirtualPlatform.h"

#include <gtest/gtest.h>

namespace fldc {

/// A port on a scripted line.
class PortTest : public testing::Test {
protected:
    PortTest() { port.setPortType(machine.lines.line); }

    void open()
    {
        line().play("@ 9600");
        port.OpenPort();
    }
    /// The whole script was played, and the timer is not left running.
    void TearDown() override
    {
        EXPECT_EQ(line().rest(), QString());
        EXPECT_EQ(machine.time.timersRunning(), 0);
    }
    void after(int delay, std::function<void()> action)
    {
        machine.time.after(std::chrono::milliseconds(delay), std::move(action));
    }
    [[nodiscard]] ScriptedLine& line() const { return machine.line(); }
    [[nodiscard]] static int code() { return lastError().number(); }
    /// Virtual milliseconds since the test began.
    [[nodiscard]] int now() const
    {
        return static_cast<int>(machine.time.monotonic() / std::chrono::milliseconds(1));
    }

    VirtualPlatform machine;
    std::shared_ptr<Cancellation> cancellation = std::make_shared<Cancellation>();
    bool userPresent = false;
    clsSerial port{machine.platform, cancellation, [this] { return userPresent; }};
};

} // namespace fldc
