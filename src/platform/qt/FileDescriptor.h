#pragma once

#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

namespace fldc {

/// Repeats a system call for as long as a signal interrupts it.
template <typename Call>
auto uninterrupted(Call call)
{
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

/// Owns a file descriptor; -1 when it owns none.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
    ~FileDescriptor() { static_cast<void>(close()); }
    FileDescriptor(FileDescriptor&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    [[nodiscard]] int get() const { return m_descriptor; }
    [[nodiscard]] bool valid() const { return m_descriptor != -1; }

    /// Returns 0 or the errno of the close. Never repeated: the system has let go of the
    /// descriptor even when a signal interrupted the call.
    int close() noexcept
    {
        const int descriptor = std::exchange(m_descriptor, -1);
        return descriptor == -1 || ::close(descriptor) == 0 || errno == EINTR ? 0 : errno;
    }

private:
    int m_descriptor = -1;
};

/// True for a terminal that this process may read without being stopped: one in whose foreground it
/// runs, or one that controls no processes.
[[nodiscard]] inline bool inForegroundOf(int terminal) noexcept
{
    if (::isatty(terminal) == 0)
        return false;
    const pid_t foreground = ::tcgetpgrp(terminal);
    return foreground == -1 || foreground == ::getpgrp();
}

/// Writes all of @p bytes to a blocking descriptor. Returns 0 or an errno.
[[nodiscard]] inline int writeAll(int descriptor, std::string_view bytes) noexcept
{
    while (!bytes.empty()) {
        const ssize_t count =
            uninterrupted([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
        if (count == -1)
            return errno;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return 0;
}

} // namespace fldc
