// fldc: its command line, and files for the commands that need no radio. Whatever they hold, the
// program is never surprised (exit code 10).

#include "Fuzzing.h"
#include "fldc/Program.h"
#include "fldc/process/StandardDescriptors.h"

#include <QFile>
#include <QTemporaryDir>

#include <array>
#include <fcntl.h>
#include <unistd.h>

using namespace fldc;
using namespace fldc::cli;

namespace {

// Runs the program with both outputs going nowhere; returns its exit code.
int silently(const std::vector<std::string>& arguments)
{
    static const int nowhere = ::open("/dev/null", O_WRONLY);
    static const std::array before{::dup(1), ::dup(2)};
    ::dup2(nowhere, 1);
    ::dup2(nowhere, 2);
    HeldSignals held;
    const int code = Program(arguments).run(held);
    held.release();
    ::dup2(before[0], 1);
    ::dup2(before[1], 2);
    return code;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static const QTemporaryDir folder;
    FuzzedDataProvider fuzz(bytes, size);
    const auto command = fuzz.ConsumeIntegralInRange<std::size_t>(0, 3);
    if (command == 3) {
        std::vector<std::string> arguments;
        while (fuzz.remaining_bytes() > 0)
            arguments.push_back(fuzz.ConsumeRandomLengthString(40));
        const CommandLine line = readCommandLine(arguments);
        EXPECT_EQ((line.command != nullptr && !line.error) + !line.text.isEmpty() +
                      line.error.has_value(),
                  1);
        return 0;
    }
    static const std::array<std::string, 3> commands{"inspect", "plan", "certificate"};
    std::vector<std::string> arguments{"--json", commands[command],
                                       folder.filePath(QStringLiteral("f")).toStdString()};
    if (command < 2 && fuzz.ConsumeBool())
        arguments.insert(arguments.end(), {"--compression", "best"});
    QFile file(QString::fromStdString(arguments[2]));
    const std::string content = fuzz.ConsumeRemainingBytesAsString();
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) &&
                file.write(content.data(), static_cast<qint64>(content.size())) >= 0);
    file.close();
    const int code = silently(arguments);
    EXPECT_TRUE(code >= 0 && code <= 9) << code;
    return 0;
}
