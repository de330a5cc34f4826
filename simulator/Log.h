// Tells people what happens. Events are one readable line each and go to standard output; the log
// also takes every sequence of bytes, each line with its time.
#pragma once

#include "Bytes.h"
#include "Clock.h"

#include <fstream>
#include <string>
#include <string_view>

namespace simulator {

class Log {
public:
    /// `path`: file to (over)write, "-" for standard output in place of the bare events, empty for
    /// no log. Throws std::runtime_error when the file cannot be written.
    explicit Log(const std::string& path);

    /// Something that a person who watches the radio wants to know: one line.
    void event(std::string_view text);
    /// Bytes that arrived, and what the radio takes them for. For the log alone.
    void heard(ByteView bytes, std::string_view meaning);
    /// Bytes that the radio sends. For the log alone. `after`: how long after now the bytes go out.
    void said(ByteView bytes, Clock::duration after);

private:
    void write(std::string_view mark, std::string_view text);

    bool m_logToOutput;
    std::ofstream m_file;
};

} // namespace simulator
