#include "app/services/SettingsStore.h"
#include "support/VirtualPlatform.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace fldc {
namespace {

TEST(SettingsStore, GivesTheDefaultForWhatIsNotThereAndKeepsFailuresToItself)
{
    MemorySettings settings;
    EXPECT_EQ(ReadSetting(settings, u"LastFile"_s, u"none"_s), u"none"_s);
    WriteSetting(settings, u"LastFile"_s, u""_s); // stored, though empty
    EXPECT_EQ(ReadSetting(settings, u"LastFile"_s, u"none"_s), u""_s);

    struct Unreadable final : ISettingsFile {
        std::optional<QString> readText(const QString& /*name*/) override { throw 1; }
        void writeText(const QString& /*name*/, const QString& /*value*/) override { throw 1; }
    } unreadable;
    EXPECT_EQ(ReadSetting(unreadable, u"Debug"_s, u"False"_s), u"False"_s);
    WriteSetting(unreadable, u"Debug"_s, u"True"_s);
}

} // namespace
} // namespace fldc
