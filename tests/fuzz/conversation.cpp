// A whole operation with a radio that does what the fuzzer says. It must end in bounded time and
// leave nothing behind; it may succeed only when the radio has confirmed every byte; what the
// session record says of the radio may not be better than what the radio confirmed; and a download
// to the repaired radio must succeed.

#include "FuzzedLine.h"
#include "manager/clsDLManager.h"
#include "protocol/IWaitDialog.h"
#include "protocol/wire/BootFiles.h"
#include "session/RadioState.h"
#include "ui/logic/DownloadWindow.h"

#include <set>
#include <zlib.h>

using namespace fldc;

namespace {

using session::State;

// Two runs of bytes, the first of which gets smaller and takes two frames when it does not.
const QByteArray zeros(600, '0');
const QByteArray few("\x12\x34", 2);

QByteArray firmware(const QByteArray& tag, const QByteArray& target)
{
    QByteArray text = "DW 8\n" + target + "S0000000" + tag.toHex() + "00\n";
    for (int i = 0; i < 600; i += 100)
        text += "S2680" + QByteArray::number(0x10000 + i, 16) + zeros.mid(i, 100).toHex() + "00\n";
    return text + "S206020000" + few.toHex() + "00\nS804000000FB\n";
}

class Surroundings final : public IDownloadWindowFactory,
                           public IWaitDialogFactory,
                           public session::IListener {
public:
    explicit Surroundings(const Platform& platform) : m_platform(platform) {}
    [[nodiscard]] std::shared_ptr<IDownloadWindow> createWindow() override
    {
        return std::make_shared<DownloadWindow>(m_platform, nullptr);
    }
    [[nodiscard]] std::unique_ptr<IWaitDialog> createWaitDialog() override { return nullptr; }
    void onEvent(const session::Event& event) noexcept override { radio = fold(radio, event); }

    session::Radio radio;

private:
    const Platform& m_platform;
};

QByteArray inflated(const QByteArray& packed)
{
    QByteArray plain(zeros.size(), '\0');
    auto size = static_cast<uLongf>(plain.size());
    EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(plain.data()), &size,
                         reinterpret_cast<const Bytef*>(packed.constData()),
                         static_cast<uLong>(packed.size())),
              Z_OK);
    return plain.left(static_cast<qsizetype>(size));
}

/// What the radio has confirmed.
struct Confirmed {
    explicit Confirmed(const std::vector<FuzzedLine::Write>& writes)
    {
        for (const auto& write : writes) {
            const int command = write.command();
            mayHaveErased |= command == 0x33 && !write.refused();
            begun |= command == 0x32 && !write.refused();
            if (!write.acknowledged())
                continue;
            if (command == 0x34 || command == 0x3C)
                tables.push_back({command, write.data(), {}});
            else if (command == 0x33)
                tables.clear(); // what was written before an erasure is gone
            else if ((command == 0x35 || command == 0x3D) && !tables.empty())
                tables.back().bytes += write.data();
            if (command == 0x39 && wholeImage()) {
                begun = false;
                ++images;
            }
        }
    }
    [[nodiscard]] bool wholeImage() const
    {
        return tables.size() == 2 && tables[0].address.toHex() == "00010000" &&
               tables[1].address.toHex() == "00020000" && tables[1].bytes == few &&
               (tables[0].command == 0x3C ? inflated(tables[0].bytes) : tables[0].bytes) == zeros;
    }

    struct Table {
        int command;
        QByteArray address;
        QByteArray bytes;
    };
    std::vector<Table> tables;
    bool mayHaveErased = false;
    bool begun = false; ///< an image that is not whole
    int images = 0;
};

int run(clsDLManager& manager, int operation, FuzzedDataProvider& fuzz)
{
    QString text;
    switch (operation) {
    case 0:
        return manager.ReportConfigurations(text);
    case 1:
        if (const int failure = manager.ReportConfigurations(text))
            return failure;
        return manager.EraseSelected(QString::number(fuzz.ConsumeIntegralInRange(0, 3)), text);
    case 2:
        return manager.RestartFromAnyState();
    case 3:
        return manager.TestLink(fuzz.ConsumeIntegralInRange(1, 8));
    default:
        return manager.DownLoad(text);
    }
}

