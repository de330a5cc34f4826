// What the best compression gains on program code and what it costs, beside zlib's default: bytes
// and processor time for 1 MiB from the middle of three program files. The files may be given as
// arguments; else the first three that are found of a list.

#include "Stopwatch.h"
#include "firmware/colDataBlocks.h"

#include <QFile>
#include <QStringList>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace fldc::bench {

namespace {

constexpr qint64 pieceSize = 1 << 20;
constexpr int wantedFiles = 3;
constexpr int rounds = 9;
constexpr std::array candidates{
    "/usr/bin/bash",
    "/usr/bin/perl",
    "/usr/bin/python3.11",
    "/usr/bin/cmake",
    "/usr/lib/x86_64-linux-gnu/libstdc++.so.6",
    "/usr/lib/x86_64-linux-gnu/libQt6Core.so.6",
};

QByteArray pieceOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() < pieceSize)
        return {};
    file.seek((file.size() - pieceSize) / 2);
    return file.read(pieceSize);
}

std::int32_t compressedSize(const QByteArray& piece, Compression compression)
{
    colDataBlocks blocks;
    blocks.AddBytes({reinterpret_cast<const std::uint8_t*>(piece.constData()),
                     static_cast<std::size_t>(piece.size())});
    blocks.CompressData(compression);
    return blocks.CompressedCount();
}

bool measure(const QString& path, const QByteArray& piece)
{
    const std::int32_t standard = compressedSize(piece, Compression::Zlib);
    const std::int32_t best = compressedSize(piece, Compression::Best);
    SideBySide race(Time::Processor);
    race.add("standard", [&] { return compressedSize(piece, Compression::Zlib) == standard; });
    race.add("best", [&] { return compressedSize(piece, Compression::Best) == best; });
    if (standard <= 0 || best <= 0 || !race.measure(rounds))
        return false;
    std::printf("| %-44s | %8d | %8d | %5.3f | %6.0f | %6.0f |\n", qPrintable(path), standard, best,
                double(best) / standard, race.median("standard"), race.median("best"));
    return true;
}

int run(QStringList paths)
{
    if (paths.isEmpty()) {
        for (const char* candidate : candidates)
            paths.append(QString::fromLatin1(candidate));
    }
    std::printf("1 MiB of each, processor time in ms, median of %d; wanted: ratio at most 0.96\n\n"
                "| %-44s | %8s | %8s | %5s | %6s | %6s |\n",
                rounds, "", "standard", "best", "ratio", "ms", "ms");
    int measured = 0;
    for (const QString& path : std::as_const(paths)) {
        const QByteArray piece = pieceOf(path);
        if (measured == wantedFiles || piece.isEmpty())
            continue;
        if (!measure(path, piece))
            return EXIT_FAILURE;
        ++measured;
    }
    return measured > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

} // namespace fldc::bench

int main(int argc, char** argv)
{
    QStringList paths;
    for (int i = 1; i < argc; ++i)
        paths.append(QString::fromLocal8Bit(argv[i]));
    return fldc::bench::run(paths);
}
