#pragma once

#include "port/Cancellation.h"
#include "port/clsSerial.h"
#include "protocol/IProtocolEvents.h"
#include "protocol/IProtocolWindow.h"
#include "protocol/IWaitDialog.h"
#include "protocol/clsProtocol.h"
#include "radio/clsRadio.h"
#include "shared/LastError.h"
#include "support/VirtualPlatform.h"

#include <gtest/gtest.h>

namespace fldc {

/// Remembers what the protocol shows.
class RecordingWindow final : public IProtocolWindow {
public:
    bool user = false;
    QStringList status;
    QStringList baud;
    QStringList fileNames;
    std::vector<int> progress;
    int listsShown = 0;

    [[nodiscard]] bool UIDisplay() const override { return user; }
    void setStatusPanelStatus(const QString& text) override { status.append(text); }
    void setStatusPanelBaud(const QString& text) override { baud.append(text); }
    void setFileNameTextBox(const QString& text) override { fileNames.append(text); }
    void setProgressBar(std::int16_t value) override { progress.push_back(value); }
    void ResetProgessBar() override { progress.clear(); }
    void UpdateLabels(const colConfigurations& /*configurations*/, bool) override { ++listsShown; }
};

/// A user at the wait dialog, and the listener of the protocol's events.
class Listener final : public IProtocolEvents, public IWaitDialogFactory {
public:
    QStringList events;
    QString dialogMessage;
    bool cancelled = false;
    bool dialogShown = false;

    void onDownloadProgress(std::int32_t percentage, const QString& file, std::int32_t i) override
    {
        events.append(QStringLiteral("%1 %2 %3").arg(percentage).arg(file).arg(i));
    }
    void onPowerCycleRequired() override { events.append(QStringLiteral("power cycle")); }
    [[nodiscard]] std::unique_ptr<IWaitDialog> createWaitDialog() override
    {
        return std::make_unique<Dialog>(*this);
    }

private:
    struct Dialog final : IWaitDialog {
        explicit Dialog(Listener& owner) : listener(owner) {}
        void SetMessage(const QString& text) override { listener.dialogMessage = text; }
        void Show() override { listener.dialogShown = true; }
        void Hide() override { listener.dialogShown = false; }
        [[nodiscard]] bool IsCancelled() const override { return listener.cancelled; }
        Listener& listener;
    };
};

/// A protocol object on a scripted line at 19200 baud.
class ProtocolTest : public testing::Test {
public:
    ProtocolTest()
    {
        port.setPortType(machine.lines.line);
        protocol.setPreviousBaudRate(QStringLiteral("19200"));
        lastError().clear();
    }

    /// Opens the line, which then follows @p script.
    void open(const char* script = "")
    {
        line().play("@ 19200");
        port.SetPortParameters(QStringLiteral("19200"), 1);
        line().play(script);
    }
    /// The whole script was played, and the timer is not left running.
    void TearDown() override
    {
        EXPECT_EQ(line().rest(), QString());
        EXPECT_EQ(machine.time.timersRunning(), 0);
    }
    [[nodiscard]] ScriptedLine& line() const { return machine.line(); }
    [[nodiscard]] static int code() { return lastError().number(); }

    VirtualPlatform machine;
    std::shared_ptr<Cancellation> cancellation = std::make_shared<Cancellation>();
    clsSerial port{machine.platform, cancellation};
    RecordingWindow window;
    Listener listener;
    clsProtocol protocol{machine.platform, listener, listener};
    clsRadio radio;
};

} // namespace fldc
