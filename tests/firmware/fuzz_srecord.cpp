// Fuzzes the reading of firmware files. Build with clang and -DFLDC_FUZZ=ON, then run
// `fuzz_srecord -max_len=4096 CORPUS`. It stops at a crash, at a broken promise of the data blocks,
// and when the fast way of reading a record gives anything else than the slow one.

#include "firmware/SRecordReader.h"
#include "platform/IFileService.h"
#include "platform/IMessageBox.h"
#include "platform/PlatformFailure.h"
#include "platform/ShowError.h"
#include "shared/HexText.h"
#include "shared/LastError.h"

#include <cstdlib>

#include <zlib.h>

using namespace fldc;

namespace {

class Content : public IFileContent {
public:
    explicit Content(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}
    [[nodiscard]] std::span<const std::uint8_t> bytes() const override { return m_bytes; }

private:
    std::span<const std::uint8_t> m_bytes;
};

class OneFile : public IFileService {
public:
    explicit OneFile(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}
    [[nodiscard]] std::unique_ptr<IFileContent> read(const QString&) override
    {
        return std::make_unique<Content>(m_bytes);
    }
    [[nodiscard]] bool exists(const QString&) override { std::abort(); }
    [[nodiscard]] std::unique_ptr<IOutputFile> openForAppending(const QString&) override
    {
        std::abort();
    }
    [[nodiscard]] std::unique_ptr<IOutputFile> openForWriting(const QString&) override
    {
        std::abort();
    }
    void checkWritable(const QString&) override { std::abort(); }
    [[nodiscard]] QDate lastModified(const QString&) override { std::abort(); }
    void copy(const QString&, const QString&) override { std::abort(); }
    void remove(const QString&) override { std::abort(); }

private:
    std::span<const std::uint8_t> m_bytes;
};

class Boxes : public IMessageBox {
public:
    void show(const QString& text, MessageKind) override { texts += text + u'\n'; }
    [[nodiscard]] bool askYesNo(const QString&) override { std::abort(); }

    QString texts;
};

void require(bool condition)
{
    if (!condition)
        std::abort();
}

void checkCompressed(colDataBlocks& blocks)
{
    if (blocks.CompressedCount() <= 0)
        return;
    QByteArray packed;
    std::int32_t size = blocks.CompressedCount();
    require(blocks.GetNextChunk(size, true, packed) && size == blocks.CompressedCount());
    QByteArray plain(blocks.Count(), '\0');
    auto plainSize = static_cast<uLongf>(plain.size());
    require(uncompress(reinterpret_cast<Bytef*>(plain.data()), &plainSize,
                       reinterpret_cast<const Bytef*>(packed.constData()),
                       static_cast<uLong>(packed.size())) == Z_OK);
    require(plain == blocks.data().left(blocks.Count()));
}

// Everything that reading the text brings about, as one text.
QString readAll(std::span<const std::uint8_t> text)
{
    Boxes boxes;
    const ErrorBoxScope scope(boxes);
    OneFile file(text);
    const auto images = std::make_shared<colFiles>();
    const auto problem = SRecordReader(file, images).read(QStringLiteral("f"));
    require(lastError().number() == (problem ? 34 : 0));

    QString all = boxes.texts + (problem ? problem->text() : QString());
    for (const auto& image : images->items()) {
        all += u'\n' + image->Name() + u' ' + image->TagName() + u' ' +
               QString::number(image->intNumberOfBits()) + image->strFileType() +
               image->strFileTerminator();
        for (std::int32_t i = 0; i < image->CountTargets(); ++i)
            all += u' ' + image->Hardware(i) + u':' + QString::number(image->DeviceID(i));
        for (std::int32_t i = 0; i < image->Definitiontables()->Count(); ++i) {
            const DataDefinition table = image->Definitiontables()->Item(i);
            colDataBlocks& blocks = *table.Datablocks;
            all += u' ' + table.Address + u'+' + QString::number(table.Length) + u'=' +
                   blocks.GetAllData() + u'/' + QString::number(blocks.CompressedCount());
            const bool finished = blocks.CompressedCount() != 0;
            const qsizetype padding = blocks.data().size() - blocks.Count();
            require(finished ? padding == blocks.Count() % 2 : padding >= 0);
            require(finished || problem);
            checkCompressed(blocks);
        }
    }
    return all;
}

bool isLineEnd(std::uint8_t c)
{
    return c == '\r' || c == '\n';
}

// The text with a blank behind every data record that is as long as its count says.
std::vector<std::uint8_t> madeSlow(std::span<const std::uint8_t> text)
{
    std::vector<std::uint8_t> slow;
    for (std::size_t i = 0; i < text.size();) {
        std::size_t length = 0;
        while (i + length < text.size() && !isLineEnd(text[i + length]))
            ++length;
        const auto line = text.subspan(i, length);
        slow.insert(slow.end(), line.begin(), line.end());
        if (length >= 4 && line[0] == 'S' && line[1] >= '1' && line[1] <= '3') {
            const qsizetype count = hexDigit(line[2]) * 16 + hexDigit(line[3]);
            const bool isNumber = hexDigit(line[2]) >= 0 && hexDigit(line[3]) >= 0;
            const bool hasChecksum = count >= line[1] - '0' + 2;
            if (isNumber && hasChecksum && std::ssize(line) == 4 + 2 * count)
                slow.push_back(' ');
        }
        i += length;
        if (i < text.size())
            slow.push_back(text[i++]);
    }
    return slow;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::span text(bytes, size);
    require(readAll(text) == readAll(madeSlow(text)));
    return 0;
}
