#include "jobfile/VectorBackup.h"

#include <utility>
#include <vector>

#include "driver/log/Log.h"
#include "platform/common/Format.h"

namespace morvil {

namespace {

constexpr std::size_t kBlockBytes = std::size_t{1} << 20;
constexpr int kTries = 16;

bool reportFailure() {
    logMorvil(1, kError, TEXT("SpoolFile Error BackUpPolygon"), kLogEnd);
    return false;
}

// The rest of `from` behind its position to the position of `to`; the bytes copied, -1 on a failure.
std::int64_t copyRest(FileStream& from, FileStream& to) {
    std::vector<std::uint8_t> block(kBlockBytes);
    std::int64_t total = 0;
    while (const std::size_t got = from.read(block)) {
        if (!to.write(std::span(block).first(got))) return -1;
        total += static_cast<std::int64_t>(got);
    }
    return from.failed() ? -1 : total;
}

// "C:\Spool\BackUp_Polygon.dat" becomes "C:\Spool\BackUp_Polygon.4711.dat".
WString withProcessNumber(const WString& path) {
    const std::size_t dot = path.find_last_of(TEXT('.'));
    return format(TEXT("%s.%u%s"), WStringView(path).substr(0, dot), GetCurrentProcessId(), WStringView(path).substr(dot));
}

}  // namespace

// The file that another process had there may be gone again before it is looked at: then the name is free for the next try.
bool VectorBackup::create(FileStream& file, const WString& preferredPath) {
    remove();
    for (int i = 0; i < kTries; ++i) {
        if (file.open(preferredPath.c_str(), OpenMode::CreateNew)) {
            m_path = preferredPath;
            return true;
        }
        if (!fileExists(preferredPath.c_str())) continue;
        const WString own = withProcessNumber(preferredPath);
        if (!file.open(own.c_str(), OpenMode::Create)) return false;
        m_path = own;
        return true;
    }
    return false;
}

bool VectorBackup::save(FileStream& job, std::int64_t start, const WString& preferredPath) {
    FileStream copy;
    if (!create(copy, preferredPath)) return reportFailure();
    const bool whole = job.seek(start) && copyRest(job, copy) >= 0 && copy.close();
    if (whole) return true;
    copy.close();
    remove();
    return reportFailure();
}

bool VectorBackup::restore(const WCHAR* jobFile, std::int64_t start, std::int64_t& end) {
    if (m_path.empty()) return reportFailure();
    FileStream copy(m_path.c_str(), OpenMode::Read);
    FileStream job(jobFile, OpenMode::Update);
    if (!copy.isOpen() || !job.isOpen() || !job.seek(start)) return reportFailure();
    const std::int64_t length = copy.size();
    const std::int64_t copied = copyRest(copy, job);
    if (copied != length || !job.close()) return reportFailure();
    if (copied > 0) end = start + copied;
    return true;
}

void VectorBackup::remove() {
    if (!m_path.empty()) DeleteFileW(std::exchange(m_path, {}).c_str());
}

}  // namespace morvil
