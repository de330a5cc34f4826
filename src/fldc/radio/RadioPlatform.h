#pragma once

#include "platform/IMessageBox.h"
#include "platform/IPortListing.h"
#include "platform/IProgramInfo.h"
#include "platform/ISettingsFile.h"
#include "platform/Platform.h"
#include "platform/qt/serial/SerialControl.h"

#include <QString>

#include <functional>
#include <optional>

namespace fldc::cli {

struct Options;

/// The one port of a run, as the component's COM1:. No other is seen, so no other is opened.
class OnlyPort final : public IPortListing {
public:
    explicit OnlyPort(QString device) : m_device(std::move(device)) {}
    [[nodiscard]] QList<Port> ports() override { return {{QStringLiteral("COM1:"), true}}; }
    [[nodiscard]] bool isAvailable(const QString& /*name*/) override { return true; }
    [[nodiscard]] QString devicePath(int number) override
    {
        return number == 1 ? m_device : QString();
    }

private:
    QString m_device;
};

/// The machine as the component sees it in a run over one named port: that port alone, the folder
/// of boot applications and the wait for a power cycle of the command line, the settings without
/// their logging (which --log decides) and never written.
class RadioPlatform {
public:
    /// @p events: those of the run. @p complaint: told why a remote line can't be opened.
    RadioPlatform(const Platform& base, IEvents& events, const Options& options,
                  const QString& device, std::function<void(const QString& why)> complaint);
    RadioPlatform(const RadioPlatform&) = delete;
    RadioPlatform& operator=(const RadioPlatform&) = delete;

    [[nodiscard]] const Platform& platform() const { return m_platform; }

private:
    class Settings final : public ISettingsFile {
    public:
        explicit Settings(ISettingsFile& settings) : m_settings(settings) {}
        [[nodiscard]] std::optional<QString> readText(const QString& name) override;
        void writeText(const QString& /*name*/, const QString& /*value*/) override {}

    private:
        ISettingsFile& m_settings;
    };

    class Program final : public IProgramInfo {
    public:
        Program(IProgramInfo& program, const Options& options)
            : m_program(program), m_options(options)
        {
        }
        [[nodiscard]] QString folder() const override { return m_program.folder(); }
        [[nodiscard]] QStringList bootFolders() const override;
        [[nodiscard]] std::chrono::milliseconds powerCycleLimit() const override;
        [[nodiscard]] QString title() const override { return m_program.title(); }
        [[nodiscard]] ProgramVersion version() const override { return m_program.version(); }
        [[nodiscard]] std::uint64_t threadId() const override { return m_program.threadId(); }
        [[nodiscard]] bool screenPresent() const override { return false; }
        [[nodiscard]] bool userAtTerminal() const override { return m_program.userAtTerminal(); }

    private:
        IProgramInfo& m_program;
        const Options& m_options;
    };

    /// The component asks before it writes FPGA images; the command line has answered already.
    class Messages final : public IMessageBox {
    public:
        Messages(IMessageBox& messages, const Options& options)
            : m_messages(messages), m_options(options)
        {
        }
        void show(const QString& text, MessageKind kind) override { m_messages.show(text, kind); }
        [[nodiscard]] bool askYesNo(const QString& text) override;

    private:
        IMessageBox& m_messages;
        const Options& m_options;
    };

    OnlyPort m_port;
    SerialControlFactory m_controls;
    Settings m_settings;
    Program m_program;
    Messages m_messages;
    Platform m_platform;
};

} // namespace fldc::cli
