// Fuzzes the reading of firmware files. Build with clang and -DFLDC_FUZZ=ON, then run
// `fuzz_srecord -max_len=4096 CORPUS`. It stops at a crash, at a broken promise of the data blocks,
// and when the fast way of reading a record gives anything else than the slow one.

#include "FirmwareReading.h"
#include "shared/LastError.h"
#include "support/VirtualPlatform.h"

#include <cstdlib>

using namespace fldc;

namespace {

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

// Everything that reading the text brings about, as one text.
std::string readAll(const QByteArray& text)
{
    Boxes boxes;
    VirtualPlatform machine;
    machine.files.files[QStringLiteral("f")].content = text;
    const ErrorBoxScope scope(boxes);
    const auto images = std::make_shared<colFiles>();
    const auto problem = SRecordReader(machine.files, images).read(QStringLiteral("f"));
    require(lastError().number() == (problem ? 34 : 0));

    std::string all = boxes.texts.toStdString() + test::describe(*images);
    if (problem)
        all += problem->text().toStdString();
    for (const auto& image : images->items()) {
        for (std::int32_t i = 0; i < image->Definitiontables()->Count(); ++i) {
            colDataBlocks& blocks = *image->Definitiontables()->Datablocks(i);
            const bool finished = blocks.CompressedCount() != 0;
            const qsizetype padding = blocks.data().size() - blocks.Count();
            require(finished ? padding == blocks.Count() % 2 : padding >= 0);
            require(finished || problem);
            if (blocks.CompressedCount() > 0)
                require(test::inflated(blocks) == blocks.data().left(blocks.Count()));
            all += ' ' + std::to_string(blocks.CompressedCount());
        }
    }
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    require(readAll(text) == readAll(test::madeSlow(text)));
    return 0;
}
