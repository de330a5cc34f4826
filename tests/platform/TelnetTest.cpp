#include "Helpers.h"

#include "platform/RemoteAddress.h"
#include "platform/qt/remote/Telnet.h"
#include "platform/qt/remote/TelnetOptions.h"

#include <QStringList>

#include <vector>

#include <gtest/gtest.h>

namespace fldc {
namespace {

QByteArray bytes(const char* hex)
{
    return QByteArray::fromHex(hex);
}

/// What was understood, as text: "data 41", "fd 2c", "[2c6500]". Data in one piece, however they
/// come.
class Notes final : public telnet::IReceiver {
public:
    void data(QByteArrayView part) override { m_data += part; }
    void negotiate(std::uint8_t verb, std::uint8_t option) override
    {
        note(QByteArray(1, static_cast<char>(verb)).toHex() + ' ' +
             QByteArray(1, static_cast<char>(option)).toHex());
    }
    void subnegotiate(const QByteArray& body) override { note('[' + body.toHex() + ']'); }
    [[nodiscard]] QByteArrayList taken()
    {
        note({});
        return m_notes;
    }

private:
    void note(const QByteArray& text)
    {
        if (!m_data.isEmpty())
            m_notes.append("data " + m_data.toHex());
        if (!text.isEmpty())
            m_notes.append(text);
        m_data.clear();
    }
    QByteArray m_data;
    QByteArrayList m_notes;
};

TEST(Telnet, ReadsAStreamWhateverPiecesItComesIn)
{
    struct Row {
        const char* stream;
        QByteArrayList meaning;
    };
    const std::vector<Row> rows{
        {"", {}},
        {"0d000a1113", {"data 0d000a1113"}},
        {"41ffff42ffffffff", {"data 41ff42ffff"}},
        {"fffb00fffd2cfffe01fffc03", {"fb 00", "fd 2c", "fe 01", "fc 03"}},
        {"41fff142fff9", {"data 4142"}}, // no operation, go ahead
        {"41fffa2c650001c200fff042", {"data 41", "[2c650001c200]", "data 42"}},
        {"fffa2c65ffff0000fffffff0", {"[2c65ff0000ff]"}},
        {"fffafff041", {"data 41"}},
        {"fffa2c6bfffb0041", {"fb 00", "data 41"}}, // broken off
        {"fffa2cfffa2c6c00fff0", {"[2c6c00]"}},
        {"fffdffff41", {"fd ff"}}, // then a command that means nothing
    };
    for (const Row& row : rows) {
        const QByteArray stream = bytes(row.stream);
        for (qsizetype piece = 1; piece <= stream.size() + 1; ++piece) {
            Notes notes;
            telnet::Decoder decoder;
            for (qsizetype i = 0; i < stream.size(); i += piece)
                decoder.take(stream.mid(i, piece), notes);
            EXPECT_EQ(notes.taken(), row.meaning) << row.stream << " by " << piece;
        }
    }
    telnet::Decoder decoder;
    Notes notes;
    decoder.take(bytes("fffa2c").append(100'000, 'x').append(bytes("fff041")), notes);
    const QByteArrayList taken = notes.taken();
    ASSERT_EQ(taken.size(), 2);
    EXPECT_LT(taken[0].size(), 1000) << "a body without end must not fill the memory";
}

TEST(Telnet, AgreesOnWhatALineNeedsAndRefusesTheRest)
{
    struct Row {
        const char* heard; ///< after the offer, verb and option each
        const char* answered;
        bool agreed;
        bool refused;
    };
    const std::vector<Row> rows{
        {"", "", false, false},
        {"fd00fb00fd2c", "", true, false},
        {"fb03fd03fb01fe01fd00fb00fd2c", "fffe01", true, false}, // with an echo, as ser2net
        {"fd00fb00fd2cfe03fc03", "", true, false},               // go-ahead is not needed
        {"fd00fb00fd2cfd00fb00fd2c", "", true, false},           // no answer to what is so already
        {"fd00fb00fe2c", "", false, true},
        {"fe00fb00fd2c", "", false, true},
        {"fd00fc00fd2c", "", false, true},
        {"fd00fb00fd2cfe2c", "fffc2c", false, true}, // taken back later
        {"fd18fb2cfd06", "fffc18fffe2cfffc06", false, false},
    };
    for (const Row& row : rows) {
        telnet::Options options;
        EXPECT_EQ(options.offer(), bytes("fffb00fffd00fffb03fffd03fffb2c"));
        QByteArray answers;
        const QByteArray heard = bytes(row.heard);
        for (qsizetype i = 0; i < heard.size(); i += 2)
            answers += options.answer(static_cast<std::uint8_t>(heard[i]),
                                      static_cast<std::uint8_t>(heard[i + 1]));
        EXPECT_EQ(answers, bytes(row.answered)) << row.heard;
        EXPECT_EQ(options.agreed(), row.agreed) << row.heard;
        EXPECT_EQ(options.refused(), row.refused) << row.heard;
    }
}

TEST(RemoteAddress, IsReadStrictly)
{
    const std::vector<std::pair<const char*, RemoteAddress>> rows{
        {"rfc2217://bench:2217", {u"bench"_s, 2217}},
        {"rfc2217://10.1.2.3:1/", {u"10.1.2.3"_s, 1}},
        {"RFC2217://[fe80::1]:65535", {u"fe80::1"_s, 65535}},
    };
    for (const auto& [text, address] : rows)
        EXPECT_EQ(remoteAddress(QString::fromLatin1(text)), address) << text;
    for (const char* text :
         {"", "/dev/ttyS0", "telnet://a:1", "rfc2217:a:1", "rfc2217://a", "rfc2217://a:0",
          "rfc2217://a:65536", "rfc2217://:1", "rfc2217://fe80::1:1", "rfc2217://u@a:1",
          "rfc2217://a:1/x", "rfc2217://a:1?x", "rfc2217://a:1#x", "rfc2217://a b:1"})
        EXPECT_FALSE(remoteAddress(QString::fromLatin1(text))) << text;
}

} // namespace
} // namespace fldc
