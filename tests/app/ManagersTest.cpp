#include "manager/clsDLManager.h"
#include "protocol/IWaitDialog.h"
#include "support/VirtualPlatform.h"
#include "ui/logic/WindowFactory.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace fldc {
namespace {

/// Two managers on a machine without a screen, whose window is shown all the same, and a radio that
/// wants a power cycle with its F1 key; its adapter goes away with it and never comes back.
class ManagersTest : public testing::Test, private IWaitDialogFactory {
protected:
    ManagersTest()
    {
        machine.program.screen = false;
        machine.program.limit = 10s;
        QObject::connect(&one, &clsDLManager::PowerCycleRequired, &one, [this] { ++requests; });
        (void)one.SetUIMode(true);
        machine.line().play("@ 9600\n@ 19200\n> 5E\n@ 9600\n> 5E\n< 56\n@ 19200\n! hangup");
    }
    std::unique_ptr<IWaitDialog> createWaitDialog() override
    {
        ADD_FAILURE() << "a dialog that nobody can see";
        return nullptr;
    }

    VirtualPlatform machine;
    std::vector<std::shared_ptr<DownloadWindow>> made;
    WindowFactory windows{
        machine.platform, {}, [this](const auto& window) { made.push_back(window); }};
    clsDLManager one{machine.platform, windows, *this};
    clsDLManager two{machine.platform, windows, *this};
    int requests = 0;
    QString report;
};

TEST_F(ManagersTest, AnUnseenPowerCycleWaitIsBoundedAndTheUpgradeModeEachManagersOwn)
{
    two.setAccessLevel(UNLIMITED_ACCESS);
    EXPECT_EQ(one.ReportConfigurations(report), 11);
    EXPECT_EQ(requests, 1);
    EXPECT_GE(machine.time.monotonic(), 10s);
    EXPECT_LT(machine.time.monotonic(), 20s);
    EXPECT_TRUE(one.upgradeState().blnF1KeyRequired);
    EXPECT_FALSE(two.upgradeState().blnF1KeyRequired);
    EXPECT_TRUE(two.upgradeState().special());
    EXPECT_FALSE(one.upgradeState().special());
    EXPECT_EQ(machine.line().rest(), QString());
}

TEST_F(ManagersTest, TheListShowsThePortInUseWhenAnotherIsRefused)
{
    machine.time.after(1s, [this] { made.front()->selectPort(1); });
    machine.time.after(2s, [this] {
        made.front()->typePort(u"typed"_s);
        made.front()->selectPort(1);
        EXPECT_EQ(made.front()->portText(), u"typed"_s);
        EXPECT_EQ(made.front()->portIndex(), -1);
        made.front()->selectPort(0);
    });
    machine.time.after(1500ms, [this] {
        EXPECT_EQ(made.front()->portText(), u"COM1:"_s);
        EXPECT_EQ(made.front()->portIndex(), 0);
    });
    (void)one.ReportConfigurations(report);
    made.front()->selectPort(1);
    EXPECT_EQ(made.front()->portText(), u"COM7:"_s);
    EXPECT_EQ(machine.line().commPort(), 7);
}

TEST_F(ManagersTest, NothingIsSentAfterTheProgramWasAskedToEnd)
{
    one.endOperations();
    EXPECT_EQ(one.ReportConfigurations(report), 1);
    EXPECT_TRUE(machine.line().rest().startsWith(u"@ 9600"_s));
}

} // namespace
} // namespace fldc
