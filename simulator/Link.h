// The symbolic link by which a host finds the radio: the pseudo-terminal's own name differs from
// run to run.
#pragma once

#include <filesystem>
#include <string>

namespace simulator {

class Link {
public:
    /// Makes `path` a link to `target`, in place of a link that an earlier run left behind. Throws
    /// std::runtime_error when something other than such a link is there or the link cannot be
    /// made. An empty path makes no link.
    Link(const std::string& path, const std::string& target);
    ~Link();
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

private:
    std::filesystem::path m_path;
    std::filesystem::path m_target;
};

} // namespace simulator
