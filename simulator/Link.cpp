#include "Link.h"

#include <stdexcept>
#include <unistd.h>

namespace simulator {

namespace fs = std::filesystem;

namespace {

bool isLeftBehind(const fs::path& path)
{
    std::error_code error;
    if (!fs::is_symlink(fs::symlink_status(path, error)))
        return false;
    return !fs::exists(path, error) || fs::read_symlink(path, error).parent_path() == "/dev/pts";
}

} // namespace

Link::Link(const std::string& path, const std::string& target) : m_path(path), m_target(target)
{
    if (m_path.empty())
        return;
    std::error_code error;
    if (fs::exists(fs::symlink_status(m_path, error)) && !isLeftBehind(m_path))
        throw std::runtime_error("--link " + path + ": there is already something of that name");
    // Made beside and renamed over, so that the name is never missing and never half made.
    const fs::path fresh = path + "." + std::to_string(::getpid());
    fs::create_symlink(m_target, fresh, error);
    if (!error)
        fs::rename(fresh, m_path, error);
    if (error) {
        std::error_code ignored;
        fs::remove(fresh, ignored);
        throw std::runtime_error("--link " + path + ": " + error.message());
    }
}

Link::~Link()
{
    std::error_code error;
    // Another run may have put its own link there since.
    if (!m_path.empty() && fs::read_symlink(m_path, error) == m_target)
        fs::remove(m_path, error);
}

} // namespace simulator
