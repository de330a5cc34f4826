#pragma once

#include "manager/clsDLManager.h"
#include "platform/IFileDialogs.h"
#include "platform/IHelpViewer.h"
#include "protocol/IWaitDialog.h"
#include "radio/colConfigurations.h"
#include "support/VirtualPlatform.h"
#include "ui/frmDownload.h"

#include <QLabel>
#include <QPointer>

#include <gtest/gtest.h>

#include <deque>
#include <initializer_list>

namespace fldc {

/// File dialogs that a test answers; one that it did not announce fails the test.
class ScriptedFileDialogs final : public IFileDialogs {
public:
    std::deque<std::optional<QStringList>> answers;
    QStringList asked; ///< "open" or "save", initial name and filter of each dialog
    Answer open;       ///< with no answer announced: left to be answered later
    bool mayStayOpen = false;

    void chooseFilesToOpen(const FileQuestion& question, Answer answer) override
    {
        ask(u"open", question, std::move(answer));
    }
    void chooseFileToSave(const FileQuestion& question, Answer answer) override
    {
        ask(u"save", question, std::move(answer));
    }

private:
    void ask(QStringView kind, const FileQuestion& question, Answer answer)
    {
        asked.append(kind + u':' + question.initialName + u':' + question.filter);
        if (answers.empty()) {
            EXPECT_TRUE(mayStayOpen) << "a file dialog that nobody announced";
            open = std::move(answer);
            return;
        }
        const auto next = answers.front();
        answers.pop_front();
        answer(next);
    }
};

class RecordedHelp final : public IHelpViewer {
public:
    bool installed = true;
    QStringList requests;

    void displayContents(const QString& file) override
    {
        if (!installed)
            throw PlatformFailure(FailureNumber::FileNotFound);
        requests.append(QStringLiteral("contents ") + file);
    }
    void displayTopic(std::uintptr_t /*owner*/, const QString& file, std::int32_t context) override
    {
        requests.append(QStringLiteral("topic %1 ").arg(context) + file);
    }
};

/// A manager on a machine in memory, with the real main window.
class WindowTest : public testing::Test, public IDownloadWindowFactory, public IWaitDialogFactory {
public:
    WindowTest();
    ~WindowTest() override;

protected:
    void start();
    [[nodiscard]] std::shared_ptr<IDownloadWindow> createWindow() override;
    [[nodiscard]] std::unique_ptr<IWaitDialog> createWaitDialog() override { return nullptr; }

    template <class Widget = QWidget>
    [[nodiscard]] Widget* control(const char* name) const
    {
        auto* found = view->findChild<Widget*>(QString::fromLatin1(name));
        if (found == nullptr)
            throw std::runtime_error(name);
        return found;
    }
    void click(const char* name) const;
    void clickRow(int row) const;
    void play(std::initializer_list<const char*> pieces) const;
    /// Rows of type, code, hardware; @p erasable: digits 1 and 0 by row; @p status likewise.
    void fill(const QStringList& codes, const char* erasable, std::int32_t status = 0,
              bool f1KeyRequired = false) const;
    [[nodiscard]] QString status() const;
    /// Names of those of the three buttons and the port list that are enabled.
    [[nodiscard]] QString enabled() const;
    [[nodiscard]] int portChoices() const;

    VirtualPlatform machine;
    ScriptedFileDialogs dialogs;
    RecordedHelp help;
    std::unique_ptr<clsDLManager> manager;
    std::weak_ptr<DownloadWindow> window;
    QPointer<QWidget> view;
};

// Conversations: a radio with own software that reports one component, and restarts.
inline constexpr auto logOn = "@ ..\n@ 19200\n> 5E\n< 76\n> 7E\n< 2A\n< 3F\n< AF AF\n";
inline constexpr auto askForReport = "> 31 00 CE FF\n";
inline constexpr auto answerReport =
    "< 43 0A 00 52 00 56 00 4B 00 42 00 31 00 00 00 00 00 00 00 00 05 00 B6 8F\n< AF AF\n";
inline constexpr auto restart = "> 36 00 C9 FF\n@ 19200\n< 76\n";

} // namespace fldc
