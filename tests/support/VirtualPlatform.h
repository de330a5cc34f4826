#pragma once

#include "app/services/LogState.h"
#include "platform/IPortListing.h"
#include "platform/IProgramInfo.h"
#include "platform/ISettingsFile.h"
#include "platform/Platform.h"
#include "platform/PlatformFailure.h"
#include "platform/ShowError.h"
#include "shared/LastError.h"
#include "support/MemoryFiles.h"
#include "support/ScriptedLine.h"
#include "support/ScriptedMessages.h"
#include "support/VirtualTime.h"

#include <map>
#include <set>

namespace fldc {

class MemorySettings final : public ISettingsFile {
public:
    std::map<QString, QString> values;
    bool readOnly = false;

    [[nodiscard]] std::optional<QString> readText(const QString& name) override
    {
        const auto found = values.find(name);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    void writeText(const QString& name, const QString& value) override
    {
        if (readOnly)
            throw PlatformFailure(FailureNumber::Internal, QStringLiteral("read-only"));
        values[name] = value;
    }
};

class FakePorts final : public IPortListing {
public:
    QStringList names{QStringLiteral("COM1:"), QStringLiteral("COM7:")};
    std::set<QString> unavailable;
    bool broken = false;
    QString obstacle;                ///< of all that are unavailable
    std::function<void()> plugEvent; ///< while somebody watches

    [[nodiscard]] QList<Details> details() override
    {
        QList<Details> list;
        for (const QString& name : std::as_const(names))
            list.append({name, QStringLiteral("Adapter"), QStringLiteral("S1"),
                         name.sliced(3).chopped(1), isAvailable(name) ? QString() : obstacle,
                         QStringLiteral("Remedy.")});
        return list;
    }
    [[nodiscard]] std::shared_ptr<void> watch(std::function<void()> changed) override
    {
        plugEvent = std::move(changed);
        return std::make_shared<int>();
    }
    [[nodiscard]] QList<Port> ports() override
    {
        if (broken)
            throw PlatformFailure(FailureNumber::Internal);
        QList<Port> list;
        for (const QString& name : std::as_const(names))
            list.append({name, isAvailable(name)});
        return list;
    }
    [[nodiscard]] bool isAvailable(const QString& name) override
    {
        return !unavailable.contains(name);
    }
    [[nodiscard]] QString devicePath(int number) override { return QString::number(number); }
};

class FakeProgram final : public IProgramInfo {
public:
    std::chrono::milliseconds limit = std::chrono::minutes(5);
    bool screen = true;
    bool terminal = false;

    [[nodiscard]] QString folder() const override { return QStringLiteral("C:\\Tools"); }
    [[nodiscard]] QString title() const override { return QStringLiteral("Title"); }
    [[nodiscard]] ProgramVersion version() const override { return {1, 21, 0}; }
    [[nodiscard]] std::uint64_t threadId() const override { return 4711; }
    [[nodiscard]] bool screenPresent() const override { return screen; }
    [[nodiscard]] bool userAtTerminal() const override { return terminal; }
    [[nodiscard]] std::chrono::milliseconds powerCycleLimit() const override { return limit; }
};

/// A whole machine in memory. What the component keeps per thread starts and ends with it.
struct VirtualPlatform {
    VirtualPlatform() { reset(); }
    ~VirtualPlatform() { reset(); }
    VirtualPlatform(const VirtualPlatform&) = delete;
    VirtualPlatform& operator=(const VirtualPlatform&) = delete;

    VirtualTime time;
    MemoryFiles files{time};
    MemorySettings settings;
    FakePorts ports;
    ScriptedLines lines{time};
    FakeProgram program;
    ScriptedMessages messages;
    ErrorBoxScope errorBox{messages};
    Platform platform{time, time, time, files, settings, ports, lines, program, messages};

    [[nodiscard]] ScriptedLine& line() const { return *lines.line; }

private:
    static void reset()
    {
        logState() = {};
        lastError() = {};
    }
};

} // namespace fldc