std::string told(const FuzzedLine& line)
{
    std::string all;
    for (const auto& write : line.writes)
        all += write.bytes.left(20).toHex().toStdString() + " < " +
               write.heard.left(40).toHex().toStdString() + '\n';
    return all;
}

// The record of the session may not be better than what the radio has confirmed.
void checkOutcome(const FuzzedLine& line, State state, bool isDownload, int result)
{
    const Confirmed confirmed(line.writes);
    if (confirmed.mayHaveErased)
        EXPECT_TRUE(std::set({State::Erased, State::PartlyWritten, State::Written, State::Locked,
                              State::Restarted})
                        .contains(state));
    if (isDownload && (state == State::Locked || state == State::Restarted))
        EXPECT_FALSE(confirmed.begun && confirmed.mayHaveErased) << told(line);
    if (isDownload && result == 0)
        EXPECT_GT(confirmed.images, 0);
}

void prepare(VirtualPlatform& machine)
{
    machine.settings.values[QStringLiteral("Debug")] = QStringLiteral("True");
    auto& files = machine.files.files;
    files[QStringLiteral("C:\\Tools\\") + bootFileFor(u"RVKB1*")].content = firmware("BOOT", "");
    files[QStringLiteral("fw\\a")].content = firmware("JHA2F", "MD \"RVKB1\",0\n");
    files[QStringLiteral("fw\\b")].content = firmware("JHA2G", "");
}

void checkNothingIsLeft(const FuzzedMachine& all)
{
    EXPECT_FALSE(all.line->portOpen());
    EXPECT_EQ(all.machine.time.timersRunning(), 0);
    for (const auto& [path, file] : all.machine.files.files)
        EXPECT_EQ(file.content.count("START LOG"), file.content.count("END LOG"));
}

/// Cancels what runs at some moment, or never.
struct CancelAtSomeMoment {
    CancelAtSomeMoment(FuzzedMachine& all, clsDLManager& manager, FuzzedDataProvider& fuzz)
    {
        if (fuzz.ConsumeIntegralInRange(0, 3) != 0)
            return;
        all.machine.time.after(milliseconds(fuzz.ConsumeIntegralInRange(0, 60'000)),
                               [this, &all, &manager] {
                                   if (all.line->faultless)
                                       return;
                                   manager.cancelOperation();
                                   sent = all.line->writes.size();
                               });
    }
    std::size_t sent = SIZE_MAX; ///< writes before it
};

// To the repaired radio, with a file more.
void downloadAgain(clsDLManager& manager, FuzzedLine& line)
{
    line.repair();
    line.writes.clear();
    EXPECT_EQ(manager.LoadFilesEx(QStringLiteral("fw,a,b"), QStringLiteral(",")), 0);
    QString text;
    EXPECT_EQ(manager.DownLoad(text), 0);
    EXPECT_EQ(Confirmed(line.writes).images, 3);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    FuzzedDataProvider fuzz(bytes, size);
    FuzzedMachine all(fuzz);
    VirtualPlatform& machine = all.machine;
    FuzzedLine& line = *all.line;
    prepare(machine);
    Surroundings surroundings(all.platform);
    auto owner = std::make_unique<clsDLManager>(all.platform, surroundings, surroundings);
    clsDLManager& manager = *owner;
    manager.addListener(surroundings);
    EXPECT_EQ(manager.LoadFilesEx(QStringLiteral("fw,a"), QStringLiteral(",")), 0);
    const CancelAtSomeMoment cancellation(all, manager, fuzz);
    const int operation = fuzz.ConsumeIntegralInRange(0, 7);
    const int result = run(manager, operation, fuzz);
    EXPECT_GE(cancellation.sent, line.writes.size());

    const auto longest = line.paused + std::chrono::seconds(60 * (line.writes.size() + 10));
    EXPECT_LT(machine.time.monotonic(), longest);
    checkOutcome(line, stateOf(surroundings.radio), operation > 3, result);

    downloadAgain(manager, line);
    EXPECT_EQ(stateOf(surroundings.radio), State::Restarted);
    owner.reset();
    checkNothingIsLeft(all);
    return 0;
}
