// How long reading a firmware file takes, beside the least it could take and beside other readers
// of the same file. Prints tables; files are made in a temporary folder. Sizes in MiB may be given
// as arguments (default 1 16 64).
//
// With --convert IN OUT it only reads one file, without compressing, and writes its first table, so
// that it can be timed as a process beside srec_cat and objcopy, which do the same.

#include "BareParser.h"
#include "SampleFile.h"
#include "Stopwatch.h"
#include "firmware/SRecordReader.h"
#include "platform/qt/FileService.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <random>

#include <zlib.h>

using namespace Qt::StringLiterals;

namespace fldc::bench {

namespace {

// The header text that makes data units 8 bits wide, so that addresses count bytes as the other
// readers have it.
constexpr const char* byteHeader = "JWA2";
constexpr const char* wordHeader = "WORD";

constexpr const char* bareName = "bare parser, mmap and table";
constexpr const char* plainName = "reader, without compression";
constexpr const char* plainWordsName = "reader, without compression, 16-bit units";
constexpr const char* compressedName = "reader, with compression";
constexpr const char* zlibName = "zlib compress() alone";

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// The first table's data of the file; empty when it is not valid.
QByteArray readFirmware(const QString& path, Compression compression)
{
    FileService files;
    const auto images = std::make_shared<colFiles>();
    SRecordReader reader(files, images, compression);
    if (const auto problem = reader.read(path)) {
        std::fprintf(stderr, "%s\n", qPrintable(problem->text()));
        return {};
    }
    return images->Item(1)->Definitiontables()->Datablocks(0)->data();
}

bool parseBareFile(const QString& path, const QByteArray& payload)
{
    FileService files;
    const auto content = files.read(path);
    const auto data = parseBare(content->bytes());
    return data && std::ssize(*data) == payload.size();
}

bool compressAlone(const QByteArray& payload)
{
    QByteArray packed(payload.size(), Qt::Uninitialized);
    auto size = static_cast<uLongf>(packed.size());
    const int result = compress(reinterpret_cast<Bytef*>(packed.data()), &size,
                                reinterpret_cast<const Bytef*>(payload.constData()),
                                static_cast<uLong>(payload.size()));
    return result == Z_OK || result == Z_BUF_ERROR;
}

bool runProcess(const QString& program, const QStringList& arguments)
{
    return QProcess::execute(program, arguments) == 0;
}

struct Sample {
    QString byteFile;
    QString wordFile;
    QByteArray payload;
};

std::optional<Sample> makeSample(const QString& folder, const QByteArray& payload)
{
    const Sample sample{folder + u"/bytes.srec"_s, folder + u"/words.srec"_s, payload};
    const bool made = writeFile(sample.byteFile, sRecordText(payload, byteHeader, 1)) &&
                      writeFile(sample.wordFile, sRecordText(payload, wordHeader, 2));
    // What is fast must also be right.
    if (!made || readFirmware(sample.byteFile, Compression::None) != payload ||
        readFirmware(sample.wordFile, Compression::Zlib) != payload) {
        std::fprintf(stderr, "the sample file was not read back as it was written\n");
        return std::nullopt;
    }
    return sample;
}

bool measureInProcess(const Sample& sample, int rounds, const char* kind)
{
    const auto reads = [&](const QString& path, Compression compression) {
        return [&sample, path, compression] {
            return readFirmware(path, compression).size() == sample.payload.size();
        };
    };
    SideBySide race(Time::Processor);
    race.add(bareName, [&] { return parseBareFile(sample.byteFile, sample.payload); });
    race.add(plainName, reads(sample.byteFile, Compression::None));
    race.add(plainWordsName, reads(sample.wordFile, Compression::None));
    race.add(compressedName, reads(sample.byteFile, Compression::Zlib));
    race.add(zlibName, [&] { return compressAlone(sample.payload); });
    if (!race.measure(rounds))
        return false;
    const double mebibytes = static_cast<double>(sample.payload.size()) / 1048576.0;
    std::printf("\n%.0f MiB of %s, in process, processor time, median of %d\n\n", mebibytes, kind,
                rounds);
    std::printf("| %-44s | %9s | %9s | %9s | %8s |\n", "", "median ms", "fastest", "slowest",
                "MiB/s");
    race.print(mebibytes);
    const double reader = race.median(plainName);
    std::printf(
        "\nwithout compression / bare parser:    %.2f (16-bit units %.2f; wanted: at most 2)\n"
        "with compression / zlib alone:        %.3f (wanted: at most 1.1)\n",
        reader / race.median(bareName), race.median(plainWordsName) / race.median(bareName),
        race.median(compressedName) / race.median(zlibName));
    return true;
}

bool measureProcesses(const Sample& sample, const QString& self, const QString& folder, int rounds)
{
    const QString out = folder + u"/out.bin"_s;
    const QString srecCat = QStandardPaths::findExecutable(u"srec_cat"_s);
    const QString objcopy = QStandardPaths::findExecutable(u"objcopy"_s);
    const std::string ownName = "reader, without compression";
    SideBySide race(Time::Wall);
    race.add(ownName, [&] { return runProcess(self, {u"--convert"_s, sample.byteFile, out}); });
    if (!srecCat.isEmpty())
        race.add("srec_cat", [&] {
            return runProcess(srecCat,
                              {sample.byteFile, u"-motorola"_s, u"-o"_s, out, u"-binary"_s});
        });
    if (!objcopy.isEmpty())
        race.add("objcopy", [&] {
            return runProcess(objcopy,
                              {u"-I"_s, u"srec"_s, u"-O"_s, u"binary"_s, sample.byteFile, out});
        });
    if (!race.measure(rounds))
        return false;
    const double mebibytes = static_cast<double>(sample.payload.size()) / 1048576.0;
    std::printf("\n%.0f MiB, whole processes, read and write binary, wall clock, median of %d\n\n",
                mebibytes, rounds);
    std::printf("| %-44s | %9s | %9s | %9s | %8s |\n", "", "median ms", "fastest", "slowest",
                "MiB/s");
    race.print(mebibytes);
    std::printf("\nsrec_cat / reader: %.1f, objcopy / reader: %.1f (0: not installed)\n",
                race.median("srec_cat") / race.median(ownName),
                race.median("objcopy") / race.median(ownName));
    return true;
}

QByteArray randomBytes(qsizetype size)
{
    std::mt19937 random(7); // any fixed number
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

bool measureSize(int mebibytes, const QString& self)
{
    const QTemporaryDir folder;
    if (!folder.isValid())
        return false;
    const int rounds = mebibytes < 8 ? 21 : mebibytes < 32 ? 9 : 5;
    const qsizetype size = qsizetype{mebibytes} * 1048576;
    const auto code = makeSample(folder.path(), codeLikeBytes(size));
    if (!code || !measureInProcess(*code, rounds, "code-like bytes") ||
        !measureProcesses(*code, self, folder.path(), rounds))
        return false;
    const auto random = makeSample(folder.path(), randomBytes(size));
    return random && measureInProcess(*random, rounds, "random bytes, which do not compress");
}

int run(const QStringList& arguments)
{
    if (arguments.value(1) == u"--convert") {
        const QByteArray data = readFirmware(arguments.value(2), Compression::None);
        return !data.isEmpty() && writeFile(arguments.value(3), data) ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    QStringList sizes = arguments.mid(1);
    if (sizes.isEmpty())
        sizes = {u"1"_s, u"16"_s, u"64"_s};
    for (const QString& size : sizes) {
        if (size.toInt() < 1 || !measureSize(size.toInt(), arguments.value(0)))
            return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

} // namespace

} // namespace fldc::bench

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return fldc::bench::run(arguments);
}
