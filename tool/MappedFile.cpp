#include "tool/MappedFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>

#include "platform/host/Descriptor.h"

namespace morvil::tool {

namespace {

[[noreturn]] void fail(const std::string& path, int error) { throw std::system_error(error, std::generic_category(), path); }

}  // namespace

MappedFile::MappedFile(const std::string& path) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));  // a pipe without a writer would never open
    if (file.get() < 0) fail(path, errno);
    struct stat status {};
    if (::fstat(file.get(), &status) != 0) fail(path, errno);
    if (S_ISDIR(status.st_mode)) fail(path, EISDIR);
    if (!S_ISREG(status.st_mode)) fail(path + ": not a regular file", EINVAL);
    m_size = static_cast<std::size_t>(status.st_size);
    if (m_size == 0) return;  // an empty file has nothing to map
    void* const data = ::mmap(nullptr, m_size, PROT_READ, MAP_PRIVATE, file.get(), 0);
    if (data == MAP_FAILED) fail(path, errno);
    m_data = data;
}

MappedFile::~MappedFile() {
    if (m_data != nullptr) ::munmap(m_data, m_size);
}

}  // namespace morvil::tool
