#include "certificate/Verdict.h"

#include "certificate/JsonObject.h"
#include "radio/HardwareMatch.h"
#include "shared/NumberText.h"

#include <algorithm>
#include <array>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

struct CodeMeaning {
    Code code;
    Exit exit;
};

// Of a run that ended before the first erase. What the radio refuses, and what does not fit its
// flash, is one thing; silence and what can't be understood another (the rest).
constexpr std::array codeMeanings{
    CodeMeaning{Code::FileDoesNotExist, Exit::File},
    CodeMeaning{Code::FileFormatNotValid, Exit::File},
    CodeMeaning{Code::AddressError, Exit::Refused},
    CodeMeaning{Code::DataError, Exit::Refused},
    CodeMeaning{Code::FlashBlocks, Exit::Refused},
    CodeMeaning{Code::FlashAddressDoesNotExist, Exit::Refused},
    CodeMeaning{Code::RuntimeError, Exit::Unexpected},
};

constexpr bool isPortCode(Code code)
{
    return code == Code::PortDoesNotExist || code == Code::PortInUse ||
           code == Code::PortUnspecified;
}

constexpr bool isFaultWord(Code code)
{
    const auto number = static_cast<std::int32_t>(code);
    return number >= 8001 && number <= 8113;
}

Exit exitBeforeErase(Code code, const RunFacts& record)
{
    if (isPortCode(code))
        return record.anythingSent() ? Exit::NoConversation : Exit::Port;
    if (isFaultWord(code) || (code == Code::Checksum && record.lastStepRefused()))
        return Exit::Refused;
    if (code == Code::DataLength)
        return record.targets().empty() ? Exit::NoConversation : Exit::Refused;
    const auto* found = std::ranges::find(codeMeanings, code, &CodeMeaning::code);
    return found == codeMeanings.end() ? Exit::NoConversation : found->exit;
}

Outcome outcomeOf(Exit exit, const RunFacts& record)
{
    if (record.isIncomplete())
        exit = foremost(exit, Exit::Unexpected);
    Outcome outcome = failure(exit, record.ending().code, record.ending().message,
                              adviceOf(record.state(), record.ending().code).toString());
    outcome.radio = textOf(record.state()).name.toString();
    return outcome;
}

bool sameDevice(const std::optional<session::Place>& place, const session::Component& component,
                bool hasNetworks)
{
    return !place || !hasNetworks ||
           (place->network == component.network && place->device == component.device);
}

bool anyNetwork(const std::vector<session::Component>& components)
{
    return std::ranges::any_of(components, [](const auto& each) { return each.network != 0; });
}

/// What a download was to do and did, by image.
class DownloadResult {
public:
    DownloadResult(const RunFacts& record, const std::vector<std::shared_ptr<clsFile>>& images)
        : m_record(record), m_images(images),
          m_reachedEnd(record.components(session::Reading::After).has_value())
    {
        for (const auto& image : images) {
            const QString tag = image->TagName();
            if (m_tags.contains(tag))
                continue;
            m_tags.append(tag);
            const bool all = allLocked(tag);
            if (all)
                m_outcome.written.append(validText(tag));
            if (all && isConfirmed(tag))
                m_outcome.confirmed.append(validText(tag));
            if (!isBegun(tag) && m_reachedEnd)
                m_outcome.notMatched.append(validText(tag));
        }
        m_outcome.baud = record.baud();
        m_outcome.retries = record.retries();
        m_outcome.wireBytes = record.wireBytes();
    }

    [[nodiscard]] const DownloadOutcome& outcome() const { return m_outcome; }
    [[nodiscard]] bool reachedEnd() const { return m_reachedEnd; }

    /// Every place that matches an image is written and locked.
    [[nodiscard]] bool everythingLocked() const
    {
        const auto& before = m_record.components(session::Reading::Before);
        if (!before || !std::ranges::all_of(m_record.targets(), &WrittenTarget::locked))
            return false;
        std::size_t due = 0;
        for (const auto& image : m_images)
            due += placesOf(*image, *before);
        return m_record.targets().size() >= due;
    }

private:
    static std::size_t placesOf(const clsFile& image, const std::vector<session::Component>& radio)
    {
        if (image.CountTargets() == 0)
            return 1;
        std::size_t places = 0;
        for (std::int32_t i = 0; i < image.CountTargets(); ++i)
            places += static_cast<std::size_t>(std::ranges::count_if(radio, [&](const auto& each) {
                return matchesHardware(each.product, image.Hardware(i));
            }));
        return places;
    }
    [[nodiscard]] bool isBegun(const QString& tag) const
    {
        return std::ranges::find(m_record.targets(), tag, &WrittenTarget::tag) !=
               m_record.targets().end();
    }
    [[nodiscard]] bool allLocked(const QString& tag) const
    {
        return isBegun(tag) && std::ranges::all_of(m_record.targets(), [&](const auto& each) {
                   return each.tag != tag || each.locked;
               });
    }
    // Flash can't be read back: what the radio reports of itself afterwards is all there is.
    [[nodiscard]] bool isConfirmed(const QString& tag) const
    {
        const auto& after = m_record.components(session::Reading::After);
        if (!after)
            return false;
        const bool hasNetworks = anyNetwork(*after);
        return std::ranges::all_of(m_record.targets(), [&](const WrittenTarget& target) {
            return target.tag != tag ||
                   std::ranges::any_of(*after, [&](const session::Component& each) {
                       return each.product == tag && each.status == 0 &&
                              sameDevice(target.place, each, hasNetworks);
                   });
        });
    }

