// The stream of a remote line. It says the same in whatever pieces it comes, and what is sent to it
// would be read back as it was.

#include "platform/qt/remote/Telnet.h"

#include "Fuzzing.h"
#include <QList>

using namespace fldc;

namespace {

struct Told final : telnet::IReceiver {
    QList<QByteArray> all{"data "};

    void data(QByteArrayView bytes) override
    {
        if (!all.last().startsWith("data "))
            all.append("data ");
        all.last() += bytes;
    }
    void negotiate(std::uint8_t verb, std::uint8_t option) override
    {
        all.append("option " + QByteArray::number(verb) + ' ' + QByteArray::number(option));
    }
    void subnegotiate(const QByteArray& body) override { all.append("body " + body); }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    FuzzedDataProvider fuzz(bytes, size);
    Told pieces;
    telnet::Decoder decoder;
    QByteArray whole;
    while (fuzz.remaining_bytes() > 0) {
        const QByteArray piece = QByteArray::fromStdString(fuzz.ConsumeRandomLengthString());
        decoder.take(piece, pieces);
        whole += piece;
    }
    Told told;
    telnet::Decoder().take(whole, told);
    EXPECT_EQ(told.all, pieces.all);

    const QByteArray body = whole.left(255);
    Told back;
    telnet::Decoder().take(telnet::escaped(whole).append(telnet::subnegotiation(44, body)), back);
    EXPECT_EQ(back.all,
              (QList<QByteArray>{QByteArray("data ") + whole, QByteArray("body ,") + body}));
    return 0;
}
