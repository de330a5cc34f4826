#include "Log.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <iostream>
#include <stdexcept>

namespace simulator {

Log::Log(const std::string& path) : m_logToOutput(path == "-")
{
    if (path.empty() || m_logToOutput)
        return;
    m_file.open(path, std::ios::trunc);
    if (!m_file)
        throw std::runtime_error("cannot write the log " + path + ": " + std::strerror(errno));
}

void Log::event(std::string_view text)
{
    if (!m_logToOutput)
        std::cout << text << std::endl;
    write("**", text);
}

void Log::heard(ByteView bytes, std::string_view meaning)
{
    write("<-", hexText(bytes) + "  (" + std::string(meaning) + ")");
}

void Log::said(ByteView bytes, Clock::duration after)
{
    const auto ms = std::chrono::round<milliseconds>(after).count();
    write("->", hexText(bytes) + (ms > 0 ? "  (in " + std::to_string(ms) + " ms)" : ""));
}

void Log::write(std::string_view mark, std::string_view text)
{
    if (!m_logToOutput && !m_file.is_open())
        return;
    using std::chrono::system_clock;
    const auto now = system_clock::now();
    const std::time_t seconds = system_clock::to_time_t(now);
    const auto ms = std::chrono::duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm local{};
    localtime_r(&seconds, &local);
    std::array<char, 16> clock{};
    std::strftime(clock.data(), clock.size(), "%H:%M:%S.", &local);
    std::ostream& out = m_logToOutput ? std::cout : m_file;
    // Flushed line by line: a log is most wanted when something ends early.
    out << clock.data() << std::to_string(1000 + ms).substr(1) << ' ' << mark << ' ' << text
        << std::endl;
}

} // namespace simulator
