#include "replay/Recording.h"

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace simulator {

namespace {

constexpr std::string_view sentMark = "  Sent     : ";
constexpr std::string_view receivedMark = "  Received : ";

constexpr std::uint8_t resetByte = 0x5E;
constexpr std::uint8_t wantsBootByte = 0x56;
constexpr std::uint8_t readyByte = 0x76;
constexpr std::uint8_t setSpeedCode = 0x30;
constexpr std::uint8_t restartCode = 0x36;
// Identifiers end with '*'; a '?' behind it says that no boot application is wanted.
constexpr std::array<std::uint8_t, 2> noBootWanted{0x2A, 0x3F};

[[noreturn]] void refuse(int line, const std::string& why)
{
    throw std::runtime_error("line " + std::to_string(line) + " of the log: " + why);
}

Bytes bytesOf(std::string_view digits, int line)
{
    Bytes bytes;
    const auto value = [line](char digit) {
        constexpr std::string_view known = "0123456789ABCDEF";
        const auto at = known.find(digit);
        if (at == std::string_view::npos)
            refuse(line, "bytes that are not hexadecimal digits");
        return static_cast<unsigned>(at);
    };
    if (digits.empty() || digits.size() % 2 != 0)
        refuse(line, "half a byte, or none");
    for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(value(digits[i]) * 16 + value(digits[i + 1])));
    return bytes;
}

/// The bytes behind `mark`, when the line has it.
std::optional<Bytes> entry(std::string_view text, std::string_view mark, int line)
{
    // The mark stands right behind date and time: a note that quotes it has a word before it.
    const auto at = text.find(mark);
    if (at == std::string_view::npos || at == 0 || text[at - 1] < '0' || text[at - 1] > '9')
        return std::nullopt;
    return bytesOf(text.substr(at + mark.size()), line);
}

bool isLogOn(const Exchange& exchange)
{
    return exchange.sent == Bytes{0x7E} || exchange.sent == Bytes{0x3C, 0x5E, 0x23};
}

bool contains(const Bytes& bytes, ByteView part)
{
    return std::search(bytes.begin(), bytes.end(), part.begin(), part.end()) != bytes.end();
}

// The radio restarts at its first speed. A host that then resets it heard nothing.
void addRestartByte(std::vector<Exchange>& exchanges, std::size_t i, std::uint8_t startUpByte)
{
    Exchange& exchange = exchanges[i];
    if (exchange.sent.size() == 1 || exchange.sent.front() != restartCode)
        return;
    const bool heard = i + 1 == exchanges.size() || exchanges[i + 1].session != exchange.session;
    if (heard && exchange.answer.empty())
        exchange.answer = {startUpByte};
    exchange.changesSpeed = true;
}

// A boot application may hold any bytes, those of reset and log-on too: it begins behind the log-on
// of a radio that wants it and ends with the first answer.
void addStartUpBytes(std::vector<Exchange>& exchanges)
{
    bool loading = false;
    std::uint8_t startUpByte = readyByte;
    for (std::size_t i = 0; i < exchanges.size(); ++i) {
        Exchange& exchange = exchanges[i];
        if (loading || !isLogOn(exchange)) {
            loading = loading && exchange.answer.empty();
            addRestartByte(exchanges, i, startUpByte);
            continue;
        }
        if (i == 0 || exchanges[i - 1].sent != Bytes{resetByte})
            refuse(exchange.line, "a log-on without a reset before it");
        loading = !contains(exchange.answer, noBootWanted);
        startUpByte = loading ? wantsBootByte : readyByte;
        exchanges[i - 1].answer = {startUpByte};
    }
}

} // namespace

std::vector<Exchange> readRecording(std::istream& log)
{
    std::vector<Exchange> exchanges;
    std::string text;
    int session = 0;
    for (int line = 1; std::getline(log, text); ++line) {
        if (!text.empty() && text.back() == '\r')
            text.pop_back();
        if (text.starts_with("START LOG ("))
            ++session;
        if (auto sent = entry(text, sentMark, line)) {
            const bool changesSpeed = sent->size() > 1 && sent->front() == setSpeedCode;
            exchanges.push_back({line, session, std::move(*sent), {}, changesSpeed});
        } else if (const auto received = entry(text, receivedMark, line)) {
            if (exchanges.empty())
                refuse(line, "an answer before anything was sent");
            Bytes& answer = exchanges.back().answer;
            answer.insert(answer.end(), received->begin(), received->end());
        }
    }
    if (exchanges.empty())
        throw std::runtime_error("the log holds nothing that was sent");
    addStartUpBytes(exchanges);
    return exchanges;
}

} // namespace simulator
