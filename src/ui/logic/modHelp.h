#pragma once

#include <QString>

#include <cstdint>
#include <functional>

namespace fldc {

class IHelpViewer;
class IProgramInfo;

/// Path text of the help file: the program's folder and "rv4kd_en.chm".
[[nodiscard]] QString HelpFilePath(const IProgramInfo& program);

/// Opens the help file for a window.
class modHelp {
public:
    /// @p showMessage shows the user a text.
    modHelp(IHelpViewer& viewer, std::function<void(const QString&)> showMessage);

    /// The file in which the topics of context numbers are looked up.
    void setHelpFile(const QString& path) { m_programHelpFile = path; }

    /// Shows @p strHelpFile (empty: the file of the last call) at its contents, then the topic
    /// with the number @p lngContext unless that is 0. Tells the user when there is no viewer;
    /// any other failure is ignored. Never throws.
    void HHDisplayContents(std::uintptr_t window, std::int32_t lngContext,
                           const QString& strHelpFile);

private:
    [[nodiscard]] bool step(const std::function<void()>& request) const;

    IHelpViewer& m_viewer;
    std::function<void(const QString&)> m_showMessage;
    QString m_helpFile;
    QString m_programHelpFile;
};

} // namespace fldc
