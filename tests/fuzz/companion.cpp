// fldc: its command line, and files for the commands that need no radio. Whatever they hold, JSON
// comes out, its last line is the result, and the program is never surprised.

#include "Fuzzing.h"
#include "fldc/Program.h"
#include "fldc/process/StandardDescriptors.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <array>
#include <sys/mman.h>

using namespace fldc;
using namespace fldc::cli;

namespace {

/// Standard output goes to a file in memory, standard error nowhere.
class Outputs {
public:
    Outputs()
    {
        ::ftruncate(m_file, 0);
        ::lseek(m_file, 0, SEEK_SET);
        ::dup2(m_file, 1);
        ::dup2(m_nowhere, 2);
    }
    QByteArray end()
    {
        ::dup2(m_before[0], 1);
        ::dup2(m_before[1], 2);
        QFile file;
        EXPECT_TRUE(file.open(m_file, QIODevice::ReadOnly) && file.seek(0));
        return file.readAll();
    }

private:
    static inline const int m_file = ::memfd_create("output", 0);
    static inline const int m_nowhere = ::open("/dev/null", O_WRONLY);
    static inline const std::array m_before{::dup(1), ::dup(2)};
};

void runOn(const std::vector<std::string>& arguments)
{
    Outputs outputs;
    HeldSignals held;
    const int code = Program(arguments).run(held);
    held.release();
    const QList<QByteArray> lines = outputs.end().split('\n');
    EXPECT_TRUE(code >= 0 && code <= 9) << code;
    EXPECT_TRUE(lines.size() > 1 && lines.last().isEmpty());
    for (const QByteArray& line : lines.first(lines.size() - 1)) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        EXPECT_FALSE(object["time"].toString().isEmpty()) << line.constData();
        EXPECT_EQ(&line == &lines[lines.size() - 2], object["type"] == QLatin1String("result"));
    }
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
    runOn(arguments);
    return 0;
}
