#pragma once

#include "fldc/gang/Board.h"
#include "fldc/gang/Unit.h"
#include "platform/qt/ChildProcess.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace fldc {
struct Outcome;
}

namespace fldc::cli {

struct Context;
/// Several radios, each written by a process of its own, and with --repeat the next one at each
/// port as soon as it answers there.
///
/// A port whose radio is written is asked now and then by a report whether that radio is still
/// there. Silence means that it was taken away; the first answer behind that is the next radio.
class Gang {
public:
    Gang(Context& context, std::vector<NamedPort> ports);
    ~Gang();
    Gang(const Gang&) = delete;
    Gang& operator=(const Gang&) = delete;

    /// Returns when all units have ended; with --repeat when the run is to end.
    [[nodiscard]] Outcome run();

private:
    /// A place of the rack.
    struct Place {
        std::unique_ptr<ChildProcess> probe; ///< asks whether a radio is there
        bool hasAnswered = false;            ///< something answered that question
        bool isEmpty = true;                 ///< the next answer is the next radio's
        bool isDue = true;                   ///< a download is to be started
    };

    void startWhatIsDue();
    [[nodiscard]] bool startsNoMore() const;
    void start(std::size_t index);
    [[nodiscard]] std::optional<QString> nextLabel();
    void takeLabel(const std::optional<QString>& label);
    void tell(const QString& type, const QJsonObject& object);
    void ended(Unit& unit);
    void look();
    void probe(std::size_t index);
    void probed(std::size_t index, const ChildProcess::Ended& outcome);
    void showBoard();
    void endWhatIsToEnd();
    void endProbes(int signal);
    [[nodiscard]] bool isDone() const;
    [[nodiscard]] Outcome outcome() const;
    [[nodiscard]] QStringList argumentsOf(const QString& port, const QString& label) const;

    Context& m_context;
    std::vector<std::unique_ptr<Unit>> m_units;
    std::vector<Place> m_places; ///< of m_units
    GangCounts m_counts;
    std::optional<UnitResult> m_foremost; ///< of all results the one whose exit code counts
    QString m_foremostPort;
    std::deque<QString> m_labels; ///< read, not given to a unit yet
    bool m_hasPrompted = false;
    bool m_noMoreLabels = false;
    bool m_isEnding = false; ///< by a signal
    bool m_isLeft = false;   ///< nobody hears of it any more
    std::unique_ptr<StandardInput> m_input;
    int m_boardTimer = 0;
    int m_lookTimer = 0;
};

} // namespace fldc::cli