    const RunFacts& m_record;
    const std::vector<std::shared_ptr<clsFile>>& m_images;
    bool m_reachedEnd;
    QStringList m_tags;
    DownloadOutcome m_outcome;
};

Exit exitOfDownload(const RunFacts& record, const DownloadResult& result)
{
    const bool ended =
        record.ending().code == Code::Success || record.ending().code == Code::FilesNotDownloaded;
    if (!ended && !record.mayHaveErased())
        return exitBeforeErase(record.ending().code, record);
    if (!ended)
        return result.everythingLocked() ? Exit::NotConfirmed : Exit::Incomplete;
    if (record.targets().empty())
        return Exit::NothingToDo;
    if (result.outcome().confirmed.size() != result.outcome().written.size())
        return Exit::NotConfirmed;
    return result.outcome().notMatched.isEmpty() ? Exit::Done : Exit::PartlyMatched;
}

QString messageOfDownload(Exit exit, const RunFacts& record, const DownloadOutcome& download)
{
    const QString written = download.written.join(u", "_s);
    switch (exit) {
    case Exit::Done:
        return u"Written and confirmed by the radio: %1."_s.arg(written);
    case Exit::PartlyMatched:
        return u"Written and confirmed by the radio: %1. No component of the radio matches: %2."_s
            .arg(written, download.notMatched.join(u", "_s));
    case Exit::NothingToDo:
        return u"No component of the radio matches: %1. Nothing was written."_s.arg(
            download.notMatched.join(u", "_s));
    case Exit::NotConfirmed:
        return record.ending().code == Code::Success ||
                       record.ending().code == Code::FilesNotDownloaded
                   ? u"Written and locked, but the radio does not show all of it: %1."_s.arg(
                         written)
                   : u"Written and locked: %1. Then: %2"_s.arg(written, record.ending().message);
    default:
        return record.ending().message;
    }
}

} // namespace

Outcome verdictOfReport(const RunFacts& record)
{
    if (record.ending().code != Code::Success)
        return outcomeOf(exitBeforeErase(record.ending().code, record), record);
    const auto& components = record.components(session::Reading::Report);
    Outcome outcome = outcomeOf(Exit::Done, record);
    outcome.message =
        u"The radio has %1."_s.arg(counted(components ? std::ssize(*components) : 0, u"component"));
    return outcome;
}

Outcome verdictOfRestart(const RunFacts& record)
{
    if (record.ending().code != Code::Success)
        return outcomeOf(exitBeforeErase(record.ending().code, record), record);
    Outcome outcome = outcomeOf(Exit::Done, record);
    outcome.message = u"The radio restarted."_s;
    return outcome;
}

Outcome verdictOfLinkTest(const RunFacts& record)
{
    const auto best = bestSpeed(record.links());
    Outcome outcome = verdictOfRestart(record);
    outcome.best.emplace(best);
    if (!outcome.ok())
        return outcome;
    outcome.message =
        best ? u"Every exchange was answered at %1 baud. Short exchanges do not prove that long "
               "frames get through."_s.arg(*best)
             : u"At no speed was every exchange answered; the radio restarted."_s;
    if (!best) {
        outcome.exit = Exit::NoConversation;
        outcome.advice = u"Check cable and adapter, then test again before anything is written."_s;
    }
    return outcome;
}

Outcome verdictOfDownload(const RunFacts& record,
                          const std::vector<std::shared_ptr<clsFile>>& images)
{
    const DownloadResult result(record, images);
    const Exit exit = exitOfDownload(record, result);
    Outcome outcome = outcomeOf(exit, record);
    if (record.ending().code == Code::FilesNotDownloaded)
        outcome.code = Code::FilesNotDownloaded;
    outcome.message = messageOfDownload(exit, record, result.outcome());
    outcome.download = result.outcome();
    return outcome;
}

Outcome verdictOfErasure(const RunFacts& record)
{
    const std::vector<session::Component>& asked = record.chosen();
    const auto isGone = [&](const session::Component& component) {
        const auto& after = record.components(session::Reading::After);
        return after && std::ranges::none_of(*after, [&](const session::Component& each) {
                   return each.product == component.product && each.status == 0 &&
                          each.network == component.network && each.device == component.device;
               });
    };
    Exit exit = Exit::Done;
    if (asked.empty() && record.ending().code == Code::Success)
        exit = Exit::NothingToDo;
    else if (!record.mayHaveErased())
        exit = record.ending().code == Code::Success
                   ? Exit::NotConfirmed
                   : exitBeforeErase(record.ending().code, record);
    else if (record.ending().code != Code::Success)
        exit = record.locks() == asked.size() ? Exit::NotConfirmed : Exit::Incomplete;
    else if (!std::ranges::all_of(asked, isGone))
        exit = Exit::NotConfirmed;
    Outcome outcome = outcomeOf(exit, record);
    if (exit == Exit::Done)
        outcome.message = u"Erased, and no longer reported as good: %1."_s.arg(
            counted(std::ssize(asked), u"component"));
    else if (exit == Exit::NothingToDo)
        outcome.message = u"Nothing was to be erased."_s;
    else if (record.ending().code == Code::Success)
        outcome.message = u"The radio still reports what was erased."_s;
    return outcome;
}

} // namespace fldc
