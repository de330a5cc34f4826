#pragma once

#include "shared/ErrorCodes.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

/// The session record: what happens between the component and a radio, as typed events, told while
/// it happens (Listener.h), and the state of the radio that follows from them (RadioState.h). It is
/// the one source of what a program, a window, a certificate or a history says of a run.
///
/// One operation tells, in this order, as far as it gets:
///
///     OperationStarted  [ErasureChosen]  LineOpened  StepTaken(Reset)  [PowerCycleRequired]
///     LoggedOn  [BootApplicationSent]  [SpeedAgreed]  ConfigurationsRead
///     and per target written:
///         TargetBegun  Unlock  BlocksDone  Erase  BlocksDone
///         {TableBegun  {Data  DataProgress}...}...  TargetWritten  Lock  BlocksDone
///     ConfigurationsRead  StepTaken(Restart)  OperationEnded
///
/// A test of the line tells a LinkMeasured per speed in place of everything between the log-on and
/// the restart. CommandRepeated, UnexpectedBytes and LineOpened (each change of speed opens the
/// line anew) may stand anywhere between.
namespace fldc::session {

enum class Operation : std::uint8_t { Report, Download, Erase, Restart, LinkTest };

/// What changes a radio.
enum class Step : std::uint8_t { Reset, Unlock, Erase, Data, Lock, Restart };

/// How far a step has come. Each attempt is told as Sent and then as one of the others.
enum class Outcome : std::uint8_t {
    Sent,       ///< all of it was given to the line
    Done,       ///< the radio said so
    Refused,    ///< the radio answered with a plain fault word: it did nothing
    Unanswered, ///< silence, an unreadable answer, a list with faults of single blocks, a lost
                ///< line, a cancel: nobody knows, so the worse is taken for true
};

struct OperationStarted {
    Operation operation;
};

struct LineOpened {
    std::int32_t port;  ///< number of the port
    std::uint32_t baud; ///< 8 data bits, no parity, 1 stop bit
};

/// Done without Sent before it: a power cycle has reset the radio.
struct StepTaken {
    Step step;
    Outcome outcome;
    Code code = Code::Success; ///< why it was refused or has no answer
};

/// The radio waits for somebody to switch it off and on.
struct PowerCycleRequired {
    bool f1Key; ///< with its F1 key held
};

struct LoggedOn {
    std::optional<QString> identifier; ///< "RVKC4*"; none where the radio was in upgrade mode
    bool needsBootApplication;         ///< it is not in upgrade mode before that was sent
};

/// The boot application was sent, and the radio said that it runs.
struct BootApplicationSent {
    QString file; ///< path
    std::int32_t bytes;
};

struct SpeedAgreed {
    std::uint32_t baud;
};

struct Component {
    QString product;
    std::int32_t status; ///< 0 is good
    std::int32_t network;
    std::int32_t device;
    bool erasable;
};

/// Before and after a download or an erasure; a report reads once.
enum class Reading : std::uint8_t { Before, After, Report };

struct ConfigurationsRead {
    Reading when;
    std::vector<Component> components; ///< in the radio's order
};

/// What an erasure is to erase, as it was reported before; told before anything is sent.
struct ErasureChosen {
    std::vector<Component> components;
};

/// Where in the radio an image is written to.
struct Place {
    std::int32_t network;
    std::int32_t device;
};

/// The radio let an image be written to a place; its blocks are about to be unlocked.
struct TargetBegun {
    std::int32_t file; ///< number of the image in the order of the download, from 1
    QString name;      ///< the image's key: the path it was loaded from, and a number if there are
                       ///< several images in that file
    QString tag;
    std::optional<Place> place; ///< none for an image without targets
};

enum class BlockAction : std::uint8_t { Unlocked, Erased, Locked };

/// Told behind the step when the radio has confirmed all of them.
struct BlocksDone {
    BlockAction action;
    std::vector<std::uint16_t> blocks;
};

/// The radio has taken the start address of a run of data.
struct TableBegun {
    std::uint32_t address;  ///< in the file's units
    std::int32_t bytes;     ///< of the file
    std::int32_t wireBytes; ///< as they are sent, without frames
    bool compressed;
};

/// Behind each answered data frame.
struct DataProgress {
    std::int64_t bytes; ///< data bytes sent and answered of this target
    std::int64_t total; ///< data bytes that this target takes on the wire
};

/// All data of the target are sent and answered; its blocks are still unlocked.
struct TargetWritten {};

/// A command is about to be sent again after a fault that a repeat may cure. Asking an older radio
/// another way is no repeat and not told.
struct CommandRepeated {
    std::uint8_t command;
    QString name;         ///< as in the log; empty for a command without one
    std::int32_t attempt; ///< 2 or 3
    Code reason;
};

enum class LooksLike : std::uint8_t { OwnEcho, Text, Other };

/// Most bytes that one event shows.
inline constexpr qsizetype unexpectedLimit = 64;

/// Bytes that were thrown away before a write, or received by a read that failed.
struct UnexpectedBytes {
    QByteArray bytes; ///< the first unexpectedLimit of them
    LooksLike looksLike;
};

/// Short exchanges at one speed, told when the last of them is done.
struct LinkMeasured {
    std::uint32_t baud;
    bool agreed;              ///< false: the radio would not change to it, nothing else was tried
    std::int32_t rounds = 0;  ///< exchanges tried; fewer than wanted where too many were lost
    std::int32_t lost = 0;    ///< without a single byte for an answer
    std::int32_t corrupt = 0; ///< answered with anything but what the answer is
    std::vector<std::chrono::microseconds> roundTrips = {}; ///< of the others, in their order
};

struct OperationEnded {
    std::int32_t code = 0; ///< result of the operation, 0 = success
    QString text;          ///< its message
};

using Event = std::variant<StepTaken, OperationStarted, LineOpened, PowerCycleRequired, LoggedOn,
                           BootApplicationSent, SpeedAgreed, ConfigurationsRead, ErasureChosen,
                           TargetBegun, BlocksDone, TableBegun, DataProgress, TargetWritten,
                           CommandRepeated, UnexpectedBytes, LinkMeasured, OperationEnded>;

} // namespace fldc::session
