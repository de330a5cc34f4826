#include "protocol/record/CommandRecord.h"

#include "protocol/wire/Frames.h"
#include "protocol/wire/Replies.h"
#include "session/LooksLike.h"
#include "shared/LastError.h"

#include <algorithm>
#include <array>
#include <optional>

namespace fldc {

namespace {

using session::BlockAction;
using session::Outcome;
using session::Step;

/// A command that changes something in the radio.
struct ToldCommand {
    Command command;
    Step step;
    std::optional<BlockAction> action; ///< what it does to the blocks that are its data
};

constexpr std::array toldCommands{
    ToldCommand{Command::UnlockFlash, Step::Unlock, BlockAction::Unlocked},
    ToldCommand{Command::EraseFlash, Step::Erase, BlockAction::Erased},
    ToldCommand{Command::WriteFlashData, Step::Data, {}},
    ToldCommand{Command::WriteFlashDataInflate, Step::Data, {}},
    ToldCommand{Command::ResetRadio, Step::Restart, {}},
    ToldCommand{Command::LockFlash, Step::Lock, BlockAction::Locked},
};

// A radio that does not know these is asked in an older way.
constexpr std::array haveOlderForm{Command::SetFlashAddressInflate, Command::ReportFlashRegions,
                                   Command::AuthoriseComponent,
                                   Command::AuthoriseComponentOnDevice};

const ToldCommand* toldCommand(Command command)
{
    const auto* found = std::ranges::find(toldCommands, command, &ToldCommand::command);
    return found == toldCommands.end() ? nullptr : found;
}

// Only a plain fault word says that nothing was done.
Outcome outcomeOf(Code code)
{
    if (code == Code::Success)
        return Outcome::Done;
    const bool plainFault = std::ranges::find(faults, code, &Fault::code) != faults.end();
    return plainFault ? Outcome::Refused : Outcome::Unanswered;
}

void tellOutcome(const session::Teller& teller, Step step)
{
    const Code code = lastError().code();
    teller.tell(session::StepTaken{step, outcomeOf(code), code});
}

session::BlocksDone blocksDone(BlockAction action, const QByteArray& data)
{
    session::BlocksDone done{action, {}};
    for (qsizetype i = 0; i + 2 <= data.size(); i += 2)
        done.blocks.push_back(static_cast<std::uint16_t>(static_cast<std::uint8_t>(data[i]) << 8U |
                                                         static_cast<std::uint8_t>(data[i + 1])));
    return done;
}

} // namespace

void tellSent(const session::Teller& teller, Command command)
{
    const auto* told = teller.heard() ? toldCommand(command) : nullptr;
    if (told != nullptr)
        teller.tell(session::StepTaken{told->step, Outcome::Sent});
}

void tellAnswered(const session::Teller& teller, Command command, const QByteArray& data)
{
    const auto* told = teller.heard() ? toldCommand(command) : nullptr;
    if (told == nullptr)
        return;
    tellOutcome(teller, told->step);
    if (told->action && lastError().ok())
        teller.tell(blocksDone(*told->action, data));
}

void tellResetSent(const session::Teller& teller, Step step)
{
    teller.tell(session::StepTaken{step, Outcome::Sent});
}

void tellResetAnswered(const session::Teller& teller, Step step)
{
    tellOutcome(teller, step);
}

void tellRepeated(const session::Teller& teller, Command command, int attempt)
{
    const Code reason = lastError().code();
    const bool olderFormFollows = reason == Code::CommandNotRecognised &&
                                  std::ranges::find(haveOlderForm, command) != haveOlderForm.end();
    if (!teller.heard() || olderFormFollows)
        return;
    teller.tell(session::CommandRepeated{static_cast<std::uint8_t>(command),
                                         QString::fromUtf16(nameOf(command)), attempt, reason});
}

void tellUnreadable(const session::Teller& teller, QStringView reply, const QByteArray& frame)
{
    if (teller.heard() && !reply.isEmpty())
        teller.tell(session::unexpected(HexToBytes(reply), frame));
}

} // namespace fldc
