#include "device/Faults.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>
#include <utility>

namespace simulator {

namespace {

// What stands behind the equals sign, and whether an event stands behind the at sign.
enum class Takes { Nothing, Number, NumberAndGap, Speed, Code, Word, Words, SomeBytes };
enum class At { Nowhere, AnEvent, AnEventOrAll };

struct KindInfo {
    FaultKind kind;
    std::string_view name;
    At at;
    Takes takes;
    std::string_view usage;
    std::string_view help;
};

constexpr std::array<KindInfo, 20> kinds{{
    {FaultKind::Refuse, "fault", At::AnEvent, Takes::Word, "fault@33:2=8104",
     "the second erase (33) is not carried out but refused with 8104"},
    {FaultKind::Busy, "busy", At::AnEventOrAll, Takes::NumberAndGap, "busy@33=5/400",
     "5 busy words AE AE before the answer, 400 ms apart (100 without /)"},
    {FaultKind::BusyList, "busylist", At::AnEvent, Takes::Words, "busylist@33:1=AEAE0003",
     "the first erase is answered with AE AE, these words, AF AF"},
    {FaultKind::Corrupt, "corrupt", At::AnEventOrAll, Takes::Nothing, "corrupt@31:1",
     "the first record of the answer, or else its first word, is off by one"},
    {FaultKind::Garbage, "garbage", At::AnEventOrAll, Takes::SomeBytes, "garbage@38=00FF13",
     "these bytes come before the answer"},
    {FaultKind::Reply, "reply", At::AnEventOrAll, Takes::SomeBytes, "reply@38=1337AFAF",
     "these bytes come in place of the answer to what is carried out"},
    {FaultKind::Cut, "cut", At::AnEventOrAll, Takes::Number, "cut@31:1=5",
     "the answer ends after 5 bytes"},
    {FaultKind::Split, "split", At::AnEventOrAll, Takes::NumberAndGap, "split=1/20",
     "every answer comes in pieces of 1 byte, 20 ms apart (10 without /)"},
    {FaultKind::Delay, "delay", At::AnEventOrAll, Takes::Number, "delay@35:4=1500",
     "the answer comes 1500 ms late"},
    {FaultKind::Silent, "silent", At::AnEvent, Takes::Nothing, "silent@start:2",
     "no answer; here: no start-up byte at the second restart"},
    {FaultKind::HangUp, "hangup", At::AnEvent, Takes::Nothing, "hangup@35:4",
     "the line is pulled out when the fourth write arrives; ends the run"},
    {FaultKind::SilentAfter, "silent-after", At::Nowhere, Takes::Number, "silent-after=12",
     "nothing is said after 12 commands (0: nothing ever)"},
    {FaultKind::Unknown, "unknown", At::Nowhere, Takes::Code, "unknown=3C",
     "the command is not recognised (8001)"},
    {FaultKind::Deaf, "deaf", At::Nowhere, Takes::Speed, "deaf=115200",
     "the radio changes to that speed, but nothing gets through at it"},
    {FaultKind::IgnoresSpeed, "ignores-speed", At::Nowhere, Takes::Speed, "ignores-speed=115200",
     "asked for that speed the radio says nothing and keeps its own"},
    {FaultKind::AnswersAt, "answers-at", At::Nowhere, Takes::Speed, "answers-at=9600",
     "the radio starts at that speed in place of 19200"},
    {FaultKind::PowerCycle, "power-cycle", At::Nowhere, Takes::Nothing, "power-cycle",
     "the reset byte does nothing, only a power cycle restarts (SIGUSR2)"},
    {FaultKind::F1PowerCycle, "f1-power-cycle", At::Nowhere, Takes::Nothing, "f1-power-cycle",
     "the radio starts at 9600; after a power cycle (F1 is then held) it takes commands at 19200"},
    {FaultKind::PowerCycleAfter, "power-cycle-after", At::Nowhere, Takes::Number,
     "power-cycle-after=4", "a power cycle 4 s after a host first opens the line"},
    {FaultKind::AlreadyInUpgradeMode, "already-in-upgrade-mode", At::Nowhere, Takes::Speed,
     "already-in-upgrade-mode=57600", "the radio takes commands at that speed from the beginning"},
}};

[[noreturn]] void reject(const std::string& why)
{
    throw std::invalid_argument(why);
}

unsigned parseNumber(std::string_view text, int base, std::string_view what)
{
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        reject("'" + std::string(text) + "' is not " + std::string(what));
    return value;
}

Bytes parseBytes(std::string_view text, std::size_t multiple, std::string_view what)
{
    Bytes bytes;
    if (text.empty() || text.size() % (2 * multiple) != 0)
        reject("'" + std::string(text) + "' is not " + std::string(what));
    for (std::size_t i = 0; i < text.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(parseNumber(text.substr(i, 2), 16, what)));
    return bytes;
}

unsigned parseCode(std::string_view text)
{
    constexpr std::string_view what = "a command code of two hexadecimal digits";
    return parseBytes(text.size() == 2 ? text : std::string_view(), 1, what).front();
}

unsigned parseSpeed(std::string_view text)
{
    constexpr std::array<unsigned, 4> speeds{9600, 19200, 57600, 115200};
    constexpr std::string_view what = "a speed (9600, 19200, 57600 or 115200)";
    const unsigned speed = parseNumber(text, 10, what);
    if (std::find(speeds.begin(), speeds.end(), speed) == speeds.end())
        reject("'" + std::string(text) + "' is not " + std::string(what));
    return speed;
}

void parseRange(std::string_view text, Fault& fault)
{
    constexpr std::string_view what = "a count: 2, 2+ or 2-4";
    const auto dash = text.find('-');
    const bool open = text.ends_with('+');
    fault.first = parseNumber(text.substr(0, open ? text.size() - 1 : dash), 10, what);
    if (!open)
        fault.last = dash == text.npos ? fault.first : parseNumber(text.substr(dash + 1), 10, what);
    if (fault.first == 0 || fault.last < fault.first)
        reject("'" + std::string(text) + "' is not " + std::string(what));
}

void parseEvent(std::string_view text, Fault& fault)
{
    const auto colon = text.find(':');
    const std::string_view name = text.substr(0, colon);
    if (name == "start")
        fault.event = startEvent;
    else if (name == "logon")
        fault.event = logOnEvent;
    else if (name == "boot")
        fault.event = bootEvent;
    else if (name.size() == 2)
        fault.event = static_cast<Event>(parseCode(name));
    else
        reject("'" + std::string(name) +
               "' is not an event (a command code, start, logon or boot)");
    if (colon != text.npos)
        parseRange(text.substr(colon + 1), fault);
}

void parseValue(Takes takes, std::string_view text, Fault& fault)
{
    const auto slash = takes == Takes::NumberAndGap ? text.find('/') : text.npos;
    switch (takes) {
    case Takes::Nothing:
        break;
    case Takes::NumberAndGap:
        fault.gap = milliseconds(fault.kind == FaultKind::Split ? 10 : 100);
        if (slash != text.npos)
            fault.gap =
                milliseconds(parseNumber(text.substr(slash + 1), 10, "a number of milliseconds"));
        fault.number = parseNumber(text.substr(0, slash), 10, "a number above 0");
        if (fault.number == 0)
            reject("'0' is not a number above 0");
        break;
    case Takes::Number:
        fault.number = parseNumber(text, 10, "a number");
        break;
    case Takes::Speed:
        fault.number = parseSpeed(text);
        break;
    case Takes::Code:
        fault.number = parseCode(text);
        break;
    case Takes::Word:
        fault.number = wordAt(
            parseBytes(text.size() == 4 ? text : "", 2, "a word of four hexadecimal digits"), 0);
        break;
    case Takes::Words:
        fault.bytes = parseBytes(text, 2, "words of four hexadecimal digits each");
        break;
    case Takes::SomeBytes:
        fault.bytes = parseBytes(text, 1, "bytes of two hexadecimal digits each");
        break;
    }
}

// --- what faults do to an answer: each function takes it as it is and returns it changed

Pieces inFront(Pieces pieces, const Bytes& bytes)
{
    pieces.insert(pieces.begin(), Piece{bytes});
    return pieces;
}

Pieces corrupted(Pieces pieces)
{
    constexpr std::array<std::uint8_t, 4> recordHeaders{0x43, 0x46, 0x49, 0x52};
    const auto isRecord = [&](const Piece& piece) {
        return piece.bytes.size() > 2 &&
               std::count(recordHeaders.begin(), recordHeaders.end(), piece.bytes.front()) > 0;
    };
    const auto record = std::find_if(pieces.begin(), pieces.end(), isRecord);
    if (record != pieces.end())
        ++record->bytes.back(); // the low byte of its checksum
    else if (!pieces.empty() && !pieces.front().bytes.empty())
        ++pieces.front().bytes.back();
    return pieces;
}

Pieces cutAfter(Pieces pieces, std::size_t count)
{
    for (Piece& piece : pieces) {
        piece.bytes.resize(std::min(piece.bytes.size(), count));
        count -= piece.bytes.size();
    }
    return pieces;
}

Pieces splitUp(const Pieces& pieces, std::size_t size, milliseconds gap)
{
    Pieces split;
    for (const Piece& piece : pieces) {
        for (std::size_t i = 0; i < piece.bytes.size(); i += size) {
            const auto begin = piece.bytes.begin() + static_cast<std::ptrdiff_t>(i);
            const auto count = static_cast<std::ptrdiff_t>(std::min(size, piece.bytes.size() - i));
            split.push_back(
                {Bytes(begin, begin + count), split.empty() || i == 0 ? piece.pause : gap});
        }
    }
    return split;
}

Pieces afterBusyWords(Pieces pieces, unsigned count, milliseconds gap)
{
    Pieces all(count, Piece{wordsToBytes({busyWord}), gap});
    all.front().pause = milliseconds(0);
    if (!pieces.empty())
        pieces.front().pause += gap;
    all.insert(all.end(), pieces.begin(), pieces.end());
    return all;
}

Pieces shaped(const Fault& fault, Pieces pieces)
{
    switch (fault.kind) {
    case FaultKind::Busy:
        return afterBusyWords(std::move(pieces), fault.number, fault.gap);
    case FaultKind::BusyList:
        return {Piece{wordsToBytes({busyWord})}, Piece{fault.bytes},
                Piece{wordsToBytes({doneWord})}};
    case FaultKind::Corrupt:
        return corrupted(std::move(pieces));
    case FaultKind::Garbage:
        return inFront(std::move(pieces), fault.bytes);
    case FaultKind::Reply:
        return {Piece{fault.bytes}};
    case FaultKind::Cut:
        return cutAfter(std::move(pieces), fault.number);
    case FaultKind::Split:
        return splitUp(pieces, fault.number, fault.gap);
    case FaultKind::Delay:
        if (!pieces.empty())
            pieces.front().pause += milliseconds(fault.number);
        return pieces;
    default:
        return pieces;
    }
}

} // namespace

Fault parseFault(std::string_view text)
{
    const auto equals = text.find('=');
    const auto at = text.substr(0, equals).find('@');
    const std::string_view name = text.substr(0, std::min(at, equals));
    const auto* info =
        std::find_if(kinds.begin(), kinds.end(), [&](auto& kind) { return kind.name == name; });
    if (info == kinds.end())
        reject("there is no fault '" + std::string(name) + "'; --help lists them");
    const std::string example = " (as in " + std::string(info->usage) + ")";
    Fault fault{.kind = info->kind, .event = {}, .bytes = {}};
    try {
        if (at == text.npos && info->at == At::AnEvent)
            reject("it needs an event");
        if (at != text.npos && info->at == At::Nowhere)
            reject("it takes no event");
        if ((equals == text.npos) != (info->takes == Takes::Nothing))
            reject(equals == text.npos ? "it needs a value" : "it takes no value");
        if (at != text.npos)
            parseEvent(text.substr(at + 1, equals == text.npos ? equals : equals - at - 1), fault);
        if (equals != text.npos)
            parseValue(info->takes, text.substr(equals + 1), fault);
    } catch (const std::invalid_argument& error) {
        reject(error.what() + example);
    }
    return fault;
}

std::string faultHelp()
{
    std::string help =
        "Faults, each shown by an example. An event is a command code, start, logon or boot; "
        "behind it\n:2 means the second time, :2+ from then on, :2-4 a range, nothing every "
        "time. Where the\nexample has no event for a change of an answer, one may be given.\n";
    for (const KindInfo& kind : kinds)
        help += "  " + std::string(kind.usage) + "\n      " + std::string(kind.help) + "\n";
    return help;
}

Pieces Effects::shape(Pieces pieces) const
{
    for (const Fault& fault : shaping)
        pieces = shaped(fault, std::move(pieces));
    return pieces;
}

Effects Faults::meet(Event event)
{
    const unsigned count = ++m_counts[event];
    Effects effects;
    for (const Fault& fault : m_faults) {
        if (fault.event.value_or(event) != event || count < fault.first || count > fault.last)
            continue;
        if (fault.kind == FaultKind::HangUp)
            effects.hangUp = true;
        else if (fault.kind == FaultKind::Silent)
            effects.silent = true;
        else if (fault.kind == FaultKind::Refuse)
            effects.refusal = static_cast<std::uint16_t>(fault.number);
        else
            effects.shaping.push_back(fault);
    }
    return effects;
}

std::optional<unsigned> Faults::number(FaultKind kind) const
{
    const auto found = std::find_if(m_faults.begin(), m_faults.end(),
                                    [&](const Fault& fault) { return fault.kind == kind; });
    return found == m_faults.end() ? std::nullopt : std::optional(found->number);
}

bool Faults::has(FaultKind kind, unsigned value) const
{
    return std::any_of(m_faults.begin(), m_faults.end(), [&](const Fault& fault) {
        return fault.kind == kind && fault.number == value;
    });
}

} // namespace simulator
